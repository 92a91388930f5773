// SPDX-License-Identifier: MIT
#include "studio/window/openfiles.h"

#include "code/codedocument.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/session/documents.h"
#include "studio/session/projectcontents.h"

#include <QDir>

namespace Studio {

namespace {

constexpr int LookInterval = 500; // ms

} // namespace

OpenFiles::OpenFiles(QObject *parent)
    : QObject(parent)
{
    m_collectLater.setSingleShot(true);
    m_lookAgain.setInterval(LookInterval);
    connect(&m_collectLater, &QTimer::timeout, this, &OpenFiles::collect);
    connect(&m_lookAgain, &QTimer::timeout, this, &OpenFiles::refresh);
}

void OpenFiles::setParentProject(Vela::ParentProject *parent)
{
    if (m_parent)
        m_parent->disconnect(this);
    m_parent = parent;
    if (parent) {
        connect(parent, &Vela::ParentProject::fileAdded, &m_collectLater,
                qOverload<>(&QTimer::start));
        connect(parent, &Vela::ParentProject::fileOpened, this, &OpenFiles::onAccess);
        connect(parent, &Vela::ParentProject::fileSaved, this, &OpenFiles::onAccess);
        connect(parent, &Vela::ParentProject::fileClosed, this, &OpenFiles::onClosed);
        m_lookAgain.start();
    } else {
        m_lookAgain.stop();
    }
    collect();
}

Vela::ProjectFile *OpenFiles::file(const QString &path) const
{
    return m_files.value(path);
}

QString OpenFiles::path(const Vela::ProjectFile *file) const
{
    return m_paths.value(file);
}

QStringList OpenFiles::paths() const
{
    QStringList paths = m_files.keys();
    paths.sort();
    return paths;
}

int OpenFiles::count() const
{
    return m_files.size();
}

QStringList OpenFiles::loose() const
{
    return m_loose;
}

bool OpenFiles::isModified(const QString &path) const
{
    return m_modified.contains(path);
}

QStringList OpenFiles::modified() const
{
    QStringList paths = m_modified.values();
    paths.sort();
    return paths;
}

bool OpenFiles::isClosedProject(const QString &path) const
{
    return m_closed.contains(path);
}

void OpenFiles::refresh()
{
    QSet<QString> now;
    for (auto it = m_files.cbegin(); it != m_files.cend(); ++it) {
        if (it.value()->isModified())
            now.insert(it.key());
    }
    if (now == m_modified)
        return;
    const QSet<QString> changed = (now - m_modified) | (m_modified - now);
    m_modified = now;
    Q_EMIT modifiedChanged(changed.values());
}

// Each text of a large project tells this while it is read, so the others are not looked at.
void OpenFiles::onModified()
{
    const QString path = m_paths.value(qobject_cast<Vela::CodeDocument *>(sender()));
    const Vela::ProjectFile *const file = m_files.value(path);
    if (!file) {
        refresh();
    } else if (file->isModified() != m_modified.contains(path)) {
        if (!m_modified.remove(path))
            m_modified.insert(path);
        Q_EMIT modifiedChanged({path});
    }
}

void OpenFiles::collect()
{
    m_collectLater.stop();
    const Paths known = m_paths;
    m_files.clear();
    m_paths.clear();
    m_loose.clear();
    m_closed.clear();
    if (m_parent) {
        const QList<Vela::Project *> projects = m_parent->openedProjects();
        for (const Vela::Project *project : projects) {
            const QList<Vela::ProjectFile *> files = project->files();
            for (Vela::ProjectFile *file : files)
                add(file, pathFor(*file, known));
        }
        const QStringList closed = closedProjects(*m_parent);
        m_closed = QSet<QString>(closed.begin(), closed.end());
    }
    m_loose.sort();
    refresh();
    Q_EMIT filesChanged();
}

QString OpenFiles::pathFor(Vela::ProjectFile &file, const Paths &known) const
{
    if (!file.fileName().isEmpty()) {
        setWorkingName(file, QString());
        return pathOf(*m_parent, file);
    }
    if (pathOf(*m_parent, file).isEmpty()) {
        // A text has no name while it is being saved.
        const QString path = known.value(&file);
        if (!path.isEmpty())
            return path;
        setWorkingName(file, newName(known));
    }
    return pathOf(*m_parent, file);
}

QString OpenFiles::newName(const Paths &known) const
{
    QString name;
    int number = 0;
    do
        name = tr("Untitled %1").arg(++number);
    while (m_files.contains(name) || known.key(name));
    return name;
}

// A path stands for the text itself where there are views of it, too.
void OpenFiles::add(Vela::ProjectFile *file, const QString &path)
{
    Vela::CodeDocument *document = documentOf(file);
    m_paths.insert(file, path);
    const bool isLoose =
        file->fileName().isEmpty() ? path == pathOf(*m_parent, *file) : QDir::isAbsolutePath(path);
    if (isLoose && !m_loose.contains(path))
        m_loose.append(path);
    if (!m_files.contains(path) || file == document)
        m_files.insert(path, file);
    if (document)
        connect(document, &QTextDocument::modificationChanged, this, &OpenFiles::onModified,
                Qt::UniqueConnection);
}

void OpenFiles::onAccess(Vela::ProjectFile *file)
{
    const QString known = m_paths.value(file);
    const QString path = pathOf(*m_parent, *file);
    if (path != known)
        m_collectLater.start();
    else
        Q_EMIT contentChanged(path);
}

void OpenFiles::onClosed(Vela::ProjectFile *file)
{
    const QString path = m_paths.take(file);
    if (m_files.value(path) == file) {
        m_files.remove(path);
        m_modified.remove(path);
    }
    Q_EMIT fileGone(file);
    m_collectLater.start();
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/window/openfiles.h"

#include "code/codedocument.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/session/documents.h"
#include "studio/session/projectcontents.h"

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

int OpenFiles::count() const
{
    return m_files.size();
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

void OpenFiles::collect()
{
    m_collectLater.stop();
    const QHash<const Vela::ProjectFile *, QString> known = m_paths;
    m_files.clear();
    m_paths.clear();
    m_closed.clear();
    if (m_parent) {
        const QList<Vela::Project *> projects = m_parent->openedProjects();
        for (const Vela::Project *project : projects) {
            const QList<Vela::ProjectFile *> files = project->files();
            for (Vela::ProjectFile *file : files) {
                // A text has no name while it is being saved.
                const QString path = file->fileName().isEmpty()
                    ? known.value(file)
                    : relativeToRoot(*m_parent, file->fileName());
                add(file, path);
            }
        }
        const QStringList closed = closedProjects(*m_parent);
        m_closed = QSet<QString>(closed.begin(), closed.end());
    }
    refresh();
    Q_EMIT filesChanged();
}

// A path stands for the text itself where there are views of it, too.
void OpenFiles::add(Vela::ProjectFile *file, const QString &path)
{
    Vela::CodeDocument *document = documentOf(file);
    m_paths.insert(file, path);
    if (!m_files.contains(path) || file == document)
        m_files.insert(path, file);
    if (document)
        connect(document, &QTextDocument::modificationChanged, this, &OpenFiles::refresh,
                Qt::UniqueConnection);
}

void OpenFiles::onAccess(Vela::ProjectFile *file)
{
    const QString known = m_paths.value(file);
    const QString path = relativeToRoot(*m_parent, file->fileName());
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

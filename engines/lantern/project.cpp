// SPDX-License-Identifier: MIT
#include "lantern/project.h"

#include "lantern/binaryfile.h"
#include "lantern/parentproject.h"
#include "lantern/textfile.h"

#include "frame/archive.h"

#include <QFileInfo>
#include <QHash>

namespace Lantern {

Project::Project(ParentProject *parent, DefinitionFile *main)
    : Vela::Project(parent, main->settings().projectType, main, true)
    , m_parent(parent)
    , m_definition(main)
    , m_name(Project::name())
{
    QObject::setParent(parent);
    m_namesChanged.setSingleShot(true);
    connect(&m_namesChanged, &QTimer::timeout, this, &Project::passOnNames);
    connect(this, &Project::fileAdded, this,
            [this](const Vela::ProjectFile *, int type) { onFilesChanged(type); });
    connect(this, &Project::fileRemoved, this,
            [this](const Vela::ProjectFile *, int type) { onFilesChanged(type); });
    matchFiles();
    m_definition->setListener([this] { definitionChanged(); });
    m_namesChanged.stop();
    passOnNames();
    addToParent();
}

DefinitionFile *Project::definition() const
{
    return m_definition;
}

QString Project::name() const
{
    const QString name = m_definition->settings().name;
    return name.isEmpty() ? QFileInfo(fileName()).completeBaseName() : name;
}

QString Project::version() const
{
    const QString version = m_definition->settings().version;
    const Settings *const game = gameSettings();
    return version.isEmpty() && game ? game->version : version;
}

QSize Project::stageSize() const
{
    const QSize size = m_definition->settings().stageSize;
    if (size.isValid())
        return size;
    const Settings *const game = gameSettings();
    return game && game->stageSize.isValid() ? game->stageSize : QSize(320, 180);
}

QPointF Project::stageScale() const
{
    const QPointF scale = m_definition->settings().stageScale;
    if (!scale.isNull())
        return scale;
    const Settings *const game = gameSettings();
    return game && !game->stageScale.isNull() ? game->stageScale : QPointF(1, 1);
}

void Project::dependencies(QList<Dependency> &files) const
{
    files += m_dependencies;
}

const Settings *Project::gameSettings() const
{
    const Project *const game = m_parent->gameProject();
    return game && game != this ? &game->definition()->settings() : nullptr;
}

// The files are matched once all of them have been read.
void Project::reload()
{
    m_isReloading = true;
    Vela::Project::reload();
    m_isReloading = false;
    definitionChanged();
}

void Project::release()
{
    m_definition->setListener(nullptr);
    Vela::Project::release();
    m_parent->projectReleased(this);
    deleteLater();
}

void Project::definitionChanged()
{
    if (m_isReloading)
        return;
    const QList<Dependency> before = m_dependencies;
    matchFiles();
    if (m_dependencies != before)
        Q_EMIT fileHierarchyChanged();
    if (name() != m_name) {
        m_name = name();
        Q_EMIT nameChanged();
    }
}

// Brings the files in line with the main file.
void Project::matchFiles()
{
    m_dependencies.clear();
    QSet<Dependency> unmatched;
    for (const FileEntry &entry : m_definition->files()) {
        const Dependency dependency(entry.type, entry.path);
        if (entry.type == Main)
            continue;
        m_dependencies.append(dependency);
        if (!entry.missing)
            unmatched.insert(dependency);
    }
    removeUnnamedFiles(unmatched);
    addFiles(unmatched);
}

// Takes what is there off \a named. A file with changes that are not saved stays, even if it is no
// longer named, until it has been saved.
void Project::removeUnnamedFiles(QSet<Dependency> &named)
{
    const int folderLength = absolutePath().size() + 1;
    for (int type = Sprites; type <= Scripts; ++type) {
        const QList<Vela::ProjectFile *> present = filesByType(type);
        for (int i = present.size() - 1; i >= 0; --i) {
            const QString path = present.at(i)->fileName().mid(folderLength);
            if (!named.remove(Dependency(type, path)) && !present.at(i)->isModified())
                removeFile(type, unsigned(i));
        }
    }
}

void Project::addFiles(const QSet<Dependency> &missing)
{
    const QString folder = absolutePath() + QLatin1Char('/');
    QHash<QString, Vela::ProjectFile *> byName;
    const QList<Vela::ProjectFile *> present = files();
    for (Vela::ProjectFile *file : present)
        byName.insert(file->fileName(), file);
    for (const Dependency &dependency : qAsConst(m_dependencies)) {
        if (!missing.contains(dependency))
            continue;
        // A file of several types is one file, with one reference.
        Vela::ProjectFile *&file = byName[folder + dependency.second];
        if (!file) {
            file = createContentFile(dependency.first);
            dynamic_cast<LateContent &>(*file).attach(archive(), folder + dependency.second);
        }
        addFile(file, dependency.first);
    }
}

void Project::onFilesChanged(int type)
{
    if (type == Sprites || type == Sounds)
        m_namesChanged.start();
}

// The motions name sprites and sounds by their files.
void Project::passOnNames()
{
    const QList<Vela::ProjectFile *> present = files();
    for (Vela::ProjectFile *file : present) {
        if (auto *const document = dynamic_cast<Document *>(file))
            document->forgetNames();
    }
}

Vela::ProjectFile *createContentFile(int type)
{
    switch (type) {
    case Vela::Project::Main:
        return new DefinitionFile(Scope::Project);
    case Vela::Project::Sprites:
        return new BinaryFile("png");
    case Vela::Project::Sounds:
        return new BinaryFile("wav");
    case Vela::Project::Animations:
        return new Document(Scope::Motion);
    case Vela::Project::Scripts:
        return new TextFile("script");
    default:
        return nullptr;
    }
}

} // namespace Lantern

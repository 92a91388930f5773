// SPDX-License-Identifier: MIT
#include "lantern/parentproject.h"

#include "lantern/definitionfile.h"
#include "lantern/engine.h"
#include "lantern/project.h"

#include "frame/filesystemarchive.h"
#include "frame/jobstats.h"
#include "project/messages.h"

#include <QCoreApplication>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

QString folderOf(const QString &path)
{
    return path.left(qMax(path.lastIndexOf(QLatin1Char('/')), 0));
}

} // namespace

ParentProject::ParentProject(const QString &root, const QString &gameFile, Engine *engine)
    : Vela::ParentProject(root, Vela::FileSystemArchive::instance())
    , m_engine(engine)
    , m_gameFile(gameFile)
{
}

ParentProject::~ParentProject()
{
    // While the base is whole: a project takes itself out of its parent.
    qDeleteAll(findChildren<Vela::Project *>(QString(), Qt::FindDirectChildrenOnly));
}

bool ParentProject::openGame(Vela::JobStats *job, QString *error)
{
    m_game = open(new DefinitionFile(Scope::Game), absolute(m_gameFile), job, error);
    if (!m_game)
        return false;
    const QVector<FileEntry> entries = m_game->definition()->files();
    for (const FileEntry &entry : entries) {
        QString reason;
        if (entry.type != Vela::Project::Main)
            continue;
        const bool opened =
            !entry.closed && !entry.missing && openMainFile(absolute(entry.path), job, &reason);
        if (job && job->wasCancelled())
            break;
        // It stays a part of the game, so that nobody takes a copy without it for a whole one.
        if (!opened)
            showClosed(entry.path);
        if (!reason.isEmpty())
            m_game->definition()->reportAt(entry, reason);
    }
    return true;
}

Project *ParentProject::openMainFile(const QString &fileName, Vela::JobStats *job, QString *error)
{
    return open(new DefinitionFile(Scope::Project), fileName, job, error);
}

Project *ParentProject::openClosed(const QString &path, QString *error)
{
    QString folder = path;
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    if (!m_closed.contains(folder))
        folder = m_closed.key(folder);
    const QString mainFile = m_closed.value(folder);
    if (mainFile.isEmpty()) {
        *error = Texts::tr("The game has no closed project '%1'.").arg(path);
        return nullptr;
    }
    // No job: the others in the window must not come upon a project that is half open.
    Project *const project = openMainFile(absolute(mainFile), nullptr, error);
    if (project)
        m_closed.remove(folder);
    return project;
}

Project *ParentProject::open(DefinitionFile *main, const QString &fileName, Vela::JobStats *job,
                             QString *error)
{
    if (main->fromFile(archive(), fileName, 0, nullptr))
        return new Project(this, main, job);
    *error = main->messages()->at(0, Vela::Message::Error).text;
    main->release();
    return nullptr;
}

Project *ParentProject::gameProject() const
{
    return m_game;
}

void ParentProject::projectReleased(Project *project)
{
    if (project == m_game)
        m_game = nullptr;
    else if (!m_gameFile.isEmpty())
        showClosed(project->fileName().mid(absolute(QString()).size()));
}

void ParentProject::showClosed(const QString &mainFile)
{
    const QString folder = folderOf(mainFile);
    m_closed.insert(folder, mainFile);
    addPath(folder, ProjectRoot, {mainFile.mid(folder.size() + 1)});
}

Vela::Engine *ParentProject::engine() const
{
    return m_engine;
}

QString ParentProject::gameFile() const
{
    return m_gameFile.isEmpty() ? Engine::gameFileName() : m_gameFile;
}

void ParentProject::closedProjectFiles(const QString &path, QStringList &files) const
{
    QString folder = path;
    while (folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    const QString mainFile = m_closed.value(folder);
    if (mainFile.isEmpty())
        return;
    files.append(mainFile);
    DefinitionFile *const main = new DefinitionFile(Scope::Project);
    main->fromFile(archive(), absolute(mainFile), 0, nullptr);
    const QVector<FileEntry> entries = main->files();
    main->release();
    for (const FileEntry &entry : entries) {
        const QString file = folder + QLatin1Char('/') + entry.path;
        if (!files.contains(file))
            files.append(file);
    }
}

void ParentProject::lastProjectClosed()
{
}

// An empty path gives the root with its "/".
QString ParentProject::absolute(const QString &path) const
{
    const QString root = basePath();
    return root.endsWith(QLatin1Char('/')) ? QString(root + path)
                                           : QString(root + QLatin1Char('/') + path);
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "editor/fileeditor.h"

#include "engine/engine.h"
#include "frame/filesystemarchive.h"
#include "frame/fileutils.h"
#include "frame/interface.h"
#include "frame/jobstats.h"
#include "project/project.h"

#include <QAction>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QRegularExpression>
#include <memory>

namespace Vela {

namespace {

QString nameOf(const FileEditor &editor)
{
    return QString::fromUtf8(editor.name());
}

/// Returns the pattern of the files that an editor edits, such as "*.def"; empty without one.
QString filterPattern(const FileEditor &editor, const Interface &host)
{
    const Engine *const engine = host.engine();
    return engine ? engine->singleFileFilters().value(editor.canEditFileType()) : QString();
}

/// Returns the key of the option that keeps the folder of an editor's file dialogs.
QString folderKey(const FileEditor &editor)
{
    return nameOf(editor) + QLatin1String("_path");
}

QString startFolder(const FileEditor &editor, const Project *project)
{
    if (!project)
        return QString();
    const QString folder = project->option(folderKey(editor)).toString();
    return folder.isEmpty() ? project->option(QStringLiteral("project_path")).toString() : folder;
}

void storeFolder(const FileEditor &editor, Project *project, const QString &path)
{
    if (project)
        project->setOption(folderKey(editor), QFileInfo(path).absolutePath(), true);
}

/// Makes a new file of the editor's type in \a project, or returns null.
ProjectFile *addNewFile(const FileEditor &editor, const Interface &host, Project *project)
{
    const int type = editor.canEditFileType();
    Engine *const engine = host.engine();
    ProjectFile *const file = engine ? engine->createFile(type, project) : nullptr;
    if (!file || project->addFile(file, type))
        return file;
    file->release();
    return nullptr;
}

/// Returns whether \a path is to be read or written as a copy: the user is asked about a file
/// outside of the project.
bool asCopy(const Interface &host, const Project *project, const QString &path, const QString &text)
{
    if (!project || path.startsWith(project->absolutePath()))
        return false;
    return QMessageBox::warning(host.mainWindow(), FileEditor::tr("External file!"), text,
                                QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        == QMessageBox::Yes;
}

/// Returns \a path with the extension of a pattern of one, unless the path has it.
QString withExtension(const QString &path, const QString &pattern)
{
    static const QRegularExpression extensions(QStringLiteral("^(?:\\*(\\.[a-zA-Z]+))*$"));
    const QString extension = extensions.match(pattern).captured(1);
    return path.endsWith(extension) ? path : path + extension;
}

/// Returns whether \a path, which is not the name that the user was asked about, may be replaced.
bool mayReplace(const Interface &host, const QString &path)
{
    return !QFileInfo::exists(path)
        || QMessageBox::warning(
               host.mainWindow(), FileEditor::tr("Replace file?"),
               FileEditor::tr("%1 already exists. Do you want to replace it?").arg(path),
               QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        == QMessageBox::Yes;
}

unsigned int copyFlag(bool copy)
{
    return copy ? ProjectFile::Copy : 0U;
}

struct Release
{
    void operator()(ProjectFile *file) const
    {
        file->release();
    }
};

/// Keeps a file alive while a dialog is open, which may outlast the file's project.
std::unique_ptr<ProjectFile, Release> hold(ProjectFile *file)
{
    file->addRef();
    return std::unique_ptr<ProjectFile, Release>(file);
}

} // namespace

FileEditor::FileEditor(QObject *parent)
    : Editor(parent)
{
}

FileEditor::~FileEditor() = default;

bool FileEditor::isModified() const
{
    return m_currentFile && m_currentFile->isModified();
}

bool FileEditor::canSwitchOut() const
{
    return true;
}

bool FileEditor::canDiscard(const ProjectFile *file) const
{
    if (!file || (file->capabilities() & ProjectFile::SharesContent) || !file->isModified())
        return true;
    const QString text = tr("Do you want to discard the changes made in %1?").arg(nameOf(*this));
    return Interface::yesNoOption(tr("Discard changes?"), text, QStringLiteral("showmsg_discard"),
                                  0, Interface::YesButton);
}

bool FileEditor::canDiscard(const Project *project) const
{
    if (!project && interfaceObject())
        project = interfaceObject()->currentProject();
    if (!project)
        return true;
    bool result = true;
    const QPointer<const Project> guard = project;
    const QList<ProjectFile *> files = project->filesByType(canEditFileType());
    for (ProjectFile *const file : files) {
        // What goes during a question needs none.
        if (guard && guard->fileID(file))
            result = canDiscard(file) && result;
    }
    return result;
}

bool FileEditor::canClose(const ProjectFile *) const
{
    return true;
}

void FileEditor::navigateTo(unsigned int, unsigned int)
{
}

void FileEditor::setCurrentFile(ProjectFile *file)
{
    m_currentFile = file;
}

ProjectFile *FileEditor::currentFile() const
{
    return m_currentFile;
}

void FileEditor::create()
{
    const Interface *const host = interfaceObject();
    Project *const project = host ? host->currentProject() : nullptr;
    if (!project || !addNewFile(*this, *host, project))
        return;
    switchToThis();
    contentsChanged();
}

void FileEditor::open()
{
    const Interface *const host = interfaceObject();
    // What goes while a dialog is open takes its files along.
    const QPointer<Project> project = host ? host->currentProject() : nullptr;
    if (!project)
        return;
    const QString filter =
        QStringLiteral("%1 (%2)").arg(action()->text(), filterPattern(*this, *host));
    const QString path = getOpenFileName(host->mainWindow(), tr("Open %1...").arg(nameOf(*this)),
                                         startFolder(*this, project), filter);
    if (path.isEmpty() || !project)
        return;

    ProjectFile *const file = addNewFile(*this, *host, project);
    if (!file)
        return;
    const bool copy = asCopy(*host, project, path,
                             tr("This file isn't a child of the project directory, so will be "
                                "ignored on 'Run in engine', 'Backup' and 'Save as' functions. Do "
                                "you want to load it as copy?"));
    if (!project || !project->fileID(file))
        return;
    if (!file->fromFile(FileSystemArchive::instance(), path, copyFlag(copy), nullptr)) {
        project->removeFile(file);
        return;
    }
    storeFolder(*this, project, path);
    switchToThis();
    contentsChanged();
}

void FileEditor::save()
{
    switchToThis();
    ProjectFile *const file = m_currentFile;
    if (!file || !file->isModified() || !file->canSave())
        return;
    ProgressProvider *const progress = interfaceObject() ? interfaceObject()->progress() : nullptr;
    std::unique_ptr<ProgressJob> job;
    if (progress)
        job.reset(progress->createJob(tr("Saving") + QLatin1Char(' ') + file->displayName(), 0));
    const bool isSlow = file->capabilities() & ProjectFile::SavesSlowly;
    if (job)
        job->setLengthy(isSlow ? 1 : 0);
    const unsigned int flags = isSlow ? ProjectFile::WithJob : 0U;
    JobStats *const stats = isSlow ? job.release() : job.get();
    const bool isSaved = file->toFile(file->archive(), file->fileName(), flags, stats);
    job.reset();
    if (isSaved)
        contentsChanged();
    else
        saveAs();
}

void FileEditor::saveAs()
{
    switchToThis();
    if (m_currentFile)
        saveFileAs(m_currentFile, this, interfaceObject());
}

void FileEditor::saveFileAs(ProjectFile *file)
{
    saveFileAs(file, this, interfaceObject());
}

void FileEditor::saveFileAs(ProjectFile *file, FileEditor *editor, Interface *interface)
{
    if (!file || !interface || !file->canSave())
        return;
    const QPointer<Project> project = file->project();
    const auto held = hold(file);
    const QString pattern = filterPattern(*editor, *interface);
    const QString filter =
        QStringLiteral("%1 (%2);;%3 (*.*)").arg(editor->action()->text(), pattern, tr("All files"));
    const QString chosen =
        getSaveFileName(interface->mainWindow(), tr("Save %1 as...").arg(nameOf(*editor)),
                        startFolder(*editor, project), filter);
    if (chosen.isEmpty())
        return;
    const QString path = withExtension(chosen, pattern);
    if (path != chosen && !mayReplace(*interface, path))
        return;

    const bool copy = asCopy(*interface, project, path,
                             tr("This file isn't a child of the project directory, so will be "
                                "ignored on 'Run in engine', 'Backup' and 'Save as' functions. Do "
                                "you want to save it as copy?"));
    if (!file->toFile(FileSystemArchive::instance(), path, copyFlag(copy), nullptr))
        QMessageBox::critical(interface->mainWindow(), tr("Save file error!"),
                              tr("An error has occurred while trying to save the file!"),
                              QMessageBox::Ok);
    storeFolder(*editor, project, path);
    Q_EMIT editor->modified();
}

void FileEditor::undo()
{
    if (m_currentFile)
        m_currentFile->undo();
}

void FileEditor::redo()
{
    if (m_currentFile)
        m_currentFile->redo();
}

void FileEditor::contentsChanged()
{
    Q_EMIT modified();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "studio/window/filecommands.h"

#include "code/codedocument.h"
#include "editor/codefileeditor.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "studio/host.h"
#include "studio/session/documents.h"
#include "studio/session/projectcontents.h"
#include "studio/window/editors.h"
#include "studio/window/fileview.h"
#include "studio/window/openfiles.h"
#include "studio/window/picker.h"
#include "studio/window/projectcommands.h"

#include <QAction>
#include <QMessageBox>
#include <QPointer>
#include <algorithm>

namespace Studio {

FileCommands::FileCommands(Host &host, const Editors &editors, OpenFiles &files,
                           const FileView &view, const ProjectCommands &commands, QObject *parent)
    : QObject(parent)
    , m_host(host)
    , m_editors(editors)
    , m_files(files)
    , m_view(view)
    , m_commands(commands)
{
}

void FileCommands::createFile()
{
    add(tr("New File"), tr("The engine cannot make a file of this kind in this project."),
        &Vela::FileEditor::create);
}

void FileCommands::addFile()
{
    add(tr("Add Existing File"), tr("The file could not be read."), &Vela::FileEditor::open);
}

void FileCommands::add(const QString &title, const QString &failure,
                       void (Vela::FileEditor::*command)())
{
    Vela::FileEditor *editor = m_commands.isBusy() ? nullptr : chooseKind(title);
    const QPointer<Vela::ParentProject> parent = m_host.currentParentProject();
    if (!editor || !parent)
        return;
    auto *previous = dynamic_cast<Vela::FileEditor *>(m_host.currentEditor());
    Vela::ProjectFile *added = nullptr;
    bool isTried = command == &Vela::FileEditor::create;
    {
        // A file that cannot be read is taken out again.
        QObject watch;
        connect(parent, &Vela::ParentProject::fileAdded, &watch, [&](Vela::ProjectFile *file) {
            added = added ? added : file;
            isTried = true;
        });
        connect(parent, &Vela::ParentProject::fileClosed, &watch, [&](Vela::ProjectFile *file) {
            if (file == added)
                added = nullptr;
        });
        (editor->*command)();
    }
    if (previous && previous != m_host.currentEditor())
        previous->setCurrentFile(nullptr);
    if (parent && added)
        takeAdded(*added);
    else if (parent && isTried)
        QMessageBox::warning(m_host.mainWindow(), title, failure);
}

// The one main file of a project is made with it.
Vela::FileEditor *FileCommands::chooseKind(const QString &title) const
{
    QVector<Picker::Entry> entries;
    QVector<Vela::FileEditor *> editors;
    for (Vela::Editor *each : m_editors.all()) {
        auto *editor = dynamic_cast<Vela::FileEditor *>(each);
        if (!editor || editor->canEditFileType() == Vela::Project::Main)
            continue;
        QString kind = editor->action()->text();
        kind.remove(QLatin1Char('&'));
        entries.append({kind, QString(), editor->action()->icon()});
        editors.append(editor);
    }
    Picker picker(title, tr("Type a part of a kind of file"), entries, m_host.mainWindow());
    return editors.value(picker.pick());
}

void FileCommands::takeAdded(Vela::ProjectFile &file)
{
    const Vela::ProjectFile *same = sameFile(file);
    if (same) {
        file.project()->removeFile(&file);
    } else if (file.fileName().isEmpty()) {
        // It is not on the disk, so there is something to save.
        if (Vela::CodeDocument *document = documentOf(&file))
            document->setModified(true);
    }
    m_files.collect();
    const QString path = m_files.path(same ? same : &file);
    if (same)
        Q_EMIT done(tr("%1 is open in the project already.").arg(path));
    Q_EMIT fileWanted(path);
}

// Two objects of one file would write over each other.
Vela::ProjectFile *FileCommands::sameFile(const Vela::ProjectFile &file) const
{
    if (file.fileName().isEmpty() || !file.project())
        return nullptr;
    const QList<Vela::Project *> projects = file.project()->parent()->openedProjects();
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = project->files();
        for (Vela::ProjectFile *other : files) {
            if (other != &file && documentOf(other) != &file
                && other->fileName() == file.fileName())
                return other;
        }
    }
    return nullptr;
}

void FileCommands::saveFileAs()
{
    Vela::ProjectFile *file = m_view.file();
    if (!file || !file->project() || m_commands.isBusy())
        return;
    const QPointer<Vela::Project> project = file->project();
    const QList<int> types = typesOf(project->fileID(file));
    auto *editor = dynamic_cast<Vela::FileEditor *>(m_host.currentEditor());
    if (editor && editor->currentFile() == file)
        editor->saveAs();
    else if (Vela::FileSaver *saver = m_host.editorForFile(file, types.value(0, -1)))
        saver->saveFileAs(file);
    // What was written over is no file of its own any more.
    Vela::ProjectFile *same = project && project->fileID(file) ? sameFile(*file) : nullptr;
    if (same && !same->isModified() && same != same->project()->mainFile())
        same->project()->removeFile(same);
    Q_EMIT saved();
}

void FileCommands::saveAsUtf8()
{
    auto *editor = dynamic_cast<Vela::CodeFileEditor *>(m_host.currentEditor());
    if (!editor || !editor->document() || m_commands.isBusy())
        return;
    editor->saveAsUTF8();
    Q_EMIT saved();
}

void FileCommands::closeTab(const QString &path)
{
    Vela::ProjectFile *file = m_files.file(path);
    if (!file || !file->fileName().isEmpty() || !file->project())
        return;
    const QPointer<Vela::Project> project = file->project();
    const auto &all = m_editors.all();
    const bool mayGo =
        file->isEmpty() || std::all_of(all.begin(), all.end(), [&](Vela::Editor *each) {
            auto *editor = dynamic_cast<Vela::FileEditor *>(each);
            return !editor || !project->filesByType(editor->canEditFileType()).contains(file)
                || editor->canDiscard(file);
        });
    if (!mayGo) {
        Q_EMIT fileWanted(path);
        return;
    }
    if (project && project->fileID(file))
        project->removeFile(file);
}

} // namespace Studio

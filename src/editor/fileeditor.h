// SPDX-License-Identifier: MIT
#pragma once

#include "editor/editor.h"
#include "project/filesaver.h"

namespace Vela {

/// An editor of one project file at a time, with the flows of creating, opening, saving and
/// discarding that all of them share.
class VELA_EXPORT FileEditor : public Editor, public FileSaver
{
    Q_OBJECT

public:
    explicit FileEditor(QObject *parent = nullptr);
    ~FileEditor() override;

    /// Returns the file type of Project that this editor edits.
    virtual int canEditFileType() const = 0;
    /// Returns whether the current file is modified; false without one.
    virtual bool isModified() const;
    /// Returns whether the host may leave this editor now.
    virtual bool canSwitchOut() const;
    /// Asks, where that is needed, whether the changes of \a file may be lost.
    virtual bool canDiscard(const ProjectFile *file) const;
    /// Asks for each file of this editor's type in \a project, also behind a No, and returns
    /// whether all may go. Null stands for the current project.
    bool canDiscard(const Project *project) const;
    virtual bool canClose(const ProjectFile *file) const;
    /// Goes to a place in the current file, both from 0.
    virtual void navigateTo(unsigned int line, unsigned int column);
    /// Makes \a file current; null stands for none. The file is not counted here: whoever ends it
    /// sets another one first.
    virtual void setCurrentFile(ProjectFile *file);
    ProjectFile *currentFile() const;

public Q_SLOTS:
    /// Adds a new empty file to the current project.
    virtual void create();
    /// Asks for a file and adds it to the current project.
    virtual void open();
    /// Writes the current file if it is modified; asks for another name if that fails.
    virtual void save();
    virtual void saveAs();
    virtual void cut() = 0;
    virtual void copy() = 0;
    virtual void paste() = 0;
    /// Forward to the current file.
    virtual void undo();
    virtual void redo();

Q_SIGNALS:
    void modified();

protected:
    virtual void contentsChanged();

public:
    /// Asks for a name and writes \a file there as the type of \a editor. See FileSaver. The folder
    /// chosen is kept for the next dialog, and \a editor emits modified(), also if the write
    /// failed.
    static void saveFileAs(ProjectFile *file, FileEditor *editor, Interface *interface);
    void saveFileAs(ProjectFile *file) override;

private:
    ProjectFile *m_currentFile = nullptr;
};

} // namespace Vela

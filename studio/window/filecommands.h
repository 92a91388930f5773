// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace Vela {
class FileEditor;
class ProjectFile;
} // namespace Vela

namespace Studio {

class Editors;
class FileView;
class Host;
class OpenFiles;
class ProjectCommands;

/// What the user does with a single file of the project: making one, adding one that is there, and
/// saving the current one in another way. The editors do it; this chooses them and looks after what
/// comes of it.
class FileCommands : public QObject
{
    Q_OBJECT

public:
    /// \a view shows the current file.
    FileCommands(Host &host, const Editors &editors, OpenFiles &files, const FileView &view,
                 const ProjectCommands &commands, QObject *parent);

    /// Asks for a kind of file and makes one without a name, which has to be saved.
    void createFile();
    /// Asks for a kind of file and for a file.
    void addFile();
    void saveFileAs();
    void saveAsUtf8();
    /// Drops the file whose tab was closed if it was never saved; asks if anything would be lost,
    /// and shows the file again if it may not be.
    void closeTab(const QString &path);

Q_SIGNALS:
    /// A file is to be shown.
    void fileWanted(const QString &path);
    /// A file was saved.
    void saved();
    /// Something worth a line in the status bar happened.
    void done(const QString &text);

private:
    void add(const QString &title, const QString &failure, void (Vela::FileEditor::*command)());
    Vela::FileEditor *chooseKind(const QString &title) const;
    void takeAdded(Vela::ProjectFile &file);
    Vela::ProjectFile *sameFile(const Vela::ProjectFile &file) const;

    Host &m_host;
    const Editors &m_editors;
    OpenFiles &m_files;
    const FileView &m_view;
    const ProjectCommands &m_commands;
};

} // namespace Studio

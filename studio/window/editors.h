// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QTimer>

class QWidget;

namespace Vela {
class CodeFileEditor;
class CodeWorkspace;
class Editor;
class Engine;
class FileEditor;
class ProjectFile;
class Workspace;
} // namespace Vela

namespace Studio {

class Host;

/// The editors that the engines bring and the workspaces that these share. It does what editors
/// rely on a host for: one of them is current, its workspace is shown, and all hear of another
/// engine, another project, other settings and another language.
class Editors : public QObject
{
    Q_OBJECT

public:
    explicit Editors(Host &host, QObject *parent = nullptr);
    /// Releases the editors, then the workspaces with their widgets.
    ~Editors() override;

    Vela::CodeWorkspace &code() const;
    /// Returns every editor, in the order of the bar that shows them.
    const QList<Vela::Editor *> &all() const;
    /// Returns who edits the text of a file, or null if no engine brought an editor of its type.
    Vela::CodeFileEditor *editorOf(Vela::ProjectFile &file) const;

    /// Makes \a file the one of \a editor, and the editor current.
    void show(Vela::FileEditor &editor, Vela::ProjectFile &file);
    /// Takes the file from the current editor; no editor is current then.
    void leave();

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// \a widget is that of the current workspace; null for none.
    void workspaceShown(QWidget *widget);
    /// The user chose an editor of files of this type.
    void fileWanted(int fileType);

private:
    void addEditors();
    void connectHost();
    void checkActions();
    void onEditorSwitched(Vela::Editor *editor, Vela::Editor *previous);
    void onWorkspaceChanged(Vela::Workspace *workspace);
    void onProjectChanged();
    void onSettingChanged(const QString &key);
    void reconfigure();

    Host &m_host;
    Vela::CodeWorkspace *m_code;
    QList<Vela::Editor *> m_editors;
    Vela::Workspace *m_shown = nullptr;
    Vela::Engine *m_engine = nullptr;
    QTimer m_reconfigureLater; // a page of settings stores many at once
};

} // namespace Studio

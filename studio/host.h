// SPDX-License-Identifier: MIT
#pragma once

#include "editor/editor.h"
#include "editor/extraeditor.h"
#include "editor/workspace.h"
#include "frame/interface.h"
#include "studio/actionregistry.h"
#include "studio/colors.h"
#include "studio/controlfactory.h"
#include "studio/folders.h"
#include "studio/settings.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <memory>

namespace Studio {

class ToolBarArea;

/// What the library and the engines' extensions meet of both programs. It is the installed
/// Interface from its construction to its destruction.
///
/// It keeps what is registered and passes requests on as signals: the window, where there is one,
/// connects to them. Projects, editors, workspaces and panels stay their owners'.
class Host : public QObject, public Vela::Interface
{
    Q_OBJECT

public:
    /// The host's own texts; see translate().
    enum TextId { BrokenFileTitle = 0, BrokenFile = 1 };

    explicit Host(const Folders &folders);
    ~Host() override;

    using Interface::scaleToDPI;

    const Folders &folders() const;
    Settings &settings();
    Colors &colors();
    ActionRegistry &actions();
    ControlFactory &controls();

    // For the window, which sets what the library asks for.

    void setMainWindow(QWidget *window);
    /// Replaces the dialogs of the window.
    void setProgressProvider(std::unique_ptr<Vela::ProgressProvider> provider);

    /// Makes the project the last of the list and, if it is the first one, the current one.
    void addParentProject(Vela::ParentProject *project);
    /// Takes a project out of the list; a deleted one leaves by itself. If its engine or one of its
    /// projects was current, the first parent project left becomes current.
    void removeParentProject(Vela::ParentProject *project);
    const QList<Vela::ParentProject *> &parentProjects() const;
    /// Null makes no project current.
    void setCurrentParentProject(Vela::ParentProject *project);
    /// Makes a project current together with its parent.
    void setCurrentProject(Vela::Project *project);
    /// Sets the engine that is asked while no parent project is open.
    void setEngine(Vela::Engine *engine);

    void registerEditor(const QByteArray &name, Vela::Editor *editor);
    void unregisterEditor(Vela::Editor *editor);
    /// Sets who saves files of a type under another name; the type -1 stands for all others. Null
    /// takes it away.
    void registerFileSaver(int type, Vela::FileSaver *saver);
    void setOrganizer(Vela::OrganizerEditor *organizer);

    /// Returns the tool bar of that name, made at the first call. One without a parent is deleted
    /// with the host.
    ToolBarArea *toolBarArea(const QString &name);
    /// Controls made from here on go to that tool bar.
    void setCurrentToolBarArea(const QString &name);

    // Interface

    QString translate(int id) const override;
    QWidget *mainWindow() const override;
    QString userFolder() const override;
    QString libraryFolder() const override;
    QString dataFolder() const override;
    Vela::FileSaver *editorForFile(Vela::ProjectFile *file, int type) override;
    unsigned int parentProjectCount() const override;
    Vela::ParentProject *parentProject(unsigned int index) const override;
    int scaleToDPI(int length) const override;
    QIcon icon(const QString &name) const override;
    QVariant option(const QString &key, const QVariant &defaultValue) const override;
    void setOption(const QString &key, const QVariant &value) override;
    void refreshProjects() override;

    Vela::ProgressProvider *progress() const override;
    Vela::Engine *engine() const override;
    Vela::Editor *currentEditor() const override;
    Vela::Editor *editor(const char *name) const override;
    Vela::Project *currentProject() const override;
    QColor colorOption(const QString &key) const override;
    QTextCharFormat formatOption(const QString &key) const override;
    void status(int area, const QString &text) override;
    /// Places the widget on the current tool bar, but for a list view: its caller places that.
    QWidget *createControl(const QString &key, const Vela::ControlDescriptor *descriptor) override;
    void addWidget(const QString &key, QWidget *widget) override;
    QWidget *controlWidget(const QString &key) const override;
    Vela::Menu *menu(const char *key) override;
    QAction *createAction(const char *scope, const char *key, Vela::Translator *translator,
                          int textId, bool checkable, QObject *receiver, const char *slot,
                          const char *enableSignal, Vela::Menu *menu) override;
    QAction *action(const char *key) const override;
    QAction *editorAction(const char *key, Vela::Translator *translator, int textId) override;
    Vela::OrganizerEditor *organizer(int index) const override;
    void switchEditor(Vela::Editor *editor) override;
    void showExtraEditor(Vela::ExtraEditor *editor, int side) override;
    void setWorkspace(Vela::Workspace *workspace) override;

    QString hostName() const override;
    QString hostVersion() const override;
    QString language() const override;
    Vela::ParentProject *currentParentProject() const override;
    Vela::Workspace *currentWorkspace() const override;
    void openFile(Vela::ProjectFile *file, unsigned int line, unsigned int column) override;
    void log(const QString &text) override;

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// One or both of the current parent project and the current project are others now.
    void currentProjectChanged();
    void projectsRefreshed();
    void statusChanged(int area, const QString &text);
    void editorSwitched(Vela::Editor *editor, Vela::Editor *previous);
    void extraEditorRequested(Vela::ExtraEditor *editor, int side);
    void workspaceChanged(Vela::Workspace *workspace);
    void fileRequested(Vela::ProjectFile *file, unsigned int line, unsigned int column);
    void logged(const QString &text);
    void toolBarAreaAdded(Studio::ToolBarArea *area);
    /// The language has changed; actions and controls have their new texts.
    void retranslated();

private:
    void setCurrent(Vela::ParentProject *parent, Vela::Project *project);
    void forget(QObject *project);

    Folders m_folders;
    Settings m_settings;
    Colors m_colors;
    ActionRegistry m_actions;
    ControlFactory m_controls;
    std::unique_ptr<Vela::ProgressProvider> m_progress;

    QPointer<QWidget> m_mainWindow;
    QList<Vela::ParentProject *> m_parentProjects;
    Vela::ParentProject *m_currentParent = nullptr;
    QPointer<Vela::Project> m_currentProject;
    Vela::Engine *m_engine = nullptr;
    QHash<QByteArray, Vela::Editor *> m_editors;
    Vela::Editor *m_currentEditor = nullptr;
    QHash<int, Vela::FileSaver *> m_fileSavers;
    Vela::OrganizerEditor *m_organizer = nullptr;
    Vela::Workspace *m_workspace = nullptr;
    QHash<QString, QPointer<ToolBarArea>> m_areas;
    QString m_currentArea;
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/translator.h"

#include <QIcon>
#include <QPoint>
#include <QRect>
#include <QVariant>

class QAbstractItemModel;
class QAction;
class QColor;
class QObject;
class QTextCharFormat;
class QWidget;

namespace Vela {

class Editor;
class Engine;
class ExtraEditor;
class FileSaver;
class Interface;
class ItemsDialog;
class Menu;
class OrganizerEditor;
class ParentProject;
class ProgressProvider;
class Project;
class ProjectFile;
class Workspace;
struct ControlDescriptor;

/// The host as the library and the extensions see it. A host implements the pure operations,
/// installs its one object with setGlobalInterface() before it uses anything else of the library,
/// and keeps it alive until the library is no longer used: nothing here deletes it.
class VELA_EXPORT Interface : public Translator
{
public:
    /// The button that a question has as its default.
    enum YNButton { YesButton = 0, NoButton = 1 };

    /// Returns the host's object, or null while none is installed.
    static Interface *instance();

    /// Asks a question that the user can silence. \a option is a setting that says whether to ask
    /// at all, with \a defaultValue where it is unset. Returns true without asking if it is false
    /// or if no host is installed; otherwise whether the answer was Yes. A Yes with "Don't show
    /// this again" stores false in the option; a No stores nothing.
    static bool yesNoBool(const QString &title, const QString &text, const QString &option,
                          bool defaultValue, YNButton button);
    /// Asks a question whose answer the user can make permanent. The setting \a option is 0 for
    /// ask, 1 for always yes, anything else for always no. Without a host the result is whether
    /// \a defaultValue is below 2.
    static bool yesNoOption(const QString &title, const QString &text, const QString &option,
                            int defaultValue, YNButton button);

    /// Scales both coordinates with the host's scaleToDPI(int).
    QPoint scaleToDPI(const QPoint &point) const;
    /// Scales left, top, width and height, each alone.
    QRect scaleToDPI(const QRect &rect) const;

    ~Interface() override;

    QString translate(int id) const override = 0;
    /// The host's texts have no tool tips of their own: returns the text itself.
    QString toolTip(int id) const override;
    QString statusTip(int id) const override;

    /// Returns the parent of every dialog; may be null in a host without a window.
    virtual QWidget *mainWindow() const = 0;
    /// Returns the folder of what belongs to this user, without a trailing separator.
    virtual QString userFolder() const = 0;
    /// Returns the folder of what was installed with the program.
    virtual QString libraryFolder() const = 0;
    /// Returns the folder of the engines' configuration files.
    virtual QString dataFolder() const = 0;
    /// Returns who saves \a file of the type \a type under another name, or null if nobody can.
    /// Called for a file that cannot be saved in place; \a type is -1 for a file without one.
    virtual FileSaver *editorForFile(ProjectFile *file, int type) = 0;
    virtual unsigned int parentProjectCount() const = 0;
    virtual ParentProject *parentProject(unsigned int index) const = 0;
    /// Scales one length in pixels of a 96 DPI screen to the screen of the main window.
    virtual int scaleToDPI(int length) const = 0;
    virtual QIcon icon(const QString &name) const = 0;
    /// Returns the user's setting \a key, or \a defaultValue where it is unset.
    virtual QVariant option(const QString &key, const QVariant &defaultValue) const = 0;
    virtual void setOption(const QString &key, const QVariant &value) = 0;
    /// Adds \a action to \a menu and returns the button that createControl() makes of it.
    virtual QWidget *actionControl(const QString &name, QAction *action, Menu *menu);
    /// Called when the files of the open projects were replaced on disk.
    virtual void refreshProjects() = 0;

    virtual ProgressProvider *progress() const = 0;
    virtual Engine *engine() const = 0;
    virtual Editor *currentEditor() const = 0;
    /// Returns the editor with the key \a name, or null.
    virtual Editor *editor(const char *name) const = 0;
    virtual Project *currentProject() const = 0;
    virtual QColor colorOption(const QString &key) const = 0;
    virtual QTextCharFormat formatOption(const QString &key) const = 0;
    /// Shows \a text in the status field \a area: 0 cursor position, 1 guides, 2 renderer.
    virtual void status(int area, const QString &text) = 0;
    /// Makes one tool bar widget under \a key, binds it to the descriptor's receiver and returns
    /// it; the host owns it. Returns null for a descriptor that it cannot read.
    virtual QWidget *createControl(const QString &key, const ControlDescriptor *descriptor) = 0;
    /// Places a ready-made widget on the tool bar under \a key and takes it over.
    virtual void addWidget(const QString &key, QWidget *widget) = 0;
    /// Returns the widget made under \a key, or null.
    virtual QWidget *controlWidget(const QString &key) const = 0;
    /// Returns the menu of that key, made at the first call.
    virtual Menu *menu(const char *key) = 0;
    /// Makes an action under \a key, owned by the host. \a scope is the host's to read. Text and
    /// tool tip come from \a translator under \a textId. \a slot of \a receiver is fired by
    /// triggered, or by toggled if \a checkable; \a enableSignal of \a receiver drives
    /// setEnabled. Both are Qt's signature strings and may be null, and so may \a menu, to which
    /// the action is added.
    virtual QAction *createAction(const char *scope, const char *key, Translator *translator,
                                  int textId, bool checkable, QObject *receiver, const char *slot,
                                  const char *enableSignal, Menu *menu) = 0;
    /// Returns the action made under \a key, or null.
    virtual QAction *action(const char *key) const = 0;
    /// Makes the action that selects an editor.
    virtual QAction *editorAction(const char *key, Translator *translator, int textId) = 0;
    /// Returns the shared organizer panel, or null; the library passes 0.
    virtual OrganizerEditor *organizer(int index) const = 0;
    /// Makes \a editor current: deactivates the old one, then activates this one.
    virtual void switchEditor(Editor *editor) = 0;
    /// Shows a side panel, or none for null; the library passes 0 as \a side.
    virtual void showExtraEditor(ExtraEditor *editor, int side) = 0;
    virtual void setWorkspace(Workspace *workspace) = 0;
    /// Makes the dialog with which a user picks rows of \a model. The caller gives it back with
    /// release(). \a icon names the window icon; \a row is selected at the start unless negative.
    virtual ItemsDialog *itemsDialog(QWidget *parent, const char *icon, const QString &title,
                                     QAbstractItemModel *model, int row);

    // What follows is for extensions: the library itself never asks for it.

    /// Returns the host's name and its version, for an extension's "about" text.
    virtual QString hostName() const = 0;
    virtual QString hostVersion() const = 0;
    /// Returns the language of the user interface as a BCP 47 tag.
    virtual QString language() const = 0;
    /// Returns the parent project being worked on, or null.
    virtual ParentProject *currentParentProject() const = 0;
    virtual Workspace *currentWorkspace() const = 0;
    /// Opens \a file in its editor at a line and a column, both from 0.
    virtual void openFile(ProjectFile *file, unsigned int line, unsigned int column) = 0;
    /// Appends a line to the host's output panel.
    virtual void log(const QString &text) = 0;
};

} // namespace Vela

/// Installs the host's object; null takes it away again. Exported with an undecorated name.
extern "C" VELA_EXPORT void setGlobalInterface(Vela::Interface *interface);

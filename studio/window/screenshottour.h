// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QStringList>

class QPlainTextEdit;
class QWidget;

namespace Vela {
class ParentProject;
class ProjectFile;
} // namespace Vela

namespace Studio {

class MainWindow;

/// Drives the window through its main states as a user would and leaves a picture of each.
class ScreenshotTour : public QObject
{
    Q_OBJECT

public:
    /// Pictures go to \a folder, which is made if it is missing.
    ScreenshotTour(MainWindow &window, const QString &folder);

    /// Runs the tour on the project at \a path, which it changes, saves and backs up; without a
    /// path only what needs none is shown. Returns what went wrong; empty if nothing did.
    QStringList run(const QString &path);

private:
    void showProject();
    /// Shows the tree of a text beside it while it is typed, and a search in it.
    void showText();
    void showEditing(QPlainTextEdit &text);
    static void typeKeys(QWidget &widget, const QString &keys);
    static void showToolTip(QPlainTextEdit &text, int line, int column);
    static int lineWith(const QPlainTextEdit &text, const QString &words);
    void showDialogs();
    void showDark();
    /// Takes a picture of the window, or of the whole screen where a dialog is open.
    void take(const QString &name);
    /// Triggers an action that runs a dialog, takes a picture of that and closes it. Before the
    /// picture \a typed goes into its first line edit and the page \a page of its list is shown.
    void takeDialog(const QString &name, const char *action, const QString &typed = QString(),
                    int page = 0);
    void makeBackup();
    void showPictures();
    /// Shows a sound of the largest file, with a selection.
    void showSounds(const QString &name);
    template <typename Items>
    void largest(int type, const Items *&most, const Vela::ProjectFile *&single);
    /// Writes a value that is wrong, goes to the message about it, and takes it back.
    void showMessage();
    /// Makes the main file of the last project current and changes one of its properties.
    void editProperty(const QString &name, const QString &value);
    /// Makes the first file of a type in the last project current; returns false if there is none.
    bool selectFile(int type);
    const Vela::ParentProject &parentProject();

    MainWindow &m_window;
    QString m_folder;
    QStringList m_errors;
    int m_count = 0;
};

} // namespace Studio

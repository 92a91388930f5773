// SPDX-License-Identifier: MIT
#pragma once

#include <QKeySequence>
#include <QVector>
#include <functional>

namespace Studio {

class MainWindow;

/// One row of the table from which the window's menus, tool bar, shortcuts and the command palette
/// are made.
struct WindowAction
{
    enum Need {
        Nothing,
        AProject,
        AZoomedView, ///< a workspace or a sound that is shown
        AFile,       ///< that is shown
        ASound,      ///< that is shown and can be played
        AText,
        AnEditableText,
        ToUndo,
        ToRedo,
        ToCut,
        ToCopy,
        ToPaste,
        ToSelect,
        NeedCount
    };
    enum Place { MenuOnly, OnToolBar };

    const char *key;  ///< also the name of its icon
    const char *menu; ///< key of its menu; a null key in a row of the same menu is a separator
    const char *text; ///< as for tr() in the context "Studio::WindowAction"
    QKeySequence shortcut;
    Need need;
    Place place;
    std::function<void(MainWindow &)> run;

    static const QVector<WindowAction> &table();
};

/// A menu of the window, in the order of the menu bar.
struct WindowMenu
{
    const char *key;
    const char *title; ///< as for tr() in the context "Studio::WindowAction"

    static const QVector<WindowMenu> &table();
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QMenu>
#include <QMenuBar>

namespace Vela {

/// A menu that shows the tool tip of the entry under the pointer.
class VELA_EXPORT Menu : public QMenu
{
    Q_OBJECT

public:
    explicit Menu(const QString &title, QWidget *parent = nullptr);
    explicit Menu(QWidget *parent = nullptr);

    /// Adds a new menu and returns it. It has no parent: whoever called takes care of it.
    Menu *addMenu(const QString &title);
    QAction *addMenu(Menu *menu);

    bool event(QEvent *event) override;
};

/// A menu bar that shows the tool tip of the entry under the pointer.
class VELA_EXPORT MenuBar : public QMenuBar
{
    Q_OBJECT

public:
    explicit MenuBar(QWidget *parent = nullptr);

    /// Adds a new menu and returns it. It has no parent: whoever called takes care of it.
    Menu *addMenu(const QString &title);
    QAction *addMenu(Menu *menu);

    bool event(QEvent *event) override;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "frame/menu.h"

#include <QHelpEvent>
#include <QToolTip>

namespace Vela {

namespace {

/// Shows the tool tip of the entry under the pointer when it is asked for, and takes it away at
/// anything else that happens to the menu.
void followToolTip(const QAction *active, const QEvent *event)
{
    if (event->type() == QEvent::ToolTip && active && !active->toolTip().isEmpty())
        QToolTip::showText(static_cast<const QHelpEvent *>(event)->globalPos(), active->toolTip());
    else
        QToolTip::hideText();
}

} // namespace

Menu::Menu(const QString &title, QWidget *parent)
    : QMenu(title, parent)
{
}

Menu::Menu(QWidget *parent)
    : QMenu(parent)
{
}

Menu *Menu::addMenu(const QString &title)
{
    auto *menu = new Menu(title);
    QMenu::addMenu(menu);
    return menu;
}

QAction *Menu::addMenu(Menu *menu)
{
    return QMenu::addMenu(menu);
}

bool Menu::event(QEvent *event)
{
    const bool handled = QMenu::event(event);
    followToolTip(activeAction(), event);
    return handled;
}

MenuBar::MenuBar(QWidget *parent)
    : QMenuBar(parent)
{
}

Menu *MenuBar::addMenu(const QString &title)
{
    auto *menu = new Menu(title);
    QMenuBar::addMenu(menu);
    return menu;
}

QAction *MenuBar::addMenu(Menu *menu)
{
    return QMenuBar::addMenu(menu);
}

bool MenuBar::event(QEvent *event)
{
    const bool handled = QMenuBar::event(event);
    followToolTip(activeAction(), event);
    return handled;
}

} // namespace Vela

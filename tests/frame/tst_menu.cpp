// SPDX-License-Identifier: MIT
#include "frame/menu.h"

#include <QHelpEvent>
#include <QMainWindow>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

using Vela::Menu;
using Vela::MenuBar;

class TestMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void addedMenusAreParentless_data();
    void addedMenusAreParentless();
    void ownMenusAreTaken();
    void toolTipFollowsTheActiveEntry_data();
    void toolTipFollowsTheActiveEntry();
    void leavingTheMenuHidesTheToolTip();
    void clicksStillReachTheBase();
};

namespace {

/// Sends what Qt sends when the pointer rests over the middle of \a action.
template <class Bar>
void restOver(Bar *menu, QAction *action)
{
    const QPoint middle = menu->actionGeometry(action).center();
    QTest::mouseMove(menu, middle);
    menu->setActiveAction(action);
    QHelpEvent help(QEvent::ToolTip, middle, menu->mapToGlobal(middle));
    QCoreApplication::sendEvent(menu, &help);
}

/// Returns whether no tool tip shows, without regard to the time it takes to fade.
bool goesAway()
{
    return QTest::qWaitFor([] { return !QToolTip::isVisible(); });
}

QAction *addTip(QWidget *menu, const QString &text, const QString &tip)
{
    auto *action = new QAction(text, menu);
    action->setToolTip(tip);
    menu->addAction(action);
    return action;
}

template <class Bar>
void checkToolTips(Bar *menu)
{
    QAction *save = addTip(menu, QStringLiteral("Save"), QStringLiteral("Writes the file"));
    QAction *load = addTip(menu, QStringLiteral("Load"), QStringLiteral("Reads the file"));
    QAction *silent = addTip(menu, QString(), QString());
    menu->show();
    QVERIFY(QTest::qWaitForWindowExposed(menu));

    restOver(menu, save);
    QTRY_COMPARE(QToolTip::text(), QStringLiteral("Writes the file"));
    restOver(menu, load);
    QTRY_COMPARE(QToolTip::text(), QStringLiteral("Reads the file"));
    restOver(menu, silent);
    QVERIFY(goesAway());
}

} // namespace

void TestMenu::cleanup()
{
    QToolTip::hideText();
    QVERIFY(goesAway());
}

void TestMenu::addedMenusAreParentless_data()
{
    QTest::addColumn<bool>("isBar");
    QTest::newRow("menu") << false;
    QTest::newRow("menu bar") << true;
}

void TestMenu::addedMenusAreParentless()
{
    QFETCH(bool, isBar);
    Menu menu(QStringLiteral("File"));
    MenuBar bar;
    QCOMPARE(menu.title(), QStringLiteral("File"));
    const QString title = QStringLiteral("Recent");
    const std::unique_ptr<Menu> added(isBar ? bar.addMenu(title) : menu.addMenu(title));
    QCOMPARE(added->title(), title);
    QVERIFY(!added->parent());
    const QWidget *holder = isBar ? static_cast<QWidget *>(&bar) : &menu;
    QCOMPARE(holder->actions(), QList<QAction *>{added->menuAction()});
}

void TestMenu::ownMenusAreTaken()
{
    QWidget parent;
    Menu menu(&parent);
    MenuBar bar(&parent);
    QCOMPARE(menu.parentWidget(), &parent);
    Menu sub(QStringLiteral("Sub"));
    QCOMPARE(menu.addMenu(&sub), sub.menuAction());
    QCOMPARE(bar.addMenu(&menu), menu.menuAction());
    QCOMPARE(menu.actions(), QList<QAction *>{sub.menuAction()});
    QCOMPARE(bar.actions(), QList<QAction *>{menu.menuAction()});
}

void TestMenu::toolTipFollowsTheActiveEntry_data()
{
    addedMenusAreParentless_data();
}

void TestMenu::toolTipFollowsTheActiveEntry()
{
    QFETCH(bool, isBar);
    if (isBar) {
        MenuBar bar;
        checkToolTips(&bar);
    } else {
        Menu menu;
        checkToolTips(&menu);
    }
}

void TestMenu::leavingTheMenuHidesTheToolTip()
{
    Menu menu;
    QAction *save = addTip(&menu, QStringLiteral("Save"), QStringLiteral("Writes the file"));
    menu.show();
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    restOver(&menu, save);
    QTRY_COMPARE(QToolTip::text(), QStringLiteral("Writes the file"));
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(&menu, &leave);
    QVERIFY(goesAway());
}

void TestMenu::clicksStillReachTheBase()
{
    Menu menu;
    QAction *save = menu.addAction(QStringLiteral("Save"));
    QSignalSpy triggered(save, &QAction::triggered);
    menu.popup(QPoint(10, 10));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(save).center());
    QCOMPARE(triggered.size(), 1);
    QVERIFY(!menu.isVisible());
}

QTEST_MAIN(TestMenu)

#include "tst_menu.moc"

// SPDX-License-Identifier: MIT
// How an author gets from file to file and works on their texts.
#include "studio/windowfixture.h"

#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "project/filesaver.h"
#include "project/messages.h"
#include "project/project.h"
#include "studio/window/editors.h"
#include "studio/window/filetabs.h"
#include "studio/window/fileview.h"
#include "studio/window/sidepanel.h"
#include "studio/window/textplaces.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTextBlock>
#include <QToolBar>

using namespace Studio;

namespace {

const QString gamePath = QStringLiteral("game.lantern");
const QString mainPath = QStringLiteral("rowan/rowan.lantern");
const QString motionPath = QStringLiteral("rowan/rowan.motion");
const QString scriptPath = QStringLiteral("rowan/scripts/rowan.script");
const QString secondScriptPath = QStringLiteral("rowan/evening.script");
const QString imagePath = QStringLiteral("rowan/sprites/idle.png");

constexpr Qt::KeyboardModifiers CtrlShift = Qt::ControlModifier | Qt::ShiftModifier;

} // namespace

class TestEditing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void openedFilesStandInTheBar();
    void filesAreClosed_data();
    void filesAreClosed();
    void lastFileIsClosed();
    void filesOfOneNameAreToldApart();
    void changedFileIsMarkedInTheBar();
    void barComesBack_data();
    void barComesBack();
    void fileThatIsGoneLeavesItsPlaceToTheNext();
    void savedElsewhereFileKeepsItsTab();
    void editorGoesToItsLastFile();
    void editorWithoutFileSaysSo();
    void fileIsPicked();
    void symbolIsPicked();
    void symbolInAFoldIsShown();
    void libraryActionIsInThePalette();
    void actionsHaveDifferentShortcuts();
    void sidePanelIsTheEditors();
    void panesTakeTheFocusInTurn();
    void blockFoldsAtTheCursor();
    void snippetIsChosenByItsName();
    void snippetsSpeakTheUsersLanguage();
    void everythingIsDoneByKeys();

private:
    bool listSecondScript();
    QRect tab(const QString &path) const;
    QString tabText(const QString &path) const;
    QStringList checkedEditors() const;

    std::unique_ptr<WindowFixture> f;
    FileTabs *tabs = nullptr;
    Vela::CodeEditor *text = nullptr;
};

void TestEditing::init()
{
    f = std::make_unique<WindowFixture>();
    QVERIFY(QTest::qWaitForWindowActive(f->window.get()));
    tabs = &f->window->tabs();
    text = f->window->editors().code().editor();
}

void TestEditing::cleanup()
{
    f.reset();
}

/// Gives Rowan a second script, which has the name of the game's.
bool TestEditing::listSecondScript()
{
    const QString listing = f->meadow() + QLatin1Char('/') + mainPath;
    return SmallGame::writeFile(f->meadow() + QLatin1Char('/') + secondScriptPath, "# dusk\r\n")
        && SmallGame::writeFile(listing,
                                SmallGame::readFile(listing) + "\r\nscripts = evening.script\r\n");
}

QRect TestEditing::tab(const QString &path) const
{
    return tabs->tabRect(tabs->paths().indexOf(path));
}

QString TestEditing::tabText(const QString &path) const
{
    return tabs->tabText(tabs->paths().indexOf(path));
}

QStringList TestEditing::checkedEditors() const
{
    QStringList names;
    for (const char *key : {"editor_code", "editor_anim", "editor_script"}) {
        if (f->host->action(key)->isChecked())
            names.append(QLatin1String(key));
    }
    return names;
}

void TestEditing::openedFilesStandInTheBar()
{
    QVERIFY(f->open({mainPath, motionPath, imagePath}));
    QCOMPARE(tabs->paths(), QStringList({gamePath, mainPath, motionPath, imagePath}));
    QVERIFY(f->clickFile(mainPath));
    QCOMPARE(tabs->count(), 4);
    QCOMPARE(tabs->currentPath(), mainPath);

    QTest::mouseClick(tabs, Qt::LeftButton, {}, tab(motionPath).center());
    QCOMPARE(f->window->currentPath(), motionPath);
    QVERIFY(text->toPlainText().contains(QLatin1String("[animation walk]")));
    text->setFocus();
    f->press(Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), imagePath);
    f->press(Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), gamePath);
    f->press(Qt::Key_Backtab, CtrlShift);
    QCOMPARE(f->window->currentPath(), imagePath);
    QCOMPARE(tabs->currentPath(), imagePath);
}

void TestEditing::filesAreClosed_data()
{
    QTest::addColumn<QString>("closed");
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("current");
    QTest::newRow("cross") << mainPath << "cross" << motionPath;
    QTest::newRow("cross of another") << gamePath << "cross" << mainPath;
    QTest::newRow("middle button") << motionPath << "middle" << mainPath;
    QTest::newRow("middle button on the current one") << mainPath << "middle" << motionPath;
    QTest::newRow("key") << mainPath << "key" << motionPath;
}

void TestEditing::filesAreClosed()
{
    QFETCH(QString, closed);
    QFETCH(QString, how);
    QFETCH(QString, current);
    QVERIFY(f->open({mainPath, motionPath, mainPath}));
    const int at = tabs->paths().indexOf(closed);
    if (how == QLatin1String("cross")) {
        QTest::mouseClick(tabs->tabButton(at, QTabBar::RightSide), Qt::LeftButton);
    } else if (how == QLatin1String("middle")) {
        QTest::mouseClick(tabs, Qt::MiddleButton, {}, tab(closed).center());
    } else {
        text->setFocus();
        f->press(Qt::Key_F4, Qt::ControlModifier);
    }
    QStringList left = {gamePath, mainPath, motionPath};
    left.removeAll(closed);
    QCOMPARE(tabs->paths(), left);
    QCOMPARE(tabs->currentPath(), current);
    QCOMPARE(f->window->currentPath(), current);
}

// The bar is of what was looked at; closing a tab takes nothing from the project.
void TestEditing::lastFileIsClosed()
{
    QVERIFY(f->open({}));
    text->setFocus();
    QTest::keyClicks(text, QStringLiteral("# dusk "));
    f->press(Qt::Key_F4, Qt::ControlModifier);
    QCOMPARE(tabs->count(), 0);
    QCOMPARE(f->window->currentPath(), QString());
    QVERIFY(f->find<QLabel>("noPreview")->isVisible());
    QVERIFY(f->window->isWindowModified());
    QCOMPARE(checkedEditors(), QStringList());
    f->press(Qt::Key_F4, Qt::ControlModifier);
    f->press(Qt::Key_Tab, Qt::ControlModifier);
    QVERIFY(f->clickFile(gamePath));
    QVERIFY(text->toPlainText().startsWith(QLatin1String("# dusk ")));
    QCOMPARE(tabs->paths(), QStringList(gamePath));
}

void TestEditing::filesOfOneNameAreToldApart()
{
    QVERIFY(listSecondScript());
    QVERIFY(f->open({secondScriptPath}));
    QCOMPARE(tabText(secondScriptPath), QStringLiteral("evening.script"));
    QVERIFY(f->clickFile(QStringLiteral("evening.script")));
    QCOMPARE(tabText(secondScriptPath), secondScriptPath);
    QCOMPARE(tabText(gamePath), gamePath);
    f->press(Qt::Key_F4, Qt::ControlModifier);
    QCOMPARE(tabText(secondScriptPath), QStringLiteral("evening.script"));
}

void TestEditing::changedFileIsMarkedInTheBar()
{
    const QString mark = QStringLiteral(" \u25CF");
    QVERIFY(f->open({mainPath}));
    text->setFocus();
    f->press(Qt::Key_X);
    QTRY_COMPARE(tabText(mainPath), QString(QStringLiteral("rowan.lantern") + mark));
    QCOMPARE(tabText(gamePath), gamePath);
    f->press(Qt::Key_Z, Qt::ControlModifier);
    QTRY_COMPARE(tabText(mainPath), QStringLiteral("rowan.lantern"));
    f->press(Qt::Key_Y);
    // Another file does not hide it.
    QVERIFY(f->clickFile(gamePath));
    QCOMPARE(tabText(mainPath), QString(QStringLiteral("rowan.lantern") + mark));
    f->trigger("save");
    QTRY_COMPARE(tabText(mainPath), QStringLiteral("rowan.lantern"));
}

void TestEditing::barComesBack_data()
{
    QTest::addColumn<bool>("gone");
    QTest::newRow("whole") << false;
    QTest::newRow("without a file that is gone") << true;
}

void TestEditing::barComesBack()
{
    QFETCH(bool, gone);
    const QString evening = QStringLiteral("evening.script");
    QVERIFY(f->open({motionPath, evening, mainPath}));
    tabs->moveTab(tabs->paths().indexOf(gamePath), 2);
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tab(motionPath).center());
    QStringList expected = {motionPath, evening, gamePath, mainPath};
    QCOMPARE(tabs->paths(), expected);
    f->window->close();
    f->stop();
    if (gone) {
        const QByteArray listing = SmallGame::readFile(f->inMeadow("game.lantern"));
        SmallGame::writeFile(f->inMeadow("game.lantern"),
                             QByteArray(listing).replace("scripts = evening.script", ""));
        expected.removeAll(evening);
    }
    f->start();
    f->window->reopenLastProject();
    QCOMPARE(f->window->tabs().paths(), expected);
    QCOMPARE(f->window->tabs().currentPath(), motionPath);
    QCOMPARE(f->window->currentPath(), motionPath);
}

void TestEditing::fileThatIsGoneLeavesItsPlaceToTheNext()
{
    QVERIFY(f->open({mainPath, QStringLiteral("brook/brook.motion"), motionPath}));
    f->window->commands().closeProject(QStringLiteral("rowan"));
    QTRY_COMPARE(tabs->paths(), QStringList({gamePath, QStringLiteral("brook/brook.motion")}));
    QVERIFY(!f->window->currentPath().isEmpty());
    QCOMPARE(f->window->currentPath(), tabs->currentPath());
    QVERIFY(text->isVisible());
}

void TestEditing::savedElsewhereFileKeepsItsTab()
{
    QVERIFY(f->open({scriptPath}));
    DialogAnswerer dialogs;
    dialogs.chooseFiles({f->inMeadow("rowan/dusk.script")});
    Vela::ProjectFile *file = f->window->view().file();
    f->host->editorForFile(file, Vela::Project::Scripts)->saveFileAs(file);
    const QString renamed = QStringLiteral("rowan/dusk.script");
    QTRY_COMPARE(tabs->currentPath(), renamed);
    QCOMPARE(f->window->currentPath(), renamed);
    QCOMPARE(f->find<QLabel>("fileTitle")->text(), renamed);
    QCOMPARE(f->window->view().file(), file);
}

void TestEditing::editorGoesToItsLastFile()
{
    QVERIFY(listSecondScript());
    QVERIFY(f->open({motionPath, secondScriptPath, scriptPath, mainPath}));
    text->setFocus();
    QCOMPARE(checkedEditors(), QStringList(QStringLiteral("editor_code")));
    f->press(Qt::Key_6, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), scriptPath);
    QCOMPARE(checkedEditors(), QStringList(QStringLiteral("editor_script")));
    f->press(Qt::Key_2, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), motionPath);
    QCOMPARE(checkedEditors(), QStringList(QStringLiteral("editor_anim")));
    QVERIFY(text->hasFocus());

    // Which one is the last changes with the user, and a button does what the key does.
    QVERIFY(f->clickFile(secondScriptPath));
    QVERIFY(f->clickFile(imagePath));
    QCOMPARE(checkedEditors(), QStringList());
    const auto *bar = f->find<QToolBar>("editorsBar");
    QTest::mouseClick(bar->widgetForAction(f->host->action("editor_script")), Qt::LeftButton);
    QCOMPARE(f->window->currentPath(), secondScriptPath);
    QVERIFY(text->hasFocus());

    // Without a file of its own in the bar an editor takes the first of its kind.
    QVERIFY(f->clickFile(QStringLiteral("mill/mill.motion")));
    f->press(Qt::Key_1, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), QStringLiteral("mill/mill.lantern"));
    // The key of the current editor brings the focus back.
    f->find<QTreeView>("projectTree")->setFocus();
    f->press(Qt::Key_1, Qt::ControlModifier);
    QVERIFY(text->hasFocus());
    QCOMPARE(checkedEditors(), QStringList(QStringLiteral("editor_code")));
}

void TestEditing::editorWithoutFileSaysSo()
{
    QVERIFY(f->open({QStringLiteral("brook/brook.motion")}));
    text->setFocus();
    f->press(Qt::Key_6, Qt::ControlModifier);
    QCOMPARE(f->window->statusBar()->currentMessage(),
             QStringLiteral("The project has no file for this editor."));
    QCOMPARE(f->window->currentPath(), QStringLiteral("brook/brook.motion"));
    QCOMPARE(checkedEditors(), QStringList(QStringLiteral("editor_anim")));
}

void TestEditing::fileIsPicked()
{
    QVERIFY(f->open({}));
    DialogAnswerer dialogs;
    WindowFixture::pick(dialogs, QStringLiteral("rowan.mot"));
    f->press(Qt::Key_P, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), motionPath);
    QCOMPARE(f->window->focusWidget(), text);
    // Letters in their order are enough; Down takes the second row.
    dialogs.handle([](QDialog *dialog) {
        auto *edit = dialog->findChild<QLineEdit *>();
        QTest::keyClicks(edit, QStringLiteral("mlntrn"));
        QTest::keyClick(edit, Qt::Key_Down);
        QTest::keyClick(edit, Qt::Key_Up);
        QTest::keyClick(edit, Qt::Key_Return);
    });
    f->press(Qt::Key_P, Qt::ControlModifier);
    QVERIFY2(f->window->currentPath().endsWith(QLatin1String(".lantern")),
             qPrintable(f->window->currentPath()));
    const QString before = f->window->currentPath();
    dialogs.cancel();
    f->press(Qt::Key_P, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), before);
    QVERIFY(dialogs.isDone());
}

// The files that nobody has looked at yet have symbols as well.
void TestEditing::symbolIsPicked()
{
    QVERIFY(f->open({}));
    DialogAnswerer dialogs;
    WindowFixture::pick(dialogs, QStringLiteral("lift"));
    f->press(Qt::Key_T, Qt::ControlModifier);
    QVERIFY(dialogs.isDone());
    QCOMPARE(f->window->currentPath(), motionPath);
    QCOMPARE(text->textCursor().block().text(),
             QStringLiteral("[animation lift] \"The lantern held up\""));
    QCOMPARE(f->window->focusWidget(), text);
}

void TestEditing::symbolInAFoldIsShown()
{
    QVERIFY(f->open({motionPath}));
    text->setFocus();
    f->press(Qt::Key_Minus, Qt::ControlModifier | Qt::AltModifier);
    const QTextCursor hidden = text->document()->find(QStringLiteral("frame walk-2"));
    QVERIFY(!hidden.block().isVisible());
    f->press(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(f->find<QLineEdit>("findText"), QStringLiteral("frame walk-2"));
    f->press(Qt::Key_Return);
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("frame walk-2"));
    QVERIFY(hidden.block().isVisible());
    QVERIFY(text->viewport()->rect().contains(text->cursorRect()));
}

void TestEditing::libraryActionIsInThePalette()
{
    QVERIFY(f->open({motionPath}));
    const QTextCursor inside = text->document()->find(QStringLiteral("frame walk-2"));
    DialogAnswerer dialogs;
    const auto run = [&](const QString &name) {
        QStringList rows;
        dialogs.handle([&](QDialog *dialog) {
            auto *edit = dialog->findChild<QLineEdit *>();
            QTest::keyClicks(edit, name);
            const auto *list = dialog->findChild<QAbstractItemView *>()->model();
            for (int row = 0; row < list->rowCount(); ++row)
                rows.append(list->index(row, 0).data().toString());
            QTest::keyClick(edit, Qt::Key_Return);
        });
        f->press(Qt::Key_P, CtrlShift);
        return rows.value(0);
    };
    QVERIFY(run(QStringLiteral("Fold all")).endsWith(QLatin1String("Fold all code blocks")));
    QTRY_VERIFY(!inside.block().isVisible());
    QVERIFY(run(QStringLiteral("Unfold all")).endsWith(QLatin1String("Unfold all coded blocks")));
    QTRY_VERIFY(inside.block().isVisible());
    // What acts on a text is not offered beside a picture.
    QVERIFY(f->clickFile(imagePath));
    dialogs.handle([](QDialog *dialog) {
        QTest::keyClicks(dialog->findChild<QLineEdit *>(), QStringLiteral("Fold all code blocks"));
        QCOMPARE(dialog->findChild<QAbstractItemView *>()->model()->rowCount(), 0);
        dialog->reject();
    });
    f->press(Qt::Key_P, CtrlShift);
    QVERIFY(dialogs.isDone());
}

void TestEditing::actionsHaveDifferentShortcuts()
{
    const ActionRegistry &registry = f->host->actions();
    const QVector<ActionRegistry::Entry> all = registry.actions();
    QVERIFY(all.size() > 40);
    QStringList clashes;
    QSet<QString> keys;
    for (const ActionRegistry::Entry &entry : all) {
        const QStringList others = registry.conflicts(entry.spec.key, entry.action->shortcut());
        if (!others.isEmpty() || keys.contains(entry.spec.key))
            clashes.append(entry.spec.key + QLatin1Char(' ') + others.join(QLatin1Char(' ')));
        keys.insert(entry.spec.key);
    }
    QCOMPARE(clashes.join(QLatin1Char(';')), QString());
}

void TestEditing::sidePanelIsTheEditors()
{
    QVERIFY(f->open({mainPath}));
    const auto *panel = f->find<SidePanel>("sidePanel");
    const QString title = panel->windowTitle();
    QCOMPARE(title, QStringLiteral("Properties"));
    QWidget *form = panel->findChild<QScrollArea *>();
    const QTextCursor author = text->document()->find(QStringLiteral("author"));
    goToPlace(*text, author.blockNumber(), 0);
    QTRY_VERIFY(form && form->isVisible());
    // A picture has none.
    QVERIFY(f->clickFile(imagePath));
    QCOMPARE(panel->windowTitle(), QStringLiteral("Panel"));
    QVERIFY(!panel->findChild<QScrollArea *>());
    QVERIFY(!form->isVisible());
    // Another editor shows its own, which may be the same.
    QVERIFY(f->clickFile(motionPath));
    QCOMPARE(panel->windowTitle(), title);
    QVERIFY(panel->findChild<QScrollArea *>());
    f->trigger("close");
    QCOMPARE(panel->windowTitle(), QStringLiteral("Panel"));
}

void TestEditing::panesTakeTheFocusInTurn()
{
    QVERIFY(f->open({motionPath}));
    text->setFocus();
    const auto paneOfFocus = [] {
        const QWidget *pane = QApplication::focusWidget();
        while (pane && !qobject_cast<const QDockWidget *>(pane))
            pane = pane->parentWidget();
        return pane ? pane->objectName() : QString();
    };
    QStringList panes;
    do {
        f->press(Qt::Key_F6);
        panes.append(paneOfFocus());
    } while (!text->hasFocus() && panes.size() < 10);
    QVERIFY(text->hasFocus());
    QVERIFY2(panes.contains(QStringLiteral("projectDock")),
             qPrintable(panes.join(QLatin1Char(';'))));
    QVERIFY(panes.contains(QStringLiteral("messagesDock")));
    QCOMPARE(QSet<QString>(panes.begin(), panes.end()).size(), panes.size());
    f->press(Qt::Key_F6, Qt::ShiftModifier);
    QCOMPARE(paneOfFocus(), panes.at(panes.size() - 2));
}

void TestEditing::blockFoldsAtTheCursor()
{
    QVERIFY(f->open({motionPath}));
    const QTextBlock header = text->document()->find(QStringLiteral("[animation")).block();
    goToPlace(*text, header.blockNumber() + 1, 0);
    text->setFocus();
    f->press(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    QVERIFY(!header.next().isVisible());
    QVERIFY(header.isVisible() && header.previous().isVisible());
    f->press(Qt::Key_F, Qt::ControlModifier | Qt::AltModifier);
    QVERIFY(header.next().isVisible());
}

void TestEditing::snippetIsChosenByItsName()
{
    QVERIFY(f->open({scriptPath}));
    text->moveCursor(QTextCursor::End);
    const int before = text->blockCount();
    DialogAnswerer dialogs;
    WindowFixture::pick(dialogs, QStringLiteral("script"));
    dialogs.handle([](QDialog *dialog) { dialog->accept(); });
    f->press(Qt::Key_J, CtrlShift);
    QVERIFY(dialogs.isDone());
    QVERIFY(text->blockCount() > before);
    f->window->activateWindow();
    QTRY_VERIFY(text->hasFocus());
}

void TestEditing::snippetsSpeakTheUsersLanguage()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    f->stop();
    f->start();
    QVERIFY(f->open({scriptPath}));
    const QList<QComboBox *> boxes = f->window->findChildren<QComboBox *>();
    const auto shown = [&boxes](const QString &name) {
        return std::any_of(boxes.begin(), boxes.end(),
                           [&name](const QComboBox *box) { return box->findText(name) >= 0; });
    };
    QVERIFY(shown(QStringLiteral("Skript")));
    QVERIFY(shown(QStringLiteral("Gang")));
    QLocale::setDefault(before);
}

void TestEditing::everythingIsDoneByKeys()
{
    DialogAnswerer dialogs;
    dialogs.chooseFiles({f->meadow()});
    f->press(Qt::Key_O, Qt::ControlModifier);
    WindowFixture::pick(dialogs, QStringLiteral("rowan.motion"));
    f->press(Qt::Key_P, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), motionPath);
    QCOMPARE(f->window->focusWidget(), text);

    f->press(Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(text,
                     QStringLiteral("[animation wave]\rframe idle : soon\rframe idle:10,y=1"));
    const Vela::CodeDocument *document = f->window->view().document();
    QTRY_COMPARE(document->messages()->count(Vela::Message::Error), 1U);
    f->press(Qt::Key_Home, Qt::ControlModifier);
    f->press(Qt::Key_F4);
    QCOMPARE(text->textCursor().block().text(), QStringLiteral("frame idle : soon"));
    f->press(Qt::Key_End);
    f->press(Qt::Key_Left, CtrlShift);
    QTest::keyClicks(text, QStringLiteral("12"));
    QTRY_COMPARE(document->messages()->count(Vela::Message::Error), 0U);

    f->press(Qt::Key_Down);
    f->press(Qt::Key_I, CtrlShift);
    QCOMPARE(text->textCursor().block().text(), QStringLiteral("frame idle : 10, y = 1"));
    f->press(Qt::Key_Slash, Qt::ControlModifier);
    QVERIFY(text->textCursor().block().text().startsWith(QLatin1Char('#')));
    f->press(Qt::Key_Home, Qt::ControlModifier);
    f->press(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("wave"));
    f->press(Qt::Key_Return);
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("wave"));
    f->press(Qt::Key_Escape);
    QVERIFY(text->hasFocus());
    f->press(Qt::Key_S, Qt::ControlModifier);
    QTRY_VERIFY(!f->window->isWindowModified());
    const QByteArray saved = SmallGame::readFile(f->meadow() + QLatin1Char('/') + motionPath);
    QVERIFY2(saved.contains("[animation wave]\r\nframe idle : 12\r\n"),
             saved.right(120).constData());
    f->press(Qt::Key_F4, Qt::ControlModifier);
    QCOMPARE(f->window->currentPath(), gamePath);
}

QTEST_MAIN(TestEditing)
#include "tst_editing.moc"

// SPDX-License-Identifier: MIT
#include "studio/windowfixture.h"

#include "frame/controldescriptor.h"
#include "support/limits_unix.h"

#include <QDropEvent>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTextBlock>
#include <QToolButton>
#include <cstdio>

using namespace Studio;

Q_DECLARE_METATYPE(QMessageBox::StandardButton)

namespace {

const QString rowan = QStringLiteral("rowan/rowan.lantern");
const QString author = QStringLiteral("project.author");

/// Drags a path onto a window and drops it. Returns whether the window wanted it.
bool drop(QWidget *window, const QString &path)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    const QPoint place = window->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QCoreApplication::sendEvent(window, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent dropped(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window, &dropped);
    return dropped.isAccepted();
}

void typeAndAccept(QDialog *dialog, const QString &text)
{
    auto *edit = dialog->findChild<QLineEdit *>();
    edit->selectAll();
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void whatEditorsAskForIsInTheWindow();
    void projectIsOpenedAndClosed();
    void whatIsNoProjectIsRefused();
    void droppedFolderIsOpened();
    void changedFileIsMarkedUntilItIsSaved();
    void undoAndRedoReachTheFile();
    void leavingWithChangesAsks_data();
    void leavingWithChangesAsks();
    void saveAsGoesOnAtTheNewPlace();
    void backupIsRestoredOnlyWhenConfirmed();
    void reloadDropsChangesOnlyWhenConfirmed_data();
    void reloadDropsChangesOnlyWhenConfirmed();
    void newProjectIsMadeAndOpened();
    void closedProjectIsOpenedFromTheTree();
    void messageLeadsToItsLine();
    void fileChangedOutsideIsAskedAbout_data();
    void fileChangedOutsideIsAskedAbout();
    void unsavedFileChangedOutsideIsAskedAboutTwice_data();
    void unsavedFileChangedOutsideIsAskedAboutTwice();
    void deletedFileIsSavedWhereTheUserSays();
    void interruptedSaveIsRecovered();
    void statusFieldsAct();
    void paletteRunsACommand();
    void windowComesBackAsItWasLeft();
    void lastProjectIsReopened_data();
    void lastProjectIsReopened();
    void lastProjectThatIsGoneIsTold();
    void failedSaveIsNamedWithItsReason();
    void backupHoldsClosedProjectsAndKeepsTheTree();
    void unwritableSettingsAreTold();
    void missingRecentProjectsStayUntilRemoved();

private:
    QByteArray onDisk(const QString &name) const;
    ProjectSession *session() const;

    std::unique_ptr<WindowFixture> f;
};

void TestMainWindow::init()
{
    f = std::make_unique<WindowFixture>();
    QVERIFY(QTest::qWaitForWindowActive(f->window.get()));
}

void TestMainWindow::cleanup()
{
    f.reset();
}

QByteArray TestMainWindow::onDisk(const QString &name) const
{
    return SmallGame::readFile(f->meadow() + QLatin1Char('/') + name);
}

ProjectSession *TestMainWindow::session() const
{
    return f->window->commands().session();
}

void TestMainWindow::whatEditorsAskForIsInTheWindow()
{
    QVERIFY(QTest::qWaitForWindowActive(f->window.get()));
    f->host->setCurrentToolBarArea(QStringLiteral("anim_bar"));
    const Vela::SpinBoxControl control(nullptr, nullptr, nullptr, nullptr, 0, 9);
    QWidget *box = f->host->createControl(QStringLiteral("anim_time"), &control);
    QVERIFY(box);
    QTRY_VERIFY(box->isVisible());
    QCOMPARE(box->window(), f->window.get());

    f->host->setOption(QStringLiteral("shortcut/anim_play"), QStringLiteral("Ctrl+Alt+J"));
    QAction *play = f->host->createAction("anim_play", "anim_play", f->host.get(), 0, false,
                                          nullptr, nullptr, nullptr, nullptr);
    QSignalSpy played(play, &QAction::triggered);
    QTest::keyClick(f->window.get(), Qt::Key_J, Qt::ControlModifier | Qt::AltModifier);
    QCOMPARE(played.size(), 1);
}

void TestMainWindow::projectIsOpenedAndClosed()
{
    DialogAnswerer dialogs;
    dialogs.chooseFiles({f->meadow()});
    QTest::keyClick(f->window.get(), Qt::Key_O, Qt::ControlModifier);
    QVERIFY(session());
    QVERIFY(f->window->windowTitle().startsWith(QLatin1String("meadow")));
    QCOMPARE(f->window->currentPath(), QStringLiteral("game.lantern"));
    QCOMPARE(f->host->parentProjectCount(), 1U);
    QCOMPARE(f->window->recentProjects().paths(), QStringList(f->meadow()));
    const auto *text = f->find<QPlainTextEdit>("codeEditor");
    QCOMPARE(text->toPlainText().toUtf8(), onDisk(QStringLiteral("game.lantern")));
    QVERIFY(f->clickFile(QString::fromUtf8("mill/bilder/Mühle.png")));

    f->window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(f->window.get()));
    QTest::keyClick(f->window.get(), Qt::Key_W, Qt::ControlModifier);
    QVERIFY(!session());
    QCOMPARE(f->host->parentProjectCount(), 0U);
    QCOMPARE(f->find<QTreeView>("projectTree")->model()->rowCount(), 0);
    QVERIFY(!f->host->action("save")->isEnabled());
}

void TestMainWindow::whatIsNoProjectIsRefused()
{
    QVERIFY(f->window->openProject(f->meadow()));
    DialogAnswerer dialogs;
    dialogs.answer(QMessageBox::Ok);
    QVERIFY(!f->window->openProject(f->path(QStringLiteral("nothing"))));
    QVERIFY(dialogs.dialogs.value(0).text.contains(QLatin1String("nothing")));
    QCOMPARE(session()->path(), f->meadow());
}

void TestMainWindow::droppedFolderIsOpened()
{
    QVERIFY(SmallGame::writeFile(f->path(QStringLiteral("plain/notes.txt")), "notes"));
    QVERIFY(!drop(f->window.get(), f->path(QStringLiteral("plain"))));
    QVERIFY(drop(f->window.get(), f->meadow()));
    QTRY_VERIFY(session());
    QCOMPARE(session()->path(), f->meadow());
}

void TestMainWindow::changedFileIsMarkedUntilItIsSaved()
{
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    const QByteArray before = onDisk(rowan);
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    QVERIFY(f->window->isWindowModified());
    auto *dock = f->find<ProjectDock>("projectDock");
    const QModelIndex row = dock->model().indexOf(rowan);
    QCOMPARE(row.data().toString(), QString(QStringLiteral("rowan.lantern \u25CF")));
    // The view shows what is not saved yet.
    const auto *text = f->find<QPlainTextEdit>("codeEditor");
    QTRY_VERIFY(text->toPlainText().contains(QLatin1String("Nobody")));
    QCOMPARE(onDisk(rowan), before);

    QTest::keyClick(f->window.get(), Qt::Key_S, Qt::ControlModifier);
    QVERIFY(onDisk(rowan).contains("author = Nobody"));
    QVERIFY(!f->window->isWindowModified());
    QCOMPARE(row.data().toString(), QStringLiteral("rowan.lantern"));
}

void TestMainWindow::undoAndRedoReachTheFile()
{
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    f->trigger("undo");
    QTRY_VERIFY(!f->window->isWindowModified());
    f->trigger("redo");
    QTRY_VERIFY(f->window->isWindowModified());
}

void TestMainWindow::leavingWithChangesAsks_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::addColumn<bool>("leaves");
    QTest::addColumn<bool>("saved");
    QTest::newRow("save") << QMessageBox::Save << true << true;
    QTest::newRow("discard") << QMessageBox::Discard << true << false;
    QTest::newRow("cancel") << QMessageBox::Cancel << false << false;
}

void TestMainWindow::leavingWithChangesAsks()
{
    QFETCH(QMessageBox::StandardButton, answer);
    QFETCH(bool, leaves);
    QFETCH(bool, saved);
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    {
        DialogAnswerer dialogs;
        dialogs.answer(answer);
        QCOMPARE(f->window->close(), leaves);
        QCOMPARE(dialogs.dialogs.value(0).defaultButton, QMessageBox::Save);
    }
    QCOMPARE(onDisk(rowan).contains("Nobody"), saved);
    QCOMPARE(f->window->isVisible(), !leaves);
}

void TestMainWindow::saveAsGoesOnAtTheNewPlace()
{
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    const QString target = f->path(QStringLiteral("copy"));
    QVERIFY(QDir().mkpath(target));
    const QByteArray before = onDisk(rowan);
    DialogAnswerer dialogs;
    dialogs.chooseFiles({target});
    f->trigger("save_as");
    QVERIFY(SmallGame::readFile(target + QLatin1Char('/') + rowan).contains("author = Nobody"));
    QCOMPARE(SmallGame::content(target).size(), SmallGame::content(f->meadow()).size());
    QCOMPARE(onDisk(rowan), before);
    QTRY_VERIFY(f->window->windowTitle().startsWith(QLatin1String("copy")));
    QTRY_COMPARE(f->window->currentPath(), rowan);
}

void TestMainWindow::backupIsRestoredOnlyWhenConfirmed()
{
    QVERIFY(f->window->openProject(f->meadow()));
    const QByteArray before = onDisk(rowan);
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *dialog) { typeAndAccept(dialog, QStringLiteral("first")); });
    f->trigger("backup");
    QCOMPARE(session()->backups().list().size(), 1);

    QVERIFY(f->clickFile(rowan));
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    f->trigger("save");
    const auto choose = [](QDialog *dialog) {
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("restore")),
                          Qt::LeftButton);
    };
    dialogs.handle(choose);
    dialogs.answer(QMessageBox::No);
    f->trigger("restore");
    QVERIFY(onDisk(rowan).contains("Nobody"));

    dialogs.handle(choose);
    dialogs.answer(QMessageBox::Yes);
    f->trigger("restore");
    QCOMPARE(onDisk(rowan), before);
    const auto *text = f->find<QPlainTextEdit>("codeEditor");
    QTRY_COMPARE(text->toPlainText().toUtf8(), before);
    QVERIFY(!f->window->isWindowModified());
}

void TestMainWindow::reloadDropsChangesOnlyWhenConfirmed_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::addColumn<bool>("modified");
    QTest::newRow("yes") << QMessageBox::Yes << false;
    QTest::newRow("no") << QMessageBox::No << true;
}

void TestMainWindow::reloadDropsChangesOnlyWhenConfirmed()
{
    QFETCH(QMessageBox::StandardButton, answer);
    QFETCH(bool, modified);
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    DialogAnswerer dialogs;
    dialogs.answer(answer);
    QTest::keyClick(f->window.get(), Qt::Key_F5);
    QTRY_COMPARE(f->window->isWindowModified(), modified);
}

void TestMainWindow::newProjectIsMadeAndOpened()
{
    f->host->setOption(QStringLiteral("projects_folder"), f->path(QStringLiteral("made")));
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *dialog) {
        auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("name"));
        QTest::keyClicks(name, QStringLiteral("Pond"));
        QTest::keyClick(name, Qt::Key_Return);
    });
    f->trigger("new");
    QVERIFY(session());
    QVERIFY(session()->path().startsWith(f->path(QStringLiteral("made/Pond"))));
    QVERIFY(!f->window->isWindowModified());
}

void TestMainWindow::closedProjectIsOpenedFromTheTree()
{
    QVERIFY(f->window->openProject(f->meadow()));
    auto *dock = f->find<ProjectDock>("projectDock");
    const QStringList closed = closedProjects(*session()->parent());
    QCOMPARE(closed.size(), 1);
    const QModelIndex barn = dock->model().indexOf(closed.first());
    QVERIFY(barn.isValid());
    QVERIFY(barn.data(Qt::FontRole).value<QFont>().italic());
    dock->view()->setCurrentIndex(barn);
    QTest::keyClick(dock->view(), Qt::Key_Return);
    QVERIFY(closedProjects(*session()->parent()).isEmpty());
    QTRY_VERIFY(f->window->files().file(QStringLiteral("barn/barn.lantern")));
}

void TestMainWindow::messageLeadsToItsLine()
{
    const QByteArray good = onDisk(rowan);
    const int line = good.count('\n');
    QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/rowan.lantern"), good + "kind banana\n"));
    QVERIFY(f->window->openProject(f->meadow()));
    auto *dock = f->find<MessagesDock>("messagesDock");
    QTRY_COMPARE(dock->view()->model()->rowCount(), 1);
    QCOMPARE(dock->view()->model()->index(0, 1).data().toString(), rowan);
    QCOMPARE(dock->windowTitle(), QStringLiteral("Messages (1)"));
    WindowFixture::doubleClick(dock->view(), dock->view()->model()->index(0, 0));
    QCOMPARE(f->window->currentPath(), rowan);
    const auto *text = f->find<QPlainTextEdit>("codeEditor");
    QCOMPARE(text->textCursor().blockNumber(), line);

    auto *errors = f->find<QToolButton>("message_error");
    QTest::mouseClick(errors, Qt::LeftButton);
    QCOMPARE(dock->view()->model()->rowCount(), 0);
    QTest::mouseClick(errors, Qt::LeftButton);
    QTest::keyClicks(f->find<QLineEdit>("messageText"), QStringLiteral("no such words"));
    QCOMPARE(dock->view()->model()->rowCount(), 0);
}

void TestMainWindow::fileChangedOutsideIsAskedAbout_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::addColumn<bool>("reads");
    QTest::addColumn<bool>("replaced");
    QTest::newRow("yes") << QMessageBox::Yes << true << false;
    QTest::newRow("no") << QMessageBox::No << false << false;
    QTest::newRow("replaced, yes") << QMessageBox::Yes << true << true;
}

void TestMainWindow::fileChangedOutsideIsAskedAbout()
{
    QFETCH(QMessageBox::StandardButton, answer);
    QFETCH(bool, reads);
    QFETCH(bool, replaced);
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    DialogAnswerer dialogs;
    dialogs.answer(answer);
    QByteArray other = onDisk(rowan) + "# from another program\n";
    const int value = other.indexOf("author = ") + int(strlen("author = "));
    other.replace(value, other.indexOf('\n', value) - value, "Another");
    const QString target = f->inMeadow("rowan/rowan.lantern");
    const QString written = replaced ? target + QStringLiteral(".new") : target;
    QVERIFY(SmallGame::writeFile(written, other));
    if (replaced)
        QCOMPARE(
            rename(QFile::encodeName(written).constData(), QFile::encodeName(target).constData()),
            0);
    QTRY_COMPARE(dialogs.dialogs.size(), 1);
    QCOMPARE(dialogs.dialogs.first().title, QStringLiteral("File modified"));
    const auto *text = f->find<QPlainTextEdit>("codeEditor");
    if (reads)
        QTRY_COMPARE(text->toPlainText().toUtf8(), other);
    else
        QVERIFY(!text->toPlainText().contains(QLatin1String("another program")));
    const QAbstractItemModel *properties = f->find<QTreeView>("properties")->model();
    const QModelIndex name = properties->match(properties->index(0, 0), 0, author).value(0);
    QTRY_COMPARE(name.siblingAtColumn(1).data().toString() == QLatin1String("Another"), reads);
    QVERIFY(!f->window->isWindowModified());
}

void TestMainWindow::unsavedFileChangedOutsideIsAskedAboutTwice_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::addColumn<bool>("kept");
    QTest::newRow("yes") << QMessageBox::Yes << false;
    QTest::newRow("no") << QMessageBox::No << true;
}

void TestMainWindow::unsavedFileChangedOutsideIsAskedAboutTwice()
{
    QFETCH(QMessageBox::StandardButton, answer);
    QFETCH(bool, kept);
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    DialogAnswerer dialogs;
    dialogs.answer(QMessageBox::Yes);
    dialogs.answer(answer);
    const QByteArray other = onDisk(rowan) + "# from another program\n";
    QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/rowan.lantern"), other));
    QTRY_COMPARE(dialogs.dialogs.size(), 2);
    QCOMPARE(dialogs.dialogs.last().defaultButton, QMessageBox::No);
    const auto *text = f->find<QPlainTextEdit>("codeEditor");
    QTRY_COMPARE(text->toPlainText().contains(QLatin1String("Nobody")), kept);
    QTRY_COMPARE(f->window->isWindowModified(), kept);
    const QModelIndex row = f->find<ProjectDock>("projectDock")->model().indexOf(rowan);
    QCOMPARE(row.data().toString().endsWith(QChar(0x25CF)), kept);
}

void TestMainWindow::deletedFileIsSavedWhereTheUserSays()
{
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    QVERIFY(QFile::remove(f->inMeadow("rowan/rowan.lantern")));
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    DialogAnswerer dialogs;
    dialogs.cancel();
    dialogs.answer(QMessageBox::Ok);
    f->trigger("save");
    QVERIFY(dialogs.dialogs.last().text.contains(QLatin1String("could not be saved")));
    QVERIFY(f->window->isWindowModified());

    dialogs.chooseFiles({f->inMeadow("rowan/rowan.lantern")});
    f->trigger("save");
    QVERIFY(onDisk(rowan).contains("author = Nobody"));
    QVERIFY(!f->window->isWindowModified());
}

void TestMainWindow::interruptedSaveIsRecovered()
{
    const QByteArray newer = onDisk(rowan) + "# not saved to its end\n";
    const QByteArray older = onDisk(rowan);
    QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/rowan.lanternQx7Rk2"), newer));
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *dialog) {
        const auto *preview = dialog->findChild<QPlainTextEdit *>(QStringLiteral("preview"));
        QVERIFY(preview->toPlainText().contains(QLatin1String("not saved to its end")));
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("recover")),
                          Qt::LeftButton);
    });
    QVERIFY(f->window->openProject(f->meadow()));
    QTRY_COMPARE(dialogs.dialogs.size(), 1);
    QTRY_COMPARE(onDisk(rowan), newer);
    QVERIFY(!QFile::exists(f->inMeadow("rowan/rowan.lanternQx7Rk2")));
    // What the file held before is kept beside it.
    QVERIFY(SmallGame::content(f->meadow()).values().contains(older));
}

void TestMainWindow::statusFieldsAct()
{
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    auto *text = f->find<QPlainTextEdit>("codeEditor");
    const QString lines = QString::number(onDisk(rowan).count('\n') + 1);
    auto *position = f->find<QToolButton>("statusField0");
    QCOMPARE(position->text(), QStringLiteral("Line: 1, Column: 1, Line count: ") + lines);
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *dialog) {
        dialog->findChild<QSpinBox *>()->setValue(3);
        dialog->accept();
    });
    QTest::mouseClick(position, Qt::LeftButton);
    QCOMPARE(position->text(), QStringLiteral("Line: 3, Column: 1, Line count: ") + lines);

    auto *errors = f->find<QToolButton>("statusField1");
    text->moveCursor(QTextCursor::End);
    QTest::keyClicks(text, QStringLiteral("banana"));
    QTRY_COMPARE(errors->text(), QStringLiteral("Syntax error count: 1"));
    text->moveCursor(QTextCursor::Start);
    QTest::mouseClick(errors, Qt::LeftButton);
    QCOMPARE(text->textCursor().block().text(), QStringLiteral("banana"));

    // Without a text the last field is the engine's.
    auto *last = f->find<QToolButton>("statusField2");
    QCOMPARE(last->text(), QStringLiteral("Encoding: UTF-8"));
    QVERIFY(f->clickFile(QStringLiteral("rowan/sprites/idle.png")));
    QCOMPARE(last->text(), QStringLiteral("Lantern"));
    QCOMPARE(position->text(), QString());
}

void TestMainWindow::paletteRunsACommand()
{
    QVERIFY(f->window->openProject(f->meadow()));
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *dialog) { typeAndAccept(dialog, QStringLiteral("about")); });
    dialogs.cancel();
    QTest::keyClick(f->window.get(), Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier);
    QTRY_COMPARE(dialogs.dialogs.size(), 2);
    QCOMPARE(dialogs.dialogs.last().title, QStringLiteral("About Vela Studio"));
    QTRY_VERIFY(dialogs.isDone());
}

void TestMainWindow::windowComesBackAsItWasLeft()
{
    f->window->resize(900, 640);
    f->find<QDockWidget>("propertiesDock")->hide();
    f->window->close();
    f->stop();
    f->start();
    QCOMPARE(f->window->size(), QSize(900, 640));
    QVERIFY(f->find<QDockWidget>("propertiesDock")->isHidden());
    f->trigger("reset_layout");
    QVERIFY(!f->find<QDockWidget>("propertiesDock")->isHidden());
}

void TestMainWindow::lastProjectIsReopened_data()
{
    QTest::addColumn<bool>("wanted");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<bool>("reopened");
    QTest::newRow("open at the end") << true << false << true;
    QTest::newRow("closed before the end") << true << true << false;
    QTest::newRow("switched off") << false << false << false;
}

void TestMainWindow::lastProjectIsReopened()
{
    QFETCH(bool, wanted);
    QFETCH(bool, closed);
    QFETCH(bool, reopened);
    f->host->setOption(QStringLiteral("reopen_last_project"), wanted);
    QVERIFY(f->window->openProject(f->meadow()));
    const auto folder = [this](const char *name) {
        return f->find<ProjectDock>("projectDock")->model().indexOf(QLatin1String(name));
    };
    f->find<QTreeView>("projectTree")->collapseAll();
    f->find<QTreeView>("projectTree")->expand(folder("rowan"));
    f->find<QTreeView>("projectTree")->expand(folder("rowan/sounds"));
    QVERIFY(f->clickFile(rowan));
    if (closed)
        f->trigger("close");
    f->window->close();
    f->stop();
    f->start();
    f->window->reopenLastProject();
    QCOMPARE(session() != nullptr, reopened);
    if (!reopened)
        return;
    QCOMPARE(session()->path(), f->meadow());
    QCOMPARE(f->window->currentPath(), rowan);
    const auto *tree = f->find<QTreeView>("projectTree");
    QVERIFY(tree->isExpanded(folder("rowan")));
    QVERIFY(tree->isExpanded(folder("rowan/sounds")));
    QVERIFY(!tree->isExpanded(folder("rowan/sprites")));
    QVERIFY(!tree->isExpanded(folder("brook")));
}

void TestMainWindow::lastProjectThatIsGoneIsTold()
{
    QVERIFY(f->window->openProject(f->meadow()));
    f->window->close();
    f->stop();
    QVERIFY(QDir(f->meadow()).removeRecursively());
    f->start();
    f->window->reopenLastProject();
    QVERIFY(!session());
    const auto *note = f->find<QLabel>("welcomeNote");
    QVERIFY(note->isVisible());
    QVERIFY(note->text().contains(f->meadow()));
    // It is told once.
    f->stop();
    f->start();
    f->window->reopenLastProject();
    QVERIFY(f->find<QLabel>("welcomeNote")->isHidden());
}

void TestMainWindow::failedSaveIsNamedWithItsReason()
{
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(rowan));
    QVERIFY(f->typeProperty(author, QStringLiteral("Nobody")));
    const QByteArray before = onDisk(rowan);
    DialogAnswerer dialogs;
    QString told;
    dialogs.handle([&told](QDialog *dialog) {
        told = qobject_cast<QMessageBox *>(dialog)->informativeText();
        dialog->accept();
    });
    {
        const FullDisk full(16);
        f->trigger("save");
    }
    QVERIFY(dialogs.isDone());
    QVERIFY2(told.startsWith(rowan + QLatin1String(": ")), qPrintable(told));
    QVERIFY2(told.contains(f->inMeadow("rowan/rowan.lantern")), qPrintable(told));
    QCOMPARE(onDisk(rowan), before);
    QVERIFY(f->window->isWindowModified());
    f->trigger("save");
    QVERIFY(onDisk(rowan).contains("author = Nobody"));
    QVERIFY(!f->window->isWindowModified());
}

void TestMainWindow::backupHoldsClosedProjectsAndKeepsTheTree()
{
    QVERIFY(f->window->openProject(f->meadow()));
    const QStringList closed = closedProjects(*session()->parent());
    QCOMPARE(closed.size(), 1);
    QVERIFY(f->clickFile(rowan));
    const auto rows = [this] {
        const QAbstractItemModel *tree = f->find<QTreeView>("projectTree")->model();
        QStringList names;
        for (int row = 0; row < tree->rowCount(); ++row)
            names.append(tree->index(row, 0).data().toString());
        names.sort();
        return names;
    };
    const QStringList before = rows();
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *dialog) { typeAndAccept(dialog, QStringLiteral("all")); });
    f->trigger("backup");
    QVERIFY(dialogs.isDone());
    QCOMPARE(closedProjects(*session()->parent()), closed);
    QCOMPARE(rows(), before);
    QCOMPARE(f->window->currentPath(), rowan);
    QString error;
    const QStringList files =
        ProjectSession::backupFiles(session()->backups().list().value(0), &error);
    QStringList expected = SmallGame::content(f->meadow()).keys();
    expected.sort();
    QStringList found = files;
    found.sort();
    QCOMPARE(found, expected);
}

void TestMainWindow::unwritableSettingsAreTold()
{
    const QString name = f->host->settings().fileName();
    QFile::remove(name);
    QVERIFY(QDir().mkpath(name));
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->find<QPlainTextEdit>("output")->toPlainText().contains(name));
}

void TestMainWindow::missingRecentProjectsStayUntilRemoved()
{
    const QString gone = f->path(QStringLiteral("gone"));
    f->window->recentProjects().add(gone);
    f->window->recentProjects().add(f->meadow());
    QMenu *menu = nullptr;
    const auto menus = f->window->findChildren<QMenu *>();
    for (QMenu *candidate : menus)
        menu = candidate->title() == QLatin1String("Open &Recent") ? candidate : menu;
    QVERIFY(menu);
    Q_EMIT menu->aboutToShow();
    QVERIFY(menu->actions().at(0)->isEnabled());
    QVERIFY(!menu->actions().at(1)->isEnabled());
    QVERIFY(menu->actions().at(1)->text().contains(QLatin1String("missing")));
    menu->actions().at(3)->trigger();
    QCOMPARE(f->window->recentProjects().paths(), QStringList(f->meadow()));
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"

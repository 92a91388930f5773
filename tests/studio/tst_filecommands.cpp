// SPDX-License-Identifier: MIT
// How an author makes, adds and saves single files.
#include "studio/windowfixture.h"

#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "project/messages.h"
#include "project/project.h"
#include "studio/window/editors.h"
#include "studio/window/filetabs.h"
#include "studio/window/fileview.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QStatusBar>

using namespace Studio;

namespace {

const QString mainPath = QStringLiteral("rowan/rowan.lantern");
const QString scriptPath = QStringLiteral("rowan/scripts/rowan.script");
const QString newPath = QStringLiteral("Untitled 1");
constexpr char script[] = "[script dusk]\nat 1   wait 2\n";

} // namespace

class TestFileCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void commandsNeedWhatTheyActOn();
    void newFileGetsItsNameWhenItIsSaved();
    void newFileThatNobodyNamesStaysUnsaved();
    void closingSavesANewFileWithItsLine();
    void newTextIsKeptAgainstACrash();
    void closedTabDropsANewFile_data();
    void closedTabDropsANewFile();
    void fileOfTheFolderIsAdded();
    void fileFromOutsideIsAdded_data();
    void fileFromOutsideIsAdded();
    void openFileIsNotAddedTwice();
    void unreadableFileIsNotAdded();
    void fileIsSavedUnderAnotherName();
    void fileIsSavedOverAnother();
    void textIsSavedAsUtf8();

private:
    void createScript();
    void paste();
    void addScript(DialogAnswerer &dialogs, const QString &name);
    QString listing() const;
    QString diskText(const QString &path) const;
    bool isShown(const QString &path) const;

    std::unique_ptr<WindowFixture> f;
    Vela::CodeEditor *text = nullptr;
};

void TestFileCommands::init()
{
    f = std::make_unique<WindowFixture>();
    QVERIFY(QTest::qWaitForWindowActive(f->window.get()));
    text = f->window->editors().code().editor();
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(mainPath));
}

void TestFileCommands::cleanup()
{
    f.reset();
}

void TestFileCommands::createScript()
{
    DialogAnswerer dialogs;
    WindowFixture::pick(dialogs, QStringLiteral("Scripts"));
    f->trigger("new_file");
    QCOMPARE(dialogs.dialogs.value(0).title, QStringLiteral("New File"));
    QVERIFY(isShown(newPath));
}

/// Puts a script into the current text.
void TestFileCommands::paste()
{
    QGuiApplication::clipboard()->setText(QLatin1String(script));
    f->window->activateWindow(); // which not every system does behind a dialog
    QTRY_VERIFY(text->hasFocus());
    f->trigger("paste");
    QCOMPARE(text->toPlainText(), QLatin1String(script));
}

void TestFileCommands::addScript(DialogAnswerer &dialogs, const QString &name)
{
    WindowFixture::pick(dialogs, QStringLiteral("Scripts"));
    dialogs.chooseFiles({name});
}

/// Returns the main file's text as it stands in the window.
QString TestFileCommands::listing() const
{
    const auto *main = dynamic_cast<Vela::CodeDocument *>(f->window->files().file(mainPath));
    return main->toString();
}

/// Returns the text of a file on the disk, with its lines apart by "\n".
QString TestFileCommands::diskText(const QString &path) const
{
    return QString::fromUtf8(SmallGame::readFile(f->meadow() + QLatin1Char('/') + path))
        .remove(QLatin1Char('\r'));
}

/// Returns whether a file is the current one, in the bar and in the tree as well.
bool TestFileCommands::isShown(const QString &path) const
{
    const auto *dock = f->find<ProjectDock>("projectDock");
    return f->window->currentPath() == path && f->window->tabs().currentPath() == path
        && f->window->view().file() == f->window->files().file(path)
        && dock->model().path(dock->view()->currentIndex()) == path;
}

void TestFileCommands::commandsNeedWhatTheyActOn()
{
    const QList<const char *> keys{"new_file", "add_file", "save_file_as", "save_as_utf8"};
    const auto enabled = [&] {
        QStringList names;
        for (const char *key : keys) {
            if (f->host->action(key)->isEnabled())
                names.append(QLatin1String(key));
        }
        return names.join(QLatin1Char(' '));
    };
    QCOMPARE(enabled(), QStringLiteral("new_file add_file save_file_as save_as_utf8"));
    QVERIFY(f->clickFile(QStringLiteral("rowan/sprites/idle.png")));
    QCOMPARE(enabled(), QStringLiteral("new_file add_file save_file_as"));
    QVERIFY(f->window->commands().close());
    QCOMPARE(enabled(), QString());
}

void TestFileCommands::newFileGetsItsNameWhenItIsSaved()
{
    auto *dock = f->find<ProjectDock>("projectDock");
    const QAbstractItemModelTester tester(dock->view()->model(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    createScript();
    QCOMPARE(f->window->files().modified(), QStringList(newPath));
    QCOMPARE(dock->view()->currentIndex().data().toString(), QStringLiteral("Untitled 1 \u25CF"));
    paste();
    const QString before = listing();

    DialogAnswerer dialogs;
    dialogs.chooseFiles({f->inMeadow("rowan/scripts/dusk")});
    f->trigger("save");
    const QString path = QStringLiteral("rowan/scripts/dusk.script");
    QTRY_VERIFY(isShown(path));
    QCOMPARE(f->window->tabs().paths(),
             QStringList({QStringLiteral("game.lantern"), mainPath, path}));
    QCOMPARE(f->window->files().modified(), QStringList());
    QCOMPARE(diskText(path), QLatin1String(script));
    // The line stands behind the other script.
    const QString other = QStringLiteral("scripts = scripts/Rowan.script");
    const QString after =
        QString(before).replace(other, other + QStringLiteral("\nscripts = scripts/dusk.script"));
    QCOMPARE(listing(), after);
    QCOMPARE(diskText(mainPath), after);

    // What the text does not name any more is gone from the project, and stays on the disk.
    QVERIFY(f->clickFile(mainPath));
    f->trigger("undo");
    QCOMPARE(listing(), before);
    QTRY_VERIFY(!f->window->files().file(path));
    f->trigger("redo");
    QTRY_VERIFY(f->window->files().file(path));
    QCOMPARE(diskText(path), QLatin1String(script));
}

void TestFileCommands::newFileThatNobodyNamesStaysUnsaved()
{
    createScript();
    DialogAnswerer dialogs;
    dialogs.cancel();
    dialogs.answer(QMessageBox::Ok); // the file that could not be saved is named
    f->trigger("save");
    QVERIFY(isShown(newPath));
    QCOMPARE(f->window->files().modified(), QStringList(newPath));

    // A second one has a name of its own, and text without a file is no place for the main file's.
    WindowFixture::pick(dialogs, QStringLiteral("Animations"));
    f->trigger("new_file");
    QVERIFY(isShown(QStringLiteral("Untitled 2")));
    QVERIFY(!f->window->files().isModified(mainPath));
    dialogs.answer(QMessageBox::Cancel);
    QVERIFY(!f->window->commands().close());
    QCOMPARE(dialogs.dialogs.last().text, QStringLiteral("There are unsaved changes. Save them?"));
    dialogs.answer(QMessageBox::Discard);
    QVERIFY(f->window->commands().close());
}

void TestFileCommands::closingSavesANewFileWithItsLine()
{
    createScript();
    paste();
    DialogAnswerer dialogs;
    dialogs.answer(QMessageBox::Save);
    dialogs.chooseFiles({f->inMeadow("rowan/dusk.script")});
    QVERIFY(f->window->commands().close());
    QVERIFY(diskText(mainPath).contains(QStringLiteral("\nscripts = dusk.script\n")));
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(QStringLiteral("rowan/dusk.script")));
    QCOMPARE(text->toPlainText(), QLatin1String(script));
}

void TestFileCommands::newTextIsKeptAgainstACrash()
{
    const auto kept = [this] {
        int count = 0;
        const auto entries = SmallGame::tree(f->host->userFolder() + QStringLiteral("/recovery"));
        for (const QByteArray &entry : entries)
            count += entry.contains("[script dusk]") && entry.contains("Untitled 1");
        return count;
    };
    createScript();
    paste();
    QTRY_COMPARE(kept(), 1);
    DialogAnswerer dialogs;
    dialogs.chooseFiles({f->inMeadow("rowan/dusk.script")});
    f->trigger("save");
    QTRY_COMPARE(kept(), 0);
}

void TestFileCommands::closedTabDropsANewFile_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("stays");

    QTest::newRow("empty") << QString() << 0 << false;
    QTest::newRow("discarded") << QStringLiteral("dusk") << int(QMessageBox::Yes) << false;
    QTest::newRow("kept") << QStringLiteral("dusk") << int(QMessageBox::No) << true;
}

void TestFileCommands::closedTabDropsANewFile()
{
    QFETCH(QString, words);
    QFETCH(int, answer);
    QFETCH(bool, stays);
    createScript();
    QTest::keyClicks(text, words);
    DialogAnswerer dialogs;
    if (answer)
        dialogs.answer(QMessageBox::StandardButton(answer));
    f->trigger("close_file");
    QTRY_COMPARE(f->window->files().file(newPath) != nullptr, stays);
    QTRY_VERIFY(isShown(stays ? newPath : mainPath));
    QCOMPARE(f->window->files().modified(), stays ? QStringList(newPath) : QStringList());
    if (stays)
        QCOMPARE(text->toPlainText(), words);
}

void TestFileCommands::fileOfTheFolderIsAdded()
{
    const QString path = QStringLiteral("rowan/evening #1.script");
    QVERIFY(SmallGame::writeFile(f->meadow() + QLatin1Char('/') + path, script));
    const QString before = listing();
    DialogAnswerer dialogs;
    addScript(dialogs, f->meadow() + QLatin1Char('/') + path);
    f->trigger("add_file");
    QVERIFY(isShown(path));
    QCOMPARE(text->toPlainText(), QLatin1String(script));
    QCOMPARE(f->window->files().modified(), QStringList(mainPath));
    const QString other = QStringLiteral("scripts = scripts/Rowan.script");
    QCOMPARE(listing(),
             QString(before).replace(other,
                                     other + QStringLiteral("\nscripts = \"evening #1.script\"")));
}

void TestFileCommands::fileFromOutsideIsAdded_data()
{
    QTest::addColumn<int>("asCopy");

    QTest::newRow("as it is") << int(QMessageBox::No);
    QTest::newRow("copied") << int(QMessageBox::Yes);
}

void TestFileCommands::fileFromOutsideIsAdded()
{
    QFETCH(int, asCopy);
    const QString name = f->path(QStringLiteral("other.script"));
    QVERIFY(SmallGame::writeFile(name, script));
    const QString before = listing();
    DialogAnswerer dialogs;
    addScript(dialogs, name);
    dialogs.answer(QMessageBox::StandardButton(asCopy));
    f->trigger("add_file");
    QCOMPARE(dialogs.dialogs.last().title, QStringLiteral("External file!"));
    const bool copied = asCopy == QMessageBox::Yes;
    const QString path = copied ? newPath : name;
    QVERIFY(isShown(path));
    QCOMPARE(text->toPlainText(), QLatin1String(script));
    QCOMPARE(f->window->files().modified(), copied ? QStringList(newPath) : QStringList());

    // The text cannot name it, so a change of the text does not take it out either.
    QVERIFY(f->clickFile(mainPath));
    QCOMPARE(listing(), before);
    text->moveCursor(QTextCursor::End);
    QTest::keyClicks(text, QStringLiteral("sounds = none.wav"));
    QVERIFY(f->clickFile(path));
}

void TestFileCommands::openFileIsNotAddedTwice()
{
    const int count = f->window->files().count();
    DialogAnswerer dialogs;
    addScript(dialogs, f->meadow() + QLatin1Char('/') + scriptPath);
    f->trigger("add_file");
    QVERIFY(isShown(scriptPath));
    QCOMPARE(f->window->files().count(), count);
    QCOMPARE(f->window->files().file(scriptPath)->project()->filesByType(4).size(), 1);
    QCOMPARE(f->window->statusBar()->currentMessage(),
             QStringLiteral("rowan/scripts/rowan.script is open in the project already."));
    QCOMPARE(f->window->files().modified(), QStringList());
}

void TestFileCommands::unreadableFileIsNotAdded()
{
    const QString name = f->inMeadow("rowan/huge.script");
    QVERIFY(SmallGame::writeFile(name, script));
    QVERIFY(QFile::resize(name, 256 * 1024 * 1024 + 1)); // above the largest text
    const int count = f->window->files().count();
    DialogAnswerer dialogs;
    addScript(dialogs, name);
    dialogs.answer(QMessageBox::Ok);
    f->trigger("add_file");
    QCOMPARE(dialogs.dialogs.last().text, QStringLiteral("The file could not be read."));
    QVERIFY(isShown(mainPath));
    QCOMPARE(f->window->files().count(), count);
    QCOMPARE(f->window->files().modified(), QStringList());
}

void TestFileCommands::fileIsSavedUnderAnotherName()
{
    QVERIFY(f->clickFile(scriptPath));
    const QString words = text->toPlainText();
    DialogAnswerer dialogs;
    dialogs.chooseFiles({f->inMeadow("rowan/scripts/night.script")});
    f->trigger("save_file_as");
    const QString path = QStringLiteral("rowan/scripts/night.script");
    QTRY_VERIFY(isShown(path));
    QCOMPARE(diskText(path), words);
    // The old file is as it was, and both are the project's.
    QVERIFY(listing().contains(
        QStringLiteral("scripts = scripts/Rowan.script\nscripts = scripts/night.script\n")));
    QVERIFY(f->clickFile(scriptPath));
    QCOMPARE(text->toPlainText(), words);
}

void TestFileCommands::fileIsSavedOverAnother()
{
    createScript();
    paste();
    const QString before = listing();
    DialogAnswerer dialogs;
    dialogs.chooseFiles({f->meadow() + QLatin1Char('/') + scriptPath});
    dialogs.answer(QMessageBox::Yes); // it is to be replaced
    f->trigger("save_file_as");
    QTRY_VERIFY(isShown(scriptPath));
    QCOMPARE(diskText(scriptPath), QLatin1String(script));
    QCOMPARE(listing(), before);
    const Vela::ProjectFile *file = f->window->files().file(scriptPath);
    QCOMPARE(file->project()->filesByType(Vela::Project::Scripts).size(), 1);
    QCOMPARE(text->toPlainText(), QLatin1String(script));
}

void TestFileCommands::textIsSavedAsUtf8()
{
    QVERIFY(f->window->commands().close());
    const QString words = QStringLiteral("# Zo\u00EB walks home\n");
    QByteArray utf16("\xFF\xFE");
    for (const QChar c : words)
        utf16.append(char(c.cell())).append(char(c.row()));
    QVERIFY(SmallGame::writeFile(f->meadow() + QLatin1Char('/') + scriptPath, utf16));
    QVERIFY(f->window->openProject(f->meadow()));
    QVERIFY(f->clickFile(scriptPath));
    QCOMPARE(text->toPlainText(), words);
    f->trigger("save_as_utf8");
    const QString name = f->meadow() + QLatin1Char('/') + scriptPath;
    QTRY_COMPARE(SmallGame::readFile(name).replace("\r", ""), words.toUtf8()); // without a mark
    QCOMPARE(f->window->files().modified(), QStringList());

    // A new text needs a name for that.
    createScript();
    paste();
    DialogAnswerer dialogs;
    dialogs.chooseFiles({f->inMeadow("rowan/dusk.script")});
    f->trigger("save_as_utf8");
    QTRY_VERIFY(isShown(QStringLiteral("rowan/dusk.script")));
    QCOMPARE(diskText(QStringLiteral("rowan/dusk.script")), QLatin1String(script));
    const Vela::ProjectFile *file = f->window->view().file();
    QCOMPARE(file->messages()->count(Vela::Message::Error), 0);
}

QTEST_MAIN(TestFileCommands)
#include "tst_filecommands.moc"

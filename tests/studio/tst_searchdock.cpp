// SPDX-License-Identifier: MIT
#include "studio/windowfixture.h"

#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "studio/session/documents.h"
#include "studio/session/projectsearch.h"
#include "studio/window/editors.h"
#include "studio/window/fileview.h"
#include "studio/window/searchdock.h"
#include "studio/window/textplaces.h"
#include "support/limits_unix.h"

#include <QApplication>
#include <QLabel>
#include <QTextBlock>
#include <QToolButton>

using namespace Studio;

namespace {

const QString motionPath = QStringLiteral("rowan/rowan.motion");
const QString millPath = QStringLiteral("mill/mill.motion");
const QString brookPath = QStringLiteral("brook/brook.motion");

// Comments with words that stand nowhere else in the meadow.
const QByteArray rowanWords = "# zebra one Zebra\r\n# zebras (two)\r\n  # the last zebra\r\n";
const QByteArray millWords = "# zebra-12 zebra-7\r\n";

} // namespace

class TestSearchDock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void matchesAreListedByFile_data();
    void matchesAreListedByFile();
    void wrongExpressionIsTold();
    void keysLeadToAMatch();
    void clickLeadsToAMatch();
    void findBarListsItsMatchesInAllFiles();
    void matchIsFoundWhereItIsNow();
    void everyMatchIsReplaced();
    void fileThatCannotBeSavedIsNamed();
    void searchIsStopped();
    void anotherProjectEmptiesTheList();

private:
    void findEverywhere(const QString &words);
    void clickButton(const char *name);
    void clickMatch(int file, int row);
    QStringList rows() const;
    QModelIndex match(int file, int row) const;
    QString note() const;
    QString textOf(const QString &path) const;
    bool undo(const QString &path);

    std::unique_ptr<WindowFixture> f;
    Vela::CodeEditor *text = nullptr;
    QLineEdit *words = nullptr;
    QTreeView *list = nullptr;
};

void TestSearchDock::init()
{
    f = std::make_unique<WindowFixture>();
    QVERIFY(QTest::qWaitForWindowActive(f->window.get()));
    QVERIFY(SmallGame::writeFile(f->meadow() + QLatin1Char('/') + motionPath, rowanWords));
    QVERIFY(SmallGame::writeFile(f->meadow() + QLatin1Char('/') + millPath, millWords));
    text = f->window->editors().code().editor();
    words = f->find<QLineEdit>("searchText");
    list = f->find<QTreeView>("searchResults");
    QVERIFY(f->window->openProject(f->meadow()));
    text->setFocus();
}

void TestSearchDock::cleanup()
{
    f.reset();
}

/// Types words into the dock and waits for their matches.
void TestSearchDock::findEverywhere(const QString &typed)
{
    f->press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(words->hasFocus());
    words->selectAll();
    QTest::keyClicks(words, typed);
    f->press(Qt::Key_Return);
    QTRY_VERIFY(!f->find<QToolButton>("searchStop")->isEnabled());
}

void TestSearchDock::clickButton(const char *name)
{
    auto *button = f->find<QToolButton>(name);
    QVERIFY2(button->isVisible() && button->isEnabled(), name);
    QTest::mouseClick(button, Qt::LeftButton);
}

void TestSearchDock::clickMatch(int file, int row)
{
    list->scrollTo(match(file, row));
    WindowFixture::click(list, match(file, row));
}

/// Returns the texts of all rows, those of matches with a blank in front.
QStringList TestSearchDock::rows() const
{
    QStringList texts;
    const QAbstractItemModel *model = list->model();
    for (int file = 0; file < model->rowCount(); ++file) {
        const QModelIndex index = model->index(file, 0);
        texts.append(index.data().toString());
        for (int row = 0; row < model->rowCount(index); ++row)
            texts.append(QLatin1Char(' ') + model->index(row, 0, index).data().toString());
    }
    return texts;
}

QModelIndex TestSearchDock::match(int file, int row) const
{
    return list->model()->index(row, 0, list->model()->index(file, 0));
}

QString TestSearchDock::note() const
{
    return f->find<QLabel>("searchNote")->text();
}

QString TestSearchDock::textOf(const QString &path) const
{
    return documentOf(f->window->files().file(path))->toPlainText();
}

/// Takes one step back in a file and returns whether there is another.
bool TestSearchDock::undo(const QString &path)
{
    Vela::CodeDocument *document = documentOf(f->window->files().file(path));
    document->undo();
    return document->isUndoAvailable();
}

void TestSearchDock::matchesAreListedByFile_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QStringList>("found");
    const QString mill = QStringLiteral("mill/mill.motion (%1)");
    const QString rowan = QStringLiteral("rowan/rowan.motion (%1)");
    const QString numbers = QStringLiteral(" 1: # zebra-12 zebra-7");
    const QString first = QStringLiteral(" 1: # zebra one Zebra");
    const QString second = QStringLiteral(" 2: # zebras (two)");
    const QString last = QStringLiteral(" 3: # the last zebra");
    const QStringList none;
    QTest::newRow("plain") << "zebra" << none
                           << QStringList{mill.arg(2), numbers, numbers, rowan.arg(4),
                                          first,       first,   second,  last};
    QTest::newRow("with case") << "Zebra" << QStringList(QStringLiteral("searchCase"))
                               << QStringList{rowan.arg(1), first};
    QTest::newRow("whole words") << "ZEBRA" << QStringList(QStringLiteral("searchWords"))
                                 << QStringList{mill.arg(2), numbers, numbers, rowan.arg(3),
                                                first,       first,   last};
    QTest::newRow("brackets") << "(two)" << none << QStringList{rowan.arg(1), second};
    QTest::newRow("expression") << "zebra-(\\d)\\b"
                                << QStringList(QStringLiteral("searchExpression"))
                                << QStringList{mill.arg(1), numbers};
    QTest::newRow("over the end of a line")
        << "zebra\\n# z" << QStringList(QStringLiteral("searchExpression"))
        << QStringList{rowan.arg(1), first};
    QTest::newRow("nothing") << "okapi" << none << none;
}

void TestSearchDock::matchesAreListedByFile()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, options);
    QFETCH(QStringList, found);
    f->press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    for (const QString &option : options)
        clickButton(qPrintable(option));
    findEverywhere(typed);
    QCOMPARE(rows(), found);
    const int files = int(std::count_if(found.begin(), found.end(), [](const QString &row) {
        return !row.startsWith(QLatin1Char(' '));
    }));
    QCOMPARE(note(),
             files == 0
                 ? QStringLiteral("Not found.")
                 : QStringLiteral("Matches: %1, files: %2").arg(found.size() - files).arg(files));
    QCOMPARE(f->find<QToolButton>("searchReplaceAll")->isEnabled(), files > 0);
}

void TestSearchDock::wrongExpressionIsTold()
{
    findEverywhere(QStringLiteral("zebra"));
    clickButton("searchExpression");
    findEverywhere(QStringLiteral("(zebra"));
    QVERIFY2(note().startsWith(QLatin1String("The expression is not valid: ")), qPrintable(note()));
    QCOMPARE(rows(), QStringList());
    QVERIFY(!f->find<QToolButton>("searchReplaceAll")->isEnabled());
}

void TestSearchDock::keysLeadToAMatch()
{
    findEverywhere(QStringLiteral("zebra"));
    QVERIFY(words->hasFocus());
    f->press(Qt::Key_Down);
    QVERIFY(list->hasFocus());
    QCOMPARE(list->currentIndex(), match(0, 0));
    for (int step = 0; step < 5; ++step)
        f->press(Qt::Key_Down);
    QCOMPARE(list->currentIndex(), match(1, 2));
    f->press(Qt::Key_Return);
    QCOMPARE(f->window->currentPath(), motionPath);
    QVERIFY(text->hasFocus());
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("zebra"));
    QCOMPARE(text->textCursor().blockNumber(), 1);

    // The dock opens with what is selected, and Escape leads back.
    f->press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(words->text(), QStringLiteral("zebra"));
    f->press(Qt::Key_Escape);
    QVERIFY(text->hasFocus());
    QVERIFY(f->find<SearchDock>("searchDock")->isVisible());
}

void TestSearchDock::clickLeadsToAMatch()
{
    findEverywhere(QStringLiteral("zebra"));
    clickMatch(1, 1);
    QCOMPARE(f->window->currentPath(), motionPath);
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("Zebra"));
    QCOMPARE(text->textCursor().selectionStart(), 12);
    clickMatch(0, 1);
    QCOMPARE(f->window->currentPath(), millPath);
    QCOMPARE(text->textCursor().selectionStart(), 11);
    // The row of a file only folds.
    WindowFixture::click(list, match(1, 0).parent());
    QCOMPARE(f->window->currentPath(), millPath);
}

void TestSearchDock::findBarListsItsMatchesInAllFiles()
{
    f->press(Qt::Key_F, Qt::ControlModifier);
    QTest::keyClicks(f->find<QLineEdit>("findText"), QStringLiteral("Zeb\\w+s"));
    clickButton("findExpression");
    clickButton("findEverywhere");
    QTRY_COMPARE(note(), QStringLiteral("Matches: 1, files: 1"));
    QCOMPARE(words->text(), QStringLiteral("Zeb\\w+s"));
    QVERIFY(f->find<QToolButton>("searchExpression")->isChecked());
    QVERIFY(words->hasFocus());
}

void TestSearchDock::matchIsFoundWhereItIsNow()
{
    findEverywhere(QStringLiteral("zebra"));
    QVERIFY(f->clickFile(motionPath));
    goToPlace(*text, 0, 0);
    text->setFocus();
    QTest::keyClicks(text, QStringLiteral("# new\r"));
    clickMatch(1, 3);
    QCOMPARE(text->textCursor().block().text(), QStringLiteral("  # the last zebra"));
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("zebra"));

    // One match more in front of them: the lines tell which is meant.
    goToPlace(*text, 0, 0);
    text->setFocus();
    QTest::keyClicks(text, QStringLiteral("# zebra\r"));
    clickMatch(1, 2);
    QCOMPARE(text->textCursor().block().text(), QStringLiteral("# zebras (two)"));

    // One that is gone leads nowhere.
    text->selectAll();
    f->press(Qt::Key_Delete);
    clickMatch(1, 0);
    QCOMPARE(note(), QStringLiteral("This match is no longer there."));
    QCOMPARE(text->toPlainText(), QString());
}

void TestSearchDock::everyMatchIsReplaced()
{
    QVERIFY(f->clickFile(motionPath));
    f->press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    clickButton("searchExpression");
    findEverywhere(QStringLiteral("(z)(ebra)"));
    auto *replacement = f->find<QLineEdit>("searchReplacement");
    replacement->setFocus();
    QTest::keyClicks(replacement, QStringLiteral("%2-%1"));
    // What was typed since is searched as well.
    documentOf(f->window->files().file(millPath))->setPlainText(QStringLiteral("# 1 zebra"));
    clickButton("searchReplaceAll");
    QCOMPARE(note(), QStringLiteral("Replaced: 5, files: 2"));
    QCOMPARE(rows(), QStringList());
    QCOMPARE(textOf(millPath), QStringLiteral("# 1 ebra-z"));
    QCOMPARE(text->toPlainText(),
             QStringLiteral("# ebra-z one ebra-Z\n# ebra-zs (two)\n  # the last ebra-z\n"));
    QTRY_VERIFY(f->window->isWindowModified());
    QCOMPARE(f->window->files().modified(), QStringList({millPath, motionPath}));
    // One step of undo takes a file's replacements back.
    QVERIFY(!undo(motionPath));
    QCOMPARE(text->toPlainText(), QString::fromUtf8(rowanWords).remove(QLatin1Char('\r')));
    QVERIFY(!f->find<QToolButton>("searchReplaceAll")->isEnabled());
}

void TestSearchDock::fileThatCannotBeSavedIsNamed()
{
    const QString fileName = f->meadow() + QLatin1Char('/') + millPath;
    const QFile::Permissions all = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    QVERIFY(QFile::setPermissions(fileName, all));
    QVERIFY(QFile::setPermissions(f->meadow() + QLatin1Char('/') + motionPath,
                                  all | QFile::WriteGroup | QFile::WriteOther));
    // Another user must be able to see it.
    QVERIFY(QFile::setPermissions(QFileInfo(f->meadow()).path(),
                                  all | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeGroup
                                      | QFile::ExeOther));
    findEverywhere(QStringLiteral("zebra"));
    const QString before = textOf(millPath);
    {
        const OrdinaryUser user;
        if (!user.isOrdinary)
            QSKIP("there is no other user here");
        clickButton("searchReplaceAll");
    }
    QVERIFY2(note().startsWith(QLatin1String("Replaced: 4, files: 1")), qPrintable(note()));
    QVERIFY2(note().contains(millPath), qPrintable(note()));
    QVERIFY2(!note().contains(motionPath), qPrintable(note()));
    QCOMPARE(textOf(millPath), before);
}

void TestSearchDock::searchIsStopped()
{
    // Long enough that the search does not end before it can be stopped.
    QVERIFY(f->clickFile(brookPath));
    documentOf(f->window->files().file(brookPath))
        ->setPlainText(QStringLiteral("# zebra zebra zebra\n").repeated(20000));
    f->press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClicks(words, QStringLiteral("zebra"));
    f->press(Qt::Key_Return);
    QCOMPARE(note(), QStringLiteral("Searching..."));
    QTRY_VERIFY(!rows().isEmpty());
    clickButton("searchStop");
    QCOMPARE(note(), QStringLiteral("Stopped. Matches: 60000, files: 1"));
    // All are counted, and not all listed.
    QCOMPARE(rows().size(), 10001);
    QVERIFY(!f->find<QToolButton>("searchStop")->isEnabled());
    QVERIFY(f->find<QToolButton>("searchStart")->isEnabled());
}

void TestSearchDock::anotherProjectEmptiesTheList()
{
    findEverywhere(QStringLiteral("zebra"));
    // It goes while it is being searched.
    f->press(Qt::Key_Return);
    f->trigger("close");
    QCOMPARE(rows(), QStringList());
    QCOMPARE(note(), QString());
    QVERIFY(!f->find<QToolButton>("searchStop")->isEnabled());
}

QTEST_MAIN(TestSearchDock)
#include "tst_searchdock.moc"

// SPDX-License-Identifier: MIT
#include "studio/windowfixture.h"

#include "code/codedocument.h"
#include "project/project.h"
#include "studio/session/documents.h"
#include "studio/window/fileview.h"
#include "studio/window/structuredock.h"
#include "studio/window/textplaces.h"
#include "support/limits_unix.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QToolButton>
#include <QTreeWidget>

using namespace Studio;

namespace {

const QString mainPath = QStringLiteral("rowan/rowan.lantern");
const QString motionPath = QStringLiteral("rowan/rowan.motion");

// Comments only, so that nothing but the text counts.
const QByteArray words = "# one two One\r\n# twofold (two)\r\n# one\r\n";

// What is listed as a sound, but is a text.
const QString notePath = QStringLiteral("rowan/sprites/walk-2.png");

// The same as a text: a last line end begins a line.
const QString wordText = QStringLiteral("# one two One\n# twofold (two)\n# one\n");

} // namespace

class TestTextView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void nodeLeadsToItsLine();
    void cursorLeadsTheTree();
    void typingIsFollowedAtOnce();
    void historyIsThatOfTheText();
    void placeComesBack();
    void clipboardBelongsToTheFocus();
    void draggedProjectIsOpenedAndNotTyped();
    void tokensHaveTheHostsColors_data();
    void tokensHaveTheHostsColors();
    void encodingIsPartOfTheFile();
    void textIsSavedWhileItIsEdited();
    void closingWaitsForTheSave();
    void failedSaveInTheBackgroundIsNamed();
    void unreadableTextIsNotEdited();
    void wordsAreFound_data();
    void wordsAreFound();
    void emptyMatchesArePassed();
    void matchesAreReplaced();
    void previewIsReadOnly();
    void findBarFitsANarrowDarkWindow();

private:
    bool open(const QString &path);
    void typeTerm(const char *shortcut, const QString &text);
    void clickOption(const char *name, bool wanted = true);
    QByteArray onDisk(const QString &path) const;
    Vela::CodeDocument *document() const;

    std::unique_ptr<WindowFixture> f;
    QPlainTextEdit *text = nullptr;
};

void TestTextView::init()
{
    f = std::make_unique<WindowFixture>();
    QVERIFY(QTest::qWaitForWindowActive(f->window.get()));
    QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/rowan.motion"), words));
    QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/sprites/walk-2.png"), words));
    text = f->find<QPlainTextEdit>("codeEditor");
}

void TestTextView::cleanup()
{
    f.reset();
}

/// Opens the meadow and one of its files with the focus in its text.
bool TestTextView::open(const QString &path)
{
    if (!f->window->openProject(f->meadow()) || !f->clickFile(path))
        return false;
    text->setFocus();
    return text->hasFocus();
}

Vela::CodeDocument *TestTextView::document() const
{
    return f->window->view().document();
}

QByteArray TestTextView::onDisk(const QString &path) const
{
    return SmallGame::readFile(f->meadow() + QLatin1Char('/') + path);
}

void TestTextView::nodeLeadsToItsLine()
{
    QVERIFY(open(mainPath));
    auto *dock = f->find<StructureDock>("structureDock");
    dock->raise();
    QTreeView *tree = dock->view();
    const QModelIndex project = tree->model()->index(0, 0);
    const QModelIndex name = tree->model()->index(1, 0, project);
    tree->expand(project);
    QVERIFY(!name.data(Qt::DecorationRole).value<QIcon>().isNull());
    tree->setFocus();
    WindowFixture::click(tree, name);
    QCOMPARE(text->textCursor().block().text(), QString::fromUtf8("author = Zoë Wójcik"));
    QVERIFY(text->hasFocus());
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Up);
    QTest::keyClick(tree, Qt::Key_Return);
    QCOMPARE(text->textCursor().block().text(), QStringLiteral("name = Rowan"));
    QVERIFY(text->hasFocus());

    // A picture has no tree, and the text is left in peace.
    QVERIFY(f->clickFile(QStringLiteral("rowan/sprites/idle.png")));
    QVERIFY(!tree->isVisible());
    QVERIFY(!tree->model());
}

void TestTextView::cursorLeadsTheTree()
{
    QVERIFY(open(mainPath));
    auto *dock = f->find<StructureDock>("structureDock");
    dock->raise();
    goToPlace(*text, 0, 0);
    while (!text->textCursor().block().text().startsWith(QLatin1String("kind")))
        QTest::keyClick(text, Qt::Key_Down);
    const QModelIndex kind = dock->view()->model()->index(2, 0, dock->view()->model()->index(0, 0));
    QTRY_COMPARE(dock->view()->currentIndex(), kind);
    QVERIFY(text->hasFocus());
    QVERIFY(dock->view()->isExpanded(kind.parent()));
}

void TestTextView::typingIsFollowedAtOnce()
{
    QVERIFY(open(mainPath));
    f->find<StructureDock>("structureDock")->raise();
    const auto *tree = f->find<QTreeView>("structure");
    const QAbstractItemModelTester tester(tree->model(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QAbstractItemModel *messages = f->find<QTreeView>("messages")->model();
    const auto told = [messages] {
        return messages->match(messages->index(0, 1), Qt::DisplayRole, mainPath, -1).size();
    };
    const int groups = tree->model()->rowCount();

    text->moveCursor(QTextCursor::End);
    QTest::keyClicks(text, QStringLiteral("\r[stage]\rsize = 320 x 180\rbanana = 1"));
    QCOMPARE(tree->model()->rowCount(), groups + 1);
    QTRY_COMPARE(told(), 1);
    QVERIFY(f->window->isWindowModified());
    for (int i = 0; i < 10; ++i)
        QTest::keyClick(text, Qt::Key_Backspace);
    QTRY_COMPARE(told(), 0);

    // The properties are those of the text as well.
    const QAbstractItemModel *properties = f->find<QTreeView>("properties")->model();
    QTRY_COMPARE(properties
                     ->match(properties->index(0, 0), Qt::DisplayRole, QStringLiteral("stage.size"),
                             1, Qt::MatchExactly)
                     .size(),
                 1);
    // A text that is shown can go.
    DialogAnswerer dialogs;
    dialogs.answer(QMessageBox::Discard);
    QVERIFY(f->window->commands().close());
    QVERIFY(!document());
}

void TestTextView::historyIsThatOfTheText()
{
    QVERIFY(open(motionPath));
    const QAction *undo = f->host->action("undo");
    const QAction *redo = f->host->action("redo");
    QVERIFY(!undo->isEnabled() && !redo->isEnabled());
    QTest::keyClick(text, Qt::Key_X);
    QCOMPARE(text->toPlainText(), QString(QLatin1Char('x') + wordText));
    QVERIFY(undo->isEnabled() && !redo->isEnabled());
    QVERIFY(f->window->isWindowModified());
    text->moveCursor(QTextCursor::End);
    f->trigger("undo");
    QCOMPARE(text->toPlainText(), wordText);
    QCOMPARE(text->textCursor().position(), 0);
    QVERIFY(!undo->isEnabled() && redo->isEnabled());
    QVERIFY(!f->window->isWindowModified());
    QTest::keyClick(text, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(text->toPlainText(), QString(QLatin1Char('x') + wordText));
}

void TestTextView::placeComesBack()
{
    QByteArray lines;
    for (int i = 0; i < 500; ++i)
        lines += "# line " + QByteArray::number(i) + '\n';
    QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/rowan.motion"), lines));
    QVERIFY(open(motionPath));
    goToPlace(*text, 300, 0);
    QTest::keyClick(text, Qt::Key_Right);
    text->verticalScrollBar()->setValue(280);
    QVERIFY(f->clickFile(mainPath));
    QCOMPARE(text->textCursor().position(), 0);
    QVERIFY(f->clickFile(motionPath));
    QCOMPARE(text->textCursor().blockNumber(), 300);
    QCOMPARE(text->textCursor().positionInBlock(), 1);
    QCOMPARE(text->verticalScrollBar()->value(), 280);
}

void TestTextView::clipboardBelongsToTheFocus()
{
    QVERIFY(open(motionPath));
    f->find<QTreeView>("projectTree")->setFocus();
    QVERIFY(!f->host->action("copy")->isEnabled() && !f->host->action("paste")->isEnabled());
    text->setFocus();
    QVERIFY(!f->host->action("cut")->isEnabled() && f->host->action("paste")->isEnabled());
    f->trigger("select_all");
    f->trigger("cut");
    QCOMPARE(text->toPlainText(), QString());
    QCOMPARE(QApplication::clipboard()->text(), wordText);
    f->trigger("paste");
    QCOMPARE(text->toPlainText(), wordText);

    f->trigger("find");
    QApplication::clipboard()->setText(QStringLiteral("two"));
    f->trigger("paste");
    QCOMPARE(f->find<QLineEdit>("findText")->text(), QStringLiteral("two"));
    QCOMPARE(text->toPlainText(), wordText);

    QVERIFY(f->clickFile(notePath));
    f->window->view().textEdit()->setFocus();
    f->trigger("select_all");
    QVERIFY(f->host->action("copy")->isEnabled());
    QVERIFY(!f->host->action("cut")->isEnabled() && !f->host->action("paste")->isEnabled());
}

void TestTextView::draggedProjectIsOpenedAndNotTyped()
{
    QVERIFY(open(motionPath));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(f->meadow())});
    const QPoint place = text->viewport()->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(text->viewport(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent dropped(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(text->viewport(), &dropped);
    QCOMPARE(text->toPlainText(), wordText);
    QTRY_COMPARE(f->window->currentPath(), QStringLiteral("game.lantern"));
}

void TestTextView::tokensHaveTheHostsColors_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

// What the table of colours promises about their contrast then holds for texts.
void TestTextView::tokensHaveTheHostsColors()
{
    QFETCH(bool, dark);
    QVERIFY(open(mainPath));
    const QPalette standard = QApplication::palette();
    if (dark)
        QApplication::setPalette(QPalette(Qt::black));
    QCOMPARE(Colors::isDark(), dark);
    QSet<QRgb> known;
    for (const ColorInfo &info : Colors::table()) {
        if (info.role == ColorInfo::Text)
            known.insert(dark ? info.dark : info.light);
    }
    QSet<QRgb> used;
    const auto collect = [&] {
        used.clear();
        for (QTextBlock line = document()->begin(); line.isValid(); line = line.next()) {
            const QVector<QTextLayout::FormatRange> ranges = line.layout()->formats();
            for (const QTextLayout::FormatRange &range : ranges)
                used.insert(range.format.foreground().color().rgba());
        }
        return used.size() > 2 && (used - known).isEmpty();
    };
    QTRY_VERIFY(collect());
    QVERIFY(!f->window->isWindowModified());
    QVERIFY(!f->host->action("undo")->isEnabled());
    QApplication::setPalette(standard);
}

void TestTextView::encodingIsPartOfTheFile()
{
    QVERIFY(open(motionPath));
    auto *encoding = f->find<QToolButton>("statusField2");
    QCOMPARE(encoding->text(), QStringLiteral("Encoding: UTF-8"));
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *dialog) {
        auto *list = dialog->findChild<QTreeWidget *>();
        list->setCurrentItem(list->topLevelItem(Vela::TextCodecs::index("UTF-16LE")));
        dialog->accept();
    });
    dialogs.answer(QMessageBox::No);
    QTest::mouseClick(encoding, Qt::LeftButton);
    QCOMPARE(encoding->text(), QStringLiteral("Encoding: UTF-16LE"));
    QVERIFY(f->window->isWindowModified());
    QVERIFY(f->window->commands().save());
    QVERIFY(onDisk(motionPath).contains(QByteArray("o\0n\0e\0", 6)));
}

void TestTextView::textIsSavedWhileItIsEdited()
{
    QVERIFY(open(motionPath));
    QTest::keyClicks(text, QStringLiteral("# "));
    f->trigger("save");
    // The save ends in an event of its own: until then the mark stays.
    QVERIFY(document()->isSaving());
    QVERIFY(f->window->isWindowModified());
    const SaveProgress &progress = f->window->commands().saveProgress();
    QVERIFY(progress.text().contains(QLatin1String("rowan.motion")));
    QTest::keyClick(text, Qt::Key_X);
    QTRY_VERIFY(!document()->isSaving());
    QCOMPARE(progress.text(), QString());
    QCOMPARE(onDisk(motionPath), QByteArray("# " + words));
    QVERIFY(f->window->isWindowModified());
    QVERIFY(document()->isModified());

    f->trigger("save");
    QTRY_VERIFY(!f->window->isWindowModified());
    QCOMPARE(onDisk(motionPath), QByteArray("# x" + words));
    QCOMPARE(f->window->currentPath(), motionPath);
}

void TestTextView::closingWaitsForTheSave()
{
    QVERIFY(open(motionPath));
    QTest::keyClicks(text, QStringLiteral("# "));
    f->trigger("save");
    QVERIFY(document()->isSaving());
    QVERIFY(f->window->commands().close());
    QCOMPARE(onDisk(motionPath), QByteArray("# " + words));
}

void TestTextView::failedSaveInTheBackgroundIsNamed()
{
    QVERIFY(open(motionPath));
    QTest::keyClicks(text, QStringLiteral("# "));
    DialogAnswerer dialogs;
    QString told;
    dialogs.handle([&told](QDialog *dialog) {
        told = qobject_cast<QMessageBox *>(dialog)->informativeText();
        dialog->accept();
    });
    {
        const FullDisk full(16);
        f->trigger("save");
        QTRY_VERIFY(dialogs.isDone());
    }
    QVERIFY2(told.startsWith(motionPath), qPrintable(told));
    QVERIFY2(told.contains(f->inMeadow("rowan/rowan.motion")), qPrintable(told));
    QCOMPARE(told.count(QLatin1Char('\n')), 0);
    QCOMPARE(onDisk(motionPath), words);
    QVERIFY(f->window->isWindowModified());
}

void TestTextView::unreadableTextIsNotEdited()
{
    QVERIFY(f->window->openProject(f->meadow()));
    // Nobody has read it yet.
    QVERIFY(QFile::remove(f->inMeadow("rowan/rowan.motion")));
    f->window->setCurrentFile(motionPath);
    QVERIFY(f->find<QLabel>("noPreview")->isVisible());
    QVERIFY(!f->window->view().textEdit());
    QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/rowan.motion"), words));
    f->trigger("reload");
    QTRY_VERIFY(f->window->view().textEdit());
    QCOMPARE(text->toPlainText(), wordText);
    QVERIFY(!text->isReadOnly());
}

void TestTextView::typeTerm(const char *shortcut, const QString &typed)
{
    QTest::keySequence(f->window.get(), QKeySequence(QLatin1String(shortcut)));
    auto *edit = f->find<QLineEdit>("findText");
    QVERIFY(edit->hasFocus());
    edit->selectAll();
    QTest::keyClicks(edit, typed);
}

void TestTextView::clickOption(const char *name, bool wanted)
{
    auto *button = f->find<QToolButton>(name);
    if (button->isChecked() != wanted)
        QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(button->isChecked(), wanted);
}

void TestTextView::wordsAreFound_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QPoint>("from"); // column and line
    QTest::addColumn<bool>("backward");
    QTest::addColumn<QPoint>("found"); // (-1, -1) for nothing
    QTest::addColumn<QString>("match");
    QTest::addColumn<QString>("note");
    const QString wrap = QStringLiteral("findWrap");
    const QString edge = QStringLiteral("findEdge");
    const QString expression = QStringLiteral("findExpression");
    const QStringList none;
    const QPoint start(0, 0);
    const QPoint end(5, 2);
    const QPoint nowhere(-1, -1);
    const QString around = QStringLiteral("other end");
    const auto row = [](const char *name) -> QTestData & { return QTest::newRow(name); };
    row("next") << "one" << none << start << false << QPoint(2, 0) << "one"
                << "";
    row("with case") << "One" << QStringList(QStringLiteral("findCase")) << start << false
                     << QPoint(10, 0) << "One"
                     << "";
    row("whole word") << "two" << QStringList(QStringLiteral("findWords")) << QPoint(7, 0) << false
                      << QPoint(11, 1) << "two"
                      << "";
    row("brackets") << "(two)" << none << start << false << QPoint(10, 1) << "(two)"
                    << "";
    row("expression") << "t.o\\w+" << QStringList(expression) << start << false << QPoint(2, 1)
                      << "twofold"
                      << "";
    row("end of a line") << "\\w+$" << QStringList(expression) << start << false << QPoint(10, 0)
                         << "One"
                         << "";
    row("before") << "one" << none << QPoint(0, 1) << true << QPoint(10, 0) << "One"
                  << "";
    row("round the end") << "one" << QStringList(wrap) << end << false << QPoint(2, 0) << "one"
                         << around;
    row("round the start") << "one" << QStringList(wrap) << start << true << QPoint(2, 2) << "one"
                           << around;
    row("not round the end") << "one" << none << end << false << nowhere << ""
                             << "Not found";
    row("from the start") << "one" << QStringList(edge) << end << false << QPoint(2, 0) << "one"
                          << "";
    row("from the end") << "one" << QStringList(edge) << start << true << QPoint(2, 2) << "one"
                        << "";
    row("nothing") << "three" << QStringList(wrap) << start << false << nowhere << ""
                   << "Not found";
    row("wrong expression") << "(one" << QStringList(expression) << start << false << nowhere << ""
                            << "not valid";
}

void TestTextView::wordsAreFound()
{
    QFETCH(QString, typed);
    QFETCH(QStringList, options);
    QFETCH(QPoint, from);
    QFETCH(bool, backward);
    QFETCH(QPoint, found);
    QFETCH(QString, match);
    QFETCH(QString, note);
    QVERIFY(open(motionPath));
    goToPlace(*text, from.y(), from.x());
    typeTerm("Ctrl+F", typed);
    for (const char *name : {"findCase", "findWords", "findExpression", "findWrap", "findEdge"})
        clickOption(name, options.contains(QLatin1String(name)));
    QTest::keyClick(f->find<QLineEdit>("findText"), Qt::Key_Return,
                    backward ? Qt::ShiftModifier : Qt::NoModifier);

    const QTextCursor cursor = text->textCursor();
    const QTextBlock line = text->document()->findBlock(cursor.selectionStart());
    QCOMPARE(cursor.selectedText(), match);
    QCOMPARE(QPoint(cursor.selectionStart() - line.position(), line.blockNumber()),
             found.x() < 0 ? from : found);
    const auto *told = f->find<QLabel>("findNote");
    QCOMPARE(told->isVisible(), !note.isEmpty());
    QVERIFY2(told->text().contains(note), qPrintable(told->text()));
    QVERIFY(!f->find<QToolButton>("findEdge")->isChecked());

    QTest::keyClick(f->find<QLineEdit>("findText"), Qt::Key_Escape);
    QVERIFY(f->find<QWidget>("findBar")->isHidden());
    QVERIFY(text->hasFocus());
}

void TestTextView::emptyMatchesArePassed()
{
    QVERIFY(open(motionPath));
    goToPlace(*text, 0, 1);
    typeTerm("Ctrl+F", QStringLiteral("^"));
    clickOption("findExpression");
    QVector<int> lines;
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(f->window.get(), Qt::Key_F3);
        lines.append(text->textCursor().blockNumber());
        QCOMPARE(text->textCursor().positionInBlock(), 0);
    }
    QCOMPARE(lines, (QVector<int>{1, 2, 0, 1}));
}

void TestTextView::matchesAreReplaced()
{
    QVERIFY(open(motionPath));
    typeTerm("Ctrl+H", QStringLiteral("(t)(w)o"));
    clickOption("findExpression");
    auto *replacement = f->find<QLineEdit>("replaceText");
    replacement->setFocus();
    QTest::keyClicks(replacement, QStringLiteral("%2%1!"));
    // The first Enter only finds: nothing that is not seen is replaced.
    QTest::keyClick(replacement, Qt::Key_Return);
    QCOMPARE(text->toPlainText(), wordText);
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("two"));
    QTest::keyClick(replacement, Qt::Key_Return);
    QCOMPARE(text->toPlainText(), QStringLiteral("# one wt! One\n# twofold (two)\n# one\n"));
    QCOMPARE(text->textCursor().selectedText(), QStringLiteral("two"));
    QCOMPARE(text->textCursor().blockNumber(), 1);

    QTest::mouseClick(f->find<QToolButton>("replaceAll"), Qt::LeftButton);
    QCOMPARE(text->toPlainText(), QStringLiteral("# one wt! One\n# wt!fold (wt!)\n# one\n"));
    QCOMPARE(f->find<QLabel>("findNote")->text(), QStringLiteral("Replaced: 2"));
    f->trigger("undo");
    QCOMPARE(text->toPlainText(), QStringLiteral("# one wt! One\n# twofold (two)\n# one\n"));
    f->trigger("undo");
    QCOMPARE(text->toPlainText(), wordText);
}

void TestTextView::previewIsReadOnly()
{
    QVERIFY(open(motionPath));
    typeTerm("Ctrl+F", QStringLiteral("two"));
    QVERIFY(f->clickFile(notePath));
    const QPlainTextEdit *preview = f->window->view().textEdit();
    QCOMPARE(preview->toPlainText(), wordText);
    QVERIFY(preview->isReadOnly());
    QVERIFY(!f->host->action("find")->isEnabled() && !f->host->action("replace")->isEnabled());
    QVERIFY(f->find<QWidget>("findBar")->isHidden());
}

void TestTextView::findBarFitsANarrowDarkWindow()
{
    QVERIFY(open(motionPath));
    typeTerm("Ctrl+H", QStringLiteral("no such words"));
    QTest::keyClick(f->find<QLineEdit>("findText"), Qt::Key_Return);
    const auto *note = f->find<QLabel>("findNote");
    QVERIFY(note->isVisible());
    const int width = f->find<QWidget>("findBar")->minimumSizeHint().width();
    QVERIFY2(width < 45 * note->fontMetrics().averageCharWidth() + 120,
             qPrintable(QString::number(width)));

    const QPalette standard = QApplication::palette();
    QApplication::setPalette(QPalette(Qt::black));
    QTRY_COMPARE(note->palette().color(QPalette::WindowText),
                 f->host->colors().color(QStringLiteral("error")));
    QApplication::setPalette(standard);
}

QTEST_MAIN(TestTextView)
#include "tst_textview.moc"

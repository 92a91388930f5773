// SPDX-License-Identifier: MIT
// The side area, folding and the highlights of a CodeEditor, on a widget that is shown.
#include "editor/codeeditor.h"

#include "code/codemark.h"
#include "support/memoryarchive.h"
#include "support/testgrammar.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QtTest>
#include <functional>
#include <tuple>

using namespace Vela;

namespace {

// The levels of folding are 0 1 1 1 2 2 0 1 1.
const QString code = QStringLiteral("[a]\n"
                                    "x = int 1\n"
                                    "y = int 2\n"
                                    "[[n]]\n"
                                    "z = int 3\n"
                                    "w = int 4\n"
                                    "[b]\n"
                                    "v = int 5\n"
                                    "u = int 6");

const QColor base(200, 100, 50);

QString linesOfText(int count)
{
    return QStringList(QVector<QString>(count, QStringLiteral("; words")).toList())
        .join(QLatin1Char('\n'));
}

/// An editor on the screen with a document.
struct View
{
    explicit View(const QString &text = code)
        : document(std::make_unique<TestDocument>(text))
    {
        CodeEditor::SyntaxFormatting formatting;
        formatting.highlightLine = false;
        formatting.blockColor = base;
        editor.setSyntaxFormatting(formatting);
        editor.setLineWrapMode(QPlainTextEdit::NoWrap);
        editor.setDocument(document.get());
        editor.resize(400, 300);
        editor.show();
        editor.setFocus();
        if (!QTest::qWaitForWindowActive(&editor))
            QWARN("The editor has not come to the screen.");
    }

    ~View()
    {
        editor.setDocument(nullptr);
    }

    QWidget *area() const
    {
        for (QObject *const child : editor.children()) {
            if (child->inherits("Vela::CodeEditorExtraArea"))
                return static_cast<QWidget *>(child);
        }
        return nullptr;
    }

    QTextBlock line(int number) const
    {
        return document->findBlockByNumber(number);
    }

    void toggle(int number)
    {
        editor.toggleBlockVisible(line(number));
    }

    QTextCursor cursorAt(int number, int column) const
    {
        QTextCursor cursor(line(number));
        cursor.setPosition(cursor.position() + column);
        return cursor;
    }
    void setPosition(int number, int column)
    {
        editor.setTextCursor(cursorAt(number, column));
    }

    /// Returns the numbers of the lines that are not hidden, of one digit each.
    QString shown() const
    {
        QString numbers;
        for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
            if (block.isVisible())
                numbers += QString::number(block.blockNumber());
        }
        return numbers;
    }

    int spacing() const
    {
        return editor.fontMetrics().lineSpacing();
    }

    int rowHeight() const
    {
        return qRound(editor.document()
                          ->documentLayout()
                          ->blockBoundingRect(editor.document()->begin())
                          .height());
    }

    /// Returns the middle of the height of a row of the view, in viewport and side area.
    int rowY(int row) const
    {
        return int(editor.document()->documentMargin()) + row * rowHeight() + rowHeight() / 2;
    }

    enum Column { Marks, Numbers, Bars, Folding };

    /// Returns a place in a column of the side area, from the widths that it is made of.
    QPoint place(Column column, int row) const
    {
        const int numbers = 2 * editor.fontMetrics().horizontalAdvance(QLatin1Char('9'));
        const int x[] = {spacing() / 2, spacing() + numbers / 2, spacing() + numbers + 2,
                         spacing() + numbers + 5 + spacing() / 2};
        const int left = x[column];
        return QPoint(editor.isRightToLeft() ? area()->width() - 1 - left : left, rowY(row));
    }

    // Through the window, so that the buttons held are known while the mouse moves.
    void press(const QPoint &position)
    {
        m_dragged = area()->mapTo(&editor, position);
        QTest::mousePress(editor.windowHandle(), Qt::LeftButton, {}, m_dragged);
    }
    void dragTo(const QPoint &position)
    {
        m_dragged = area()->mapTo(&editor, position);
        QTest::mouseMove(editor.windowHandle(), m_dragged);
    }
    void release()
    {
        QTest::mouseRelease(editor.windowHandle(), Qt::LeftButton, {}, m_dragged);
    }

    void click(Column column, int row)
    {
        QTest::mouseClick(area(), Qt::LeftButton, Qt::NoModifier, place(column, row));
    }

    QColor colorAt(Column column, int row) const
    {
        const QImage image = area()->grab().toImage();
        return image.pixelColor(place(column, row) * image.devicePixelRatio());
    }

    std::unique_ptr<TestDocument> document;
    CodeEditor editor;

private:
    QPoint m_dragged;
};

/// Puts each nested group into the one above it.
class NestingParser : public TestParser
{
public:
    CodeNode *parseLine(const QString &line, const QTextBlock &block, CodeNode *oldNode,
                        CodeNode *previous, RootCode *root, CodeParserSyntax *syntax) override
    {
        CodeNode *const node = TestParser::parseLine(line, block, oldNode, previous, root, syntax);
        if (line.startsWith(QLatin1String("[["))) {
            auto *const above = static_cast<TestGroup *>(node->previous(CodeNode::Group, 0));
            if (above->isNested())
                above->insertChild(node, 0);
        }
        return node;
    }
};

/// Records what it is asked to paint.
class Mark : public CodeMark
{
public:
    void setLine(int) override
    {
    }
    void setBlock(const QTextBlock &) override
    {
    }
    void lineRemoved() override
    {
    }
    void paint(QPainter &painter, const QRect &rect) const override
    {
        painter.fillRect(rect, Qt::green);
        painted = rect;
    }

    mutable QRect painted;
};

} // namespace

Q_DECLARE_METATYPE(std::function<void(View &)>)

class TestCodeEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areaIsAsWideAsItsColumns();
    void togglesHideLines();
    void foldingSurvivesEdits_data();
    void foldingSurvivesEdits();
    void keysPassHiddenLines();
    void pagesPassHiddenLines();
    void boxesTellWhatIsFolded();
    void numbersSelectLines();
    void draggingBeyondScrolls();
    void marksAreShownAndAskedFor();
    void barsTellWhatChanged();
    void bandsFollowTheCursor_data();
    void bandsFollowTheCursor();
    void lineIsBroughtToItsPlace();
    void placeComesBack();
    void groupsOfSelectionsStandSideBySide();
    void documentMayGoWhileItIsShown();
    void areaStandsOnTheRight();
};

void TestCodeEditor::areaIsAsWideAsItsColumns()
{
    using Case = std::tuple<int, int, bool, bool>;
    for (const auto &[lines, digits, marks, folding] :
         {Case(1, 2, true, true), Case(99, 2, true, true), Case(100, 3, true, true),
          Case(10000, 5, false, true), Case(9, 2, true, false), Case(100, 0, true, true)}) {
        View view(linesOfText(lines));
        CodeEditor::SyntaxFormatting formatting = view.editor.syntaxFormatting();
        formatting.marks = marks;
        formatting.foldingMarkers = folding;
        formatting.lineNumbers = digits > 0;
        view.editor.setSyntaxFormatting(formatting);

        const int digit = view.editor.fontMetrics().horizontalAdvance(QLatin1Char('9'));
        const int spacing = view.spacing();
        const int box = spacing % 2 == 0 ? spacing + 1 : spacing + 2;
        const int width = digits * digit + 4 + (marks ? spacing : 0) + 1 + (folding ? box : 0);
        QCOMPARE(view.area()->width(), width);
        QCOMPARE(view.area()->geometry().right() + 1, view.editor.viewport()->geometry().left());
        QCOMPARE(view.area()->height(), view.editor.viewport()->height());
        if (lines == 99) {
            QTest::keyClick(&view.editor, Qt::Key_Return);
            QCOMPARE(view.area()->width(), width + digit);
        }
    }
}

void TestCodeEditor::togglesHideLines()
{
    // Digits click the box of a line, "F" folds all and "U" unfolds all.
    using Case = std::pair<QByteArray, QByteArray>; // steps, lines shown
    for (const auto &[steps, shown] :
         {Case("3", "0123678"), Case("0", "0678"),
          // A nested block stays folded.
          Case("300", "0123678"), Case("3003", "012345678"),
          // The last line stays in sight.
          Case("6", "01234568"), Case("66", "012345678"), Case("1", "012345678"),
          Case("0FF", "068"), Case("FU", "012345678"), Case("3FU", "0123678")}) {
        View view;
        for (const char step : steps) {
            if (step == 'F')
                view.editor.foldAll();
            else if (step == 'U')
                view.editor.unfoldAll();
            else
                view.click(View::Folding, view.shown().indexOf(QLatin1Char(step)));
        }
        QVERIFY2(view.shown() == QLatin1String(shown), steps.constData());
        QCOMPARE(view.document->lineCount(), shown.size());
        // The rows of the view are those lines.
        for (int row = 0; row < shown.size(); ++row) {
            const QTextCursor cursor = view.editor.cursorForPosition(QPoint(9, view.rowY(row)));
            QCOMPARE(cursor.blockNumber(), shown.at(row) - '0');
        }
    }
}

void TestCodeEditor::foldingSurvivesEdits_data()
{
    using Step = std::function<void(View &)>;
    QTest::addColumn<QString>("fold");
    QTest::addColumn<Step>("edit");
    QTest::addColumn<QString>("shown");
    const auto press = [](int number, Qt::Key key) {
        return Step([=](View &view) {
            view.setPosition(number, view.line(number).length() - 1);
            QTest::keyClick(&view.editor, key);
        });
    };
    const auto goTo = [](unsigned int line) {
        return Step([=](View &view) { view.editor.setCurrentLine(line); });
    };
    const auto insert = [](int number, int column, const char *text) {
        return Step([=](View &view) {
            view.cursorAt(number, column).insertText(QString::fromLatin1(text));
        });
    };
    const auto row = [](const char *name, const char *fold, const Step &edit, const char *shown) {
        QTest::newRow(name) << QString::fromLatin1(fold) << edit << QString::fromLatin1(shown);
    };
    row("header becomes a comment", "0", insert(0, 0, ";"), "012345678");
    row("header is renamed", "30", insert(0, 1, "new"), "0678");
    row("header is broken off", "30", press(0, Qt::Key_Backspace), "0123678");
    row("line inserted among the hidden", "0", insert(2, 9, "\nq = int 9"), "0789");
    row("hidden line becomes a header", "0", insert(2, 0, "[c];"), "02345678");
    row("line begun behind the header", "0", press(0, Qt::Key_Return), "0123456789");
    row("line begun behind the last", "6", press(8, Qt::Key_Return), "0123456789");
    row("hidden line joined to the header", "0", press(0, Qt::Key_Delete), "01234567");
    row("go to a line hidden twice", "306", goTo(4), "01234568");
    row("go to a line beside a nested block", "30", goTo(1), "0123678");
    const auto removeHeader = [](View &view) {
        QTextCursor cursor(view.line(0));
        cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    };
    row("header goes", "0", removeHeader, "01234567");
    const auto replaceText = [](View &view) {
        view.document->setPlainText(QStringLiteral("[a]\nx = int 1\n[b]\nv = int 1\nu = int 2"));
    };
    row("text replaced", "06", replaceText, "01234");
    const auto undoHidden = [](View &view) {
        view.setPosition(4, 0);
        QTest::keyClick(&view.editor, Qt::Key_O);
        view.setPosition(0, 0);
        view.toggle(0);
        QCOMPARE(view.shown(), QStringLiteral("0678"));
        QTest::keyClick(&view.editor, Qt::Key_Z, Qt::ControlModifier);
    };
    row("undo in a hidden line", "", undoHidden, "012345678");
    const auto undoRemoved = [](View &view) {
        view.editor.setTextCursor(view.cursorAt(0, 2));
        QTest::keyClick(&view.editor, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(&view.editor, Qt::Key_Delete);
        QCOMPARE(view.document->blockCount(), 3);
        QTest::keyClick(&view.editor, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(view.document->toPlainText(), code);
    };
    row("folded lines removed and back", "0", undoRemoved, "0678");
    const auto foldCursor = [](View &view) {
        view.setPosition(4, 2);
        view.toggle(0);
        QCOMPARE(view.editor.textCursor().position(), 3);
    };
    row("cursor inside", "", foldCursor, "0678");
    const auto drop = [](View &view) {
        QMimeData text;
        text.setText(QStringLiteral("!\nq = int 9"));
        const QPoint place = view.editor.cursorRect(view.cursorAt(0, 3)).center();
        QDragEnterEvent enter(place, Qt::CopyAction, &text, Qt::LeftButton, {});
        QApplication::sendEvent(view.editor.viewport(), &enter);
        QDropEvent dropped(place, Qt::CopyAction, &text, Qt::LeftButton, {});
        QApplication::sendEvent(view.editor.viewport(), &dropped);
        QCOMPARE(view.line(1).text(), QStringLiteral("q = int 9"));
    };
    row("dropped behind the header", "0", drop, "0123456789");
    const auto copyAll = [](View &view) {
        view.editor.selectAll();
        view.editor.copy();
        QCOMPARE(QApplication::clipboard()->text(), code);
    };
    row("all copied", "0", copyAll, "0678");
}

void TestCodeEditor::foldingSurvivesEdits()
{
    QFETCH(QString, fold);
    QFETCH(std::function<void(View &)>, edit);
    QFETCH(QString, shown);
    View view;
    view.setPosition(6, 0);
    for (const QChar line : fold)
        view.toggle(QString(line).toInt());
    edit(view);
    QCOMPARE(view.shown(), shown);
    QCOMPARE(view.document->lineCount(), shown.size());
    QVERIFY(view.editor.textCursor().block().isVisible());
}

void TestCodeEditor::keysPassHiddenLines()
{
    View view;
    view.toggle(0);
    view.setPosition(0, 3);
    using Press = std::tuple<Qt::Key, int, int>;
    for (const auto &[key, line, column] :
         {Press(Qt::Key_Down, 6, 3), Press(Qt::Key_Up, 0, 3), Press(Qt::Key_Right, 6, 0),
          Press(Qt::Key_Left, 0, 3), Press(Qt::Key_Down, 6, 3), Press(Qt::Key_Down, 7, 3)}) {
        QTest::keyClick(&view.editor, key);
        QCOMPARE(view.editor.textCursor().blockNumber(), line);
        QCOMPARE(view.editor.textCursor().positionInBlock(), column);
        QCOMPARE(view.shown(), QStringLiteral("0678"));
    }
    // The mouse finds only what is in sight.
    QTest::mouseClick(view.editor.viewport(), Qt::LeftButton, {}, QPoint(6, view.rowY(1)));
    QCOMPARE(view.editor.textCursor().blockNumber(), 6);
}

void TestCodeEditor::pagesPassHiddenLines()
{
    QString text;
    for (int i = 0; i < 60; ++i)
        text += QStringLiteral("[a]\nx = int 1\ny = int 2\nz = int 3\n");
    View view(text);
    view.editor.foldAll();
    QCOMPARE(view.document->lineCount(), 61);
    const QScrollBar *const bar = view.editor.verticalScrollBar();
    for (const Qt::Key key : {Qt::Key_PageDown, Qt::Key_PageUp}) {
        for (int page = 0; page < 6; ++page) {
            const int before = bar->value();
            QTest::keyClick(&view.editor, key);
            QVERIFY(view.editor.viewport()->rect().contains(view.editor.cursorRect().center()));
            // No more lines than the view has room for, in parts.
            const int lines = qAbs(bar->value() - before);
            QVERIFY(lines <= view.editor.displayedLineCount() + 1);
            QVERIFY(lines > 5 || bar->value() == 0 || bar->value() == bar->maximum());
        }
    }
    QCOMPARE(view.document->lineCount(), 61);
    QCOMPARE(view.editor.textCursor().blockNumber(), 0);
}

void TestCodeEditor::boxesTellWhatIsFolded()
{
    View view;
    const auto box = [&view](int row) {
        QRect rect(0, 0, 9, 9);
        rect.moveCenter(view.place(View::Folding, row));
        return view.area()->grab(rect).toImage();
    };
    view.editor.setSyntaxFormatting(CodeEditor::SyntaxFormatting());
    const QImage none = box(1);
    const QImage open = box(0);
    QVERIFY(open != none);
    QCOMPARE(box(3), open);
    view.toggle(3);
    QVERIFY(box(3) != open && box(3) != none);
    QCOMPARE(box(0), open);
}

void TestCodeEditor::numbersSelectLines()
{
    View view;
    const auto selected = [&view] {
        return view.editor.textCursor().selectedText().replace(QChar::ParagraphSeparator,
                                                               QLatin1Char('|'));
    };
    view.click(View::Numbers, 1);
    QCOMPARE(selected(), QStringLiteral("x = int 1|"));
    view.click(View::Numbers, 8);
    QCOMPARE(selected(), QStringLiteral("u = int 6"));

    using Drag = std::pair<int, QString>;
    for (const auto &[to, text] : {Drag(3, QStringLiteral("x = int 1|y = int 2|[[n]]|")),
                                   Drag(0, QStringLiteral("[a]|x = int 1|"))}) {
        view.press(view.place(View::Numbers, 1));
        view.dragTo(view.place(View::Numbers, to));
        view.release();
        // Released, the mouse selects no more.
        view.dragTo(view.place(View::Numbers, 5));
        QCOMPARE(selected(), text);
    }

    view.toggle(0);
    view.click(View::Numbers, 0);
    QCOMPARE(selected(),
             code.section(QLatin1Char('\n'), 0, 5).replace(QLatin1Char('\n'), QLatin1Char('|'))
                 + QLatin1Char('|'));
    QCOMPARE(view.shown(), QStringLiteral("0678"));
}

void TestCodeEditor::draggingBeyondScrolls()
{
    View view(linesOfText(90));
    QScrollBar *const bar = view.editor.verticalScrollBar();
    const int x = view.place(View::Numbers, 2).x();
    view.press(view.place(View::Numbers, 2));
    view.dragTo(QPoint(x, view.area()->height() + 60));
    QTRY_COMPARE(bar->value(), bar->maximum());
    view.dragTo(QPoint(x, -60));
    QTRY_COMPARE(bar->value(), 0);
    // Upward from the end of the third line to the first.
    QCOMPARE(view.editor.textCursor().anchor(), 3 * 8);
    QCOMPARE(view.editor.textCursor().position(), 0);

    // The mouse is still down, but it selects nothing in another text.
    TestDocument other(linesOfText(90));
    view.dragTo(QPoint(x, view.area()->height() + 60));
    view.editor.setDocument(&other);
    QSignalSpy moved(&view.editor, &CodeEditor::cursorChanged);
    view.dragTo(view.place(View::Numbers, 4));
    QVERIFY(!moved.wait(50) && moved.isEmpty());
    view.release();
    view.editor.setDocument(nullptr);
}

void TestCodeEditor::marksAreShownAndAskedFor()
{
    View view;
    QSignalSpy asked(&view.editor, &CodeEditor::markRequested);
    view.click(View::Marks, 3);
    view.toggle(0);
    view.click(View::Marks, 1);
    view.click(View::Marks, 9); // below the text
    QCOMPARE(asked.count(), 2);
    QCOMPARE(asked.at(0).at(0).toInt(), 4);
    QCOMPARE(asked.at(1).at(0).toInt(), 7);

    Mark mark;
    QVERIFY(view.document->addMark(&mark, 7));
    QTRY_VERIFY(!mark.painted.isNull());
    QCOMPARE(mark.painted.size(), QSize(view.spacing(), view.spacing()));
    QVERIFY(mark.painted.contains(view.place(View::Marks, 1)));
    QCOMPARE(view.colorAt(View::Marks, 1), QColor(Qt::green));
    view.document->removeMark(&mark);

    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::blue);
    CodeEditor::setLineMarkIcon(QIcon(pixmap));
    view.setPosition(6, 1);
    view.editor.markCurrentLine(true);
    QCOMPARE(view.colorAt(View::Marks, 1), QColor(Qt::blue));
    view.setPosition(0, 0);
    QCOMPARE(view.colorAt(View::Marks, 1), QColor(Qt::blue));
    QVERIFY(view.colorAt(View::Marks, 0) != QColor(Qt::blue));
    view.editor.markCurrentLine(false);
    QVERIFY(view.colorAt(View::Marks, 1) != QColor(Qt::blue));
    CodeEditor::setLineMarkIcon(QIcon());
}

void TestCodeEditor::barsTellWhatChanged()
{
    MemoryArchive archive({{QStringLiteral("a"), code.toUtf8()}});
    View view{QString()};
    QVERIFY(view.document->fromFile(archive, QStringLiteral("a"), 0, nullptr));
    const QColor none = view.colorAt(View::Bars, 8);
    const auto bars = [&view] {
        return QVector<QColor>{view.colorAt(View::Bars, 0), view.colorAt(View::Bars, 1),
                               view.colorAt(View::Bars, 2)};
    };
    const QColor changed = Qt::red;
    const QColor saved = Qt::darkGreen;
    QVERIFY(none != changed && none != saved);
    QCOMPARE(bars(), (QVector<QColor>{none, none, none}));
    view.setPosition(1, 9);
    QTest::keyClick(&view.editor, Qt::Key_7);
    QCOMPARE(bars(), (QVector<QColor>{none, changed, none}));
    QVERIFY(view.document->toFile(archive, QStringLiteral("a"), 0, nullptr));
    view.document->waitForSave();
    QTRY_COMPARE(bars(), (QVector<QColor>{none, saved, none}));
    view.setPosition(2, 9);
    QTest::keyClick(&view.editor, Qt::Key_7);
    QCOMPARE(bars(), (QVector<QColor>{none, saved, changed}));
}

void TestCodeEditor::bandsFollowTheCursor_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("depths"); // of the lines, as places in the colours
    QTest::addColumn<QVector<QColor>>("colors");
    const auto row = [](const char *name, const QString &text, int line, const char *depths,
                        const QVector<QColor> &colors) {
        QTest::newRow(name) << text << line << QString::fromLatin1(depths) << colors;
    };
    const QColor outer(170, 70, 20);
    const QColor inner(185, 85, 35);
    row("header", code, 0, "111111000", {outer, base});
    row("nested header", code, 3, "111222000", {outer, inner, base});
    row("nested line", code, 5, "111222000", {outer, inner, base});
    row("to the end", code, 7, "000000111", {outer, base});
    row("limits", code, 4, "111222000",
        {QColor(225, 0, 0), QColor(240, 5, 0), QColor(255, 20, 10)});
    row("dark", code, 4, "111222000",
        {QColor(168, 60, 40), QColor(148, 40, 20), QColor(128, 20, 0)});

    const auto nested = [](const char *inside) {
        return QStringLiteral("[a]\n[[b]]\n[[c]]\n%1w = int 1\n[z]").arg(QLatin1String(inside));
    };
    row("three ranges", nested(""), 3, "12330", {outer, inner, inner, base});
    // The first of the two between is half of both.
    row("four ranges", nested("[[d]]\n"), 4, "123440",
        {outer, QColor(177, 77, 27), inner, inner, base});
    // 85, 170 and 255 parts of 256 of the inner colour.
    row("five ranges", nested("[[d]]\n[[e]]\n"), 5, "1234550",
        {outer, QColor(174, 74, 24), QColor(179, 79, 29), QColor(184, 84, 34), inner, base});
}

void TestCodeEditor::bandsFollowTheCursor()
{
    QFETCH(QString, text);
    QFETCH(int, line);
    QFETCH(QString, depths);
    QFETCH(QVector<QColor>, colors);
    NestingParser parser;
    View view{QString()};
    view.document->setParser(&parser);
    view.document->setPlainText(text);
    CodeEditor::SyntaxFormatting formatting = view.editor.syntaxFormatting();
    formatting.blockColor = colors.last();
    view.editor.setSyntaxFormatting(formatting);
    QStringList expected;
    for (const QChar depth : depths)
        expected.append(colors.at(depth.digitValue()).name());
    const auto seen = [&] {
        const QImage image = view.editor.viewport()->grab().toImage();
        QStringList names;
        for (int row = 0; row < depths.size(); ++row)
            names.append(image
                             .pixelColor(image.width() - 5,
                                         qRound(view.rowY(row) * image.devicePixelRatio()))
                             .name());
        return names;
    };
    view.setPosition(line, 0);
    QTRY_COMPARE(seen(), expected);

    formatting.highlightBlocks = false;
    view.editor.setSyntaxFormatting(formatting);
    const QString plain = view.editor.palette().color(QPalette::Base).name();
    QCOMPARE(seen().count(plain), depths.size());
}

void TestCodeEditor::lineIsBroughtToItsPlace()
{
    View view(linesOfText(999));
    const int shown = view.editor.displayedLineCount();
    QCOMPARE(shown, view.editor.viewport()->height() / view.editor.fontMetrics().height());
    using Case = std::tuple<CodeEditor::LineType, int, int>;
    const auto top = CodeEditor::TopPlace;
    // The row in the view, -1 for any.
    for (const auto &[type, line, place] :
         {Case(CodeEditor::NearestPlace, 500, -1), Case(top, 500, 0),
          Case(CodeEditor::MiddlePlace, 500, shown / 2), Case(top, 3, -1),
          Case(top, 998, shown - 1), Case(top, 5000, shown - 1)}) {
        for (const unsigned int start : {0U, 998U}) {
            view.editor.setCurrentLine(start);
            QSignalSpy moved(&view.editor, &CodeEditor::currentLineChanged);
            view.editor.setCurrentLine(unsigned(line), type);
            QCOMPARE(view.editor.textCursor().blockNumber(), qMin(line, 998));
            QVERIFY(moved.count() <= 1);
            const int row = view.editor.cursorRect().top() / view.rowHeight();
            QVERIFY2(place < 0 || qAbs(row - place) <= 1, qPrintable(QString::number(row)));
            QVERIFY(view.editor.viewport()->rect().contains(view.editor.cursorRect()));
        }
    }
}

void TestCodeEditor::placeComesBack()
{
    View view(linesOfText(300));
    view.setPosition(200, 4);
    view.editor.verticalScrollBar()->setValue(150);
    const CodeEditor::LinePos place = view.editor.currentLine();
    TestDocument other(code);
    view.editor.setDocument(&other);
    view.editor.setDocument(view.document.get());
    QSignalSpy moved(&view.editor, &CodeEditor::cursorChanged);
    QSignalSpy lines(&view.editor, &CodeEditor::currentLineChanged);
    view.editor.setCurrentLine(place);
    QCOMPARE(moved.count(), 1);
    QCOMPARE(moved.at(0).at(0).toPoint(), QPoint(4, 200));
    QCOMPARE(lines.count(), 1);
    QCOMPARE(view.editor.verticalScrollBar()->value(), 150);
    QCOMPARE(view.editor.textCursor().positionInBlock(), 4);

    view.editor.setCurrentLine({9999, 9999, 9999});
    QCOMPARE(view.editor.textCursor().position(), view.document->characterCount() - 1);
}

void TestCodeEditor::groupsOfSelectionsStandSideBySide()
{
    View view;
    CodeEditor::SyntaxFormatting formatting = view.editor.syntaxFormatting();
    formatting.highlightLine = true;
    view.editor.setSyntaxFormatting(formatting);
    QTextEdit::ExtraSelection match;
    match.cursor = QTextCursor(view.line(1));
    match.cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    match.format.setBackground(Qt::yellow);
    view.editor.setSearchSelections({match});
    view.setPosition(2, 0);
    QCOMPARE(view.editor.extraSelections().size(), 2);
    const QTextEdit::ExtraSelection line = view.editor.extraSelections().at(0);
    QCOMPARE(line.cursor.blockNumber(), 2);
    QCOMPARE(line.format.background().color(), formatting.lineColor);
    QCOMPARE(view.editor.extraSelections().at(1).cursor.blockNumber(), 1);
    // The highlight is as wide as the view.
    const QImage image = view.editor.viewport()->grab().toImage();
    QCOMPARE(image.pixelColor(image.width() - 5, qRound(view.rowY(2) * image.devicePixelRatio())),
             formatting.lineColor);

    view.editor.setSearchSelections({});
    formatting.highlightLine = false;
    view.editor.setSyntaxFormatting(formatting);
    QVERIFY(view.editor.extraSelections().isEmpty());
}

void TestCodeEditor::documentMayGoWhileItIsShown()
{
    View view(code + linesOfText(200));
    view.editor.setSyntaxFormatting(CodeEditor::SyntaxFormatting());
    view.setPosition(4, 0);
    view.toggle(0);
    view.editor.updateBlockHighlight();
    view.press(view.place(View::Numbers, 1));
    view.dragTo(QPoint(view.place(View::Numbers, 1).x(), view.area()->height() + 60));
    QVERIFY(!view.editor.extraSelections().isEmpty());
    view.document.reset();
    QVERIFY(!view.editor.codeDocument());
    QVERIFY(view.editor.toPlainText().isEmpty());
    QVERIFY(view.editor.extraSelections().isEmpty());
    view.editor.grab();

    // Without a document all does nothing, and the view still stands.
    view.editor.setCurrentLine(3, CodeEditor::TopPlace);
    view.editor.setCurrentLine({1, 2, 3});
    view.editor.markCurrentLine(true);
    view.editor.foldAll();
    view.editor.unfoldAll();
    view.editor.toggleBlockVisible(view.editor.document()->firstBlock());
    view.editor.updateBlockHighlight();
    view.dragTo(view.place(View::Numbers, 2));
    view.release();
    view.click(View::Folding, 0);
    view.editor.grab();
}

void TestCodeEditor::areaStandsOnTheRight()
{
    View view;
    view.editor.setLayoutDirection(Qt::RightToLeft);
    QTRY_COMPARE(view.area()->geometry().left(), view.editor.viewport()->geometry().right() + 1);
    view.click(View::Folding, 0);
    QCOMPARE(view.shown(), QStringLiteral("0678"));
    QSignalSpy asked(&view.editor, &CodeEditor::markRequested);
    view.click(View::Marks, 0);
    QCOMPARE(asked.count(), 1);
}

QTEST_MAIN(TestCodeEditor)
#include "tst_codeeditor.moc"

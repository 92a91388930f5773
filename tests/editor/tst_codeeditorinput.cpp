// SPDX-License-Identifier: MIT
// What keys and the mouse do in a CodeEditor, on a widget that is shown.
#include "code/codeblockdata.h"
#include "editor/codeeditor.h"
#include "support/testgrammar.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QScrollBar>
#include <QStringListModel>
#include <QTextDocumentFragment>
#include <QToolTip>
#include <QtTest>
#include <functional>
#include <tuple>

using namespace Vela;

namespace {

/// The tiny grammar with parentheses of two kinds in all lines that are neither values nor headers.
class BracketParser : public TestParser
{
public:
    CodeNode *parseLine(const QString &line, const QTextBlock &block, CodeNode *oldNode,
                        CodeNode *previous, RootCode *root, CodeParserSyntax *syntax) override
    {
        const bool isOurs = !line.contains(QLatin1Char('=')) && !line.startsWith(QLatin1Char('['));
        for (int i = 0; isOurs && syntax && i < line.size(); ++i) {
            const int kind = QStringLiteral("([)]").indexOf(line.at(i));
            if (kind >= 0)
                syntax->addParenthesis(kind < 2, line.at(i), i);
        }
        return TestParser::parseLine(line, block, oldNode, previous, root, syntax);
    }
};

/// Completes as it is told, and records what it is asked.
class Document : public TestDocument
{
public:
    Document()
        : TestDocument(QString(), false)
    {
        setSyntaxHighlight(true);
        setParser(&m_parser);
    }

    ~Document() override
    {
        setParser(nullptr);
    }

    bool autoComplete(QTextCursor &, QCompleter *completer, int key, QString &prefix) override
    {
        keys.append(key);
        prefixes.append(prefix);
        if (words.isEmpty())
            return false;
        qobject_cast<QStringListModel *>(completer->model())->setStringList(words);
        return true;
    }

    bool insertCompletion(CodeEditor *, QTextCursor cursor, const QString &text) override
    {
        if (inserted.isEmpty())
            return false;
        cursor.insertText(inserted.arg(text));
        return true;
    }

    void autoCompleteDone() override
    {
        ++done;
    }

    QStringList words; ///< for the completer; none leave the matter to the editor
    QString inserted;  ///< what is inserted for a word, "%1"; empty leaves it to the editor
    QList<int> keys;
    QStringList prefixes;
    int done = 0;

private:
    BracketParser m_parser;
};

/// An editor on the screen with a document.
class View
{
public:
    explicit View(const QString &text = QString(), int position = 0)
    {
        CodeEditor::SyntaxFormatting formatting;
        formatting.highlightLine = false;
        formatting.highlightBlocks = false;
        formatting.linkFormat.setForeground(Qt::blue);
        editor.setSyntaxFormatting(formatting);
        editor.setLineWrapMode(QPlainTextEdit::NoWrap);
        document.setPlainText(text);
        editor.setDocument(&document);
        editor.resize(600, 400);
        editor.show();
        editor.setFocus();
        if (!QTest::qWaitForWindowActive(&editor))
            QWARN("The editor has not come to the screen.");
        setPosition(position);
        QTest::mouseMove(editor.viewport(), editor.viewport()->rect().bottomRight());
    }

    ~View()
    {
        holdControl(false);
        QToolTip::hideText();
        editor.setDocument(nullptr);
    }

    void setPosition(int position, int anchor = -1)
    {
        QTextCursor cursor = editor.textCursor();
        cursor.setPosition(anchor < 0 ? position : anchor);
        cursor.setPosition(position, QTextCursor::KeepAnchor);
        editor.setTextCursor(cursor);
    }

    QString text() const
    {
        return document.toPlainText();
    }

    // As from the keyboard: an open list gets the keys first.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(receiver(), Qt::Key(key), modifiers);
    }

    /// Types characters; backspace, tab, line break and escape are keys.
    void type(const char *typed)
    {
        for (; *typed; ++typed) {
            const int key = int(QByteArray("\b\t\n\x1b").indexOf(*typed));
            const int keys[] = {Qt::Key_Backspace, Qt::Key_Tab, Qt::Key_Return, Qt::Key_Escape};
            if (key >= 0)
                press(keys[key]);
            else
                QTest::keyClick(receiver(), *typed);
        }
    }

    // To the window, so that the application knows of it too.
    void holdControl(bool isHeld)
    {
        if (isHeld == m_isControlHeld)
            return;
        m_isControlHeld = isHeld;
        if (isHeld)
            QTest::keyPress(editor.windowHandle(), Qt::Key_Control, Qt::ControlModifier);
        else
            QTest::keyRelease(editor.windowHandle(), Qt::Key_Control);
    }

    /// Returns a point on the character behind a position of the text, in the viewport.
    QPoint pointAt(int position) const
    {
        QTextCursor cursor(editor.document());
        cursor.setPosition(position);
        const QRect place = editor.cursorRect(cursor);
        return {place.left() + editor.cursorWidth() + 1, place.center().y()};
    }

    void moveTo(int position)
    {
        QTest::mouseMove(editor.viewport(), pointAt(position));
    }

    Qt::CursorShape mouseCursor() const
    {
        return editor.viewport()->cursor().shape();
    }

    QAbstractItemView *list() const
    {
        return completer()->popup();
    }

    /// Returns the words of the open list with a blank between them; empty for none.
    QString shownWords() const
    {
        const auto *const model = qobject_cast<QStringListModel *>(completer()->model());
        return list()->isVisible() ? model->stringList().join(QLatin1Char(' ')) : QString();
    }

    /// Returns "start-end" of all extra selections in a colour, with a blank between them.
    QString spans(const QColor &color) const
    {
        QStringList spans;
        for (const QTextEdit::ExtraSelection &selection : editor.extraSelections()) {
            const QTextCursor &cursor = selection.cursor;
            const QTextCharFormat &format = selection.format;
            if (format.background().color() == color || format.foreground().color() == color)
                spans.append(QStringLiteral("%1-%2")
                                 .arg(cursor.selectionStart())
                                 .arg(cursor.selectionEnd()));
        }
        return spans.join(QLatin1Char(' '));
    }

    QString ranges() const
    {
        return spans(QColor(Qt::magenta).lighter(190));
    }

    QString toolTipAt(int position)
    {
        const QPoint point = pointAt(position);
        QHelpEvent help(QEvent::ToolTip, point, editor.viewport()->mapToGlobal(point));
        QApplication::sendEvent(editor.viewport(), &help);
        const QString text = help.isAccepted() ? QToolTip::text() : QString();
        return Qt::mightBeRichText(text) ? QTextDocumentFragment::fromHtml(text).toPlainText()
                                         : text;
    }

    Document document;
    CodeEditor editor;

private:
    QCompleter *completer() const
    {
        return editor.findChild<QCompleter *>(QString(), Qt::FindDirectChildrenOnly);
    }

    QWidget *receiver()
    {
        QWidget *const popup = QApplication::activePopupWidget();
        return popup ? popup : &editor;
    }

    bool m_isControlHeld = false;
};

QString latin(const char *text)
{
    return QString::fromLatin1(text);
}

QStringList words(const char *list)
{
    return latin(list).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace

class TestCodeEditorInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fileWordsOpenAndClose();
    void keysOnTheOpenList();
    void listTakesClicks();
    void listTakesWhatAnInputMethodTypes();
    void wordFilesAddUp_data();
    void wordFilesAddUp();
    void documentCompletesFirst();
    void documentIsAskedForKeysThatType();
    void documentsWordReplacesTheWholeWord();
    void nothingCompletesWithoutWriting();
    void insertSwitchesOverwriteMode();
    void enterKeepsTheIndent();
    void parenthesesMatch();
    void parenthesesMatchOnlyWhereTheyShould();
    void linkUnderTheMouse();
    void linkIsReleasedOn();
    void toolTips();
    void contextMenuMovesTheCursor();
    void foldedLinesShowUnderTheMouse();

private:
    QString wordFile(const char *content);

    QTemporaryDir m_folder;
};

QString TestCodeEditorInput::wordFile(const char *content)
{
    const QString name = m_folder.filePath(QStringLiteral("completer.xml"));
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) < 0)
        return QString();
    return name;
}

void TestCodeEditorInput::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QApplication::setCursorFlashTime(0);
}

static const char *const Words = "<completer><model prefix='speed='>"
                                 "<word value='int'/><word value='Float'/><word value='file'/>"
                                 "</model><any><model prefix='go'><sub><word value='gone'/></sub>"
                                 "</model></any></completer>";

void TestCodeEditorInput::fileWordsOpenAndClose()
{
    const char *const speed = "file Float int";
    using Case = std::tuple<const char *, const char *, const char *>; // typed, shown, current
    for (const auto &[typed, shown, current] :
         {Case("speed = ", speed, "file"), Case("speed= ", speed, "file"),
          Case("-speed= ", speed, "file"), Case("speed = FL", speed, "Float"),
          Case("speed = x", speed, ""), Case("go", "gone", "gone"), Case("goi\b\b", "gone", "gone"),
          Case("go\b\b", "", ""), Case("speed =", "", ""), Case("speed = i,", "", ""),
          Case("speed = i_", "", ""), Case("speed = int ", "", ""), Case("xspeed = ", "", ""),
          Case("a.speed = ", "", ""), Case("ago", "", ""), Case("other = ", "", "")}) {
        View view;
        QVERIFY(view.editor.completerFromFile(wordFile(Words)));
        view.type(typed);
        QVERIFY2(view.shownWords() == latin(shown), typed);
        if (*shown)
            QCOMPARE(view.list()->currentIndex().data().toString(), latin(current));
    }
}

void TestCodeEditorInput::keysOnTheOpenList()
{
    using Case = std::tuple<const char *, int, const char *, const char *, int>;
    for (const auto &[typed, downs, key, text, done] :
         {Case("speed = i", 0, "\t", "speed = int", 1),
          Case("speed = i", 0, "\n", "speed = int", 1),
          Case("speed = FLOAT", 0, "\t", "speed = Float", 1),
          Case("speed = ", 0, "\t", "speed = file", 1),
          Case("speed = ", 2, "\t", "speed = Float", 1),
          // There is no way round from the last word to the first.
          Case("speed = i", 2, "\t", "speed = int", 1),
          Case("speed = i", 0, "\x1b", "speed = i", 1),
          Case("speed = x", 0, "\n", "speed = x\n", 0)}) {
        View view;
        QVERIFY(view.editor.completerFromFile(wordFile(Words)));
        view.type(typed);
        QVERIFY(view.list()->isVisible());
        for (int i = 0; i < downs; ++i)
            view.press(Qt::Key_Down);
        view.type(key);
        QCOMPARE(view.text(), latin(text));
        QVERIFY(!view.list()->isVisible());
        QCOMPARE(view.document.done, done);
        QVERIFY(view.editor.textCursor().atEnd());
        // A word in place of another is one step back.
        if (QByteArray(typed).endsWith('i') && *key == '\t') {
            view.document.undo();
            QCOMPARE(view.text(), latin(typed));
        }
    }
}

void TestCodeEditorInput::listTakesClicks()
{
    View view;
    QVERIFY(view.editor.completerFromFile(wordFile(Words)));
    view.type("speed = f");
    QVERIFY(view.list()->isVisible());
    QAbstractItemView *const list = view.list();
    const QRect cursor = view.editor.cursorRect();
    QCOMPARE(list->width(),
             cursor.width() + list->verticalScrollBar()->sizeHint().width()
                 + list->sizeHintForColumn(0));
    // It stands at the text cursor, right of the side area.
    QCOMPARE(list->mapToGlobal(QPoint(0, 0)).x(),
             view.editor.viewport()->mapToGlobal(cursor.topLeft()).x());
    const QRect row = list->visualRect(list->model()->index(1, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, row.center());
    QCOMPARE(view.text(), latin("speed = Float"));
    QCOMPARE(view.document.done, 1);
}

void TestCodeEditorInput::listTakesWhatAnInputMethodTypes()
{
    View view;
    QVERIFY(view.editor.completerFromFile(wordFile(Words)));
    const auto commit = [&view](const char *text) {
        QInputMethodEvent event;
        event.setCommitString(latin(text));
        QApplication::sendEvent(&view.editor, &event);
    };
    commit("go");
    QVERIFY(view.list()->isVisible());
    commit(";");
    QVERIFY(!view.list()->isVisible());
    commit("speed=");
    commit(" ");
    commit("i");
    view.press(Qt::Key_Tab);
    QCOMPARE(view.text(), latin("go;speed= int"));
}

void TestCodeEditorInput::wordFilesAddUp_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isRight");
    QTest::addColumn<QString>("shown");

    const auto row = [](const char *name, const QByteArray &content, bool isRight,
                        const char *shown) {
        QTest::newRow(name) << content << isRight << latin(shown);
    };
    row("missing", QByteArray(), false, "gone");
    row("empty", "", false, "gone");
    row("no XML", "\x89PNG\r\n\x1a\n", false, "gone");
    row("other prefix", "<x><model prefix='a'><word value='b'/></model></x>", true, "gone");
    row("outside", "<x><word value='a'/><model><word value='b'/></model></x>", true, "gone");
    row("twice",
        "<x><model prefix='go'><word value='a'/></model><model prefix='go'>"
        "<word value='b'/><word/></model></x>",
        true, "b");
    // What comes before an error counts.
    row("cut", "<a><model prefix='go'><word value='x'/></model>", false, "x");
    row("cut in a model", "<a><model prefix='go'><word value='x'/><word", false, "x");
    row("crossed", "<a><model prefix='go'><word value='x'></model></a>", false, "x");
    row("two roots", "<model prefix='go'><word value='x'/></model><a/>", false, "x");
}

void TestCodeEditorInput::wordFilesAddUp()
{
    QFETCH(QByteArray, content);
    View view;
    QVERIFY(view.editor.completerFromFile(wordFile(Words)));
    QString name = m_folder.filePath(QStringLiteral("missing.xml"));
    if (!content.isNull())
        name = wordFile(content.constData());
    QTEST(view.editor.completerFromFile(name), "isRight");
    QVERIFY(!view.editor.completerFromFile(m_folder.path()));
    view.type("go");
    QTEST(view.shownWords(), "shown");
    // Another prefix has kept its words.
    view.type("\x1b;speed= ");
    QCOMPARE(view.shownWords(), latin("file Float int"));
}

void TestCodeEditorInput::documentCompletesFirst()
{
    View view;
    QVERIFY(view.editor.completerFromFile(wordFile(Words)));
    view.document.words = words("good gopher");
    view.type("go");
    QCOMPARE(view.shownWords(), latin("good gopher"));
    QCOMPARE(view.document.prefixes, words("g go"));
    // It has no more to say: its words do not stay, and those of the file are still there.
    view.document.words.clear();
    view.type("o");
    QCOMPARE(view.shownWords(), QString());
    view.press(Qt::Key_Backspace);
    QCOMPARE(view.shownWords(), latin("gone"));

    view.document.words = words("good");
    view.type("=");
    QCOMPARE(view.shownWords(), QString());
    view.document.inserted = latin("<%1>");
    view.type("g\t");
    QCOMPARE(view.text(), latin("go=g<good>"));
    QCOMPARE(view.document.done, 1);
}

void TestCodeEditorInput::documentIsAskedForKeysThatType()
{
    View view(latin("a = int 1\nb"));
    view.document.words = words("never");
    for (const int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_PageUp,
                          Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End, Qt::Key_Escape})
        view.press(key);
    QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier, latin("\x03"));
    QApplication::sendEvent(&view.editor, &copy);
    view.press(Qt::Key_Shift, Qt::ShiftModifier);
    view.press(Qt::Key_Left, Qt::ShiftModifier);
    QVERIFY(view.document.keys.isEmpty());

    view.document.words.clear();
    view.type("n\b\n");
    view.press(Qt::Key_Space, Qt::ControlModifier);
    QCOMPARE(view.document.keys,
             (QList<int>{Qt::Key_N, Qt::Key_Backspace, Qt::Key_Return, Qt::Key_Space}));
}

// The cursor stands inside of a word when its list is accepted: no part of it may be left.
void TestCodeEditorInput::documentsWordReplacesTheWholeWord()
{
    View view(latin("a = oldword;x"), 6);
    view.document.words = words("odd olden");
    view.type("d");
    QCOMPARE(view.document.prefixes, words("olddword"));
    view.press(Qt::Key_Down);
    view.press(Qt::Key_Tab);
    QCOMPARE(view.text(), latin("a = odd;x"));
    QCOMPARE(view.editor.textCursor().position(), 7);

    // In front of a word there is none to replace, also behind punctuation.
    view.setPosition(3);
    view.type(" ");
    QCOMPARE(view.document.prefixes.last(), QString());
    view.type("\t");
    QCOMPARE(view.text(), latin("a = odd odd;x"));
}

void TestCodeEditorInput::nothingCompletesWithoutWriting()
{
    View view;
    QVERIFY(view.editor.completerFromFile(wordFile(Words)));
    view.type("go");
    QVERIFY(view.list()->isVisible());
    const int asked = view.document.keys.size();
    view.editor.setReadOnly(true);
    view.type("\to\n");
    QCOMPARE(view.document.keys.size(), asked);
    QCOMPARE(view.text(), latin("go"));

    view.editor.setReadOnly(false);
    view.type("\bo");
    QVERIFY(view.list()->isVisible());
    Document other;
    view.editor.setDocument(&other);
    QVERIFY(!view.list()->isVisible());
    view.editor.setDocument(nullptr);
    view.type("go");
    QVERIFY(!view.list()->isVisible());
    view.type("\n");
}

void TestCodeEditorInput::insertSwitchesOverwriteMode()
{
    View view(latin("abc"));
    QCOMPARE(view.editor.cursorWidth(), 2);
    view.moveTo(0);
    QCOMPARE(view.mouseCursor(), Qt::IBeamCursor);
    view.press(Qt::Key_Insert);
    QCOMPARE(view.mouseCursor(), Qt::BlankCursor);
    view.moveTo(1);
    QCOMPARE(view.mouseCursor(), Qt::IBeamCursor);
    QVERIFY(view.editor.overwriteMode());
    QCOMPARE(view.editor.cursorWidth(), view.editor.fontMetrics().averageCharWidth());
    view.type("x");
    QCOMPARE(view.text(), latin("xbc"));

    QFont large = view.editor.font();
    large.setPixelSize(40);
    view.editor.setFont(large);
    QCOMPARE(view.editor.cursorWidth(), view.editor.fontMetrics().averageCharWidth());
    QCOMPARE(view.editor.tabStopDistance(),
             4 * QFontMetricsF(large).horizontalAdvance(QLatin1Char(' ')));

    // A word in the place of another is no longer than itself.
    view.document.words = words("word");
    view.setPosition(1);
    view.type("w");
    view.press(Qt::Key_Down);
    view.press(Qt::Key_Tab);
    QCOMPARE(view.text(), latin("word"));
    view.document.words.clear();

    view.press(Qt::Key_Insert, Qt::ControlModifier);
    view.press(Qt::Key_Insert, Qt::AltModifier);
    QVERIFY(view.editor.overwriteMode());
    view.press(Qt::Key_Insert, Qt::KeypadModifier);
    QVERIFY(!view.editor.overwriteMode());
    QCOMPARE(view.editor.cursorWidth(), 2);
}

void TestCodeEditorInput::enterKeepsTheIndent()
{
    using Case = std::tuple<const char *, int, int, const char *>;
    for (const auto &[text, anchor, position, after] :
         {Case("a", 1, 1, "a\n"), Case("  a", 3, 3, "  a\n  "), Case("\t a b", 4, 4, "\t a \n\t b"),
          Case("    a", 2, 2, "  \n    a"), Case("x\n  ab\n y", 8, 5, "x\n  a\n  y")}) {
        View view(latin(text));
        // Shift makes no line of another kind.
        for (const auto modifier : {Qt::NoModifier, Qt::ShiftModifier}) {
            view.setPosition(position, anchor);
            view.press(Qt::Key_Return, modifier);
            QCOMPARE(view.text(), latin(after));
            QCOMPARE(view.document.blockCount(), view.text().count(QLatin1Char('\n')) + 1);
            view.document.undo();
            QCOMPARE(view.text(), latin(text));
        }
    }
}

void TestCodeEditorInput::parenthesesMatch()
{
    using Case = std::tuple<const char *, int, const char *, const char *>;
    for (const auto &[text, position, ranges, matches] :
         {Case("a(b)c", 1, "1-4", "1-2 3-4"), Case("a(b)c", 4, "1-4", "1-2 3-4"),
          Case("a(b)c", 2, "", ""), Case("((a)(b))", 0, "0-8", "0-1 7-8"),
          // Two at once: behind a closing one and before an opening one.
          Case("((a)(b))", 4, "1-4 4-7", "1-2 3-4 4-5 6-7"),
          // Any closing character pairs with any opening one.
          Case("(a]", 0, "0-3", "0-1 2-3"), Case("( [ ) ]", 7, "0-7", "0-1 6-7"),
          Case("(a\n(b)\n\n;\n c)d", 0, "0-13", "0-1 12-13"),
          Case("(a\n(b)\n\n;\n c)d", 13, "0-13", "0-1 12-13"),
          Case("(a\n(b)\n\n;\n c)d", 6, "3-6", "3-4 5-6"), Case("a)b", 2, "", ""),
          Case("(a(b)c", 0, "", ""), Case("((a)", 4, "1-4", "1-2 3-4")}) {
        // From a pair on the line behind it, so that there is a match to go.
        const int end = int(qstrlen(text));
        View view(latin(text) + latin("\n()"), end + 1);
        QTRY_COMPARE(view.ranges(), QStringLiteral("%1-%2").arg(end + 1).arg(end + 3));
        view.setPosition(position);
        QTRY_COMPARE(view.ranges(), latin(ranges));
        QCOMPARE(view.spans(Qt::red), latin(matches));
    }
}

void TestCodeEditorInput::parenthesesMatchOnlyWhereTheyShould()
{
    View view(latin("(a)\nb"), 3);
    QTRY_COMPARE(view.ranges(), latin("0-3"));

    // A pair that the cursor leaves goes, and one that a change breaks.
    view.setPosition(5);
    QTRY_VERIFY(view.ranges().isEmpty());
    view.setPosition(3);
    QTRY_COMPARE(view.ranges(), latin("0-3"));
    view.press(Qt::Key_Backspace);
    QTRY_VERIFY(view.ranges().isEmpty());
    view.type(")");
    QTRY_COMPARE(view.ranges(), latin("0-3"));
    view.editor.setReadOnly(true);
    view.setPosition(0);
    QTRY_VERIFY(view.ranges().isEmpty());
    QVERIFY(view.spans(Qt::red).isEmpty());
}

void TestCodeEditorInput::linkUnderTheMouse()
{
    // The link has the blank in front of the name.
    View view(latin("key = file a.txt\nb = int 3"));
    const auto isShown = [&view](bool shown) {
        return view.spans(Qt::blue) == latin(shown ? "10-16" : "")
            && view.mouseCursor() == (shown ? Qt::PointingHandCursor : Qt::IBeamCursor);
    };
    view.moveTo(12);
    QVERIFY(isShown(false));
    // The key alone shows and hides it too.
    view.holdControl(true);
    QVERIFY(isShown(true));
    view.holdControl(false);
    QVERIFY(isShown(false));
    view.holdControl(true);
    for (const int column : {9, 15, 24, 10}) {
        view.moveTo(column);
        QVERIFY(isShown(column == 15 || column == 10));
    }
    // Right of the line's end, and outside.
    QTest::mouseMove(view.editor.viewport(), view.pointAt(15) + QPoint(60, 0));
    QVERIFY(isShown(false));
    QEvent leave(QEvent::Leave);
    // A window that is left with the key held hears nothing of its release.
    QFocusEvent focusOut(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    view.moveTo(11);
    QVERIFY(isShown(true));
    QApplication::sendEvent(view.editor.viewport(), &leave);
    QVERIFY(isShown(false));
    view.moveTo(12);
    QVERIFY(isShown(true));
    QApplication::sendEvent(&view.editor, &focusOut);
    QVERIFY(isShown(false));
    view.holdControl(false);
    view.moveTo(13);
    QVERIFY(isShown(false));
}

void TestCodeEditorInput::linkIsReleasedOn()
{
    View view(latin("key = file a.txt"));
    TestLink::activated = 0;
    QWidget *const viewport = view.editor.viewport();
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, view.pointAt(12));
    QTest::mouseClick(viewport, Qt::RightButton, Qt::ControlModifier, view.pointAt(12));
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::ControlModifier, view.pointAt(2));
    QCOMPARE(TestLink::activated, 0);
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::ControlModifier, view.pointAt(12));
    QCOMPARE(TestLink::activated, 1);
    // Text that is selected by dragging onto a link.
    QTest::mousePress(viewport, Qt::LeftButton, Qt::ControlModifier, view.pointAt(0));
    QMouseEvent drag(QEvent::MouseMove, view.pointAt(12), Qt::NoButton, Qt::LeftButton,
                     Qt::ControlModifier);
    QApplication::sendEvent(viewport, &drag);
    QTest::mouseRelease(viewport, Qt::LeftButton, Qt::ControlModifier, view.pointAt(12));
    QVERIFY(view.editor.textCursor().hasSelection());
    QCOMPARE(TestLink::activated, 1);

    // The parser makes a new link when the line changes, and none at last.
    view.setPosition(0);
    const QPoint point = view.pointAt(12);
    view.holdControl(true);
    view.document.rehighlight();
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::ControlModifier, point);
    QCOMPARE(TestLink::activated, 2);
    view.document.setPlainText(latin("key = int 1234567"));
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::ControlModifier, point);
    view.moveTo(12);
    QVERIFY(view.spans(Qt::blue).isEmpty());
    view.document.setPlainText(latin("key = file a.txt"));
    view.moveTo(13);
    QVERIFY(!view.spans(Qt::blue).isEmpty());
    view.editor.setDocument(nullptr);
    QVERIFY(view.spans(Qt::blue).isEmpty());
    QCOMPARE(view.mouseCursor(), Qt::IBeamCursor);
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::ControlModifier, point);
    QCOMPARE(TestLink::activated, 2);
}

void TestCodeEditorInput::toolTips()
{
    View view(latin("  bothx = int 1234\nodd<b>x = int 1"));
    const QString first = latin("both: bothx"); // of two
    for (const bool isControlHeld : {false, true}) {
        view.holdControl(isControlHeld);
        for (const auto &tip : {qMakePair(1, QString()), qMakePair(2, first), qMakePair(6, first),
                                qMakePair(7, QString()), qMakePair(18, QString()),
                                qMakePair(19, latin("odd: odd<b>x"))})
            QCOMPARE(view.toolTipAt(tip.first), isControlHeld ? QString() : tip.second);
    }
    QTRY_VERIFY(!QToolTip::isVisible());
}

void TestCodeEditorInput::contextMenuMovesTheCursor()
{
    View view(latin("abc def\nghi"));
    view.editor.setContextMenuPolicy(Qt::CustomContextMenu);
    const auto ask = [&view](QContextMenuEvent::Reason reason) {
        QContextMenuEvent event(reason, view.pointAt(9),
                                view.editor.viewport()->mapToGlobal(view.pointAt(9)));
        QApplication::sendEvent(view.editor.viewport(), &event);
    };
    ask(QContextMenuEvent::Keyboard);
    QCOMPARE(view.editor.textCursor().position(), 0);
    view.setPosition(3, 0);
    ask(QContextMenuEvent::Mouse);
    QCOMPARE(view.editor.textCursor().selectedText(), latin("abc"));
    view.setPosition(3);
    ask(QContextMenuEvent::Mouse);
    QCOMPARE(view.editor.textCursor().position(), 9);
}

void TestCodeEditorInput::foldedLinesShowUnderTheMouse()
{
    View view(latin("[a]\nx = int 1\ny = int 2\n[b]\nz = int 3") + latin("\n;").repeated(60), 17);
    const QTextBlock folding = view.document.firstBlock();
    view.editor.toggleBlockVisible(folding);
    QVERIFY(!folding.next().isVisible());
    QWidget *const viewport = view.editor.viewport();
    const QPoint box = view.pointAt(3) + QPoint(16, 0);
    // Where the panel covers what follows.
    const auto below = [&] {
        return viewport->grab(QRect(0, view.editor.cursorRect().bottom(), 100, 60)).toImage();
    };
    view.moveTo(0);
    const QImage without = below();

    const auto leave = [&] {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(viewport, &event);
    };
    const auto scroll = [&] {
        view.editor.verticalScrollBar()->setValue(1);
        view.editor.verticalScrollBar()->setValue(0);
    };
    for (const std::function<void()> &end :
         {std::function<void()>([&] { view.moveTo(1); }), std::function<void()>(leave),
          std::function<void()>(scroll)}) {
        view.moveTo(0);
        QTest::mouseMove(viewport, box);
        QTRY_VERIFY(below() != without);
        end();
        QTRY_VERIFY(below() == without);
    }

    // Only the left button on the box itself unfolds.
    QTest::mouseClick(viewport, Qt::MiddleButton, Qt::NoModifier, box);
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, view.pointAt(3) + QPoint(5, 0));
    QVERIFY(!folding.next().isVisible());
    QTest::mouseMove(viewport, box);
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier, box);
    QVERIFY(folding.next().isVisible());
    QVERIFY(folding.next().next().isVisible());
}

QTEST_MAIN(TestCodeEditorInput)

#include "tst_codeeditorinput.moc"

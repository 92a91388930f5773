// SPDX-License-Identifier: MIT
#include "code/codeblockdata.h"
#include "code/codemark.h"
#include "project/messagelist.h"
#include "project/messages.h"
#include "support/testgrammar.h"

#include <QAbstractItemModelTester>
#include <QPlainTextDocumentLayout>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextLayout>
#include <QtTest>
#include <functional>
#include <memory>

using namespace Vela;

namespace {

constexpr int InAnimation = 0x40000000;

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

/// A document with the parser's options set, in which the test says what parses it.
class Document : public TestDocument
{
public:
    explicit Document(const char *content, CodeParser *withParser = nullptr)
        : TestDocument(QString(), false)
    {
        for (const char *const option : {"parseCode", "highlightCode", "modelCode"})
            setOption(text(option), true, false, false);
        setParser(withParser ? withParser : &parser);
        setPlainText(text(content));
    }

    QTextCursor cursorAt(int line, int column = 0) const
    {
        QTextCursor cursor(findBlockByNumber(line));
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::MoveAnchor, column);
        return cursor;
    }

    /// Replaces a line's text. With \a lineEnd the line goes with its end.
    void setLine(int line, const char *content, bool lineEnd = false)
    {
        QTextCursor cursor = cursorAt(line);
        cursor.movePosition(lineEnd ? QTextCursor::NextBlock : QTextCursor::EndOfBlock,
                            QTextCursor::KeepAnchor);
        cursor.insertText(text(content));
    }

    CodeBlockData *data(int line) const
    {
        return CodeBlockData::testBlockData(findBlockByNumber(line));
    }

    CodeNode *node(int line) const
    {
        return nodeInBlock(findBlockByNumber(line));
    }

    QVector<QTextLayout::FormatRange> formats(int line) const
    {
        return findBlockByNumber(line).layout()->formats();
    }

    /// Returns the line of each root child and those of its children.
    QString tree()
    {
        QStringList lines;
        for (const CodeNode *child : root()->childs()) {
            const auto *const parent = static_cast<const ParentCode *>(child);
            QString line = QString::number(child->lineNo()) + QLatin1Char(':');
            for (unsigned int row = 0; row < parent->childCount(); ++row)
                line += QLatin1Char(' ') + QString::number(parent->childAt(row)->lineNo());
            lines.append(line);
        }
        return lines.join(QLatin1String(", "));
    }

    QVector<int> states() const
    {
        QVector<int> states;
        for (QTextBlock block = begin(); block.isValid(); block = block.next())
            states.append(block.userState());
        return states;
    }

    QVector<int> indents() const
    {
        QVector<int> indents;
        for (QTextBlock block = begin(); block.isValid(); block = block.next())
            indents.append(int(CodeBlockData::testBlockData(block)->foldingIndent()));
        return indents;
    }

    QStringList messageTexts(Message::Type type = Message::Any) const
    {
        QStringList texts;
        for (int i = 0; i < messages()->count(type); ++i) {
            const Message message = messages()->at(unsigned(i), type);
            texts.append(text("%1:%2 %3 %4")
                             .arg(message.line)
                             .arg(message.column)
                             .arg(message.type)
                             .arg(message.text));
        }
        return texts;
    }
};

/// Runs a function for each line; what the function gives back stands for the line.
class FunctionParser : public CodeParser
{
public:
    using Function = std::function<CodeNode *(const QTextBlock &block, CodeNode *oldNode,
                                              CodeParserSyntax *syntax)>;

    explicit FunctionParser(const Function &function)
        : m_function(function)
    {
    }

    CodeNode *parseLine(const QString &, const QTextBlock &block, CodeNode *oldNode, CodeNode *,
                        RootCode *, CodeParserSyntax *syntax) override
    {
        return m_function(block, oldNode, syntax);
    }

private:
    Function m_function;
};

/// Parses with the tests' grammar and notes where the library breaks its word.
class ContractParser : public CodeParser
{
public:
    CodeNode *parseLine(const QString &line, const QTextBlock &block, CodeNode *oldNode,
                        CodeNode *previous, RootCode *root, CodeParserSyntax *syntax) override
    {
        const int number = block.blockNumber();
        const auto demand = [&](bool isKept, const char *what) {
            if (!isKept)
                broken.append(text("line %1: %2").arg(number).arg(text(what)));
        };
        demand(line == block.text(), "text of another line");
        demand(previous && previous != oldNode, "previous is null or the old node");
        bool foundPrevious = false;
        for (const CodeNode *node = root; node; node = node->next()) {
            demand(node != oldNode, "the old node is in the chain");
            foundPrevious |= node == previous;
        }
        demand(foundPrevious, "previous is not in the chain");
        const QTextBlock line0 = previous->block();
        demand(line0.isValid() ? line0.blockNumber() < number : previous == root,
               "previous is not of a line above");
        const CodeNode *const next = previous->next();
        demand(!next || next->block().blockNumber() > number || next->block() == block,
               "a node of a line above is behind previous");
        syntaxes.append(syntax != nullptr);
        return m_parser.parseLine(line, block, oldNode, previous, root, syntax);
    }

    QStringList broken;
    QVector<bool> syntaxes; ///< whether there was one, for each call

private:
    TestParser m_parser;
};

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
        ++removals;
    }
    void paint(QPainter &, const QRect &) const override
    {
    }

    int removals = 0;
};

/// A value with another one behind it that has no line of its own.
class TwinValue : public TestValue
{
public:
    TwinValue(const QTextBlock &block, CodeNode *previous)
        : TestValue(Int, block, previous, block.text(), 0)
        , m_twin(new TestValue(Int, QTextBlock(), this, block.text() + text("'"), 0))
    {
    }
    ~TwinValue() override
    {
        m_twin->release();
    }

private:
    TestValue *m_twin;
};

/// Makes a TwinValue of each line that says something.
class TwinParser : public CodeParser
{
public:
    CodeNode *parseLine(const QString &line, const QTextBlock &block, CodeNode *oldNode,
                        CodeNode *previous, RootCode *, CodeParserSyntax *) override
    {
        if (line.isEmpty())
            return nullptr;
        const auto *const old = static_cast<const TestValue *>(oldNode);
        return old && old->name() == line ? oldNode : new TwinValue(block, previous);
    }
};

/// Takes the line above one that begins with "eat" out of the text while that is parsed.
class EatingParser : public CodeParser
{
public:
    explicit EatingParser(bool withItsEnd)
        : m_withItsEnd(withItsEnd)
    {
    }

    CodeNode *parseLine(const QString &line, const QTextBlock &block, CodeNode *oldNode,
                        CodeNode *previous, RootCode *root, CodeParserSyntax *syntax) override
    {
        CodeNode *const node = m_parser.parseLine(line, block, oldNode, previous, root, syntax);
        if (line.startsWith(text("eat")) && block.blockNumber() > 1) {
            // One of the two takes the block of the line above, the other the line's own.
            const int end = block.position() - (m_withItsEnd ? 0 : 1);
            QTextCursor cursor(block);
            cursor.setPosition(end);
            cursor.setPosition(end - block.previous().length(), QTextCursor::KeepAnchor);
            cursor.removeSelectedText();
        }
        return node;
    }

private:
    TestParser m_parser;
    bool m_withItsEnd;
};

/// Records the rows that a model says come and go, as "+first-last" and "-first-last".
class RowRecorder
{
public:
    explicit RowRecorder(QAbstractItemModel *model)
    {
        const auto record = [this](const char *sign) {
            return [this, sign](const QModelIndex &parent, int first, int last) {
                if (!parent.isValid())
                    changes.append(text("%1%2-%3").arg(text(sign)).arg(first).arg(last));
            };
        };
        QObject::connect(model, &QAbstractItemModel::rowsInserted, &m_context, record("+"));
        QObject::connect(model, &QAbstractItemModel::rowsRemoved, &m_context, record("-"));
    }

    QStringList take()
    {
        return std::exchange(changes, QStringList());
    }

    QStringList changes;

private:
    QObject m_context;
};

} // namespace

class tst_CodeParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void libraryKeepsItsSideOfTheContract();
    void withoutHighlightThereIsNoSyntax();
    void linesInheritTheStateOfTheirHeader();
    void aChangedStateRunsOnToTheNextHeader();
    void foldingIndents_data();
    void foldingIndents();
    void anIndentPassesUpThroughComments();
    void messagesAreRowsInTheOrderOfTheText();
    void updatesOfTheMessageListComeOncePerPass();
    void tokenFormats_data();
    void tokenFormats();
    void reportsBecomeFormats_data();
    void reportsBecomeFormats();
    void inputMethodKeepsItsText();
    void unchangedFormatsTouchNoLayout();
    void parsedStaysSet();
    void passesAskedForWhileParsingArePutOff();
    void aParserThatAlwaysAsksComesToAnEnd();
    void linesMayGoWhileOneIsParsed();
    void nodesWithoutALineStayWithTheirs();
    void rehighlightKeepsNodesAndReparseDoesNot();
    void settingTheParser();
    void rootShowsNoRowsWhileItIsLocked();
    void modelStaysConsistent();
    void headersOfOnePassTakeTheirLines();
    void linesAreParsedAtOnceInABracket();
    void marksHearOfTheirLinesEnd();
    void linksBelongToTheirLine();
    void aViewShowsTheText();
};

void tst_CodeParser::libraryKeepsItsSideOfTheContract()
{
    ContractParser contract;
    Document document("version 2\n; c\n[a]\nx = int 1\n\nanim 1 w\nframe 1 2\n[b 3]\ny = int 2\n",
                      &contract);
    document.setLine(2, "[c 4]");
    document.setLine(3, "wrong");
    document.setLine(5, "", true);
    document.setLine(0, "version 3\n[z]");
    document.beginChange();
    document.insertOnCursor(text("[d]\nw = int 4\n"), document.cursorAt(2));
    document.insertOnCursor(QString(), [&] {
        QTextCursor cursor = document.cursorAt(5);
        cursor.setPosition(document.cursorAt(8).position(), QTextCursor::KeepAnchor);
        return cursor;
    }());
    document.endChange();
    document.undo();
    document.rehighlight();
    document.reparse();

    // Among comments the search for the node above goes on from the last one.
    document.setPlainText(text("[a]\nx = int 1\n") + text("; c\n").repeated(20)
                          + text("y = int 2"));
    document.beginChange();
    for (const int line : {10, 8, 12})
        document.insertOnCursor(text("; "), document.cursorAt(line));
    document.insertOnCursor(text("z = int 3"), document.cursorAt(9));
    for (const int line : {11, 8, 10})
        document.insertOnCursor(text("; "), document.cursorAt(line));
    document.insertOnCursor(text("; "), document.cursorAt(9));
    for (const int line : {7, 21})
        document.insertOnCursor(text("w = int 4"), document.cursorAt(line));
    document.endChange();
    document.cursorAt(15).insertText(text(";"));
    document.cursorAt(14).insertText(text("v = int 1"));
    QVERIFY(contract.syntaxes.size() > 80);
    QCOMPARE(contract.broken, QStringList());
}

void tst_CodeParser::withoutHighlightThereIsNoSyntax()
{
    ContractParser contract;
    Document document("both = int 1", &contract);
    QCOMPARE(document.messageTexts().size(), 2);
    QVERIFY(!document.formats(0).isEmpty());
    contract.syntaxes.clear();
    document.setSyntaxHighlight(false);
    QCOMPARE(contract.syntaxes, QVector<bool>{false});
    QCOMPARE(document.messageTexts(), QStringList());
    QVERIFY(document.formats(0).isEmpty());
    QVERIFY(document.node(0));
}

void tst_CodeParser::linesInheritTheStateOfTheirHeader()
{
    const Document document("; c\n[a 7]\nx = int 1\n\ny = int 2\nanim 1 w\nframe 1 2\nwrong\n"
                            "[b 0]\nz = int 1\n[c 5]\n[[d]]\nw = int 1");
    QCOMPARE(document.states(),
             (QVector<int>{-1, 7, 7, 7, 7, InAnimation, InAnimation, InAnimation, InAnimation,
                           InAnimation, 5, 2, 2}));
}

void tst_CodeParser::aChangedStateRunsOnToTheNextHeader()
{
    Document document("[a 7]\nx = int 1\n; c\n[b 3]\ny = int 2\nz = int 3");
    const auto parsedBy = [&](int line, int column, const char *typed) {
        document.parser.parsed.clear();
        document.parser.record = true;
        document.cursorAt(line, column).insertText(text(typed));
        return std::exchange(document.parser.parsed, {});
    };
    QCOMPARE(parsedBy(1, 9, "2"), QVector<int>{1});
    QCOMPARE(parsedBy(4, 0, "k"), QVector<int>{4});
    // Line 3 is parsed since the state of the line above it changed; its own stays.
    QCOMPARE(parsedBy(0, 4, "8"), (QVector<int>{0, 1, 2, 3}));
    QCOMPARE(document.states(), (QVector<int>{78, 78, 78, 3, 3, 3}));
}

void tst_CodeParser::foldingIndents_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("changedTo"); // null for no change, "-" takes the line out
    QTest::addColumn<QVector<int>>("expected");
    const auto row = [](const char *name, const char *before, int line, const char *changedTo,
                        const QVector<int> &expected) {
        QTest::newRow(name) << text(before) << line << (changedTo ? text(changedTo) : QString())
                            << expected;
    };
    row("no node", "; a\n\n; b", 0, nullptr, {0, 0, 0});
    row("top", "; a\n[a]\nx = int 1\n; in\ny = int 1\n\n[b]\n; end\n", 0, nullptr,
        {0, 0, 1, 1, 1, 0, 0, 1, 1});
    row("nested", "[b]\n[[n]]\nz = int 1\n\n[[m]]\n; c\n[c]\nanim 1 w\nframe 1 1\n; end\n", 0,
        nullptr, {0, 1, 2, 1, 1, 0, 0, 0, 1, 1, 1});
    row("value before any header", "x = int 1\n\n[a]\ny = int 1", 0, nullptr, {0, 0, 0, 1});
    row("value typed behind comments", "[a]\nx = int 1\n; 1\n; 2\n\n[b]", 4, "y = int 1",
        {0, 1, 1, 1, 1, 0});
    row("header typed behind comments", "[a]\nx = int 1\n; 1\n; 2\n\ny = int 1", 4, "[b]",
        {0, 1, 0, 0, 0, 1});
    row("comment between comments", "[a]\nx = int 1\n; 1\n; 2\n; 3\n[b]", 3, "; other",
        {0, 1, 0, 0, 0, 0});
    row("header goes", "[a]\nx = int 1\n; 1\n[b]\ny = int 1\n\n", 3, "-", {0, 1, 1, 1, 1, 1});
    row("top level becomes nested", "[a]\n[[b]]\nx = int 1\n[c]\ny = int 1", 3, "[[c]]",
        {0, 1, 2, 1, 2});
}

void tst_CodeParser::foldingIndents()
{
    QFETCH(QString, before);
    QFETCH(int, line);
    QFETCH(QString, changedTo);
    Document document(before.toLatin1().constData());
    if (changedTo == text("-"))
        document.setLine(line, "", true);
    else if (!changedTo.isNull())
        document.setLine(line, changedTo.toLatin1().constData());
    QTEST(document.indents(), "expected");
}

void tst_CodeParser::anIndentPassesUpThroughComments()
{
    Document document("[a]\n[[n]]\n; 1\n; 2\n; 3\nz = int 1");
    QCOMPARE(document.indents(), (QVector<int>{0, 1, 2, 2, 2, 2}));
    // The state stays, so only the line behind the replaced one is parsed as well.
    document.setLine(1, "[n 2]");
    QCOMPARE(document.indents(), (QVector<int>{0, 0, 1, 2, 2, 2}));
    document.cursorAt(4).insertText(text(";"));
    QCOMPARE(document.indents(), (QVector<int>{0, 0, 1, 1, 1, 2}));
}

void tst_CodeParser::messagesAreRowsInTheOrderOfTheText()
{
    Document document("[a]\nboth = int 1\nx = int 1\n  old = int 2\nwrong");
    const QAbstractItemModelTester tester(document.messages(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    RowRecorder rows(document.messages());
    QCOMPARE(document.messageTexts(),
             (QStringList{text("1:0 0 both: both"), text("1:0 1 odd: both"), text("3:2 1 old: old"),
                          text("4:0 0 expected a value")}));
    QCOMPARE(document.messageTexts(Message::Error),
             (QStringList{text("1:0 0 both: both"), text("4:0 0 expected a value")}));
    QCOMPARE(document.messageTexts(Message::Warning),
             (QStringList{text("1:0 1 odd: both"), text("3:2 1 old: old")}));
    QCOMPARE(document.messages()->count(Message::Information), 0);
    for (const Message::Type type : {Message::Error, Message::Warning, Message::Information}) {
        const Message message = document.messages()->at(2, type);
        QCOMPARE(message.type, Message::Any);
        QCOMPARE(message.text, QString());
    }
    QCOMPARE(document.messages()->at(0xFFFFFFFFU, Message::Any).type, Message::Any);

    document.cursorAt(2).insertText(text("odd"));
    QCOMPARE(rows.take(), QStringList{text("+2-2")});
    QCOMPARE(
        document.messageTexts().mid(1, 3),
        (QStringList{text("1:0 1 odd: both"), text("2:0 1 odd: oddx"), text("3:2 1 old: old")}));
    // A line whose last characters are replaced takes the next line along.
    document.setLine(2, "both = int 1");
    QCOMPARE(rows.take(), (QStringList{text("-2-2"), text("+2-3"), text("-4-4"), text("+4-4")}));
    document.setLine(1, "", true);
    QVERIFY(rows.take().contains(text("-0-1")));
    QCOMPARE(document.messageTexts().first(), text("1:0 0 both: both"));
    QCOMPARE(document.messageTexts().size(), 4);
    document.clear();
    QCOMPARE(document.messages()->rowCount(), 0);
    QCOMPARE(document.data(0)->syntaxMessages().size(), 0);
}

void tst_CodeParser::updatesOfTheMessageListComeOncePerPass()
{
    Document document("");
    MessageList list(nullptr);
    list.registerMessages(document.messages());
    QSignalSpy updates(&list, &MessageList::updated);
    document.cursorAt(0).insertText(text("wrong\nboth = int 1\nwrong"));
    QCOMPARE(updates.size(), 1);
    QCOMPARE(list.errorCount(), 3U);
    // The pass that the version asks for runs inside the first.
    document.setLine(0, "version 5");
    QCOMPARE(updates.size(), 2);
    QCOMPARE(list.errorCount(), 2U);
    list.unregisterMessages(document.messages());
}

void tst_CodeParser::tokenFormats_data()
{
    QTest::addColumn<int>("token");
    QTest::addColumn<bool>("bold");
    QTest::addColumn<bool>("italic");
    QTest::addColumn<QColor>("color");
    QTest::newRow("0") << 0 << false << true << QColor(Qt::black);
    QTest::newRow("comment") << 1 << false << true << QColor(Qt::gray);
    QTest::newRow("2") << 2 << false << false << QColor(Qt::red);
    QTest::newRow("3") << 3 << false << false << QColor(Qt::blue);
    QTest::newRow("4") << 4 << true << false << QColor(Qt::black);
    QTest::newRow("5") << 5 << true << false << QColor(0, 128, 0);
    QTest::newRow("6") << 6 << true << false << QColor(255, 128, 0);
    QTest::newRow("7") << 7 << true << false << QColor(0, 128, 128);
    QTest::newRow("8") << 8 << false << false << QColor(128, 0, 255);
    QTest::newRow("9") << 9 << false << false << QColor(255, 0, 255);
}

void tst_CodeParser::tokenFormats()
{
    QFETCH(int, token);
    const QTextCharFormat format = CodeDocument::syntaxFormat(token);
    QCOMPARE(format.fontFamily(), text("Courier"));
    QCOMPARE(format.fontPointSize(), 10.0);
    QVERIFY(format.fontFixedPitch());
    QCOMPARE(format.fontStyleHint(), QFont::Monospace);
    QTEST(format.fontWeight() == QFont::Bold, "bold");
    QTEST(format.fontItalic(), "italic");
    QTEST(format.foreground().color(), "color");

    QTextCharFormat other = format;
    other.setFontUnderline(true);
    CodeDocument::setSyntaxFormat(token, other);
    FunctionParser parser([&](const QTextBlock &, CodeNode *, CodeParserSyntax *syntax) {
        syntax->setToken(token, 0, 1);
        return nullptr;
    });
    const Document document("a", &parser);
    CodeDocument::setSyntaxFormat(token, format);
    QCOMPARE(document.formats(0).value(0).format, other);
}

// The line has ten characters. A report is the kind ('t'oken, 'e'rror, 'd'eprecation, 'w'arning)
// with token, start and end; an expected span is start and length with its format in the same way.
void tst_CodeParser::reportsBecomeFormats_data()
{
    QTest::addColumn<QString>("reports");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *reports, const char *expected) {
        QTest::newRow(name) << text(reports) << text(expected);
    };
    row("in order", "t3 0 2, t4 4 6", "t3 0 2, t4 4 2");
    row("out of order", "t3 6 8, t4 0 2, t5 3 4", "t4 0 2, t5 3 1, t3 6 2");
    row("equal ones that touch", "t3 0 2, t3 2 4, t4 4 5", "t3 0 4, t4 4 1");
    row("gap filled", "t3 0 2, t3 4 6, t3 2 4", "t3 0 6");
    row("inside", "t3 0 9, t4 3 5", "t3 0 3, t4 3 2, t3 5 4");
    row("over several", "t3 0 2, t4 3 5, t5 6 9, t7 1 7", "t3 0 1, t7 1 6, t5 7 2");
    row("over all", "t3 1 2, t4 3 5, t7 0 10", "t7 0 10");
    row("same place", "t3 2 4, t4 2 4", "t4 2 2");
    row("same format inside", "t3 0 9, t3 3 5", "t3 0 9");
    row("touches other at both ends", "t3 0 3, t3 6 9, t4 3 6", "t3 0 3, t4 3 3, t3 6 3");
    row("cut off at the end", "t3 8 99", "t3 8 2");
    row("outside or empty", "t3 -1 4, t4 10 12, t5 4 4, t6 5 3, t42 1 2, e3 -1 3", "");
    row("underlined", "t3 0 9, e3 2 4, d3 4 6, w3 6 8", "t3 0 2, e3 2 2, d3 4 2, w3 6 2, t3 8 1");
    row("underline goes", "e3 2 4, t3 2 4", "t3 2 2");
}

void tst_CodeParser::reportsBecomeFormats()
{
    QFETCH(QString, reports);
    QFETCH(QString, expected);
    int messages = 0;
    FunctionParser parser([&](const QTextBlock &block, CodeNode *, CodeParserSyntax *syntax) {
        if (block.length() == 1)
            return nullptr;
        for (const QString &report : reports.split(text(", "))) {
            const QStringList numbers = report.mid(1).split(text(" "));
            const int token = numbers.at(0).toInt();
            const int start = numbers.at(1).toInt();
            const int end = numbers.at(2).toInt();
            messages += !report.startsWith(text("t"));
            if (report.startsWith(text("t")))
                syntax->setToken(token, start, end);
            else if (report.startsWith(text("e")))
                syntax->addError(token, report, start, end);
            else if (report.startsWith(text("d")))
                syntax->addDeprecation(token, report, start, end);
            else
                syntax->addWarning(token, report, start, end);
        }
        return nullptr;
    });
    const Document document("0123456789", &parser);
    QStringList spans;
    for (const QTextLayout::FormatRange &range : document.formats(0)) {
        QTextCharFormat plain = range.format;
        QString kind = text("t");
        if (plain.underlineStyle() == QTextCharFormat::SpellCheckUnderline) {
            const QColor color = plain.underlineColor();
            kind = color == QColor(Qt::red)    ? text("e")
                : color == QColor(255, 127, 0) ? text("d")
                : color == QColor(255, 255, 0) ? text("w")
                                               : text("?");
            plain.clearProperty(QTextFormat::TextUnderlineStyle);
            plain.clearProperty(QTextFormat::FontUnderline);
            plain.clearProperty(QTextFormat::TextUnderlineColor);
        }
        int token = 0;
        while (token < 10 && CodeDocument::syntaxFormat(token) != plain)
            ++token;
        spans.append(text("%1%2 %3 %4").arg(kind).arg(token).arg(range.start).arg(range.length));
    }
    QCOMPARE(spans.join(text(", ")), expected);
    QCOMPARE(document.messages()->rowCount(), messages);
    QCOMPARE(document.data(0)->syntaxMessages().size(), messages);
}

void tst_CodeParser::inputMethodKeepsItsText()
{
    Document document("0123456789");
    FunctionParser parser([](const QTextBlock &, CodeNode *, CodeParserSyntax *syntax) {
        syntax->setToken(3, 0, 2);
        syntax->setToken(4, 2, 6);
        syntax->setToken(5, 7, 9);
        return nullptr;
    });
    document.setParser(&parser);
    const QVector<QTextLayout::FormatRange> plain = document.formats(0);
    QCOMPARE(plain.size(), 3);

    // Three characters are being composed in front of the fourth.
    QTextLayout *const layout = document.begin().layout();
    QTextCharFormat composed;
    composed.setFontOverline(true);
    layout->setPreeditArea(3, text("abc"));
    layout->setFormats({{3, 3, composed}});
    document.rehighlight();
    QVector<QTextLayout::FormatRange> expected = {{0, 2, plain.at(0).format},
                                                  {2, 1, plain.at(1).format},
                                                  {3, 3, composed},
                                                  {6, 3, plain.at(1).format},
                                                  {10, 2, plain.at(2).format}};
    QCOMPARE(document.formats(0), expected);
    layout->setPreeditArea(-1, QString());
    document.rehighlight();
    QCOMPARE(document.formats(0), plain);
}

void tst_CodeParser::unchangedFormatsTouchNoLayout()
{
    Document document("[a]\nx = int 1\n; c\n");
    int updates = 0;
    const auto count = [&] { ++updates; };
    QObject context;
    const QAbstractTextDocumentLayout *const layout = document.documentLayout();
    connect(layout, &QAbstractTextDocumentLayout::update, &context, count);
    connect(layout, &QAbstractTextDocumentLayout::updateBlock, &context, count);
    document.rehighlight();
    QCOMPARE(updates, 0);
    document.setSyntaxHighlight(false);
    QVERIFY(updates > 0);
}

void tst_CodeParser::parsedStaysSet()
{
    Document document("; c\n\nx = int 1");
    QVERIFY(!document.data(0)->isParsed());
    QVERIFY(!document.data(1)->isParsed());
    QVERIFY(document.data(2)->isParsed());
    document.setLine(2, "; c");
    QVERIFY(document.data(2)->isParsed());
}

void tst_CodeParser::passesAskedForWhileParsingArePutOff()
{
    Document document("[a]\nx = int 1");
    document.parser.record = true;
    document.updates = 0;
    document.cursorAt(0).insertText(text("version 4\n"));
    // The pass stops behind the version, and another runs over the whole text.
    QCOMPARE(document.parser.parsed, (QVector<int>{0, 0, 1, 2}));
    QCOMPARE(document.version(), 4U);
    QCOMPARE(document.updates, 1);

    int calls = 0;
    QVector<bool> hadOldNode;
    TestParser grammar;
    FunctionParser parser([&](const QTextBlock &block, CodeNode *oldNode,
                              CodeParserSyntax *syntax) {
        hadOldNode.append(oldNode);
        if (++calls == 3) {
            document.reparse();
            document.rehighlight();
        }
        CodeNode *const previous = block.previous().isValid() && document.node(0)
            ? document.node(block.blockNumber() - 1)
            : document.root();
        return grammar.parseLine(block.text(), block, oldNode,
                                 previous ? previous : document.root(), document.root(), syntax);
    });
    document.setPlainText(text("a = int 1\nb = int 2\nc = int 3"));
    document.setParser(&parser);
    // The second line of rehighlight() asks; reparse() covers both.
    calls = 1;
    hadOldNode.clear();
    document.rehighlight();
    QCOMPARE(hadOldNode, (QVector<bool>{true, true, false, false, false}));
    document.setParser(nullptr);
}

void tst_CodeParser::aParserThatAlwaysAsksComesToAnEnd()
{
    unsigned int version = 0;
    std::unique_ptr<Document> document;
    FunctionParser parser([&](const QTextBlock &block, CodeNode *, CodeParserSyntax *) {
        if (document && block.blockNumber() == 1)
            document->setVersion(++version);
        return nullptr;
    });
    document = std::make_unique<Document>("a\nb\nc", &parser);
    document->setLine(1, "d");
    QVERIFY(version > 1);
    QCOMPARE(document->toPlainText(), text("a\nd\nc"));
    const unsigned int before = version;
    document->setLine(2, "e");
    QCOMPARE(version, before);
}

void tst_CodeParser::linesMayGoWhileOneIsParsed()
{
    for (const bool withItsEnd : {false, true}) {
        EatingParser parser(withItsEnd);
        Document document("", &parser);
        // There are more lines than passes that may ask for another one.
        document.setPlainText(text("[a]\n") + text("both = int 1\n").repeated(80)
                              + text("eat = int 1\nboth = int 2\nz = int 3"));
        for (int edits = 0; document.blockCount() > 4; ++edits) {
            QVERIFY(edits < 80);
            document.cursorAt(document.blockCount() - 3).insertText(text("eat"));
            document.cursorAt(document.blockCount() - 1).insertText(text("z"));
        }
        document.setLine(1, "y = int 1");
        QCOMPARE(document.messageTexts(),
                 (QStringList{text("2:0 0 both: both"), text("2:0 1 odd: both")}));
        const CodeNode *node = document.root();
        for (int line = 0; line < 4; ++line) {
            QCOMPARE(document.node(line), node->next());
            node = node->next();
            QCOMPARE(node->lineNo(), line);
        }
        QVERIFY(!node->next());
    }
}

void tst_CodeParser::nodesWithoutALineStayWithTheirs()
{
    TwinParser parser;
    Document document("a\nb\nc", &parser);
    const auto chain = [&] {
        QString names;
        for (const CodeNode *node = document.root()->next(); node; node = node->next())
            names += static_cast<const TestValue *>(node)->name();
        return names;
    };
    QCOMPARE(chain(), text("aa'bb'cc'"));
    document.beginChange();
    document.insertOnCursor(text("x\ny\n"), document.cursorAt(1));
    QCOMPARE(chain(), text("aa'xx'yy'bb'cc'"));
    document.endChange();
    QCOMPARE(chain(), text("aa'xx'yy'bb'cc'"));
    document.setLine(2, "", true);
    QCOMPARE(chain(), text("aa'xx'bb'cc'"));
    document.rehighlight();
    QCOMPARE(chain(), text("aa'xx'bb'cc'"));
    document.setParser(nullptr);
    QCOMPARE(chain(), QString());
}

void tst_CodeParser::rehighlightKeepsNodesAndReparseDoesNot()
{
    Document document("[a]\nx = int 1\n\nanim 1 w\nframe 1 2");
    const auto nodes = [&] {
        QVector<CodeNode *> found;
        for (int line = 0; line < document.blockCount(); ++line)
            found.append(document.node(line));
        return found;
    };
    const QVector<CodeNode *> before = nodes();
    QCOMPARE(before.count(nullptr), 1);
    document.rehighlight();
    QCOMPARE(nodes(), before);
    document.setFileType(5, true);
    QCOMPARE(nodes(), before);

    int oldNodes = 0;
    TestParser grammar;
    FunctionParser counting([&](const QTextBlock &, CodeNode *oldNode, CodeParserSyntax *) {
        oldNodes += oldNode != nullptr;
        return nullptr;
    });
    document.setParser(&counting);
    QCOMPARE(oldNodes, 0);
    QCOMPARE(nodes(), QVector<CodeNode *>(5, nullptr));
    QCOMPARE(document.root()->childCount(), 0U);
    QVERIFY(!document.root()->next());
}

void tst_CodeParser::settingTheParser()
{
    TestDocument document(text("[a]\nx = int 1"), false);
    QVERIFY(!CodeBlockData::testBlockData(document.begin()));
    QCOMPARE(document.model()->rowCount(), 0);
    QVERIFY(!document.root()->next());

    document.setOption(text("modelCode"), true, false, false);
    document.parser.record = true;
    document.setParser(&document.parser);
    QCOMPARE(document.parser.parsed, (QVector<int>{0, 1}));
    QCOMPARE(document.model()->rowCount(), 1);
    document.setParser(&document.parser);
    QCOMPARE(document.parser.parsed.size(), 2);
}

void tst_CodeParser::rootShowsNoRowsWhileItIsLocked()
{
    Document document("[a]\n[b]\nx = int 1\nanim 1 w");
    QAbstractItemModel *const model = document.model();
    RowRecorder rows(model);
    int rowsSeen = 0;
    int calls = 0;
    TestParser grammar;
    FunctionParser parser([&](const QTextBlock &block, CodeNode *, CodeParserSyntax *) {
        ++calls;
        rowsSeen += model->rowCount() + model->hasChildren() + model->index(0, 0).isValid();
        CodeNode *previous = document.root();
        while (previous->next())
            previous = previous->next();
        return new TestGroup(block, previous, text("g"), 1, false);
    });
    document.setParser(&parser);
    QCOMPARE(calls, 4);
    QCOMPARE(rowsSeen, 0);
    QCOMPARE(rows.take(), (QStringList{text("-0-2"), text("+0-3")}));
    QCOMPARE(model->rowCount(), 4);

    document.setOption(text("modelCode"), false, false, false);
    document.reparse();
    QCOMPARE(rows.take(), QStringList{text("-0-3")});
    QCOMPARE(document.root()->childCount(), 4U);
    QVERIFY(!model->hasChildren());
    document.cursorAt(3).insertText(text("a\nb\n"));
    QCOMPARE(rows.take(), QStringList());
    document.setOption(text("modelCode"), true, false, false);
    document.reparse();
    QCOMPARE(rows.take(), QStringList{text("+0-5")});

    // The pass that the version asks for locks inside the lock of the load.
    document.setParser(&document.parser);
    QCOMPARE(rows.take(), (QStringList{text("-0-5"), text("+0-2")}));
    document.fromString(text("version 9\n[a]\n[b]"));
    QCOMPARE(rows.take(), (QStringList{text("-0-2"), text("+0-1")}));
}

void tst_CodeParser::modelStaysConsistent()
{
    Document document("version 1\n[a]\nx = int 1\n[[n]]\ny = int 1\nanim 1 w\nframe 1 2\n");
    const QAbstractItemModelTester tester(document.model(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    RowRecorder rows(document.model());
    document.insertAfter(document.node(4), text("[b]"), true);
    QCOMPARE(rows.take(), QStringList{text("+1-1")});
    QCOMPARE(document.model()->rowCount(), 3);
    document.setLine(1, "; gone");
    document.beginChange();
    for (int line = 2; line < 6; ++line)
        document.insertOnCursor(text("[c]\nz = int 2\n"), document.cursorAt(line));
    document.setLine(0, "version 2");
    document.endChange();
    document.undo();
    document.redo();
    document.reparse();
    QCOMPARE(document.model()->rowCount(), int(document.root()->childCount()));
    document.setPlainText(text("[d]"));
    QCOMPARE(document.model()->rowCount(), 1);
    document.clear();
    QCOMPARE(document.model()->rowCount(), 0);
}

void tst_CodeParser::headersOfOnePassTakeTheirLines()
{
    const auto content = "[a]\nx = int 1\n;[b]\ny = int 2\nz = int 3\n;[c]\nv = int 4\nw = int 5\n"
                         ";anim 1 w\nframe 1 2\nframe 3 4";
    const auto uncomment = [](Document &document) {
        QTextCursor all(&document);
        all.beginEditBlock();
        for (const int line : {2, 5, 8})
            document.cursorAt(line).deleteChar();
        all.endEditBlock();
    };
    const QString broken = text("0: 1 3 4 6 7");
    const QString whole = text("0: 1, 2: 3 4, 5: 6 7, 8: 9 10");
    Document document(content);
    const QAbstractItemModelTester tester(document.model(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(document.tree(), broken);
    uncomment(document);
    QCOMPARE(document.tree(), whole);
    document.undo();
    QCOMPARE(document.tree(), broken);
    document.redo();
    QCOMPARE(document.tree(), whole);
    document.beginChange();
    document.insertOnCursor(text("[d]\n[e]\nq = int 1\n"), document.cursorAt(3));
    QCOMPARE(document.tree(), text("0: 1, 2:, 3:, 4: 5 6 7, 8: 9 10, 11: 12 13"));
    document.endChange();

    // Lines go while headers wait for theirs: the one that is next to come, and a header.
    for (const int line : {3, 6, 8}) {
        Document other(content);
        bool isFirst = true;
        connect(other.model(), &QAbstractItemModel::rowsInserted, &other, [&] {
            if (std::exchange(isFirst, false))
                other.setLine(line, "", true);
        });
        uncomment(other);
        Document fresh(other.toPlainText().toLatin1().constData());
        QCOMPARE(other.tree(), fresh.tree());
    }
}

void tst_CodeParser::linesAreParsedAtOnceInABracket()
{
    ContractParser contract;
    Document document("[a]\nx = int 1", &contract);
    contract.syntaxes.clear();
    document.beginChange();
    document.insertOnCursor(text("both = int 1\n[b]\n"), document.cursorAt(1));
    QCOMPARE(contract.syntaxes, QVector<bool>(3, false));
    CodeNode *const group = document.node(2);
    QVERIFY(group && group->type() == CodeNode::Group);
    QCOMPARE(document.root()->childCount(), 2U);
    QCOMPARE(document.messageTexts(), QStringList());
    document.endChange();
    QCOMPARE(document.node(2), group);
    QCOMPARE(document.messageTexts().size(), 2);

    document.setOption(text("parseCode"), false, false, false);
    document.beginChange();
    document.insertOnCursor(text("[c]\n"), document.cursorAt(0));
    QCOMPARE(document.root()->childCount(), 2U);
    document.endChange();
    QCOMPARE(document.root()->childCount(), 3U);
    QCOMPARE(contract.broken, QStringList());
}

void tst_CodeParser::marksHearOfTheirLinesEnd()
{
    auto document = std::make_unique<Document>("[a]\nx = int 1\ny = int 1");
    Mark stays;
    Mark goes;
    QVERIFY(document->addMark(&stays, 1));
    QVERIFY(document->addMark(&goes, 2));
    document->setLine(1, "", true);
    QCOMPARE(goes.removals, 1);
    QCOMPARE(stays.removals, 0);
    document.reset();
    QCOMPARE(stays.removals, 0);
}

void tst_CodeParser::linksBelongToTheirLine()
{
    const int before = TestLink::alive;
    {
        Document document("a = file x\nb = file y (z)\nc = file z");
        QCOMPARE(TestLink::alive - before, 3);
        QCOMPARE(document.data(1)->links().size(), 1);
        QCOMPARE(document.data(1)->links().first()->end(), 14);
        QCOMPARE(document.data(1)->parenthesis().size(), 2);
        QCOMPARE(document.data(1)->parenthesis().at(1).type,
                 int(CodeBlockData::Parenthesis::Closing));
        QCOMPARE(document.data(1)->parenthesis().at(1).position, 13);
        // What is reported again takes the place of what was known.
        document.rehighlight();
        QCOMPARE(TestLink::alive - before, 3);
        QCOMPARE(document.data(1)->parenthesis().size(), 2);
        document.setLine(0, "", true);
        QCOMPARE(TestLink::alive - before, 2);
        document.setLine(0, "b = int 1");
        QCOMPARE(TestLink::alive - before, 1);
        FunctionParser none([](const QTextBlock &, CodeNode *, CodeParserSyntax *syntax) {
            syntax->addLink(nullptr);
            return nullptr;
        });
        document.setParser(&none);
        QCOMPARE(document.data(1)->links().size(), 0);
        document.setParser(nullptr);
        QCOMPARE(document.data(0)->parenthesis().size(), 0);
    }
    QCOMPARE(TestLink::alive, before);
}

void tst_CodeParser::aViewShowsTheText()
{
    Document document("");
    document.setPlainText(text("x = int 1\n").repeated(999) + text("last"));
    QPlainTextEdit view;
    view.setLineWrapMode(QPlainTextEdit::NoWrap);
    view.setDocument(&document);
    view.resize(300, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const QRectF line = document.documentLayout()->blockBoundingRect(document.begin());
    const int shown = view.verticalScrollBar()->pageStep();
    QVERIFY(shown > 1 && shown <= int(view.viewport()->height() / line.height()) + 1);
    QCOMPARE(view.verticalScrollBar()->maximum(), 1000 - shown);
    QCOMPARE(view.horizontalScrollBar()->maximum(), 0);

    // Formats that change lay no line out.
    document.cursorAt(500).insertText(text("k"));
    document.setSyntaxHighlight(false);
    QCOMPARE(document.findBlockByNumber(500).layout()->lineCount(), 0);

    const auto type = [&](int number, const QString &typed) {
        document.cursorAt(number).insertText(typed);
        return view.horizontalScrollBar()->maximum();
    };
    const int wide = type(0, QString(300, QLatin1Char('w')));
    QVERIFY(wide > 0);
    QCOMPARE(type(1, QString(100, QLatin1Char('w'))), wide);
    QVERIFY(type(2, QString(400, QLatin1Char('w'))) > wide);
    for (const char *const content : {"short", "w", "short\nshort"}) {
        type(0, QString(300, QLatin1Char('w')));
        QVERIFY(view.horizontalScrollBar()->maximum() > 0);
        document.setPlainText(text(content));
        QCOMPARE(view.horizontalScrollBar()->maximum(), 0);
        QCOMPARE(view.verticalScrollBar()->maximum(), 0);
    }

    // Where lines are wrapped, those below move when one gets another height.
    view.setLineWrapMode(QPlainTextEdit::WidgetWidth);
    int updates = 0;
    connect(document.documentLayout(), &QAbstractTextDocumentLayout::update, &view,
            [&] { ++updates; });
    type(0, text("; s"));
    type(0, text("o"));
    const int before = updates;
    type(0, text("o"));
    QCOMPARE(updates, before);
    QCOMPARE(document.lineCount(), 2);
    type(0, QString(300, QLatin1Char('w')));
    QVERIFY(updates > before);
    QVERIFY(document.lineCount() > 2);
    document.setLine(0, "; s");
    QCOMPARE(document.lineCount(), 2);
}

QTEST_MAIN(tst_CodeParser)
#include "tst_codeparser.moc"

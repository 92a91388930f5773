// SPDX-License-Identifier: MIT
#include "code/codeblockdata.h"
#include "frame/textcodecs.h"
#include "project/message.h"
#include "project/messages.h"
#include "support/recordinghost.h"
#include "support/testgrammar.h"

#include <QAbstractItemModelTester>
#include <QTextLayout>
#include <QtTest>

#include <random>

using namespace Vela;

namespace {

constexpr int NoLine = -2; ///< of a parent that is null; that of the root is -1

/// What a document says of one of its lines, as texts that are compared.
struct LineState
{
    QString node; ///< class and values
    int parent = NoLine;
    int row = -1; ///< among the parent's children
    int state = 0;
    unsigned int indent = 0;
    QString reports; ///< messages, parentheses, links and formats

    /// Compares all but the row, which depends on the lines of all siblings.
    bool operator==(const LineState &other) const
    {
        return state == other.state && indent == other.indent && parent == other.parent
            && node == other.node && reports == other.reports;
    }
};

QString describe(const CodeNode *node)
{
    if (!node)
        return QStringLiteral("-");
    switch (node->type()) {
    case CodeNode::Value: {
        auto *const value = static_cast<const TestValue *>(node);
        return QStringLiteral("value %1 %2 %3")
            .arg(value->name())
            .arg(value->valueType())
            .arg(ValueCode::asString(nullptr, value->valueType(), value->rawValue(),
                                     QLatin1Char(',')));
    }
    case CodeNode::Group: {
        auto *const group = static_cast<const TestGroup *>(node);
        return QStringLiteral("group %1 %2").arg(group->name()).arg(group->subType());
    }
    case CodeNode::Animation: {
        auto *const animation = static_cast<const TestAnimation *>(node);
        return QStringLiteral("animation %1 %2")
            .arg(animation->property(QStringLiteral("Identifier")).toString(), animation->name());
    }
    case CodeNode::Frame: {
        auto *const frame = static_cast<const TestFrame *>(node);
        return QStringLiteral("frame %1 %2 %3 %4")
            .arg(frame->property(QStringLiteral("Identifier")).toString())
            .arg(frame->delay())
            .arg(frame->isLoopPoint())
            .arg(frame->attackBoxes()->count());
    }
    case CodeNode::HitBox: {
        auto *const box = static_cast<const TestBox *>(node);
        return TestBox::line(box->boxType(), box->rect());
    }
    default:
        return QStringLiteral("root");
    }
}

int lineOf(const CodeNode *node)
{
    if (!node)
        return NoLine;
    return node->block().isValid() ? node->block().blockNumber() : -1;
}

QString describeReports(const QTextBlock &block, const CodeBlockData &data)
{
    QStringList parts;
    const auto messages = data.syntaxMessages();
    for (const CodeBlockData::SyntaxMessage &message : messages) {
        parts.append(QStringLiteral("m%1,%2,%3,%4")
                         .arg(message.type)
                         .arg(message.start)
                         .arg(message.end)
                         .arg(message.message));
    }
    const auto parentheses = data.parenthesis();
    for (const CodeBlockData::Parenthesis &parenthesis : parentheses)
        parts.append(QStringLiteral("p%1,%2").arg(parenthesis.type).arg(parenthesis.position));
    const auto links = data.links();
    for (const CodeLink *link : links)
        parts.append(QStringLiteral("l%1,%2").arg(link->start()).arg(link->end()));
    const auto formats = block.layout()->formats();
    for (const QTextLayout::FormatRange &range : formats) {
        parts.append(QStringLiteral("f%1,%2,%3,%4")
                         .arg(range.start)
                         .arg(range.length)
                         .arg(range.format.foreground().color().name(),
                              range.format.underlineColor().name()));
    }
    return parts.join(QLatin1Char(' '));
}

QVector<LineState> statesOf(const CodeDocument &document)
{
    QVector<LineState> states;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        LineState state;
        state.state = block.userState();
        if (const CodeBlockData *data = CodeBlockData::testBlockData(block)) {
            state.node = describe(data->codeNode());
            if (CodeNode *const node = data->codeNode()) {
                state.parent = lineOf(node->parent());
                state.row = node->parent() ? node->parent()->childIndex(node) : -1;
            }
            state.indent = data->foldingIndent();
            state.reports = describeReports(block, *data);
        }
        states.append(state);
    }
    return states;
}

QString differenceOf(const LineState &a, const LineState &b)
{
    QStringList parts;
    const auto compare = [&](const char *what, const QString &left, const QString &right) {
        if (left != right)
            parts.append(QStringLiteral("%1 '%2' for '%3'").arg(QLatin1String(what), left, right));
    };
    compare("node", a.node, b.node);
    compare("parent", QString::number(a.parent), QString::number(b.parent));
    compare("state", QString::number(a.state), QString::number(b.state));
    compare("indent", QString::number(a.indent), QString::number(b.indent));
    compare("reports", a.reports, b.reports);
    return parts.join(QStringLiteral(", "));
}

bool onlyIndentDiffers(LineState a, const LineState &b)
{
    a.indent = b.indent;
    return a.node == QLatin1String("-") && a == b;
}

bool nextNodeDiffers(const QVector<LineState> &a, const QVector<LineState> &b, int line)
{
    while (line < a.size() && a.at(line).node == QLatin1String("-"))
        ++line;
    return line < a.size() && !(a.at(line) == b.at(line));
}

/// Random numbers and texts of the tests' grammar.
class Dice
{
public:
    explicit Dice(unsigned int seed)
        : m_engine(seed)
    {
    }

    int number(int below)
    {
        return int(m_engine() % unsigned(qMax(1, below)));
    }

    QString line()
    {
        switch (number(16)) {
        case 0:
            return QStringLiteral("[g%1 %2]").arg(number(9)).arg(1 + number(4));
        case 1:
            return QStringLiteral("[[n%1]]").arg(number(9));
        case 2:
            return QStringLiteral("anim %1 walk").arg(number(9));
        case 3:
        case 4:
            return QStringLiteral("frame f%1 %2%3")
                .arg(number(9))
                .arg(number(20) - 1)
                .arg(number(4) == 0 ? QStringLiteral(" loop") : QString());
        case 5:
            return QStringLiteral("box %1 1 2 %2 4")
                .arg(number(2) == 0 ? QLatin1Char('a') : QLatin1Char('c'))
                .arg(number(9));
        case 6:
            return QStringLiteral("; a comment");
        case 7:
            return QString();
        case 8:
            return QStringLiteral("no line (of) the grammar");
        case 9:
            return QStringLiteral("  both%1 = string (x) ; twice").arg(number(9));
        case 10:
            return QStringLiteral("old%1 = file a/b.txt").arg(number(9));
        case 11:
            return QStringLiteral("odd = words 1, 2");
        default: {
            static const ValueCode::Type types[] = {ValueCode::Int, ValueCode::FloatVec2,
                                                    ValueCode::IntVec3, ValueCode::Bool};
            return TestValue::line(QStringLiteral("k%1").arg(number(9)), types[number(4)],
                                   QStringLiteral("%1, 2").arg(number(99)));
        }
        }
    }

    QString lines(int count)
    {
        QStringList all;
        for (int i = 0; i < count; ++i)
            all.append(line());
        return all.join(QLatin1Char('\n'));
    }

private:
    std::mt19937 m_engine;
};

} // namespace

/// Edits a document at random and compares it after each edit with one that has read the same text
/// at once.
class CodeEditingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void editsKeepTheTreeOfAFreshParse_data();
    void editsKeepTheTreeOfAFreshParse();

private:
    void edit();
    void editText();
    void editNodes();
    void changeNode(CodeNode *node);
    CodeNode *anyNode();
    bool checkLimit(const QVector<int> &statesBefore);
    bool checkAgainstFresh();
    bool checkMessages();
    bool checkChain();

    Dice m_dice{1};
    TestDocument *m_document = nullptr;
    QString m_action;
    int m_firstLine = 0; ///< the lines that change covers
    int m_lastLine = 0;
    int m_changes = 0;
    int m_healed = 0; ///< edits with lines beyond the limit of parsing
};

void CodeEditingTest::initTestCase()
{
    TextCodecs::initialize();
}

void CodeEditingTest::editsKeepTheTreeOfAFreshParse_data()
{
    QTest::addColumn<unsigned int>("seed");
    QTest::addColumn<int>("edits");
    QTest::addColumn<bool>("withTester");
    // The model tester looks at all rows at each signal, which takes most of the time.
    for (unsigned int seed = 1; seed <= 4; ++seed)
        QTest::addRow("seed %u", seed) << seed << 5000 << (seed == 1);
}

void CodeEditingTest::editsKeepTheTreeOfAFreshParse()
{
    QFETCH(unsigned int, seed);
    QFETCH(int, edits);
    QFETCH(bool, withTester);
    m_dice = Dice(seed);
    RecordingHost host;
    TestDocument document(QStringLiteral("version 3\n") + m_dice.lines(500));
    document.parser.record = true;
    m_document = &document;
    m_healed = 0;
    auto *const animations = new TestAnimations(&document);
    document.registerNodeFile(animations, CodeNode::Animation, 0);
    std::unique_ptr<QAbstractItemModelTester> treeTester;
    std::unique_ptr<QAbstractItemModelTester> listTester;
    std::unique_ptr<QAbstractItemModelTester> messageTester;
    if (withTester) {
        const auto mode = QAbstractItemModelTester::FailureReportingMode::Fatal;
        treeTester = std::make_unique<QAbstractItemModelTester>(document.model(), mode);
        listTester = std::make_unique<QAbstractItemModelTester>(animations->listModel(), mode);
        messageTester = std::make_unique<QAbstractItemModelTester>(document.messages(), mode);
    }
    QMetaObject::Connection connection = connect(
        &document, &QTextDocument::contentsChange, this, [this](int from, int removed, int added) {
            m_firstLine = m_document->findBlock(from).blockNumber();
            const QTextBlock last = m_document->findBlock(from + added + (removed > 0));
            m_lastLine = last.isValid() ? last.blockNumber() : m_document->blockCount() - 1;
            ++m_changes;
        });
    for (int i = 0; i < edits; ++i) {
        QVector<int> statesBefore;
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next())
            statesBefore.append(block.userState());
        document.parser.parsed.clear();
        m_changes = 0;
        edit();
        const bool good =
            checkLimit(statesBefore) && checkChain() && checkMessages() && checkAgainstFresh();
        if (!good || QTest::currentTestFailed()) {
            QFAIL(
                qPrintable(QStringLiteral("seed %1, edit %2: %3").arg(seed).arg(i).arg(m_action)));
        }
        QCOMPARE(animations->animations().size(), int(animations->count()));
        QList<AnimationCode *> inTree;
        const QList<CodeNode *> childs = document.root()->childs();
        for (CodeNode *child : childs) {
            if (child->type() == CodeNode::Animation)
                inTree.append(static_cast<AnimationCode *>(child));
        }
        QCOMPARE(animations->animations(), inTree);
    }
    disconnect(connection);
    // The exception must stay one.
    QVERIFY2(m_healed < edits / 10, qPrintable(QString::number(m_healed)));
    treeTester.reset();
    listTester.reset();
    messageTester.reset();
    animations->release();
}

void CodeEditingTest::edit()
{
    const int kind = m_dice.number(20);
    if (kind < 13) {
        editText();
    } else if (kind < 15) {
        m_action = QStringLiteral("undo");
        m_document->undo();
    } else if (kind < 16) {
        m_action = QStringLiteral("redo");
        m_document->redo();
    } else {
        editNodes();
    }
}

void CodeEditingTest::editText()
{
    const int length = m_document->characterCount() - 1;
    QTextCursor cursor(m_document);
    cursor.setPosition(m_dice.number(length + 1));
    // The text is kept near its first size.
    const bool mayGrow = m_document->blockCount() < 550;
    const bool mayShrink = m_document->blockCount() > 450;
    switch (m_dice.number(6)) {
    case 0:
    case 1: {
        const QString typed = QStringLiteral("ab1 =[];,\n").at(m_dice.number(10));
        m_action = QStringLiteral("type '%1' at %2").arg(typed).arg(cursor.position());
        cursor.insertText(typed);
        break;
    }
    case 2:
        cursor.movePosition(QTextCursor::StartOfBlock);
        if (mayGrow) {
            const QString text = m_dice.lines(1 + m_dice.number(12)) + QLatin1Char('\n');
            m_action = QStringLiteral("paste at %1:\n%2").arg(cursor.position()).arg(text);
            cursor.insertText(text);
        }
        break;
    case 3:
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor,
                            1 + m_dice.number(4));
        m_action = QStringLiteral("delete from %1 to %2")
                       .arg(cursor.selectionStart())
                       .arg(cursor.selectionEnd());
        cursor.removeSelectedText();
        break;
    case 4:
        if (mayShrink) {
            cursor.setPosition(qMin(length, cursor.position() + m_dice.number(150)),
                               QTextCursor::KeepAnchor);
            m_action = QStringLiteral("delete from %1 to %2")
                           .arg(cursor.selectionStart())
                           .arg(cursor.selectionEnd());
            cursor.removeSelectedText();
        }
        break;
    default:
        cursor.select(QTextCursor::LineUnderCursor);
        cursor.setPosition(cursor.block().position());
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        const QString text = m_dice.line();
        m_action = QStringLiteral("line %1 becomes '%2'").arg(cursor.blockNumber()).arg(text);
        cursor.insertText(text);
    }
}

void CodeEditingTest::editNodes()
{
    const int count = 1 + m_dice.number(4);
    m_action = QStringLiteral("nodes:");
    if (count > 1)
        m_document->beginChange();
    for (int i = 0; i < count; ++i) {
        if (CodeNode *const node = anyNode())
            changeNode(node);
    }
    if (count > 1)
        m_document->endChange();
}

CodeNode *CodeEditingTest::anyNode()
{
    const QTextBlock block = m_document->findBlockByNumber(m_dice.number(m_document->blockCount()));
    return m_document->nodeInBlock(block);
}

void CodeEditingTest::changeNode(CodeNode *node)
{
    m_action += QStringLiteral(" %1 in line %2;").arg(describe(node)).arg(node->lineNo());
    if (m_dice.number(6) == 0 && m_document->blockCount() > 450) {
        m_action += QStringLiteral(" removed");
        node->remove(m_dice.number(3) == 0);
        return;
    }
    switch (node->type()) {
    case CodeNode::Value:
        if (m_dice.number(3) == 0)
            static_cast<TestValue *>(node)->setName(QStringLiteral("odd%1").arg(m_dice.number(9)));
        else
            static_cast<TestValue *>(node)->setValue(m_dice.number(999));
        break;
    case CodeNode::Group:
        static_cast<TestGroup *>(node)->addValue(QStringLiteral("added"), QStringLiteral("(1)"),
                                                 m_dice.number(4) == 0);
        break;
    case CodeNode::Animation:
        static_cast<TestAnimation *>(node)->addFrame(m_dice.number(9));
        break;
    case CodeNode::Frame:
        static_cast<TestFrame *>(node)->setDelay(m_dice.number(99));
        break;
    case CodeNode::HitBox:
        static_cast<TestBox *>(node)->setRect(QRect(9, 9, m_dice.number(99), 9));
        break;
    default:
        break;
    }
}

// A pass goes over the lines that changed, and on for as long as a line's state is another than it
// was. Where an edit gave one change, and the version stayed, that is all that is parsed.
bool CodeEditingTest::checkLimit(const QVector<int> &statesBefore)
{
    const QVector<int> &parsed = m_document->parser.parsed;
    const int shift = m_document->blockCount() - statesBefore.size();
    if (m_changes != 1 || parsed.contains(0) || m_action.startsWith(QStringLiteral("nodes")))
        return true;
    int line = m_firstLine;
    for (int i = 0; i < parsed.size(); ++i, ++line) {
        if (parsed.at(i) != line) {
            qWarning("line %d was parsed where %d was due", parsed.at(i), line);
            return false;
        }
    }
    if (line <= m_lastLine && line < m_document->blockCount()) {
        qWarning("line %d changed and was not parsed", line);
        return false;
    }
    // Of the lines behind the change, each but the last that was parsed must have a new state.
    for (int i = m_lastLine + 1; i < line; ++i) {
        const bool isNew =
            statesBefore.value(i - shift) != m_document->findBlockByNumber(i).userState();
        const bool goesOn = i + 1 < line || i + 1 == m_document->blockCount();
        if (isNew != goesOn && !(goesOn && i + 1 == m_document->blockCount())) {
            qWarning("the pass must not %s behind line %d", goesOn ? "go on" : "end", i);
            return false;
        }
    }
    return true;
}

// A line that depends on more than the line above it may lie beyond the limit of parsing and keep
// what it had, until the whole text is parsed. Of the lines that were parsed only one without a
// node may have another indent: where it takes that over from such a line above, or from the next
// line with a node.
bool CodeEditingTest::checkAgainstFresh()
{
    const TestDocument fresh(m_document->toString());
    const QVector<LineState> expected = statesOf(fresh);
    const QVector<LineState> states = statesOf(*m_document);
    if (states.size() != expected.size()) {
        qWarning("%d lines for %d", states.size(), expected.size());
        return false;
    }
    const QVector<int> &parsed = m_document->parser.parsed;
    bool familyDiffers = false;
    bool rowDiffers = false;
    QVector<bool> differs;
    for (int line = 0; line < states.size(); ++line) {
        const LineState &state = states.at(line);
        differs.append(!(state == expected.at(line)));
        rowDiffers = rowDiffers || state.row != expected.at(line).row;
        if (!differs.last())
            continue;
        const QString difference = differenceOf(state, expected.at(line));
        const bool leans = onlyIndentDiffers(state, expected.at(line))
            && ((line > 0 && differs.at(line - 1)) || nextNodeDiffers(states, expected, line));
        if (parsed.contains(line) && !leans) {
            qWarning("line %d, '%s', was parsed and has %s", line,
                     qPrintable(m_document->findBlockByNumber(line).text()),
                     qPrintable(difference));
            return false;
        }
        familyDiffers = familyDiffers || state.parent != expected.at(line).parent;
    }
    if (rowDiffers && !familyDiffers) {
        qWarning("the children of some line are in another order");
        return false;
    }
    if (!differs.contains(true))
        return true;
    ++m_healed;
    m_document->reparse();
    const QVector<LineState> healed = statesOf(*m_document);
    for (int line = 0; line < healed.size(); ++line) {
        if (!(healed.at(line) == expected.at(line))
            || healed.at(line).row != expected.at(line).row) {
            qWarning("line %d, parsed again, has %s", line,
                     qPrintable(differenceOf(healed.at(line), expected.at(line))));
            return false;
        }
    }
    return true;
}

bool CodeEditingTest::checkMessages()
{
    const Messages *const messages = m_document->messages();
    int row = 0;
    for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next()) {
        const CodeBlockData *data = CodeBlockData::testBlockData(block);
        const auto lineMessages =
            data ? data->syntaxMessages() : QVector<CodeBlockData::SyntaxMessage>();
        for (const CodeBlockData::SyntaxMessage &message : lineMessages) {
            // at() walks the lines, so a few rows stand for all.
            if (row % 16 == 0) {
                const Message found = messages->at(unsigned(row), Message::Any);
                if (int(found.line) != block.blockNumber() || found.text != message.message
                    || int(found.column) != message.start) {
                    qWarning("message %d is not that of line %d", row, block.blockNumber());
                    return false;
                }
            }
            ++row;
        }
    }
    if (messages->rowCount() != row || messages->count(Message::Any) != row) {
        qWarning("%d rows and %d messages for %d", messages->rowCount(),
                 messages->count(Message::Any), row);
        return false;
    }
    return true;
}

bool CodeEditingTest::checkChain()
{
    const CodeNode *node = m_document->root();
    for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next()) {
        const CodeNode *const inLine = m_document->nodeInBlock(block);
        if (!inLine)
            continue;
        const CodeNode *const before = node;
        node = node->next();
        if (node != inLine || node->previous() != before || !CodeNode::isValid(node)) {
            qWarning("the chain breaks at line %d", block.blockNumber());
            return false;
        }
    }
    return node->next() == nullptr;
}

QTEST_MAIN(CodeEditingTest)
#include "tst_codeediting.moc"

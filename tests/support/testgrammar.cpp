// SPDX-License-Identifier: MIT
#include "support/testgrammar.h"

#include <QDate>
#include <QRegularExpression>
#include <QTextBlock>

#include <algorithm>

using Vela::CodeNode;
using Vela::ContactBoxCode;
using Vela::ValueCode;

namespace {

enum Token {
    CommentToken = 1,
    ErrorToken = 2,
    KeyToken = 3,
    HeaderToken = 4,
    WordToken = 5,
    ValueToken = 7
};

QVariant valueOf(ValueCode::Type type, const QString &text)
{
    const QStringList items = text.split(QRegularExpression(QStringLiteral(" *, *")));
    QVariantList list;
    switch (type) {
    case ValueCode::Bool:
        return text == QLatin1String("yes");
    case ValueCode::Date:
        return QDate::fromString(text, Qt::ISODate);
    case ValueCode::Float:
        return text.toDouble();
    case ValueCode::Int:
    case ValueCode::Keyword:
        return text.toInt();
    case ValueCode::FloatVec2:
    case ValueCode::FloatVec3:
    case ValueCode::FloatVec4:
    case ValueCode::FloatVector:
        for (const QString &item : items)
            list.append(item.toDouble());
        return list;
    case ValueCode::KeywordVector:
        for (const QString &item : items)
            list.append(item.toUInt());
        return list;
    case ValueCode::IntVec2:
    case ValueCode::IntVec3:
    case ValueCode::IntVec4:
    case ValueCode::IntVector:
        for (const QString &item : items)
            list.append(item.toInt());
        return list;
    default:
        return text;
    }
}

} // namespace

TestValue::TestValue(Type type, const QTextBlock &block, CodeNode *previous, const QString &name,
                     const QVariant &value)
    : ValueCode(type, block, previous, value)
    , m_name(name)
{
}

const QStringList &TestValue::typeNames()
{
    static const QStringList names = {QStringLiteral("any"),
                                      QString(),
                                      QString(),
                                      QStringLiteral("string"),
                                      QStringLiteral("bool"),
                                      QStringLiteral("file"),
                                      QStringLiteral("date"),
                                      QStringLiteral("keyword"),
                                      QStringLiteral("words"),
                                      QStringLiteral("float"),
                                      QStringLiteral("vec2"),
                                      QStringLiteral("vec3"),
                                      QStringLiteral("vec4"),
                                      QStringLiteral("floats"),
                                      QStringLiteral("int"),
                                      QStringLiteral("ivec2"),
                                      QStringLiteral("ivec3"),
                                      QStringLiteral("ivec4"),
                                      QStringLiteral("ints")};
    return names;
}

QString TestValue::line(const QString &name, Type type, const QString &text)
{
    return name + QStringLiteral(" = ") + typeNames().value(type) + QLatin1Char(' ') + text;
}

QVariant TestValue::defaultValue() const
{
    return QVariant();
}

QString TestValue::keywordName(unsigned int keyword) const
{
    return QStringLiteral("word%1").arg(keyword);
}

void TestValue::setValue(const QVariant &value)
{
    const QString text = valueType() == Keyword
        ? value.toString()
        : asString(this, valueType(), convertFrom(valueType(), value), QLatin1Char(','));
    change(line(m_name, valueType(), text));
}

QString TestValue::name() const
{
    return m_name;
}

void TestValue::setName(const QString &name)
{
    const QString text = valueType() == Keyword
        ? rawValue().toString()
        : asString(this, valueType(), rawValue(), QLatin1Char(','));
    change(line(name, valueType(), text));
}

void TestValue::update(const QString &name, const QVariant &value)
{
    m_name = name;
    valueChanged(value);
}

TestGroup::TestGroup(const QTextBlock &block, CodeNode *previous, const QString &name,
                     unsigned int subType, bool nested)
    : GroupCode(block, previous, subType)
    , m_name(name)
    , m_nested(nested)
{
    TestGroup *const outer = nested ? outerAt(CodeNode::previous()) : nullptr;
    if (outer)
        outer->insertChild(this, outer->childCount());
    else
        insertRootChild(this);
    if (nested)
        return;
    // The nested groups below have belonged to the group above, or to the root.
    for (CodeNode *node = next(); node && node->type() != Animation; node = node->next()) {
        if (node->type() != Group)
            continue;
        auto *const group = static_cast<TestGroup *>(node);
        if (!group->isNested())
            break;
        insertChild(group, childCount());
    }
}

TestGroup::~TestGroup()
{
    while (!m_groups.isEmpty()) {
        TestGroup *const group = m_groups.first();
        TestGroup *const outer = outerAt(CodeNode::previous());
        if (outer)
            outer->insertChild(group, outer->childCount());
        else
            group->insertRootChild(group);
    }
}

TestGroup *TestGroup::outerAt(CodeNode *node)
{
    for (CodeNode *above = node; above; above = above->previous()) {
        if (above->type() == Animation)
            return nullptr;
        if (above->type() == Group && !static_cast<TestGroup *>(above)->isNested())
            return static_cast<TestGroup *>(above);
    }
    return nullptr;
}

unsigned int TestGroup::childCount() const
{
    return GroupCode::childCount() + unsigned(m_groups.size());
}

// A child on its way out is no more than a node.
int TestGroup::groupIndex(const CodeNode *child) const
{
    const auto isChild = [&](const CodeNode *group) { return group == child; };
    const auto found = std::find_if(m_groups.begin(), m_groups.end(), isChild);
    return found == m_groups.end() ? -1 : int(found - m_groups.begin());
}

int TestGroup::childIndex(CodeNode *child) const
{
    const int group = groupIndex(child);
    return group < 0 ? GroupCode::childIndex(child) : int(GroupCode::childCount()) + group;
}

CodeNode *TestGroup::childAt(unsigned int row) const
{
    const unsigned int values = GroupCode::childCount();
    return row < values ? GroupCode::childAt(row) : m_groups.value(int(row - values));
}

void TestGroup::insertChild(CodeNode *child, unsigned int row)
{
    if (child->type() != Group) {
        GroupCode::insertChild(child, qMin(row, GroupCode::childCount()));
        return;
    }
    if (child->parent())
        child->parent()->removeChild(child);
    adopt(static_cast<TestGroup *>(child));
}

// Nested groups stand in the order of the text.
void TestGroup::adopt(TestGroup *group)
{
    int row = 0;
    for (CodeNode *above = group->previous(); above && above != this; above = above->previous()) {
        const int sibling = groupIndex(above);
        if (sibling >= 0) {
            row = sibling + 1;
            break;
        }
    }
    setParent(group, this);
    beginInsert(this, int(GroupCode::childCount()) + row);
    m_groups.insert(row, group);
    endInsert();
}

void TestGroup::removeChild(CodeNode *child)
{
    const int row = groupIndex(child);
    if (row < 0) {
        GroupCode::removeChild(child);
        return;
    }
    setParent(child, nullptr);
    beginRemove(this, int(GroupCode::childCount()) + row);
    m_groups.removeAt(row);
    endRemove();
}

ValueCode *TestGroup::insertValue(unsigned int index, const QString &name, const QString &value,
                                  bool isComment)
{
    if (index >= valueCount())
        return addValue(name, value, isComment);
    const QString code = TestValue::line(name, ValueCode::String, value);
    document()->insertBefore(valueAt(index), isComment ? QLatin1Char(';') + code : code, true);
    return GroupCode::valueCount() > index ? valueAt(index) : nullptr;
}

ValueCode *TestGroup::addValue(const QString &name, const QString &value, bool isComment)
{
    const QString code = TestValue::line(name, ValueCode::String, value);
    appendValue(isComment ? QLatin1Char(';') + code : code);
    return valueCount() > 0 ? valueAt(valueCount() - 1) : nullptr;
}

QString TestGroup::name() const
{
    return m_name;
}

void TestGroup::setName(const QString &name)
{
    change(m_nested ? QStringLiteral("[[%1]]").arg(name)
                    : QStringLiteral("[%1 %2]").arg(name).arg(subType()));
}

void TestGroup::update(const QString &name, unsigned int subType)
{
    m_name = name;
    setSubType(subType);
    valueChanged(QVariant());
}

TestAnimation::TestAnimation(const QTextBlock &block, CodeNode *previous, const QString &id,
                             const QString &name)
    : AnimationCode(block, previous)
    , m_id(id)
    , m_name(name)
{
}

unsigned int TestAnimation::loopPoint() const
{
    for (unsigned int i = 0; i < frameCount(); ++i) {
        if (frameAt(i)->isLoopPoint())
            return i;
    }
    return 0;
}

Vela::FrameCode *TestAnimation::insertFrame(unsigned int index, int time)
{
    if (index >= frameCount())
        return addFrame(time);
    document()->insertBefore(frameAt(index), TestFrame::line(QStringLiteral("new"), time, false),
                             false);
    return frameAt(index);
}

Vela::FrameCode *TestAnimation::addFrame(int time)
{
    appendValue(TestFrame::line(QStringLiteral("new"), time, false));
    return frameAt(frameCount() - 1);
}

QVariant TestAnimation::property(const QString &name) const
{
    return name == QLatin1String("Identifier") ? QVariant(m_id) : NamedCode::property(name);
}

void TestAnimation::setProperty(const QString &name, const QVariant &value)
{
    if (name == QLatin1String("Identifier"))
        change(QStringLiteral("anim %1 %2").arg(value.toString(), m_name));
    else
        NamedCode::setProperty(name, value);
}

QString TestAnimation::name() const
{
    return m_name;
}

void TestAnimation::setName(const QString &name)
{
    change(QStringLiteral("anim %1 %2").arg(m_id, name));
}

void TestAnimation::update(const QString &id, const QString &name)
{
    m_id = id;
    m_name = name;
    valueChanged(QVariant());
}

TestBox::TestBox(const QTextBlock &block, CodeNode *previous, BoxType type, QRect rect)
    : ContactBoxCode(block, previous)
    , m_type(type)
    , m_rect(rect)
{
}

TestBox::BoxType TestBox::boxType() const
{
    return m_type;
}

QRect TestBox::rect() const
{
    return m_rect;
}

void TestBox::setRect(QRect rect)
{
    change(line(m_type, rect));
}

bool TestBox::setDepth(Depth)
{
    return false;
}

QStringList TestBox::propertyNames() const
{
    return {};
}

QVariant TestBox::property(const QString &) const
{
    return QVariant();
}

void TestBox::setProperty(const QString &, const QVariant &)
{
}

void TestBox::update(BoxType type, QRect rect)
{
    m_type = type;
    m_rect = rect;
    valueChanged(QVariant());
}

QString TestBox::line(BoxType type, QRect rect)
{
    return QStringLiteral("box %1 %2 %3 %4 %5")
        .arg(type == Attack ? QLatin1Char('a') : QLatin1Char('c'))
        .arg(rect.x())
        .arg(rect.y())
        .arg(rect.width())
        .arg(rect.height());
}

TestBoxes::TestBoxes(Vela::FrameCode *frame, ContactBoxCode::BoxType type)
    : ContactBoxesCode(frame, type)
{
}

QList<ContactBoxCode *> TestBoxes::boxes() const
{
    QList<ContactBoxCode *> found;
    for (CodeNode *node = frame()->previous(); node && node->type() == CodeNode::HitBox;
         node = node->previous()) {
        auto *const box = static_cast<TestBox *>(node);
        if (box->boxType() == boxType())
            found.prepend(box);
    }
    return found;
}

unsigned int TestBoxes::count() const
{
    return unsigned(boxes().size());
}

ContactBoxCode *TestBoxes::at(unsigned int index) const
{
    return boxes().value(int(index));
}

ContactBoxCode *TestBoxes::add(QRect rect)
{
    frame()->document()->insertBefore(frame(), TestBox::line(boxType(), rect), true);
    return at(count() - 1);
}

void TestBoxes::remove(unsigned int index)
{
    if (ContactBoxCode *const box = at(index))
        box->remove(false);
}

void TestBoxes::clear()
{
    while (count() > 0)
        remove(0);
}

TestFrame::TestFrame(const QTextBlock &block, CodeNode *previous, const QString &id, int delay,
                     bool loop)
    : FrameCode(block, previous, &m_attack, &m_collision)
    , m_id(id)
    , m_delay(delay)
    , m_loop(loop)
{
}

void TestFrame::setSprite(const QVariant &identifier)
{
    change(line(identifier.toString(), m_delay, m_loop));
}

void TestFrame::setDelay(int ticks)
{
    change(line(m_id, ticks, m_loop));
}

QVariant TestFrame::property(const QString &name) const
{
    if (name == QLatin1String("Identifier"))
        return m_id;
    if (name == QLatin1String("Delay"))
        return m_delay;
    return name == QLatin1String("LoopPoint") ? QVariant(m_loop) : QVariant();
}

void TestFrame::setProperty(const QString &name, const QVariant &value)
{
    if (name == QLatin1String("Identifier"))
        setSprite(value);
    else if (name == QLatin1String("Delay"))
        setDelay(value.toInt());
    else if (name == QLatin1String("LoopPoint"))
        change(line(m_id, m_delay, value.toBool()));
}

void TestFrame::update(const QString &id, int delay, bool loop)
{
    m_id = id;
    m_delay = delay;
    m_loop = loop;
    valueChanged(QVariant());
}

QString TestFrame::line(const QString &id, int delay, bool loop)
{
    return QStringLiteral("frame %1 %2").arg(id).arg(delay)
        + (loop ? QStringLiteral(" loop") : QString());
}

int TestLink::alive = 0;
int TestLink::activated = 0;

TestLink::TestLink(int start, int end)
    : CodeLink(start, end)
{
    ++alive;
}

TestLink::~TestLink()
{
    --alive;
}

void TestLink::activate()
{
    ++activated;
}

namespace {

/// The parsing of one line.
class LineParse
{
public:
    LineParse(const QString &line, const QTextBlock &block, CodeNode *oldNode, CodeNode *previous,
              Vela::RootCode *root, Vela::CodeParserSyntax *syntax)
        : m_line(line)
        , m_block(block)
        , m_oldNode(oldNode)
        , m_previous(previous)
        , m_root(root)
        , m_syntax(syntax)
    {
        while (m_start < line.size() && line.at(m_start).isSpace())
            ++m_start;
        m_end = line.indexOf(QLatin1Char(';'));
        if (m_end < 0)
            m_end = line.size();
        else
            token(CommentToken, m_end, line.size());
        m_text = line.mid(m_start, m_end - m_start).trimmed();
        m_words = m_text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }

    CodeNode *parse()
    {
        if (m_text.isEmpty())
            return nullptr;
        const QString first = m_words.first();
        if (first.startsWith(QLatin1Char('[')))
            return header();
        if (first == QLatin1String("version"))
            return version();
        if (first == QLatin1String("anim"))
            return animation();
        if (first == QLatin1String("frame"))
            return frame();
        if (first == QLatin1String("box"))
            return box();
        return value();
    }

private:
    void token(int type, int start, int end)
    {
        if (m_syntax)
            m_syntax->setToken(type, start, end);
    }

    CodeNode *error(const QString &text)
    {
        if (m_syntax)
            m_syntax->addError(ErrorToken, text, m_start, m_start + m_text.size());
        return nullptr;
    }

    // The parent that a new node of \a type finds. A node that would find another is not kept.
    Vela::ParentCode *joined(CodeNode::Type type, CodeNode::Type parent, CodeNode::Type end) const
    {
        for (CodeNode *node = m_previous; node && node->type() != end; node = node->previous()) {
            if (node->type() == type)
                return node->parent();
            if (node->type() == parent)
                return static_cast<Vela::ParentCode *>(node);
        }
        return nullptr;
    }

    CodeNode *header()
    {
        const bool nested = m_text.startsWith(QLatin1String("[["));
        const QString close = nested ? QStringLiteral("]]") : QStringLiteral("]");
        const int depth = close.size();
        if (!m_text.endsWith(close) || m_text.size() <= 2 * depth)
            return error(QStringLiteral("expected a header"));
        const QStringList parts =
            m_text.mid(depth, m_text.size() - 2 * depth).split(QLatin1Char(' '));
        const unsigned int subType = nested ? 2 : parts.value(1, QStringLiteral("1")).toUInt();
        token(HeaderToken, m_start, m_start + m_text.size());
        if (auto *const group = dynamic_cast<TestGroup *>(m_oldNode)) {
            Vela::ParentCode *outer = nested ? TestGroup::outerAt(m_previous) : nullptr;
            if (!outer)
                outer = m_root;
            if (group->isNested() == nested && group->parent() == outer) {
                if (group->name() != parts.first() || group->subType() != subType)
                    group->update(parts.first(), subType);
                return group;
            }
        }
        return new TestGroup(m_block, m_previous, parts.first(), subType, nested);
    }

    CodeNode *version()
    {
        if (m_block.previous().isValid())
            return error(QStringLiteral("expected the version in the first line"));
        token(WordToken, m_start, m_start + m_text.size());
        m_root->setVersion(m_words.value(1).toUInt(), true);
        return nullptr;
    }

    CodeNode *animation()
    {
        if (m_words.size() < 2)
            return error(QStringLiteral("expected an identifier"));
        token(WordToken, m_start, m_start + 4);
        const QString name = QStringList(m_words.mid(2)).join(QLatin1Char(' '));
        if (auto *const old = dynamic_cast<TestAnimation *>(m_oldNode)) {
            if (old->name() != name
                || old->property(QStringLiteral("Identifier")).toString() != m_words.at(1))
                old->update(m_words.at(1), name);
            return old;
        }
        return new TestAnimation(m_block, m_previous, m_words.at(1), name);
    }

    CodeNode *frame()
    {
        bool isNumber = false;
        const int delay = m_words.value(2).toInt(&isNumber);
        if (!isNumber)
            return error(QStringLiteral("expected a delay"));
        const bool loop = m_words.value(3) == QLatin1String("loop");
        token(WordToken, m_start, m_start + 5);
        auto *const old = dynamic_cast<TestFrame *>(m_oldNode);
        if (old && old->parent() == joined(CodeNode::Frame, CodeNode::Animation, CodeNode::Group)) {
            if (old->delay() != delay || old->isLoopPoint() != loop
                || old->property(QStringLiteral("Identifier")).toString() != m_words.at(1))
                old->update(m_words.at(1), delay, loop);
            return old;
        }
        return new TestFrame(m_block, m_previous, m_words.at(1), delay, loop);
    }

    CodeNode *box()
    {
        if (m_words.size() != 6)
            return error(QStringLiteral("expected a box"));
        const auto type = m_words.at(1) == QLatin1String("a") ? ContactBoxCode::Attack
                                                              : ContactBoxCode::Collision;
        const QRect rect(m_words.at(2).toInt(), m_words.at(3).toInt(), m_words.at(4).toInt(),
                         m_words.at(5).toInt());
        token(WordToken, m_start, m_start + 3);
        if (auto *const old = dynamic_cast<TestBox *>(m_oldNode)) {
            if (old->boxType() != type || old->rect() != rect)
                old->update(type, rect);
            return old;
        }
        return new TestBox(m_block, m_previous, type, rect);
    }

    CodeNode *value()
    {
        const QString key = m_words.first();
        const int type = TestValue::typeNames().indexOf(m_words.value(2, QStringLiteral("-")));
        if (m_words.value(1) != QLatin1String("=") || type < 0)
            return error(QStringLiteral("expected a value"));
        const int valueStart =
            m_line.indexOf(m_words.at(2), m_line.indexOf(QLatin1Char('='))) + m_words.at(2).size();
        const QString text = m_line.mid(valueStart, m_end - valueStart).trimmed();
        reportValue(key, ValueCode::Type(type), valueStart);
        const QVariant value = valueOf(ValueCode::Type(type), text);
        auto *const old = dynamic_cast<TestValue *>(m_oldNode);
        if (!old || old->valueType() != type
            || old->parent() != joined(CodeNode::Value, CodeNode::Group, CodeNode::Animation))
            return new TestValue(ValueCode::Type(type), m_block, m_previous, key, value);
        if (old->name() != key || old->rawValue() != old->convertFrom(ValueCode::Type(type), value))
            old->update(key, value);
        return old;
    }

    void reportValue(const QString &key, ValueCode::Type type, int valueStart)
    {
        if (!m_syntax)
            return;
        const int keyEnd = m_start + key.size();
        token(KeyToken, m_start, keyEnd);
        token(ValueToken, valueStart, m_end);
        if (key.startsWith(QLatin1String("old")))
            m_syntax->addDeprecation(KeyToken, QStringLiteral("old: ") + key, m_start, keyEnd);
        if (key.startsWith(QLatin1String("both")))
            m_syntax->addError(KeyToken, QStringLiteral("both: ") + key, m_start, keyEnd);
        if (key.startsWith(QLatin1String("odd")) || key.startsWith(QLatin1String("both")))
            m_syntax->addWarning(KeyToken, QStringLiteral("odd: ") + key, m_start, keyEnd);
        for (int i = valueStart; i < m_end; ++i) {
            const QChar c = m_line.at(i);
            if (c == QLatin1Char('(') || c == QLatin1Char(')'))
                m_syntax->addParenthesis(c == QLatin1Char('('), c, i);
        }
        if (type == ValueCode::File)
            m_syntax->addLink(new TestLink(valueStart, m_end));
    }

    const QString &m_line;
    const QTextBlock &m_block;
    CodeNode *const m_oldNode;
    CodeNode *const m_previous;
    Vela::RootCode *const m_root;
    Vela::CodeParserSyntax *const m_syntax;
    int m_start = 0;
    int m_end = 0; ///< where the comment begins, or the line's end
    QString m_text;
    QStringList m_words;
};

} // namespace

CodeNode *TestParser::parseLine(const QString &line, const QTextBlock &block, CodeNode *oldNode,
                                CodeNode *previous, Vela::RootCode *root,
                                Vela::CodeParserSyntax *syntax)
{
    if (record)
        parsed.append(block.blockNumber());
    return LineParse(line, block, oldNode, previous, root, syntax).parse();
}

TestDocument::TestDocument(const QString &text, bool withParser)
    : CodeDocument(0)
{
    if (withParser)
        setParser(&parser);
    if (!text.isEmpty())
        setPlainText(text);
}

// The parser goes before the base, which forgets it only in its own destructor.
TestDocument::~TestDocument()
{
    setParser(nullptr);
}

void TestDocument::formatLines(int firstLine, int lastLine, bool)
{
    beginChange();
    for (QTextBlock block = findBlockByNumber(firstLine);
         block.isValid() && block.blockNumber() <= lastLine; block = block.next()) {
        const QString text = block.text();
        int blanks = 0;
        while (blanks < text.size() && text.at(blanks) == QLatin1Char(' '))
            ++blanks;
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor, blanks);
        insertOnCursor(QString(), cursor);
    }
    endChange();
}

void TestDocument::codeUpdated()
{
    ++updates;
}

TestAnimations::TestAnimations(Vela::CodeDocument *document)
    : Animations(document)
{
}

unsigned int TestAnimations::optimize()
{
    return 0;
}

QString TestAnimations::animationTemplate() const
{
    return QStringLiteral("anim %1\n");
}

void TestAnimations::free()
{
    delete this;
}

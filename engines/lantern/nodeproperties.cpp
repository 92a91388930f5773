// SPDX-License-Identifier: MIT
#include "lantern/nodeproperties.h"

#include "lantern/document.h"
#include "lantern/linereader.h"
#include "lantern/motioncode.h"
#include "lantern/motionframe.h"
#include "lantern/report.h"
#include "lantern/scriptcode.h"
#include "lantern/scriptreader.h"

#include <algorithm>

namespace Lantern {

namespace {

using Vela::CodeNode;
using Vela::ContactBoxCode;
using Vela::FrameCode;

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern::NodeProperties)
};

constexpr int largest = 999999999; // the grammar reads no more digits

template <typename T>
using Finder = std::function<T *()>;

template <typename T>
Finder<T> finderOf(const NodeFinder &find)
{
    return [find] { return dynamic_cast<T *>(find()); };
}

QVariant pair(double x, double y)
{
    return QVariantList{x, y};
}

QVariant wholePair(int x, int y)
{
    return QVariantList{x, y};
}

int wholeAt(const QVariant &list, int index)
{
    return list.toList().value(index).toInt();
}

double numberAt(const QVariant &list, int index)
{
    return list.toList().value(index).toDouble();
}

QVariantMap bounds(double least, double most, double step = 1)
{
    return {{QStringLiteral("minimum"), least},
            {QStringLiteral("maximum"), most},
            {QStringLiteral("step"), step}};
}

QVariantMap items(const QStringList &words)
{
    return {{QStringLiteral("items"), words}};
}

/// Collects the properties of one kind of node.
template <typename T>
class Collector
{
public:
    Collector(NodeProperties &properties, const Finder<T> &find, const QString &section,
              const char *sectionKey)
        : m_properties(properties)
        , m_find(find)
        , m_section(section)
        , m_sectionKey(QLatin1String("lantern_panel_") + QLatin1String(sectionKey))
    {
    }

    template <typename Read, typename Write>
    void add(const char *kind, const QString &label, const Read &read, const Write &write,
             const QVariantMap &attributes = {})
    {
        const Finder<T> find = m_find;
        m_properties.append({QLatin1String(kind), label, m_section, m_sectionKey,
                             [find, read] {
                                 const T *const node = find();
                                 return node ? QVariant(read(*node)) : QVariant();
                             },
                             [find, write](const QVariant &value) {
                                 if (T *const node = find())
                                     write(*node, value);
                             },
                             attributes});
    }

private:
    NodeProperties &m_properties;
    const Finder<T> m_find;
    const QString m_section;
    const QString m_sectionKey;
};

void addBox(NodeProperties &properties, const Finder<ContactBoxCode> &find, const QString &section)
{
    Collector<ContactBoxCode> box(properties, find, section, "box");
    box.add(
        "int4", Texts::tr("Area"),
        [](const ContactBoxCode &node) {
            const QRect rect = node.rect();
            return QVariantList{rect.x(), rect.y(), rect.width(), rect.height()};
        },
        [](ContactBoxCode &node, const QVariant &value) {
            node.setRect(
                QRect(wholeAt(value, 0), wholeAt(value, 1), wholeAt(value, 2), wholeAt(value, 3)));
        },
        bounds(-largest, largest));
    box.add(
        "int2", Texts::tr("Depth"),
        [](const ContactBoxCode &node) {
            return wholePair(node.depth().first, node.depth().second);
        },
        [](ContactBoxCode &node, const QVariant &value) {
            node.setDepth({wholeAt(value, 0), wholeAt(value, 1)});
        },
        bounds(-largest, largest));
}

QString boxTitle(ContactBoxCode::BoxType type)
{
    return type == ContactBoxCode::Attack ? Texts::tr("Attack box") : Texts::tr("Body box");
}

void addBoxes(NodeProperties &properties, const Finder<MotionFrame> &find,
              ContactBoxCode::BoxType type)
{
    const auto boxes = [type](const FrameCode &frame) {
        return type == ContactBoxCode::Attack ? frame.attackBoxes() : frame.collisionBoxes();
    };
    const MotionFrame *const frame = find();
    const unsigned int count = frame ? boxes(*frame)->count() : 0;
    for (unsigned int i = 0; i < count; ++i) {
        const auto box = [find, boxes, i]() -> ContactBoxCode * {
            const MotionFrame *const now = find();
            return now ? boxes(*now)->at(i) : nullptr;
        };
        addBox(properties, box, QStringLiteral("%1 %2").arg(boxTitle(type)).arg(i + 1));
    }
}

void addPicture(Collector<MotionFrame> &frame, const Document &document)
{
    frame.add(
        "stroption", Texts::tr("Sprite"), [](const MotionFrame &node) { return node.spriteName(); },
        [](MotionFrame &node, const QVariant &value) { node.setSprite(value); },
        items(document.spriteNames()));
    frame.add(
        "int", Texts::tr("Ticks"),
        [](const MotionFrame &node) { return std::max(node.delay(), 0); },
        [](MotionFrame &node, const QVariant &value) { node.setDelay(value.toInt()); },
        bounds(0, largest));
    frame.add(
        "bool", Texts::tr("Forever"), [](const MotionFrame &node) { return node.delay() < 0; },
        [](MotionFrame &node, const QVariant &value) { node.setDelay(value.toBool() ? -1 : 1); });
    frame.add(
        "stroption", Texts::tr("Sound"), [](const MotionFrame &node) { return node.soundName(); },
        [](MotionFrame &node, const QVariant &value) { node.setSound(value.toString()); },
        items(document.soundNames()));
    frame.add(
        "bool", Texts::tr("Loop"), [](const MotionFrame &node) { return node.isLoopPoint(); },
        [](MotionFrame &node, const QVariant &value) {
            node.setProperty(QStringLiteral("LoopPoint"), value);
        });
}

void addPlace(Collector<MotionFrame> &frame)
{
    frame.add(
        "int2", Texts::tr("Offset"),
        [](const MotionFrame &node) { return wholePair(node.offsetX(), node.offsetY()); },
        [](MotionFrame &node, const QVariant &value) {
            node.setOffset(QPoint(wholeAt(value, 0), wholeAt(value, 1)));
        },
        bounds(-largest, largest));
    frame.add(
        "option", Texts::tr("Flip"), [](const MotionFrame &node) { return int(node.flipFlags()); },
        [](MotionFrame &node, const QVariant &value) { node.setFlipFlags(value.toUInt()); },
        items(QStringList{QStringLiteral("none")} + flipWords()));
    frame.add(
        "float2", Texts::tr("Scale"),
        [](const MotionFrame &node) { return pair(node.scaleX(), node.scaleY()); },
        [](MotionFrame &node, const QVariant &value) {
            node.setScale(QPointF(numberAt(value, 0), numberAt(value, 1)));
        },
        bounds(-largest, largest, 0.1));
    frame.add(
        "float", Texts::tr("Angle"), [](const MotionFrame &node) { return node.angle(); },
        [](MotionFrame &node, const QVariant &value) { node.setAngle(value.toDouble()); },
        bounds(-largest, largest));
    frame.add(
        "option", Texts::tr("Blend"), [](const MotionFrame &node) { return int(node.blendMode()); },
        [](MotionFrame &node, const QVariant &value) {
            node.setBlendMode(FrameCode::Blend::Mode(value.toInt()));
        },
        items(blendWords()));
    frame.add(
        "float2", Texts::tr("Factors"),
        [](const MotionFrame &node) { return pair(node.blendSource(), node.blendDestination()); },
        [](MotionFrame &node, const QVariant &value) {
            node.setBlend(
                FrameCode::Blend(node.blendMode(), numberAt(value, 0), numberAt(value, 1)));
        },
        bounds(-largest, largest, 0.1));
}

// Returns whether a form of the one has the same fields as one of the other.
bool isAlike(const NodeProperty &a, const NodeProperty &b)
{
    return a.kind == b.kind && a.label == b.label && a.section == b.section
        && a.attributes == b.attributes;
}

bool isScriptLine(const QString &text)
{
    const Line line(text);
    Report silent(line, nullptr);
    ScriptLine script;
    return readScriptLine(line, script, silent);
}

} // namespace

NodeProperties frameProperties(const Document &document, const NodeFinder &find)
{
    NodeProperties properties;
    const Finder<MotionFrame> findFrame = finderOf<MotionFrame>(find);
    Collector<MotionFrame> frame(properties, findFrame, Texts::tr("Frame"), "frame");
    addPicture(frame, document);
    addPlace(frame);
    addBoxes(properties, findFrame, ContactBoxCode::Attack);
    addBoxes(properties, findFrame, ContactBoxCode::Collision);
    return properties;
}

NodeProperties boxProperties(const NodeFinder &find)
{
    NodeProperties properties;
    const Finder<ContactBoxCode> findBox = finderOf<ContactBoxCode>(find);
    if (const ContactBoxCode *const box = findBox())
        addBox(properties, findBox, boxTitle(box->boxType()));
    return properties;
}

NodeProperties animationProperties(const NodeFinder &find)
{
    NodeProperties properties;
    Collector<MotionCode> animation(properties, finderOf<MotionCode>(find), Texts::tr("Animation"),
                                    "animation");
    animation.add(
        "string", Texts::tr("Identifier"), [](const MotionCode &node) { return node.identifier(); },
        [](MotionCode &node, const QVariant &value) { node.setIdentifier(value.toString()); });
    animation.add(
        "string", Texts::tr("Title"), [](const MotionCode &node) { return node.name(); },
        [](MotionCode &node, const QVariant &value) { node.setName(value.toString()); });
    return properties;
}

NodeProperties scriptProperties(const NodeFinder &find)
{
    NodeProperties properties;
    Collector<ScriptCode> script(properties, finderOf<ScriptCode>(find), Texts::tr("Event"),
                                 "script");
    script.add(
        "string", Texts::tr("Event"), [](const ScriptCode &node) { return node.name(); },
        [](ScriptCode &node, const QVariant &value) {
            const QString line = value.toString() + QLatin1Char(' ') + node.rawValue().toString();
            if (isScriptLine(line))
                node.setName(value.toString());
        });
    script.add(
        "string", Texts::tr("Actions"), [](const ScriptCode &node) { return node.rawValue(); },
        [](ScriptCode &node, const QVariant &value) {
            if (isScriptLine(node.name() + QLatin1Char(' ') + value.toString()))
                node.setValue(value);
        });
    return properties;
}

bool LineProperties::setLine(const QTextCursor &cursor)
{
    QTextCursor line = cursor;
    line.movePosition(QTextCursor::StartOfBlock);
    if (line.isNull() || m_line.isNull() || line.document() != m_line.document()
        || line.block() != m_line.block())
        m_typed = -1;
    m_line = line;
    const NodeProperties properties = propertiesOfLine();
    const bool areOthers = !std::equal(properties.begin(), properties.end(), m_properties.begin(),
                                       m_properties.end(), isAlike);
    m_properties = properties;
    return areOthers;
}

CodeNode *LineProperties::node() const
{
    auto *const document =
        m_line.isNull() ? nullptr : qobject_cast<Vela::CodeDocument *>(m_line.document());
    return document ? document->nodeInBlock(m_line.block()) : nullptr;
}

NodeProperties LineProperties::propertiesOfLine() const
{
    // A cursor of no document knows none.
    if (m_line.isNull())
        return {};
    const auto *const document = qobject_cast<Document *>(m_line.document());
    const CodeNode *const first = node();
    if (!document || !first)
        return {};
    const NodeFinder find = [this] { return node(); };
    switch (first->type()) {
    case CodeNode::Frame:
        return frameProperties(*document, find);
    case CodeNode::HitBox:
        return boxProperties(find);
    case CodeNode::Animation:
        return animationProperties(find);
    case CodeNode::Value:
        if (document->scope() == Scope::Script)
            return scriptProperties(find);
        break;
    case CodeNode::Group:
    case CodeNode::Root:
        break;
    }
    return sectionProperties(*document, find);
}

int LineProperties::revision() const
{
    return m_line.isNull() ? 0 : m_line.document()->revision();
}

unsigned int LineProperties::count() const
{
    return unsigned(m_properties.size());
}

QString LineProperties::kind(unsigned int index) const
{
    return m_properties.at(int(index)).kind;
}

QString LineProperties::label(unsigned int index) const
{
    return m_properties.at(int(index)).label;
}

QString LineProperties::section(unsigned int index) const
{
    return m_properties.at(int(index)).section;
}

QVariant LineProperties::value(unsigned int index) const
{
    const bool isTyped = int(index) == m_typed && revision() == m_typedRevision;
    return isTyped ? m_typedValue : m_properties.at(int(index)).read();
}

void LineProperties::setValue(unsigned int index, const QVariant &value)
{
    // A change may lead to other properties.
    const NodeProperty property = m_properties.at(int(index));
    property.write(value);
    m_typed = int(index);
    m_typedValue = value;
    m_typedRevision = revision();
}

QVariantMap LineProperties::attributes(unsigned int index) const
{
    return m_properties.at(int(index)).attributes;
}

QString LineProperties::sectionKey(unsigned int index) const
{
    return m_properties.at(int(index)).sectionKey;
}

} // namespace Lantern

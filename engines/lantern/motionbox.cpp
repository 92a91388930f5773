// SPDX-License-Identifier: MIT
#include "lantern/motionbox.h"

#include "lantern/linereader.h"
#include "lantern/options.h"
#include "lantern/values.h"

#include "code/codedocument.h"
#include "code/framecode.h"

namespace Lantern {

namespace {

using Vela::CodeNode;
using Vela::ContactBoxCode;

const QLatin1String typeProperty("Type");
const QLatin1String rectProperty("Rect");
const QLatin1String depthProperty("Depth");

} // namespace

MotionBox::MotionBox(const QTextBlock &block, CodeNode *previous, const BoxLine &line)
    : Node(block, previous)
    , m_type(line.type)
    , m_rect(line.rect)
{
    storeDepth(line.depth);
}

void MotionBox::setRect(QRect rect)
{
    if (rect != m_rect)
        write(boxCode(m_type, rect, depth()));
}

bool MotionBox::setDepth(Depth depth)
{
    if (depth.second < depth.first)
        return false;
    if (depth != this->depth())
        write(boxCode(m_type, m_rect, depth));
    return true;
}

QStringList MotionBox::propertyNames() const
{
    return {typeProperty, rectProperty, depthProperty};
}

QVariant MotionBox::property(const QString &name) const
{
    if (name == typeProperty)
        return int(m_type);
    if (name == rectProperty)
        return m_rect;
    return name == depthProperty ? QVariant(QPoint(depth().first, depth().second)) : QVariant();
}

void MotionBox::setProperty(const QString &name, const QVariant &value)
{
    if (name == rectProperty)
        setRect(value.toRect());
    else if (name == depthProperty)
        setDepth({value.toPoint().x(), value.toPoint().y()});
}

bool MotionBox::says(const BoxLine &line) const
{
    return line.type == m_type && line.rect == m_rect && line.depth == depth();
}

void MotionBox::update(const BoxLine &line)
{
    if (says(line))
        return;
    m_type = line.type;
    m_rect = line.rect;
    storeDepth(line.depth);
    valueChanged(QVariant());
}

MotionBoxes::MotionBoxes(Vela::FrameCode *frame, ContactBoxCode::BoxType type)
    : ContactBoxesCode(frame, type)
{
}

unsigned int MotionBoxes::count() const
{
    return unsigned(boxes().size());
}

ContactBoxCode *MotionBoxes::at(unsigned int index) const
{
    return boxes().value(int(index));
}

ContactBoxCode *MotionBoxes::add(QRect rect)
{
    Vela::CodeDocument *const document = frame()->document();
    if (!document)
        return nullptr;
    const unsigned int before = count();
    const QString code = boxCode(boxType(), rect, {0, 0});
    document->insertBefore(frame(), boxIndent(*document) + code, true);
    return count() > before ? at(before) : nullptr;
}

void MotionBoxes::remove(unsigned int index)
{
    if (ContactBoxCode *const box = at(index))
        box->remove(false);
}

void MotionBoxes::clear()
{
    Vela::CodeDocument *const document = frame()->document();
    if (!document)
        return;
    const QList<ContactBoxCode *> all = boxes();
    document->beginChange();
    // From the last on, as the parser may make new nodes for the lines below a change.
    for (int i = all.size() - 1; i >= 0; --i) {
        if (CodeNode::isValid(all.at(i)))
            all.at(i)->remove(false);
    }
    document->endChange();
}

QList<ContactBoxCode *> MotionBoxes::boxes() const
{
    const CodeNode *first = frame();
    while (first->previous() && first->previous()->type() == CodeNode::HitBox)
        first = first->previous();
    QList<ContactBoxCode *> found;
    for (const CodeNode *node = first; node != frame(); node = node->next()) {
        auto *const box = static_cast<MotionBox *>(const_cast<CodeNode *>(node));
        if (box->boxType() == boxType())
            found.append(box);
    }
    return found;
}

QString boxCode(ContactBoxCode::BoxType type, QRect rect, ContactBoxCode::Depth depth)
{
    QStringList words = {type == ContactBoxCode::Attack ? QStringLiteral("attack")
                                                        : QStringLiteral("body"),
                         integerText(rect.x()), integerText(rect.y()), integerText(rect.width()),
                         integerText(rect.height())};
    if (depth != ContactBoxCode::Depth(0, 0)) {
        words << QStringLiteral("depth") << integerText(depth.first) << integerText(depth.second);
    }
    return words.join(QLatin1Char(' '));
}

QString boxIndent(const Vela::CodeDocument &document)
{
    return QString(optionOf(document, OptionKey::boxIndent).toInt(), QLatin1Char(' '));
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "code/framecode.h"

namespace Vela {

FrameCode::FrameCode(const QTextBlock &block, CodeNode *previous, ContactBoxesCode *attackBoxes,
                     ContactBoxesCode *collisionBoxes)
    : ParentCode(Frame, block, previous)
    , m_attackBoxes(attackBoxes)
    , m_collisionBoxes(collisionBoxes)
{
    for (CodeNode *node = CodeNode::previous(); node && node->type() != Group;
         node = node->previous()) {
        if (node->type() == Animation) {
            static_cast<ParentCode *>(node)->insertChild(this, 0);
            return;
        }
        if (node->type() == Frame) {
            if (ParentCode *const animation = node->parent())
                animation->insertChild(this, unsigned(animation->childIndex(node) + 1));
            return;
        }
    }
}

FrameCode::~FrameCode() = default;

int FrameCode::firstLine() const
{
    if (!parent())
        return lineNo();
    const CodeNode *above = previous();
    while (above && !(above->type() & (Frame | Animation)))
        above = above->previous();
    return above ? above->lineNo() + 1 : lineNo();
}

ContactBoxesCode *FrameCode::contactBoxes(ContactBoxCode::BoxType type) const
{
    return type & ContactBoxCode::Attack ? m_attackBoxes : m_collisionBoxes;
}

QStringList FrameCode::propertyNames() const
{
    return {QStringLiteral("Identifier"), QStringLiteral("Offset"), QStringLiteral("Delay"),
            QStringLiteral("Scale"),      QStringLiteral("Angle"),  QStringLiteral("Flip"),
            QStringLiteral("LoopPoint")};
}

QVariant FrameCode::property(const QString &) const
{
    return QVariant();
}

int FrameCode::index() const
{
    return parent() ? parent()->childIndex(const_cast<FrameCode *>(this)) : -1;
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "code/animationcode.h"

#include "code/adoption.h"
#include "code/codedocument.h"
#include "code/framecode.h"

namespace Vela {

AnimationCode::AnimationCode(const QTextBlock &block, CodeNode *previous)
    : ParentCode(Animation, block, previous)
{
    insertRootChild(this);
    Adoption::begin(this, take);
}

AnimationCode::~AnimationCode()
{
    Adoption::finish(this);
    CodeNode *const above = nearestAbove(Group | Animation);
    if (above && above->type() == Animation) {
        auto *const heir = static_cast<ParentCode *>(above);
        Adoption::finish(heir);
        for (FrameCode *frame : frames())
            heir->insertChild(frame, heir->childCount());
    }
    while (!m_frames.isEmpty())
        AnimationCode::removeChild(m_frames.at(m_frames.size() - 1));
    // Lists of animations still show this one while they hear of its going.
    if (parent())
        parent()->removeChild(this);
}

void AnimationCode::take(ParentCode *animation, CodeNode *node)
{
    auto *const self = static_cast<AnimationCode *>(animation);
    if (node->type() == Frame)
        self->AnimationCode::insertChild(node, self->frameCount());
}

int AnimationCode::lastLine() const
{
    const CodeDocument *const text = document();
    if (!text)
        return -1;
    for (const CodeNode *node = next(); node; node = node->next()) {
        if (node->type() & (Group | Animation))
            return node->firstLine() - 1;
    }
    return text->lineCount();
}

unsigned int AnimationCode::childCount() const
{
    return frameCount();
}

int AnimationCode::childIndex(CodeNode *child) const
{
    return m_frames.indexOf(child);
}

CodeNode *AnimationCode::childAt(unsigned int row) const
{
    return m_frames.value(row);
}

void AnimationCode::insertChild(CodeNode *child, unsigned int row)
{
    if (child->type() != Frame) {
        ParentCode::insertChild(child, row);
        return;
    }
    if (child->parent())
        child->parent()->removeChild(child);
    const int index = int(qMin(row, frameCount()));
    beginInsert(this, index);
    m_frames.insert(index, static_cast<FrameCode *>(child));
    setParent(child, this);
    endInsert();
}

void AnimationCode::removeChild(CodeNode *child)
{
    ParentCode::removeChild(child);
    const int row = m_frames.indexOf(child);
    if (row < 0)
        return;
    beginRemove(this, row);
    m_frames.removeAt(row);
    endRemove();
}

QStringList AnimationCode::propertyNames() const
{
    return NamedCode::propertyNames() << QStringLiteral("Identifier");
}

QList<FrameCode *> AnimationCode::frames() const
{
    return m_frames.toList();
}

unsigned int AnimationCode::frameCount() const
{
    return unsigned(m_frames.size());
}

FrameCode *AnimationCode::frameAt(unsigned int index) const
{
    return m_frames.value(index);
}

int AnimationCode::indexOfFrame(const FrameCode *frame) const
{
    return m_frames.indexOf(frame);
}

unsigned int AnimationCode::selectedFrame() const
{
    return m_selectedFrame;
}

void AnimationCode::setSelectedFrame(unsigned int index)
{
    m_selectedFrame = index;
}

void AnimationCode::removeFrame(unsigned int index)
{
    if (FrameCode *const frame = frameAt(index))
        frame->remove(true);
}

QString AnimationCode::code() const
{
    return CodeNode::code().trimmed();
}

void AnimationCode::setCode(const QString &text)
{
    if (CodeDocument *const definition = document())
        definition->insertOnCursor(text.trimmed() + QLatin1String("\n\n"), selectAll());
}

} // namespace Vela

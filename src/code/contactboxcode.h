// SPDX-License-Identifier: MIT
#pragma once

#include "code/codenode.h"
#include "frame/propertyitem.h"

#include <QPair>
#include <QRect>

namespace Vela {

class FrameCode;

/// A box in which a frame hits, or can be hit. Its rectangle is in pixels of the content, from the
/// frame's axis.
class VELA_EXPORT ContactBoxCode : public CodeNode, public PropertyItem
{
public:
    enum BoxType { Attack = 1, Collision = 2 };
    /// The least and the greatest depth, in pixels towards the viewer.
    using Depth = QPair<int, int>;

    virtual BoxType boxType() const = 0;
    virtual QRect rect() const = 0;
    virtual void setRect(QRect rect) = 0;
    /// Returns whether the box took the depth; an engine without depth refuses any.
    virtual bool setDepth(Depth depth) = 0;

    Depth depth() const
    {
        return m_depth;
    }

protected:
    ContactBoxCode(const QTextBlock &block, CodeNode *previous);

    /// For a concrete class that has read a depth.
    void storeDepth(Depth depth)
    {
        m_depth = depth;
    }

private:
    Depth m_depth{0, 0};
};

/// The boxes of one type of a frame.
class VELA_EXPORT ContactBoxesCode
{
public:
    virtual ~ContactBoxesCode();

    virtual unsigned int count() const = 0;
    /// Returns null past the end.
    virtual ContactBoxCode *at(unsigned int index) const = 0;
    /// Adds a box to the text and returns it; null if the text did not take it.
    virtual ContactBoxCode *add(QRect rect) = 0;
    virtual void remove(unsigned int index) = 0;
    virtual void clear() = 0;

    FrameCode *frame() const
    {
        return m_frame;
    }
    ContactBoxCode::BoxType boxType() const
    {
        return m_boxType;
    }

protected:
    ContactBoxesCode(FrameCode *frame, ContactBoxCode::BoxType boxType);

private:
    Q_DISABLE_COPY(ContactBoxesCode)

    FrameCode *m_frame;
    ContactBoxCode::BoxType m_boxType;
};

} // namespace Vela

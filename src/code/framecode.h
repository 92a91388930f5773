// SPDX-License-Identifier: MIT
#pragma once

#include "code/codenode.h"
#include "code/contactboxcode.h"
#include "frame/propertyitem.h"

#include <QList>
#include <QPointF>
#include <QVariant>

namespace Vela {

class Sprite;

/// One frame of an animation. A setter changes the text, which the parser then reads back, so any
/// change of the text may destroy the frame. Its time is its delay, in ticks; a negative delay
/// never ends.
///
/// Its properties are "Identifier", "Offset", "Delay", "Scale", "Angle", "Flip" and "LoopPoint",
/// which a concrete class reads and writes.
class VELA_EXPORT FrameCode : public ParentCode, public PropertyItem
{
public:
    /// How the frame's pixels are laid over what is behind them.
    struct Blend
    {
        enum Mode {
            None = 0,
            Addition = 1,
            Subtraction = 2,
            Overlay = 3,
            HardLight = 4,
            Dodge = 5,
            Opacity = 6
        };

        Blend() = default;
        Blend(Mode m, double sourceFactor, double destinationFactor)
            : mode(m)
            , source(sourceFactor)
            , destination(destinationFactor)
        {
        }

        Mode mode = None;
        double source = 1;      ///< factor of the frame's pixels
        double destination = 0; ///< factor of what is behind them
    };

    enum FlipFlag : unsigned char { NoFlip = 0, Horizontal = 1, Vertical = 2, Both = 3 };

    ~FrameCode() override;

    /// The frame reaches up to the line behind the frame or the animation before it.
    int firstLine() const override;

    /// Returns the sprite that the frame shows, or null if it is missing.
    virtual Sprite *sprite() const = 0;
    /// Takes the identifier of the sprite to show.
    virtual void setSprite(const QVariant &identifier) = 0;
    virtual int offsetX() const = 0;
    virtual void setOffsetX(int x) = 0;
    virtual int offsetY() const = 0;
    virtual void setOffsetY(int y) = 0;
    /// Returns whether the text gives an offset.
    virtual bool hasOffset() const = 0;
    /// The offset is in pixels of the content, from the axis.
    virtual QPoint offset() const = 0;
    virtual void setOffset(QPoint offset) = 0;
    virtual int delay() const = 0;
    virtual void setDelay(int ticks) = 0;
    virtual double scaleX() const = 0;
    virtual void setScaleX(double x) = 0;
    virtual double scaleY() const = 0;
    virtual void setScaleY(double y) = 0;
    virtual QPointF scale() const = 0;
    virtual void setScale(QPointF scale) = 0;
    /// The angle is in degrees, clockwise.
    virtual double angle() const = 0;
    virtual void setAngle(double angle) = 0;
    /// Returns whether the text gives a scale or an angle.
    virtual bool hasTransform() const = 0;
    /// The flip is of FlipFlag.
    virtual unsigned char flipFlags() const = 0;
    virtual void setFlipFlags(unsigned int flags) = 0;
    virtual Blend::Mode blendMode() const = 0;
    virtual void setBlendMode(Blend::Mode mode) = 0;
    virtual double blendSource() const = 0;
    virtual void setBlendSource(double factor) = 0;
    virtual double blendDestination() const = 0;
    virtual void setBlendDestination(double factor) = 0;
    virtual Blend blend() const = 0;
    virtual void setBlend(Blend blend) = 0;
    /// Returns boxes of this frame as text for the clipboard.
    virtual QString contactBoxesText(const QList<ContactBoxCode *> &boxes) const = 0;
    /// Adds the boxes that such a text holds and leaves out what is none. Returns how many.
    virtual int pasteContactBoxes(const QString &text) = 0;
    /// Returns whether the animation goes on from this frame when it is through.
    virtual bool isLoopPoint() const = 0;
    /// Returns the attack boxes for a type with bit 0 set, else the collision boxes.
    virtual ContactBoxesCode *contactBoxes(ContactBoxCode::BoxType type) const;

    QStringList propertyNames() const override;
    /// Invalid here: a frame joins the tree, and views ask for it, before its concrete class is
    /// there to answer.
    QVariant property(const QString &name) const override;

    ContactBoxesCode *attackBoxes() const
    {
        return m_attackBoxes;
    }
    ContactBoxesCode *collisionBoxes() const
    {
        return m_collisionBoxes;
    }
    /// Returns the frame's row in its animation, or -1.
    int index() const;

protected:
    /// Joins the animation, or the parent of the frame, that stands before it in the chain. The
    /// boxes stay the concrete class's own and must outlive the frame's last use of them.
    FrameCode(const QTextBlock &block, CodeNode *previous, ContactBoxesCode *attackBoxes,
              ContactBoxesCode *collisionBoxes);

private:
    ContactBoxesCode *m_attackBoxes;
    ContactBoxesCode *m_collisionBoxes;
};

} // namespace Vela

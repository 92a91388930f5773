// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/motionbox.h"
#include "lantern/node.h"
#include "lantern/parsercontext.h"

#include "code/framecode.h"

namespace Lantern {

class Line;
enum class FrameOption;
struct FrameLine;

/// A frame. Its setters write the option that they are for and leave all others of the line as they
/// are; an option with its default is taken out.
class MotionFrame : public Node<Vela::FrameCode>
{
public:
    MotionFrame(const QTextBlock &block, Vela::CodeNode *previous, const Line &line,
                const FrameLine &frame, const ParserContext &context);

    /// Returns the name of the sprite; empty for a frame that shows none.
    QString spriteName() const
    {
        return m_sprite;
    }
    /// Returns the name of the sound that the frame plays; empty for none.
    QString soundName() const
    {
        return m_sound;
    }
    /// Takes the name of a sound; an empty one stands for none.
    void setSound(const QString &name);
    /// Leaves the other frames as they are; the property "LoopPoint" does not.
    void setLoopPoint(bool isLoopPoint);

    Vela::Sprite *sprite() const override;
    void setSprite(const QVariant &identifier) override;
    int offsetX() const override
    {
        return m_offset.x();
    }
    void setOffsetX(int x) override;
    int offsetY() const override
    {
        return m_offset.y();
    }
    void setOffsetY(int y) override;
    bool hasOffset() const override
    {
        return m_hasOffset;
    }
    QPoint offset() const override
    {
        return m_offset;
    }
    void setOffset(QPoint offset) override;
    int delay() const override
    {
        return m_delay;
    }
    void setDelay(int ticks) override;
    double scaleX() const override
    {
        return m_scale.x();
    }
    void setScaleX(double x) override;
    double scaleY() const override
    {
        return m_scale.y();
    }
    void setScaleY(double y) override;
    QPointF scale() const override
    {
        return m_scale;
    }
    void setScale(QPointF scale) override;
    double angle() const override
    {
        return m_angle;
    }
    void setAngle(double angle) override;
    bool hasTransform() const override
    {
        return m_hasTransform;
    }
    unsigned char flipFlags() const override
    {
        return m_flip;
    }
    void setFlipFlags(unsigned int flags) override;
    Blend::Mode blendMode() const override
    {
        return m_blend.mode;
    }
    void setBlendMode(Blend::Mode mode) override;
    double blendSource() const override
    {
        return m_blend.source;
    }
    void setBlendSource(double factor) override;
    double blendDestination() const override
    {
        return m_blend.destination;
    }
    void setBlendDestination(double factor) override;
    Blend blend() const override
    {
        return m_blend;
    }
    void setBlend(Blend blend) override;
    QString contactBoxesText(const QList<Vela::ContactBoxCode *> &boxes) const override;
    int pasteContactBoxes(const QString &text) override;
    bool isLoopPoint() const override
    {
        return m_isLoopPoint;
    }
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    /// Returns whether the line says what the frame is already.
    bool says(const Line &line, const FrameLine &frame) const;
    /// The parser calls this for a frame that stays.
    void update(const Line &line, const FrameLine &frame);

private:
    // An option with what it says; an empty text takes it out.
    struct OptionText
    {
        FrameOption option;
        QString text;
    };

    void setLoopPointAlone(bool isLoopPoint);
    void take(const Line &line, const FrameLine &frame);
    void writeHead(const QString &sprite, const QString &delay);
    void writeOptions(const QVector<OptionText> &changes);

    const ParserContext &m_context;
    QString m_sprite;
    QString m_sound;
    Blend m_blend;
    QPointF m_scale{1, 1};
    double m_angle = 0;
    QPoint m_offset;
    int m_delay = 0;
    unsigned char m_flip = 0;
    bool m_hasOffset = false;
    bool m_hasTransform = false;
    bool m_isLoopPoint = false;
    MotionBoxes m_attack{this, Vela::ContactBoxCode::Attack};
    MotionBoxes m_collision{this, Vela::ContactBoxCode::Collision};
};

} // namespace Lantern

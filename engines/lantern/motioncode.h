// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/node.h"

#include "code/animationcode.h"

namespace Lantern {

/// An animation. Beside the properties of its base it answers to "LoopPoint".
class MotionCode : public Node<Vela::AnimationCode>
{
public:
    MotionCode(const QTextBlock &block, Vela::CodeNode *previous, const QString &identifier,
               const QString &title);

    QString identifier() const
    {
        return m_identifier;
    }
    /// Takes a word of the grammar; anything else is ignored.
    void setIdentifier(const QString &identifier);
    /// Returns the first frame with a loop point, else 0.
    unsigned int loopPoint() const override;
    /// Moves the loop point to a frame, as one step of undo.
    void setLoopPoint(unsigned int index);
    /// The new frame shows no sprite.
    Vela::FrameCode *insertFrame(unsigned int index, int time) override;
    Vela::FrameCode *addFrame(int time) override;
    /// Returns the title; empty without one.
    QString name() const override;
    /// Returns the title, else the identifier.
    QString displayName() const override;
    void setName(const QString &name) override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    /// The parser calls this for an animation that stays.
    void update(QStringView identifier, const QString &title);

private:
    QString m_identifier;
    QString m_title;
};

} // namespace Lantern

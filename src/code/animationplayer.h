// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <memory>

namespace Vela {

class Animations;
class FrameCode;
struct AnimationPlayerPrivate;

/// Walks through the frames of an animation in time, in ticks. A copy goes on with the same
/// animation and time as the player that it was made from: both move the one state. The frames that
/// it gives are valid until the next change of the text.
class VELA_EXPORT AnimationPlayer
{
public:
    AnimationPlayer();
    ~AnimationPlayer();
    AnimationPlayer(const AnimationPlayer &other);
    AnimationPlayer &operator=(const AnimationPlayer &other);

    /// Begins an animation. A wrong index, an index that it plays already without \a force, or
    /// null stops the player and gives false.
    bool change(Animations *animations, int index, bool force);
    /// Moves on by a tick and returns the time that was shown, in ticks since the beginning. Behind
    /// the last frame it goes on at the loop point.
    int tick();
    /// Goes back to the beginning.
    void reset();

    FrameCode *currentFrame() const;
    /// Returns the frame that comes after the current one, or null.
    FrameCode *nextFrame() const;
    /// Returns the ticks since the current frame began.
    unsigned int frameTime() const;

private:
    void update();

    std::shared_ptr<AnimationPlayerPrivate> d;
    FrameCode *m_currentFrame = nullptr;
    FrameCode *m_nextFrame = nullptr;
    unsigned int m_frameTime = 0;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "code/animationplayer.h"

#include "code/animationcode.h"
#include "code/animations.h"
#include "code/framecode.h"

#include <QPointer>
#include <limits>

namespace Vela {

namespace {

// Delays come from the text, so a sum of them may be anything.
int toTicks(qint64 sum)
{
    using Limits = std::numeric_limits<int>;
    return int(qBound<qint64>(Limits::min(), sum, Limits::max()));
}

} // namespace

// All times are in ticks.
struct AnimationPlayerPrivate
{
    /// Returns the animation as the text has it now, or null.
    AnimationCode *animation() const
    {
        return animations ? animations->at(unsigned(animationIndex)) : nullptr;
    }

    void readTimes(const AnimationCode *animation);

    QPointer<Animations> animations;
    int totalTime = 0; ///< of the whole animation; -1 where a frame never ends
    int loopTime = 0;  ///< when the frame at the loop point begins
    unsigned int loopFrame = 0;
    int animationIndex = 0;
    unsigned int frameIndex = 0;
    int time = 0; ///< since the animation began
};

void AnimationPlayerPrivate::readTimes(const AnimationCode *animation)
{
    loopFrame = animation->loopPoint();
    qint64 beforeLoop = 0;
    qint64 total = 0;
    for (unsigned int i = 0; i < animation->frameCount(); ++i) {
        const int delay = animation->frameAt(i)->delay();
        if (i < loopFrame)
            beforeLoop += delay;
        if (total >= 0)
            total = delay < 0 ? -1 : total + delay;
    }
    loopTime = toTicks(beforeLoop);
    totalTime = toTicks(total);
}

AnimationPlayer::AnimationPlayer()
    : d(std::make_shared<AnimationPlayerPrivate>())
{
}

AnimationPlayer::~AnimationPlayer() = default;

AnimationPlayer::AnimationPlayer(const AnimationPlayer &other) = default;

AnimationPlayer &AnimationPlayer::operator=(const AnimationPlayer &other) = default;

bool AnimationPlayer::change(Animations *animations, int index, bool force)
{
    const bool plays = !force && d->animations == animations && d->animationIndex == index;
    const AnimationCode *const animation =
        animations && index >= 0 ? animations->at(unsigned(index)) : nullptr;
    d->animations = animation && !plays ? animations : nullptr;
    if (d->animations) {
        d->readTimes(animation);
        d->animationIndex = index;
    }
    reset();
    return d->animations;
}

void AnimationPlayer::reset()
{
    d->frameIndex = 0;
    d->time = 0;
    m_frameTime = 0;
    update();
}

int AnimationPlayer::tick()
{
    update();
    if (!d->animation() || d->animations->isEmpty())
        return 0;
    if (d->totalTime >= 0 && d->time >= d->totalTime) {
        m_frameTime = 0;
        d->time = d->loopTime;
        d->frameIndex = d->loopFrame;
        update();
    }
    ++m_frameTime;
    return d->time++;
}

/// Goes on to the last frame that has begun. Frames may have come, gone or changed since the last
/// time, so nothing is kept of where they begin, and no pointer is followed.
void AnimationPlayer::update()
{
    const AnimationCode *const animation = d->animation();
    if (!animation) {
        m_currentFrame = nullptr;
        m_nextFrame = nullptr;
        return;
    }

    const FrameCode *const shown = m_currentFrame;
    const unsigned int count = animation->frameCount();
    const unsigned int first = d->frameIndex;
    bool isFound = false;
    qint64 start = 0;
    for (unsigned int i = 0; i < count && start <= d->time; ++i) {
        FrameCode *const frame = animation->frameAt(i);
        if (i >= first) {
            isFound = true;
            d->frameIndex = i;
            m_currentFrame = frame;
        }
        if (frame->delay() < 0)
            break;
        start += frame->delay();
    }
    // A frame that has not begun by its new place stays for its time, unless it is gone.
    if (!isFound && animation->indexOfFrame(m_currentFrame) < 0)
        m_currentFrame = animation->frameAt(qMin(d->frameIndex, count - 1));

    if (m_currentFrame != shown)
        m_frameTime = 0;
    const int index = animation->indexOfFrame(m_currentFrame);
    const bool isLast = index + 1 == int(count);
    m_nextFrame =
        !m_currentFrame ? nullptr : animation->frameAt(isLast ? d->loopFrame : unsigned(index + 1));
}

FrameCode *AnimationPlayer::currentFrame() const
{
    return m_currentFrame;
}

FrameCode *AnimationPlayer::nextFrame() const
{
    return m_nextFrame;
}

unsigned int AnimationPlayer::frameTime() const
{
    return m_frameTime;
}

} // namespace Vela

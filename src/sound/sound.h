// SPDX-License-Identifier: MIT
#pragma once

#include "cache/sharemode.h"
#include "frame/propertyitem.h"
#include "sound/soundsample.h"

#include <functional>

namespace Vela {

class Sounds;

/// A sound of a collection. It belongs to the collection from its insertion until its removal. Main
/// thread only.
class VELA_EXPORT Sound : public PropertyItem
{
public:
    ~Sound() override;

    /// The property "Identifier", which users know the sound by.
    QStringList propertyNames() const override;

    /// Returns the position in the collection.
    virtual unsigned int index() const = 0;
    virtual Sounds *parent() const = 0;
    /// Adds a copy behind this sound and returns it.
    virtual Sound *duplicate() const = 0;
    /// Tells whether there are no frames.
    virtual bool isEmpty() const = 0;
    /// Returns form and length without decoding the frames.
    virtual SampleInfo info() const = 0;
    /// Returns the frames with their form; an empty sound if they cannot be had.
    SoundSample sample() const;
    /// What makes the sample() that a sound has at this moment, for another thread, where it takes
    /// long. It may outlive the sound and its file. Its end is to come on the main thread.
    using Reader = std::function<SoundSample()>;
    virtual Reader reader() const = 0;
    /// Returns whether another sound holds the same frames.
    virtual bool dataIsShared() const = 0;
    /// Sets the frames, which may be shared.
    bool setSample(const SampleInfo &info, const QByteArray &data);
    /// Takes the whole frames that \a data really holds. Returns false, with the sound as it was,
    /// if they cannot be taken.
    virtual bool setSample(const SampleInfo &info, const QByteArray &data, ShareMode share) = 0;

protected:
    Sound() = default;
    Sound(const Sound &) = default;
    Sound &operator=(const Sound &) = default;
};

} // namespace Vela

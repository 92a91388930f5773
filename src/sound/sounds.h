// SPDX-License-Identifier: MIT
#pragma once

#include "cache/sharemode.h"
#include "frame/organizableobject.h"
#include "project/projectfile.h"

namespace Vela {

class Sound;
struct SoundSample;

/// The sounds of a file. The engine's class decides how they are stored. Main thread only.
class VELA_EXPORT Sounds : public OrganizableObject, public ProjectFile
{
    Q_OBJECT

public:
    /// The sound that editors show.
    virtual unsigned int selected() const = 0;
    virtual void setSelected(unsigned int index) = 0;
    virtual unsigned int count() const = 0;
    /// Returns null past the end.
    virtual Sound *at(unsigned int index) const = 0;
    /// Appends a sound and returns it, or null if it cannot be taken. What identifies a sound is
    /// the engine's business. A sample without frames makes an empty sound.
    virtual Sound *add(const QVariant &identifier, const SoundSample &sample, ShareMode share) = 0;
    virtual Sound *insert(unsigned int index, const QVariant &identifier, const SoundSample &sample,
                          ShareMode share) = 0;
    void remove(unsigned int index) override = 0;
    /// Returns the index of the first sound from \a start on with that identifier, or -1.
    virtual int find(unsigned int start, const QVariant &identifier) const = 0;
    virtual void clear() = 0;

    void beginChange() override = 0;
    void endChange() override = 0;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extension.h"

class QIODevice;

namespace Vela {

struct SoundSample;

// Formats of sounds that extensions add. What format() returns is the format word: what follows
// the dot in file names, in upper case.

/// Reads one more format of sounds; of the type Extension::SoundLoader.
class VELA_EXPORT SoundLoader : public Extension
{
public:
    Type type() const override;
    virtual bool load(QIODevice *device, SoundSample &sample) = 0;
};

/// Writes one more format of sounds; of the type Extension::SoundSaver.
class VELA_EXPORT SoundSaver : public Extension
{
public:
    Type type() const override;
    virtual bool save(const SoundSample &sample, QIODevice *device) = 0;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "sound/soundextension.h"

namespace Vela {

Extension::Type SoundLoader::type() const
{
    return Extension::SoundLoader;
}

Extension::Type SoundSaver::type() const
{
    return Extension::SoundSaver;
}

} // namespace Vela

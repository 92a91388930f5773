// SPDX-License-Identifier: MIT
#include "sound/sound.h"

#include <QStringList>

namespace Vela {

Sound::~Sound() = default;

QStringList Sound::propertyNames() const
{
    return {QStringLiteral("Identifier")};
}

SoundSample Sound::sample() const
{
    return reader()();
}

bool Sound::setSample(const SampleInfo &info, const QByteArray &data)
{
    return setSample(info, data, ShareMode::Share);
}

} // namespace Vela

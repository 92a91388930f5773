// SPDX-License-Identifier: MIT
#pragma once

#include "sound/soundformats.h"

#include <QBuffer>
#include <QTest>

namespace Vela {

inline bool operator==(const SoundSample &a, const SoundSample &b)
{
    return isSame(a, b) && a.data == b.data;
}

} // namespace Vela

/// Files of sounds in memory.
namespace SoundFile {

inline Vela::SoundSample loaded(const QByteArray &bytes, const char *format)
{
    QBuffer buffer;
    buffer.setData(bytes);
    Vela::SoundSample sound;
    if (Vela::loadSound(&buffer, format, sound) == sound.data.isEmpty())
        QTest::qFail("the result does not say whether there is data", __FILE__, __LINE__);
    return sound;
}

inline QByteArray saved(const Vela::SoundSample &sound, const char *format)
{
    QBuffer buffer;
    return Vela::saveSound(&buffer, format, sound) && buffer.atEnd() ? buffer.data() : QByteArray();
}

inline bool isWhole(const Vela::SoundSample &sound)
{
    return qint64(sound.samples) * frameSize(sound) == sound.data.size();
}

} // namespace SoundFile

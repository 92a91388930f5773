// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Vela {
struct SampleInfo;
}

namespace Studio {

/// Returns a time as "0:02.350", with so many digits behind the point; from an hour on as
/// "1:00:02.350".
QString timeWords(double seconds, int digits = 3);
/// Returns the time that \a frames of a sound last.
QString timeWords(const Vela::SampleInfo &info, unsigned int frames);
/// Returns the same as ticks, of which a second has 60, rounded.
qint64 ticksOf(const Vela::SampleInfo &info, unsigned int frames);
/// Returns the form of a sound as "44.1 kHz, 16 bits, stereo".
QString formatWords(const Vela::SampleInfo &info);

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/window/soundwords.h"

#include "sound/soundsample.h"

#include <QCoreApplication>
#include <QLocale>

#include <algorithm>
#include <cmath>

namespace Studio {

namespace {

constexpr int TicksPerSecond = 60;

QString translated(const char *text)
{
    return QCoreApplication::translate("Studio::SoundWords", text);
}

double secondsOf(const Vela::SampleInfo &info, unsigned int frames)
{
    return double(frames) / std::max(info.frequency, 1U);
}

QString rateWords(quint32 frequency)
{
    return frequency < 1000
        ? translated(QT_TRANSLATE_NOOP("Studio::SoundWords", "%1 Hz")).arg(frequency)
        : translated(QT_TRANSLATE_NOOP("Studio::SoundWords", "%1 kHz"))
              .arg(QLocale().toString(frequency / 1000.0, 'g', 6));
}

QString channelWords(int channels)
{
    switch (channels) {
    case 1:
        return translated(QT_TRANSLATE_NOOP("Studio::SoundWords", "mono"));
    case 2:
        return translated(QT_TRANSLATE_NOOP("Studio::SoundWords", "stereo"));
    default:
        return translated(QT_TRANSLATE_NOOP("Studio::SoundWords", "%1 channels")).arg(channels);
    }
}

} // namespace

QString timeWords(double seconds, int digits)
{
    // Rounded first, so that no part comes out as 60.
    const double unit = std::pow(10.0, digits);
    const double whole = std::round(seconds * unit);
    const auto minutes = qint64(whole / (60 * unit));
    const QString rest = QString::number((whole - double(minutes) * 60 * unit) / unit, 'f', digits)
                             .rightJustified(digits > 0 ? digits + 3 : 2, QLatin1Char('0'));
    if (minutes < 60)
        return QStringLiteral("%1:%2").arg(minutes).arg(rest);
    return QStringLiteral("%1:%2:%3")
        .arg(minutes / 60)
        .arg(minutes % 60, 2, 10, QLatin1Char('0'))
        .arg(rest);
}

QString timeWords(const Vela::SampleInfo &info, unsigned int frames)
{
    return timeWords(secondsOf(info, frames));
}

qint64 ticksOf(const Vela::SampleInfo &info, unsigned int frames)
{
    return std::llround(secondsOf(info, frames) * TicksPerSecond);
}

QString formatWords(const Vela::SampleInfo &info)
{
    return translated(QT_TRANSLATE_NOOP("Studio::SoundWords", "%1, %2 bits, %3"))
        .arg(rateWords(info.frequency))
        .arg(info.precision)
        .arg(channelWords(info.channels));
}

} // namespace Studio

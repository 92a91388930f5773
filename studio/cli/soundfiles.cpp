// SPDX-License-Identifier: MIT
#include "studio/cli/soundfiles.h"

#include "sound/soundformats.h"
#include "studio/cli/diskfiles.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

#include <limits>

namespace Studio {

namespace {

// Where formats end: FLAC by RFC 9639 and its encoder, Vorbis by its own.
const struct
{
    const char *word;
    quint16 channels;
    quint32 frequency;
} limits[] = {{"OGG", 255, 200000}, {"FLAC", 8, 1048575}};

// A file is made in an array of bytes, which holds no more.
constexpr int longestData = std::numeric_limits<int>::max() - 4096;

QString text(const QByteArray &word)
{
    return QString::fromUtf8(word);
}

/// Returns whether a format is one of the library's own of that type.
bool isAmong(Vela::SoundExtensionType type, const QByteArray &format)
{
    return QByteArray(Vela::soundFileExtension(type)).contains("(*." + format.toLower() + ')');
}

} // namespace

SoundFormat SoundFormat::ofFile(const QString &name)
{
    return ofWord(QFileInfo(name).suffix());
}

SoundFormat SoundFormat::ofWord(const QString &word)
{
    using Vela::Extension;
    SoundFormat format;
    format.word = word.toUpper().toUtf8();
    format.loads =
        isAmong(Vela::LoadSounds, format.word) || hasExtension(Extension::SoundLoader, format.word);
    format.saves =
        isAmong(Vela::SaveSounds, format.word) || hasExtension(Extension::SoundSaver, format.word);
    return format;
}

QString unfitForm(const Vela::SampleInfo &form, const QByteArray &format)
{
    for (const auto &known : limits) {
        if (format != known.word)
            continue;
        if (form.channels > known.channels)
            return QStringLiteral("%1 holds %2 channels at most")
                .arg(text(format))
                .arg(known.channels);
        if (form.frequency > known.frequency)
            return QStringLiteral("%1 holds %2 frames a second at most")
                .arg(text(format))
                .arg(known.frequency);
    }
    return {};
}

qint64 millisecondsOf(const Vela::SampleInfo &form)
{
    return form.frequency > 0 ? (qint64(form.samples) * 1000 + form.frequency / 2) / form.frequency
                              : 0;
}

QStringList columnsOf(const Vela::SampleInfo &form)
{
    return {QStringLiteral("%1 ms").arg(millisecondsOf(form)),
            QStringLiteral("%1 Hz").arg(form.frequency),
            QStringLiteral("%1 bits").arg(form.precision),
            form.channels == 1 ? QStringLiteral("1 channel")
                               : QStringLiteral("%1 channels").arg(form.channels),
            QStringLiteral("%1 frames").arg(form.samples)};
}

QJsonObject toJson(const Vela::SampleInfo &form)
{
    return {{QStringLiteral("milliseconds"), millisecondsOf(form)},
            {QStringLiteral("rate"), qint64(form.frequency)},
            {QStringLiteral("bits"), form.precision},
            {QStringLiteral("channels"), form.channels},
            {QStringLiteral("frames"), qint64(form.samples)}};
}

Vela::SoundSample readSound(const QString &file, QString *error)
{
    const SoundFormat format = SoundFormat::ofFile(file);
    QFile device;
    Vela::SoundSample sound;
    if (!format.loads)
        failFile(file, QStringLiteral("is of no format of sounds that can be read"), error);
    if (!format.loads || !openFile(device, file, error))
        return {};
    if (!Vela::loadSound(&device, format.word.constData(), sound) || sound.frequency == 0) {
        const char *const kind =
            format.word == "WAV" ? " of integer samples without compression" : "";
        failFile(file,
                 QStringLiteral("is no %1 sound%2, or has no frames or too many")
                     .arg(text(format.word), QLatin1String(kind)),
                 error);
    }
    return sound;
}

bool encodeSound(const Vela::SoundSample &sound, const QByteArray &format, QByteArray *bytes,
                 QString *error)
{
    *error = unfitForm(sound, format);
    if (error->isEmpty() && sound.data.size() > longestData)
        *error = QStringLiteral("it would be too long");
    if (!error->isEmpty())
        return false;
    QBuffer device(bytes);
    device.open(QIODevice::WriteOnly);
    if (Vela::saveSound(&device, format.constData(), sound))
        return true;
    *error = QStringLiteral("a sound of %1 cannot be written as %2")
                 .arg(columnsOf(sound).join(QStringLiteral(", ")), text(format));
    return false;
}

} // namespace Studio

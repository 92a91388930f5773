// SPDX-License-Identifier: MIT
#include "lantern/soundcodec.h"

#include "lantern/latecontent.h"

#include "frame/checksum.h"
#include "sound/soundformats.h"

#include <QBuffer>
#include <QtEndian>

#include <array>

namespace Lantern {

namespace {

constexpr int headBytes = 12;
constexpr quint16 oggPrecision = 16;
constexpr std::array<const char *, SoundEncodingCount> words = {"raw", "flac", "ogg"};

qint64 plainBytes(const Vela::SampleInfo &info)
{
    return headBytes + qint64(info.samples) * frameSize(info);
}

QByteArray headOf(const Vela::SampleInfo &info)
{
    QByteArray head(headBytes, 0);
    qToLittleEndian(info.channels, head.data());
    qToLittleEndian(info.precision, head.data() + 2);
    qToLittleEndian(info.frequency, head.data() + 4);
    qToLittleEndian(info.samples, head.data() + 8);
    return head;
}

// Whether samples of 20 bits use the four bits that their bytes have left over, which FLAC has not.
bool hasSpareBits(const Vela::SoundSample &sound)
{
    if (sound.precision != 20)
        return false;
    for (int i = 0; i < sound.data.size(); i += Vela::sampleSize(sound.precision)) {
        if (sound.data.at(i) & 0x0F)
            return true;
    }
    return false;
}

// Returns the sound of a plain form, with the frames where they are; an empty one if it is none.
Vela::SoundSample viewOf(const QByteArray &plain)
{
    Vela::SoundSample sound;
    if (!readSoundHead(plain, sound) || plain.size() != plainBytes(sound))
        return {};
    sound.data = QByteArray::fromRawData(plain.constData() + headBytes, plain.size() - headBytes);
    return sound;
}

} // namespace

bool SoundCodec::decode(unsigned int encoding, void *, const QByteArray &raw, QByteArray &data)
{
    Vela::SampleInfo info;
    if (!readSoundHead(raw, info))
        return false;
    QByteArray bytes = QByteArray::fromRawData(raw.constData() + headBytes, raw.size() - headBytes);
    QBuffer buffer(&bytes);
    const int most = int(plainBytes(info)) - headBytes;
    Vela::SoundSample sound;
    if (encoding == Flac)
        sound = Vela::soundFromFLAC(&buffer, most);
    else if (encoding == Ogg)
        sound = Vela::soundFromOGG(&buffer, most);
    if (!isSame(sound, info) || sound.data.size() != most)
        return false;
    data = headOf(info) + sound.data;
    return true;
}

bool SoundCodec::encode(unsigned int encoding, void *, const QByteArray &data, QByteArray &raw)
{
    Vela::SoundSample sound = viewOf(data);
    if (sound.data.isEmpty())
        return false;
    QBuffer buffer;
    if (encoding == Flac) {
        if (hasSpareBits(sound) || !Vela::soundToFLAC(sound, &buffer))
            return false;
    } else if (encoding == Ogg) {
        Vela::SampleInfo target = sound;
        target.precision = oggPrecision;
        const unsigned int crc = Vela::CRC32(data.constData(), size_t(data.size()));
        if (!resampleSound(sound, target) || !Vela::soundToOGG(sound, &buffer, int(crc)))
            return false;
    } else {
        return false;
    }
    raw = headOf(sound) + buffer.data();
    return true;
}

unsigned int SoundCodec::preferredEncoding(const QByteArray &) const
{
    return Flac;
}

bool SoundCodec::isLossy(unsigned int encoding) const
{
    return encoding == Ogg;
}

bool isSound(const Vela::SampleInfo &info)
{
    return Vela::isKnownPrecision(info.precision) && info.channels > 0 && info.frequency > 0
        && info.samples > 0 && plainBytes(info) <= largestFile;
}

QByteArray plainSound(const Vela::SampleInfo &info, const QByteArray &data)
{
    Vela::SampleInfo whole = info;
    const int size = frameSize(info);
    whole.samples = size > 0 ? qMin(info.samples, quint32(data.size() / size)) : 0;
    if (!isSound(whole))
        return {};
    return headOf(whole) + data.left(int(plainBytes(whole)) - headBytes);
}

Vela::SoundSample soundFromPlain(const QByteArray &plain)
{
    Vela::SoundSample sound = viewOf(plain);
    sound.data.detach();
    return sound;
}

bool readSoundHead(const QByteArray &stream, Vela::SampleInfo &info)
{
    if (stream.size() < headBytes)
        return false;
    info.channels = qFromLittleEndian<quint16>(stream.constData());
    info.precision = qFromLittleEndian<quint16>(stream.constData() + 2);
    info.frequency = qFromLittleEndian<quint32>(stream.constData() + 4);
    info.samples = qFromLittleEndian<quint32>(stream.constData() + 8);
    return isSound(info);
}

QString encodingWord(unsigned int encoding)
{
    return encoding < words.size() ? QString::fromLatin1(words[encoding]) : QString();
}

bool readEncodingWord(const QString &word, SoundEncoding &encoding)
{
    for (unsigned int i = 0; i < words.size(); ++i) {
        if (word == QLatin1String(words[i])) {
            encoding = SoundEncoding(i);
            return true;
        }
    }
    return false;
}

} // namespace Lantern

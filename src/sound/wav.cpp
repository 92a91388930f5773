// SPDX-License-Identifier: MIT
#include "image/devicebytes_p.h"
#include "sound/samplebytes_p.h"
#include "sound/soundformats.h"

#include <QDataStream>

#include <cstring>
#include <limits>

namespace Vela {

namespace {

constexpr int riffHeaderSize = 12;
constexpr int chunkHeaderSize = 8;
constexpr int blockSize = 65536;

enum FormatCode { Pcm = 1, Extensible = 0xFFFE };

// What stands behind the code of the format in the name of an extensible format: that of RIFF.
constexpr char riffFormats[] = "\x00\x00\x00\x00\x10\x00\x80\x00\x00\xAA\x00\x38\x9B\x71";

quint32 longAt(const QByteArray &bytes, int at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

quint16 wordAt(const QByteArray &bytes, int at)
{
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

// Appends up to \a most bytes of a device, in one go where it knows its size. Takes memory for
// bytes that are there only. Returns false if they are too many.
bool append(QIODevice *device, qint64 most, QByteArray *bytes)
{
    for (;;) {
        const int size = bytes->size();
        const qint64 step =
            qMin(most, device->isSequential() ? blockSize : device->bytesAvailable());
        if (step <= 0)
            return true;
        if (step > LargestData - size)
            return false;
        bytes->resize(size + int(step));
        const auto count = int(device->read(bytes->data() + size, step));
        bytes->resize(size + qMax(count, 0));
        if (count < 1)
            return true;
        most -= count;
    }
}

// Returns where the first chunk with such an id begins, from the chunk at \a at on, or -1. Each
// begins at an even offset.
int findChunk(const QByteArray &content, qint64 at, const char *id)
{
    const auto idSize = int(qstrlen(id));
    while (at <= content.size() - chunkHeaderSize) {
        if (std::memcmp(content.constData() + at, id, size_t(idSize)) == 0)
            return int(at);
        const qint64 size = longAt(content, int(at) + 4);
        at += chunkHeaderSize + size + size % 2;
    }
    return -1;
}

// The chunk of the format, as far as it is of interest.
struct Format
{
    SampleInfo info; // without the number of samples
    quint32 byteRate = 0;

    // Reads the chunk that begins at \a at. Returns false for samples that are not integers.
    bool read(const QByteArray &content, int at);
    quint32 framesIn(int size) const
    {
        return byteRate != 0 ? quint32(size / frameSize(info)) : 0;
    }
};

bool Format::read(const QByteArray &content, int at)
{
    constexpr int shortSize = chunkHeaderSize + 16;
    constexpr int nameAt = chunkHeaderSize + 24;
    if (content.size() - at < shortSize)
        return false;
    const int code = wordAt(content, at + 8);
    const bool isPcm = code == Pcm
        || (code == Extensible && content.size() - at >= nameAt + 16
            && wordAt(content, at + nameAt) == Pcm
            && std::memcmp(content.constData() + at + nameAt + 2, riffFormats, 14) == 0);
    const quint16 bits = wordAt(content, at + 22);
    info.channels = wordAt(content, at + 10);
    info.frequency = longAt(content, at + 12);
    info.precision = storedPrecision(bits);
    byteRate = longAt(content, at + 16);
    return isPcm && info.channels > 0 && bits > 0 && bits <= 32;
}

// Returns where the header of the chunk of frames begins. The chunk of the format begins at
// \a formatAt. In a file whose chunks do not fit together the first such word is the header.
int findFrames(const QByteArray &content, int formatAt)
{
    const int walked = findChunk(content, formatAt, "data");
    if (walked >= 0)
        return walked;
    const int found = content.indexOf("data");
    return found > 0 ? found : formatAt + chunkHeaderSize + 16;
}

// Returns how many bytes the frames take, where \a claimed are promised and \a present are there.
// What a file that was cut lacks becomes silence. A promise that is out of proportion was made
// before the length was known, as where a program writes to a pipe.
int sizeOfFrames(quint32 claimed, int present, int frame)
{
    constexpr quint32 unknown = 0x7FFFF000;
    constexpr int usualGap = 16 * 1024 * 1024;
    const bool isTrue = claimed <= quint32(present)
        || (claimed < unknown && int(claimed) - present <= qMax(present, usualGap));
    return isTrue ? int(claimed) : present - present % frame;
}

// The frames of a file, as its chunks say.
struct Frames
{
    Format format;
    int at = 0;
    quint32 claimed = 0; // bytes

    // Reads the chunks before the frames. Returns false for samples that are not integers.
    bool read(const QByteArray &content, int formatAt)
    {
        const int chunkAt = findFrames(content, formatAt);
        at = chunkAt + chunkHeaderSize;
        claimed = at <= content.size() ? longAt(content, chunkAt + 4) : 0;
        return format.read(content, formatAt);
    }
};

} // namespace

SoundSample soundFromWAV(QIODevice *device)
{
    QByteArray header;
    if (!openDevice(device, QIODevice::ReadOnly) || !append(device, riffHeaderSize, &header)
        || header.size() < riffHeaderSize || std::memcmp(header.constData() + 8, "WAVE", 4) != 0)
        return {};

    // Nearly all files have their frames begin in the first block. The others are read to the end.
    const quint32 size = longAt(header, 4) - 4;
    QByteArray content;
    append(device, qMin<qint64>(size, blockSize), &content);
    int formatAt = findChunk(content, 0, "fmt");
    if (formatAt < 0 || findChunk(content, formatAt, "data") < 0) {
        if (!append(device, size - qint64(content.size()), &content))
            return {};
        formatAt = findChunk(content, 0, "fmt");
    }
    Frames frames;
    if (formatAt < 0 || !frames.read(content, formatAt))
        return {};

    SoundSample sample;
    static_cast<SampleInfo &>(sample) = frames.format.info;
    const qint64 most = qBound<qint64>(0, qint64(size) - frames.at, frames.claimed);
    sample.data = content.mid(frames.at, int(qMin<qint64>(most, content.size())));
    const qint64 there = qMin(most, sample.data.size() + device->bytesAvailable());
    if (there > LargestData)
        return {};
    sample.data.reserve(int(there));
    if (!append(device, most - sample.data.size(), &sample.data))
        return {};
    const int present = sample.data.size();
    sample.data.resize(sizeOfFrames(frames.claimed, present, frameSize(sample)));
    if (sample.data.size() > present)
        std::memset(sample.data.data() + present, 0, size_t(sample.data.size() - present));
    sample.samples = frames.format.framesIn(sample.data.size());
    return sample;
}

SampleInfo soundInfoFromWAV(QIODevice *device)
{
    QByteArray header;
    QByteArray content;
    if (!openDevice(device, QIODevice::ReadOnly) || !append(device, riffHeaderSize, &header)
        || !append(device, std::numeric_limits<qint64>::max(), &content))
        return {};
    Frames frames;
    if (!frames.read(content, qMax(0, findChunk(content, 0, "fmt"))))
        return {};
    SampleInfo info = frames.format.info;
    const int present = qMax(0, content.size() - frames.at);
    info.samples = frames.format.framesIn(sizeOfFrames(frames.claimed, present, frameSize(info)));
    return info;
}

bool soundToWAV(const SoundSample &sample, QIODevice *device)
{
    const int frame = frameSize(sample);
    const quint64 byteRate = quint64(frame) * sample.frequency;
    if (frame > 0xFFFF || byteRate > 0xFFFFFFFF || !openDevice(device, QIODevice::WriteOnly))
        return false;
    const auto size = quint32(sample.data.size());
    QDataStream stream(device);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(size + 36);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(Pcm) << sample.channels << sample.frequency
           << quint32(byteRate) << quint16(frame) << sample.precision;
    stream.writeRawData("data", 4);
    stream << size;
    stream.writeRawData(sample.data.constData(), sample.data.size());
    return stream.status() == QDataStream::Ok;
}

} // namespace Vela

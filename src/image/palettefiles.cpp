// SPDX-License-Identifier: MIT
// The files of palettes.
//
// Published descriptions: Adobe Color Table and Color Swatch by Adobe ("Photoshop File Formats"),
// RIFF palettes by Microsoft and IBM (1991).
#include "engine/tryextensions_p.h"
#include "image/imageextension.h"
#include "image/imageformats.h"
#include "image/paletteobject.h"

#include <QDataStream>
#include <QRegExp>
#include <QTextStream>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace Vela {

namespace {

constexpr int colorCount = 256;
using Table = RGBA[colorCount];

// The texts of palettes take some kilobytes; more is not read into memory.
constexpr qint64 maxTextBytes = 16 * 1024 * 1024;

// A buffer that is open for writing, too, would grow if it were set behind its end.
bool seekTo(QIODevice *device, qint64 position)
{
    return position <= device->size() && device->seek(position);
}

bool skipBytes(QIODevice *device, quint32 count)
{
    return seekTo(device, device->pos() + count);
}

RGBA opaqueColor(const QColor &color)
{
    return toRGBA(color.rgb());
}

bool readImage(QIODevice *device, const char *format, Table &table)
{
    QImage image;
    if (!loadImage(device, format, image) || image.format() != QImage::Format_Indexed8)
        return false;
    const QVector<QRgb> colors = image.colorTable();
    std::transform(colors.begin(), colors.begin() + qMin(colors.size(), colorCount), table, toRGBA);
    return true;
}

bool readACT(QIODevice *device, Table &table)
{
    RGB colors[colorCount];
    if (device->read(reinterpret_cast<char *>(colors), sizeof colors) != sizeof colors)
        return false;
    std::transform(std::rbegin(colors), std::rend(colors), table, [](RGB color) {
        return RGBA{color.r, color.g, color.b, 255};
    });
    return true;
}

bool writeACT(QIODevice *device, const Table &table)
{
    RGB colors[colorCount];
    std::transform(std::rbegin(table), std::rend(table), colors, [](RGBA color) {
        return RGB{color.r, color.g, color.b};
    });
    return device->write(reinterpret_cast<const char *>(colors), sizeof colors) == sizeof colors;
}

// The colour of a swatch of the 16 bit values of a file; false in a colour space without a rule.
bool swatchColor(quint16 space, const quint16 (&values)[4], RGBA &color)
{
    int bytes[4];
    std::transform(std::begin(values), std::end(values), bytes,
                   [](int value) { return value / 257; });
    switch (space) {
    case 0:
        color = opaqueColor(QColor(bytes[0], bytes[1], bytes[2]));
        return true;
    case 1: // 65536 are 359 degrees
        color = opaqueColor(QColor::fromHsv(qRound(values[0] / 182.5487), bytes[1], bytes[2]));
        return true;
    case 2:
        color = opaqueColor(
            QColor::fromCmyk(255 - bytes[0], 255 - bytes[1], 255 - bytes[2], 255 - bytes[3]));
        return true;
    case 8: { // 10000 are black
        const int gray = qMax(0, 255 - qRound(values[0] / 39.2157));
        color = opaqueColor(QColor(gray, gray, gray));
        return true;
    }
    default:
        return false;
    }
}

bool readACO(QIODevice *device, Table &table)
{
    QDataStream stream(device);
    quint16 version = 0;
    quint16 count = 0;
    stream >> version >> count;
    if (version != 1)
        return false;
    for (int filled = 0; count > 0 && filled < colorCount; --count) {
        quint16 space = 0;
        quint16 values[4] = {};
        stream >> space >> values[0] >> values[1] >> values[2] >> values[3];
        if (stream.status() != QDataStream::Ok)
            return false;
        if (swatchColor(space, values, table[filled]))
            ++filled;
    }
    return stream.status() == QDataStream::Ok;
}

bool readRIFF(QIODevice *device, Table &table)
{
    if (!seekTo(device, 8) || device->read(8) != "PAL data")
        return false;
    quint32_le chunkSize;
    if (device->read(reinterpret_cast<char *>(&chunkSize), sizeof chunkSize) != sizeof chunkSize)
        return false;
    const quint32 size = chunkSize - 8U;
    if (size > sizeof table || !seekTo(device, 24)
        || device->read(reinterpret_cast<char *>(table), size) != size)
        return false;
    for (RGBA &color : table)
        color.a = 255;
    std::reverse(std::begin(table), std::end(table));
    return true;
}

bool readText(QIODevice *device, QString &text)
{
    if (device->size() > maxTextBytes)
        return false;
    text = QTextStream(device).readAll();
    return true;
}

// The colour of a line that was matched: three or four numbers.
RGBA matchedColor(const QRegExp &pattern)
{
    const auto channel = [&pattern](int group) {
        return static_cast<quint8>(qMin(pattern.cap(group).toInt(), 255));
    };
    return {channel(1), channel(2), channel(3),
            pattern.cap(4).isEmpty() ? quint8(255) : channel(4)};
}

bool readJASC(QIODevice *device, Table &table)
{
    QString text;
    if (!readText(device, text))
        return false;
    // The format's lines end as on Windows; editors of other systems save it with their own ends.
    const QString windowsEnd = QStringLiteral("\r\n");
    const QStringList lines =
        text.split(text.contains(windowsEnd) ? windowsEnd : QStringLiteral("\n"));
    if (lines.size() < 2 || lines.at(0) != QLatin1String("JASC-PAL")
        || lines.at(1) != QLatin1String("0100"))
        return false;
    constexpr int firstColor = 3; // the third line tells their number
    QRegExp pattern(QStringLiteral("^(\\d{1,3})\\s(\\d{1,3})\\s(\\d{1,3})(?:\\s(\\d{1,3}))?$"));
    for (int i = 0; i < qMin(lines.size() - firstColor, colorCount); ++i) {
        if (pattern.indexIn(lines.at(firstColor + i)) == 0)
            table[i] = matchedColor(pattern);
    }
    return true;
}

bool readPainter(QIODevice *device, Table &table)
{
    QString text;
    if (!readText(device, text))
        return false;
    QRegExp pattern(QStringLiteral("^R:\\s?(\\d{1,3}),\\s?G:\\s?(\\d{1,3}),\\s?B:\\s?(\\d{1,3})"
                                   "(?:\\s?A:\\s?(\\d{1,3}))?"));
    int filled = 0;
    for (const QStringRef &line : text.splitRef(QLatin1Char('\n'))) {
        if (filled == colorCount)
            break;
        if (pattern.indexIn(line.toString()) == 0)
            table[filled++] = matchedColor(pattern);
    }
    return true;
}

// The block types of swatch exchange files that have fields of their own.
enum SwatchBlock : quint16 { SwatchColor = 0x0001, SwatchGroup = 0xC001 };

bool skipSwatchName(QDataStream &stream)
{
    quint16 length = 0;
    stream >> length;
    return skipBytes(stream.device(), length * 2U);
}

quint8 readSwatchChannel(QDataStream &stream)
{
    float value = 0;
    stream >> value;
    if (!(value > 0)) // a file may hold what is no number
        return 0;
    return value < 1 ? static_cast<quint8>(qRound(value * 255)) : quint8(255);
}

// Reads the fields of a colour, and sets \a isKnown unless its colour model has no rule.
bool readSwatchColor(QDataStream &stream, RGBA &color, bool &isKnown)
{
    char model[4] = {};
    if (!skipSwatchName(stream) || stream.readRawData(model, sizeof model) != sizeof model)
        return false;
    const auto isModel = [&model](const char *name) {
        return std::memcmp(model, name, sizeof model) == 0;
    };
    const int channelCount = isModel("RGB ") ? 3 : isModel("CMYK") ? 4 : isModel("Gray") ? 1 : 0;
    quint8 channels[4] = {};
    for (int i = 0; i < channelCount; ++i)
        channels[i] = readSwatchChannel(stream);
    isKnown = channelCount > 0;
    if (channelCount == 4)
        color = opaqueColor(QColor::fromCmyk(channels[0], channels[1], channels[2], channels[3]));
    else if (channelCount == 3)
        color = {channels[0], channels[1], channels[2], 255};
    else if (channelCount == 1)
        color = {channels[0], channels[0], channels[0], 255};
    constexpr quint32 colorTypeBytes = 2;
    constexpr quint32 otherModelBytes = 3 * sizeof(float);
    return stream.status() == QDataStream::Ok
        && skipBytes(stream.device(), colorTypeBytes + (isKnown ? 0 : otherModelBytes));
}

bool readSwatchExchange(QIODevice *device, Table &table)
{
    if (!seekTo(device, 4))
        return false;
    QDataStream stream(device);
    stream.setFloatingPointPrecision(QDataStream::SinglePrecision);
    quint16 major = 0;
    quint16 minor = 0;
    qint32 blockCount = 0;
    stream >> major >> minor >> blockCount;
    if (stream.status() != QDataStream::Ok || major != 1 || minor != 0)
        return false;
    int filled = 0;
    for (; blockCount > 0 && filled < colorCount; --blockCount) {
        quint16 type = 0;
        quint32 length = 0;
        stream >> type >> length;
        if (stream.status() != QDataStream::Ok)
            return false;
        bool isKnown = false;
        const bool isRead = type == SwatchColor ? readSwatchColor(stream, table[filled], isKnown)
            : type == SwatchGroup               ? skipSwatchName(stream)
                                                : skipBytes(device, length);
        if (!isRead)
            return false;
        filled += isKnown;
    }
    return true;
}

bool readBySignature(QIODevice *device, const char *format, Table &table)
{
    std::fill(std::begin(table), std::end(table), RGBA());
    const QByteArray signature = device->peek(4);
    if (signature == "RIFF")
        return readRIFF(device, table);
    if (signature == "JASC")
        return readJASC(device, table);
    if (signature == "ASEF")
        return readSwatchExchange(device, table);
    if (signature == "ROWS")
        return readPainter(device, table);
    return tryExtensions<PaletteLoader>(
        Extension::PaletteLoader, format,
        [&](PaletteLoader *loader) { return loader->load(device, table); });
}

bool readPalette(QIODevice *device, const char *format, Table &table)
{
    const auto isWord = [format](const char *word) { return qstrcmp(format, word) == 0; };
    if (isWord("PNG") || isWord("PCX") || isWord("BMP") || isWord("GIF"))
        return readImage(device, format, table);
    if (isWord("ACT"))
        return readACT(device, table);
    if (isWord("ACO"))
        return readACO(device, table);
    return readBySignature(device, format, table);
}

} // namespace

bool PaletteObject::fromFile(QIODevice *device, const char *format)
{
    if (!device || !device->isReadable())
        return false;
    RGBA table[colorCount];
    std::fill(std::begin(table), std::end(table), RGBA{0, 0, 0, 255});
    if (!readPalette(device, format, table))
        return false;
    fromPalette(table);
    return true;
}

bool PaletteObject::toFile(QIODevice *device, const char *format)
{
    if (!device || !device->isWritable())
        return false;
    if (qstrcmp(format, "ACT") == 0)
        return writeACT(device, *m_palette);
    return tryExtensions<PaletteSaver>(Extension::PaletteSaver, format, [&](PaletteSaver *saver) {
        return saver->save(*m_palette, device);
    });
}

} // namespace Vela

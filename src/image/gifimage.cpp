// SPDX-License-Identifier: MIT
#include "image/gifimage.h"

#include "image/devicebytes_p.h"
#include "image/pixels_p.h"
#include "image/spritecodec_p.h"

#include <gif_lib.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace Vela {

namespace {

constexpr char loopName[] = "NETSCAPE2.0";
constexpr int loopNameSize = 11;
// From this colour resolution on a pixel takes a byte, below it a bit.
constexpr int byteResolution = 2;

struct CloseReader
{
    void operator()(GifFileType *file) const
    {
        DGifCloseFile(file, nullptr);
    }
};

struct FreeMap
{
    void operator()(ColorMapObject *map) const
    {
        GifFreeMapObject(map);
    }
};

using ColorMap = std::unique_ptr<ColorMapObject, FreeMap>;

// What giflib reads from.
struct Source
{
    const uchar *next;
    const uchar *end;
};

int readFromSource(GifFileType *file, GifByteType *to, int length)
{
    auto *const source = static_cast<Source *>(file->UserData);
    const int count = int(qMin<qsizetype>(length, source->end - source->next));
    std::memcpy(to, source->next, size_t(count));
    source->next += count;
    return count;
}

int appendToBytes(GifFileType *file, const GifByteType *from, int length)
{
    auto *const bytes = static_cast<std::vector<uchar> *>(file->UserData);
    bytes->insert(bytes->end(), from, from + length);
    return length;
}

// Returns how many bytes stand in the blocks that begin at \a next.
qint64 dataSize(const uchar *next, const uchar *end)
{
    qint64 total = 0;
    while (next < end && *next != 0) {
        const qint64 size = qMin<qint64>(*next, end - next - 1);
        total += size;
        next += 1 + size;
    }
    return total;
}

QVector<RGB> toColors(const ColorMapObject *map)
{
    QVector<RGB> colors;
    if (map) {
        for (const GifColorType *color = map->Colors; color < map->Colors + map->ColorCount;
             ++color)
            colors.append({color->Red, color->Green, color->Blue});
    }
    return colors;
}

// giflib wants as many colours as fit a number of bits; those that are missing are black. Returns
// null for no colours.
ColorMap toColorMap(const QVector<RGB> &colors)
{
    if (colors.isEmpty())
        return nullptr;
    const int count = qMin(colors.size(), 256);
    ColorMap map(GifMakeMapObject(1 << GifBitSize(count), nullptr));
    for (int i = 0; map && i < count; ++i)
        map->Colors[i] = {colors[i].r, colors[i].g, colors[i].b};
    return map;
}

bool hasBitsOnly(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const row = image.constScanLine(y);
        if (std::any_of(row, row + image.width(), [](uchar index) { return index > 1; }))
            return false;
    }
    return true;
}

QImage toBits(const QImage &image)
{
    QImage bits(image.size(), QImage::Format_Mono);
    bits.fill(0);
    for (int y = 0; y < image.height(); ++y) {
        const uchar *const from = image.constScanLine(y);
        uchar *const to = bits.scanLine(y);
        for (int x = 0; x < image.width(); ++x)
            to[x / 8] |= from[x] << (7 - x % 8);
    }
    return bits;
}

// Reads the records of a file one by one, as DGifSlurp() does. That takes the memory of an image
// before it sees whether there is data for it, and leaves what it cannot read undefined.
class Reader
{
public:
    Reader(GifFileType *file, const Source &source, GIFImage *gif)
        : m_file(file)
        , m_source(source)
        , m_gif(gif)
    {
    }

    // Returns whether the file was read to its end.
    bool readRecords();

private:
    bool readExtension();
    bool readImage();
    bool readPixels(QImage &image);
    bool readRow(QImage &image, int y);

    GifFileType *m_file;
    const Source &m_source;
    GIFImage *m_gif;
    // What the extensions in front of the next image say.
    std::optional<int> m_transparent;
    bool m_loop = false;
};

bool Reader::readRecords()
{
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (!DGifGetRecordType(m_file, &type))
            return false;
        if (type == TERMINATE_RECORD_TYPE)
            return !m_gif->images().isEmpty();
        if (!(type == IMAGE_DESC_RECORD_TYPE ? readImage() : readExtension()))
            return false;
    }
}

bool Reader::readExtension()
{
    int code = 0;
    GifByteType *block = nullptr; // its size, and then its bytes
    if (!DGifGetExtension(m_file, &code, &block))
        return false;
    GraphicsControlBlock control;
    if (block && code == GRAPHICS_EXT_FUNC_CODE
        && DGifExtensionToGCB(block[0], block + 1, &control)) {
        m_transparent = control.TransparentColor;
    } else if (block && code == APPLICATION_EXT_FUNC_CODE && block[0] >= loopNameSize
               && std::memcmp(block + 1, loopName, loopNameSize) == 0) {
        m_loop = true;
    }
    while (block) {
        if (!DGifGetExtensionNext(m_file, &block))
            return false;
    }
    return true;
}

bool Reader::readImage()
{
    // A code has 12 bits when it stands for up to 4096 pixels. Before that the codes are shorter,
    // but what they stand for is shorter by more.
    constexpr qint64 pixelsOfThreeBytes = 2 * 4096;
    if (!DGifGetImageHeader(m_file))
        return false;
    const GifImageDesc &header = m_file->Image;
    const qint64 pixels = qint64(header.Width) * header.Height;
    if (pixels == 0 || pixels * 3 > dataSize(m_source.next, m_source.end) * pixelsOfThreeBytes)
        return false;
    GIFImage::SubImage frame;
    frame.image = makeImage(QSize(header.Width, header.Height), QImage::Format_Indexed8);
    if (frame.image.isNull())
        return false;
    const bool whole = readPixels(frame.image);
    // Some programs write a resolution of one bit whatever the colours are, so the pixels have to
    // fit as well.
    if (m_file->SColorResolution < byteResolution && hasBitsOnly(frame.image))
        frame.image = toBits(frame.image);
    frame.colorMap = toColors(header.ColorMap);
    frame.left = quint16(header.Left);
    frame.top = quint16(header.Top);
    const int background = m_file->SColorMap ? m_file->SBackGroundColor : GIFImage::NoTransparent;
    frame.transparent = qint16(m_transparent.value_or(background));
    m_gif->setLoop(m_gif->canLoop() || m_loop);
    m_gif->images().append(frame);
    m_transparent.reset();
    m_loop = false;
    return whole;
}

bool Reader::readRow(QImage &image, int y)
{
    return DGifGetLine(m_file, image.scanLine(y), image.width());
}

// What cannot be read is 0.
bool Reader::readPixels(QImage &image)
{
    image.fill(0);
    if (!m_file->Image.Interlace) {
        for (int y = 0; y < image.height(); ++y) {
            if (!readRow(image, y))
                return false;
        }
        return true;
    }
    constexpr int passes[][2] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    for (const auto &[first, step] : passes) {
        for (int y = first; y < image.height(); y += step) {
            if (!readRow(image, y))
                return false;
        }
    }
    return true;
}

// Returns a byte for each pixel of a row.
void readIndices(const QImage &image, int y, std::vector<GifByteType> *indices)
{
    const int width = image.width();
    indices->resize(size_t(width));
    if (image.format() == QImage::Format_Indexed8) {
        std::memcpy(indices->data(), image.constScanLine(y), size_t(width));
        return;
    }
    for (int x = 0; x < width; ++x)
        (*indices)[size_t(x)] = GifByteType(image.pixelIndex(x, y));
}

bool isIndexed(QImage::Format format)
{
    return format == QImage::Format_Indexed8 || format == QImage::Format_Mono
        || format == QImage::Format_MonoLSB;
}

bool writePixels(GifFileType *file, const GIFImage::SubImage &frame)
{
    constexpr int largestSide = 0xFFFF;
    const QImage &image = frame.image;
    if (!isIndexed(image.format()) || image.width() > largestSide || image.height() > largestSide)
        return false;
    const ColorMap map = toColorMap(frame.colorMap);
    // giflib loses the map of the frame before if this one has none.
    const ColorMap before(std::exchange(file->Image.ColorMap, nullptr));
    if (!EGifPutImageDesc(file, frame.left, frame.top, image.width(), image.height(), false,
                          map.get()))
        return false;
    std::vector<GifByteType> indices;
    for (int y = 0; y < image.height(); ++y) {
        readIndices(image, y, &indices);
        if (!EGifPutLine(file, indices.data(), image.width()))
            return false;
    }
    return true;
}

bool writeLoop(GifFileType *file)
{
    constexpr uchar forever[] = {1, 0, 0};
    return EGifPutExtensionLeader(file, APPLICATION_EXT_FUNC_CODE)
        && EGifPutExtensionBlock(file, loopNameSize, loopName)
        && EGifPutExtensionBlock(file, sizeof forever, forever) && EGifPutExtensionTrailer(file);
}

bool writeControl(GifFileType *file, int delay, qint16 transparent)
{
    GraphicsControlBlock control;
    control.DisposalMode = transparent >= 0 ? DISPOSE_BACKGROUND : DISPOSAL_UNSPECIFIED;
    control.UserInputFlag = false;
    control.DelayTime = delay;
    control.TransparentColor = transparent >= 0 ? transparent : NO_TRANSPARENT_COLOR;
    GifByteType bytes[4];
    const size_t size = EGifGCBToExtension(&control, bytes);
    return EGifPutExtension(file, GRAPHICS_EXT_FUNC_CODE, int(size), bytes);
}

// Delays are whole hundredths of a second in a file, of 16 bits.
float limitedDelay(float delay)
{
    return delay > 0 ? qMin(delay, 65535.0F) : 0;
}

bool writeFrames(GifFileType *file, const QList<GIFImage::SubImage> &frames)
{
    float delay = 0;
    for (const GIFImage::SubImage &frame : frames) {
        if (frames.size() > 1) {
            delay = limitedDelay(delay + limitedDelay(frame.delay));
            const int whole = int(delay);
            delay -= float(whole);
            if (!writeControl(file, whole, frame.transparent))
                return false;
        }
        if (!writePixels(file, frame))
            return false;
    }
    return true;
}

int colorResolution(const GIFImage &gif)
{
    const GIFImage::SubImage &first = gif.images().constFirst();
    if (first.image.format() == QImage::Format_Mono)
        return 1;
    const QVector<RGB> &colors =
        gif.globalColorMap().isEmpty() ? first.colorMap : gif.globalColorMap();
    return GifBitSize(qMin(colors.size(), 256));
}

bool writeFile(GifFileType *file, const GIFImage &gif)
{
    EGifSetGifVersion(file, true);
    const QList<GIFImage::SubImage> &frames = gif.images();
    // The background is what says the transparent colour of a single image, in place of a control
    // block.
    const int background = frames.size() == 1 ? qMax<int>(frames.constFirst().transparent, 0) : 0;
    const ColorMap map = toColorMap(gif.globalColorMap());
    return EGifPutScreenDesc(file, gif.width(), gif.height(), colorResolution(gif), background,
                             map.get())
        && (!gif.canLoop() || writeLoop(file)) && writeFrames(file, frames);
}

} // namespace

GIFImage::GIFImage() = default;

GIFImage::GIFImage(unsigned short width, unsigned short height, bool loop)
    : m_loop(loop)
    , m_width(width)
    , m_height(height)
{
}

bool GIFImage::load(QIODevice *device)
{
    *this = GIFImage();
    if (!openDevice(device, QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = peekAll(device);
    const auto *const begin = reinterpret_cast<const uchar *>(bytes.constData());
    Source source{begin, begin + bytes.size()};
    const std::unique_ptr<GifFileType, CloseReader> file(
        DGifOpen(&source, readFromSource, nullptr));
    const bool whole = file && Reader(file.get(), source, this).readRecords();
    device->skip(source.next - begin);
    if (!file)
        return false;
    m_globalColorMap = toColors(file->SColorMap);
    const QSize screen(file->SWidth, file->SHeight);
    const QSize size = m_images.size() == 1 ? m_images.constFirst().image.size() : screen;
    m_width = quint16(size.width());
    m_height = quint16(size.height());
    return whole;
}

bool GIFImage::save(QIODevice *device)
{
    if (m_images.isEmpty() || !openDevice(device, QIODevice::WriteOnly))
        return false;
    std::vector<uchar> bytes;
    GifFileType *const file = EGifOpen(&bytes, appendToBytes, nullptr);
    if (!file)
        return false;
    const bool written = writeFile(file, *this);
    const bool closed = EGifCloseFile(file, nullptr) == GIF_OK;
    return written && closed && writeBytes(device, bytes);
}

bool GIFImage::canLoop() const
{
    return m_loop;
}

void GIFImage::setLoop(bool loop)
{
    m_loop = loop;
}

unsigned short GIFImage::width() const
{
    return m_width;
}

void GIFImage::setWidth(unsigned short width)
{
    m_width = width;
}

unsigned short GIFImage::height() const
{
    return m_height;
}

void GIFImage::setHeight(unsigned short height)
{
    m_height = height;
}

const QVector<RGB> &GIFImage::globalColorMap() const
{
    return m_globalColorMap;
}

QVector<RGB> &GIFImage::globalColorMap()
{
    return m_globalColorMap;
}

const QList<GIFImage::SubImage> &GIFImage::images() const
{
    return m_images;
}

QList<GIFImage::SubImage> &GIFImage::images()
{
    return m_images;
}

} // namespace Vela

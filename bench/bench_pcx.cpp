// SPDX-License-Identifier: MIT
// PCX and GIF: loadPCX() against reading a byte at a time and, where it is installed, libavcodec;
// GIFImage::load() against what giflib alone takes. The results are compared, too.
#include "processortime.h"

#include "image/samplepixels.h"

#include "image/gifimage.h"
#include "image/imageformats.h"

#include <QBuffer>
#include <QDataStream>
#include <QtEndian>

#include <benchmark/benchmark.h>
#include <gif_lib.h>

#include <cstring>

#ifdef VELA_HAS_LIBAVCODEC
extern "C" {
#include <libavcodec/avcodec.h>
}
#endif

namespace {

constexpr QSize pictureSize(1024, 1024);

/// An indexed picture, or one of three planes.
QImage picture(SamplePixels::Kind kind, bool isIndexed)
{
    SamplePixels::Random random(4);
    QImage image = SamplePixels::make(random, kind, pictureSize, 256);
    QVector<QRgb> colors;
    while (colors.size() < 256)
        colors.append(qRgb(colors.size(), colors.size() * 7 % 256, colors.size() * 31 % 256));
    image.setColorTable(colors);
    return isIndexed ? image : image.convertToFormat(QImage::Format_RGB32);
}

QByteArray fileOf(const QImage &image, const char *format)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    Vela::saveImage(&buffer, format, image);
    return buffer.data();
}

/// Reads pixels a byte at a time, straight from the rules of the format.
QImage plainPcx(const QByteArray &file, QImage::Format format)
{
    QDataStream stream(file);
    QImage image(pictureSize, format);
    std::memset(image.bits(), 0, size_t(image.sizeInBytes()));
    stream.skipRawData(128);
    const int planes = format == QImage::Format_Indexed8 ? 1 : 3;
    const int stride = planes == 3 ? 4 : 1;
    int row = 0;
    int plane = 0;
    int column = 0;
    uchar *to = image.bits();
    while (row < image.height()) {
        quint8 value = 0;
        stream >> value;
        int count = 1;
        if (value >= 192) {
            count = value & 63;
            stream >> value;
        }
        for (; count > 0 && row < image.height(); --count) {
            if (column < image.width()) {
                *to = value;
                to += stride;
            }
            if (++column < image.width())
                continue;
            column = 0;
            if (++plane == planes) {
                plane = 0;
                ++row;
            }
            to = image.scanLine(qMin(row, image.height() - 1)) + plane;
        }
    }
    return planes == 3 ? std::move(image).rgbSwapped() : image;
}

bool equalPixels(const QImage &a, const QImage &b)
{
    for (int y = 0; y < a.height(); ++y) {
        if (std::memcmp(a.constScanLine(y), b.constScanLine(y), size_t(a.bytesPerLine())) != 0)
            return false;
    }
    return a.size() == b.size();
}

#ifdef VELA_HAS_LIBAVCODEC
/// Decodes one file after the other, and keeps the picture.
class PeerDecoder
{
public:
    PeerDecoder()
        : m_context(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_PCX)))
    {
        m_context->thread_count = 1;
        m_ok = avcodec_open2(m_context, nullptr, nullptr) >= 0;
    }
    ~PeerDecoder()
    {
        av_frame_free(&m_frame);
        av_packet_free(&m_packet);
        avcodec_free_context(&m_context);
    }
    Q_DISABLE_COPY(PeerDecoder)

    void setFile(const QByteArray &file)
    {
        m_ok = m_ok && av_new_packet(m_packet, file.size()) >= 0;
        std::memcpy(m_packet->data, file.constData(), size_t(file.size()));
    }
    void decode()
    {
        m_ok = m_ok && avcodec_send_packet(m_context, m_packet) >= 0
            && avcodec_receive_frame(m_context, m_frame) >= 0;
    }
    bool matches(const QImage &image) const
    {
        const bool isIndexed = image.format() == QImage::Format_Indexed8;
        for (int y = 0; m_ok && y < image.height(); ++y) {
            const uchar *const row = m_frame->data[0] + y * m_frame->linesize[0];
            for (int x = 0; x < image.width(); ++x) {
                const uchar *const rgb = row + x * 3;
                if (isIndexed ? row[x] != image.constScanLine(y)[x]
                              : qRgb(rgb[0], rgb[1], rgb[2]) != image.pixel(x, y))
                    return false;
            }
        }
        return m_ok;
    }

private:
    AVCodecContext *m_context;
    AVPacket *m_packet = av_packet_alloc();
    AVFrame *m_frame = av_frame_alloc();
    bool m_ok = false;
};
#else
class PeerDecoder
{
public:
    void setFile(const QByteArray &)
    {
    }
    void decode()
    {
    }
    bool matches(const QImage &) const
    {
        return true;
    }
};
#endif

void pcx(benchmark::State &state, SamplePixels::Kind kind, bool isIndexed)
{
    const QImage source = picture(kind, isIndexed);
    QByteArray file = fileOf(source, "PCX");
    PeerDecoder decoder;
    decoder.setFile(file);
    QImage image;
    QImage plain;
    BestTime fast;
    BestTime slow;
    BestTime peer;
    for (auto _ : state) {
        QBuffer buffer(&file);
        fast.measure([&] {
            image = QImage();
            Vela::loadPCX(image, &buffer, nullptr);
        });
        slow.measure([&] { plain = plainPcx(file, image.format()); });
        peer.measure([&] { decoder.decode(); });
    }
    if (!equalPixels(image, plain))
        state.SkipWithError("the fast way gives other pixels");
    if (!decoder.matches(image))
        state.SkipWithError("libavcodec gives other pixels");
    state.counters["ms"] = fast.seconds * 1000;
    state.counters["to_plain"] = fast.seconds / slow.seconds;
#ifdef VELA_HAS_LIBAVCODEC
    state.counters["to_peer"] = fast.seconds / peer.seconds;
#endif
}

int readBytes(GifFileType *file, GifByteType *to, int length)
{
    auto *const rest = static_cast<QByteArray *>(file->UserData);
    const int count = qMin(length, rest->size());
    std::memcpy(to, rest->constData(), size_t(count));
    *rest = QByteArray::fromRawData(rest->constData() + count, rest->size() - count);
    return count;
}

void gif(benchmark::State &state, SamplePixels::Kind kind)
{
    const QImage source = picture(kind, true);
    QByteArray file = fileOf(source, "GIF");
    Vela::GIFImage image;
    BestTime ours;
    BestTime raw;
    for (auto _ : state) {
        QBuffer buffer(&file);
        ours.measure([&] { image.load(&buffer); });
        raw.measure([&] {
            QByteArray rest = QByteArray::fromRawData(file.constData(), file.size());
            GifFileType *const handle = DGifOpen(&rest, readBytes, nullptr);
            DGifSlurp(handle);
            DGifCloseFile(handle, nullptr);
        });
    }
    if (!equalPixels(image.images().constFirst().image, source))
        state.SkipWithError("the file gives other pixels");
    state.counters["ms"] = ours.seconds * 1000;
    state.counters["to_giflib"] = ours.seconds / raw.seconds;
}

BENCHMARK_CAPTURE(pcx, indexed_runs, SamplePixels::Runs, true);
BENCHMARK_CAPTURE(pcx, indexed_tiles, SamplePixels::Tiles, true);
BENCHMARK_CAPTURE(pcx, indexed_noise, SamplePixels::Noise, true);
BENCHMARK_CAPTURE(pcx, planes_runs, SamplePixels::Runs, false);
BENCHMARK_CAPTURE(pcx, planes_tiles, SamplePixels::Tiles, false);
BENCHMARK_CAPTURE(pcx, planes_noise, SamplePixels::Noise, false);
BENCHMARK_CAPTURE(gif, runs, SamplePixels::Runs);
BENCHMARK_CAPTURE(gif, noise, SamplePixels::Noise);

} // namespace

BENCHMARK_MAIN();

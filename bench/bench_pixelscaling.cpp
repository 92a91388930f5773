// SPDX-License-Identifier: MIT
// EPX and HQ scaling: EPX against the plain way, and both against the filters of libavfilter with
// one thread where that is installed. The results are compared, too.
#include "processortime.h"

#include "image/plainepx.h"

#include "image/pixelscaling.h"

#include <QPainter>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <limits>

#ifdef VELA_HAS_LIBAVFILTER
extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}
#endif

namespace {

constexpr QSize pictureSize(512, 512);

/// Flat shapes with outlines on nothing, as in a sheet of sprites.
QImage sprites()
{
    QImage image(pictureSize, QImage::Format_ARGB32);
    image.fill(0);
    QRandomGenerator random(5);
    QPainter painter(&image);
    painter.setPen(QPen(Qt::black, 1));
    for (int i = 0; i < 400; ++i) {
        painter.setBrush(QColor::fromHsv(random.bounded(12) * 30, 160, 220));
        painter.drawEllipse(random.bounded(500), random.bounded(500), random.bounded(4, 40),
                            random.bounded(4, 40));
    }
    return image;
}

/// Every pattern of neighbours, in no order.
QImage noise()
{
    constexpr QRgb colors[] = {0xff000000, 0xffffffff, 0xffd04040, 0xff4060c0};
    QImage image(pictureSize, QImage::Format_ARGB32);
    QRandomGenerator random(6);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, colors[random.bounded(4)]);
    }
    return image;
}

/// Slow changes of all channels with grain, as in a photo.
QImage photo()
{
    QImage image(pictureSize, QImage::Format_ARGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int grain = random.bounded(12);
            image.setPixel(x, y, qRgb(x / 3 + grain, y / 3 + grain, (x + y) / 6 + grain));
        }
    }
    return image;
}

struct Picture
{
    const char *name;
    QImage (*make)();
};

constexpr Picture pictures[] = {{"sprites", sprites}, {"noise", noise}, {"photo", photo}};

#ifdef VELA_HAS_LIBAVFILTER
/// A graph of one filter, and its frames.
class PeerFilter
{
public:
    PeerFilter(const char *filter, int factor)
        : m_graph(avfilter_graph_alloc())
    {
        m_graph->nb_threads = 1;
        const QByteArray input = QByteArray("video_size=") + QByteArray::number(pictureSize.width())
            + 'x' + QByteArray::number(pictureSize.height()) + ":pix_fmt=bgra:time_base=1/25";
        const QByteArray option = "n=" + QByteArray::number(factor);
        AVFilterContext *scaler = nullptr;
        m_ok = create(&m_source, "buffer", input.constData())
            && create(&scaler, filter, option.constData()) && create(&m_sink, "buffersink", nullptr)
            && avfilter_link(m_source, 0, scaler, 0) >= 0
            && avfilter_link(scaler, 0, m_sink, 0) >= 0
            && avfilter_graph_config(m_graph, nullptr) >= 0;
    }

    ~PeerFilter()
    {
        av_frame_free(&m_output);
        avfilter_graph_free(&m_graph);
    }

    Q_DISABLE_COPY(PeerFilter)

    /// Returns the processor time of the filter, or infinity.
    double run(const QImage &image)
    {
        if (!m_ok)
            return std::numeric_limits<double>::infinity();
        AVFrame *input = av_frame_alloc();
        input->format = AV_PIX_FMT_BGRA;
        input->width = image.width();
        input->height = image.height();
        av_frame_get_buffer(input, 0);
        for (int y = 0; y < image.height(); ++y) {
            std::copy_n(image.constScanLine(y), image.width() * 4,
                        input->data[0] + y * input->linesize[0]);
        }
        av_frame_unref(m_output);
        const double seconds = processorSeconds([&] {
            m_ok = av_buffersrc_add_frame(m_source, input) >= 0
                && av_buffersink_get_frame(m_sink, m_output) >= 0;
        });
        av_frame_free(&input);
        return seconds;
    }

    /// The last result, which stays the filter's.
    QImage result() const
    {
        return {m_output->data[0], m_output->width, m_output->height, m_output->linesize[0],
                QImage::Format_ARGB32};
    }

private:
    bool create(AVFilterContext **context, const char *name, const char *options)
    {
        return avfilter_graph_create_filter(context, avfilter_get_by_name(name), name, options,
                                            nullptr, m_graph)
            >= 0;
    }

    AVFilterGraph *m_graph;
    AVFilterContext *m_source = nullptr;
    AVFilterContext *m_sink = nullptr;
    AVFrame *m_output = av_frame_alloc();
    bool m_ok = false;
};
#else
class PeerFilter
{
public:
    PeerFilter(const char *, int)
    {
    }

    double run(const QImage &)
    {
        return std::numeric_limits<double>::infinity();
    }

    QImage result() const
    {
        return {};
    }
};
#endif

/// Where the peer reads other pixels past the border, \a border leaves that out.
bool equalInside(const QImage &a, const QImage &b, int border)
{
    const QRect inside = a.rect().adjusted(border, border, -border, -border);
    return b.isNull() || a.copy(inside) == b.copy(inside);
}

void setLabel(benchmark::State &state, const Picture &picture)
{
    state.SetLabel(std::string(picture.name) + " x" + std::to_string(state.range(0)));
}

void epx(benchmark::State &state)
{
    const int factor = int(state.range(0));
    const Picture &picture = pictures[state.range(1)];
    const QImage image = picture.make();
    const QImage indexed = image.convertToFormat(QImage::Format_Indexed8);
    PeerFilter filter("epx", factor);
    QImage result, plainResult;
    double vela = std::numeric_limits<double>::infinity();
    double plain = vela;
    double peer = vela;
    double bytes = vela;
    for (auto _ : state) {
        vela = std::min(vela, processorSeconds([&] { result = Vela::scaleEPX(image, factor); }));
        bytes = std::min(bytes, processorSeconds([&] { Vela::scaleEPX(indexed, factor); }));
        plain = std::min(plain,
                         processorSeconds([&] { plainResult = PlainEPX(image).scaled(factor); }));
        peer = std::min(peer, filter.run(image));
    }
    if (result != plainResult || !equalInside(result, filter.result(), factor == 3 ? factor : 0))
        state.SkipWithError("The results differ.");
    setLabel(state, picture);
    state.counters["ms"] = vela * 1e3;
    state.counters["ms_indexed"] = bytes * 1e3;
    state.counters["to_plain"] = vela / plain;
    state.counters["to_peer"] = vela / peer;
}

void hq(benchmark::State &state)
{
    const int factor = int(state.range(0));
    const Picture &picture = pictures[state.range(1)];
    const QImage image = picture.make();
    PeerFilter filter("hqx", factor);
    QImage result(image.size() * factor, QImage::Format_ARGB32);
    double vela = std::numeric_limits<double>::infinity();
    double peer = vela;
    for (auto _ : state) {
        vela = std::min(vela, processorSeconds([&] {
                            Vela::scaleHQ(
                                factor, reinterpret_cast<const quint32 *>(image.constBits()),
                                image.width(), image.height(),
                                reinterpret_cast<quint32 *>(result.bits()), result.bytesPerLine());
                        }));
        peer = std::min(peer, filter.run(image));
    }
    if (!equalInside(result, filter.result(), 0))
        state.SkipWithError("The results differ.");
    setLabel(state, picture);
    state.counters["ms"] = vela * 1e3;
    state.counters["to_peer"] = vela / peer;
}

BENCHMARK(epx)->ArgsProduct({{2, 3}, {0, 1, 2}})->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(hq)->ArgsProduct({{2, 3, 4}, {0, 1, 2}})->Unit(benchmark::kMillisecond)->Iterations(20);

} // namespace

BENCHMARK_MAIN();

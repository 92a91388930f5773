// SPDX-License-Identifier: MIT
// The codecs of one sprite's pixels: the LZ5 writer against the same search without its index, with
// the same bytes; the readers against zlib's inflate on the same pixels.
#include "processortime.h"

#include "image/plainlz5.h"
#include "image/samplepixels.h"

#include "image/imageformats.h"

#include <QBuffer>

#include <benchmark/benchmark.h>
#include <zlib.h>

#include <algorithm>
#include <limits>

namespace {

constexpr double Never = std::numeric_limits<double>::infinity();

// Loads that are measured together: one alone takes few of the clock's ticks.
constexpr int Loads = 10;

// Behind the kinds of made-up pixels.
constexpr int Drawn = SamplePixels::KindCount;

QImage sample(const benchmark::State &state)
{
    if (state.range(0) == Drawn)
        return QImage(QStringLiteral(VELA_MEADOW "/mill/bilder/M\u00fchle.png"));
    SamplePixels::Random random(3);
    const auto kind = SamplePixels::Kind(state.range(0));
    return SamplePixels::make(random, kind, {256, 256}, int(state.range(1)));
}

void setLabel(benchmark::State &state)
{
    static const char *const names[] = {"runs", "noise", "dithered", "tiles", "drawn"};
    state.SetLabel(names[state.range(0)]);
}

QByteArray savedLZ5(const QImage &image)
{
    QBuffer buffer;
    Vela::saveLZ5(image, &buffer, true);
    return buffer.data();
}

QByteArray savedRLE8(const QImage &image)
{
    QBuffer buffer;
    Vela::saveRLE8(image, &buffer);
    return buffer.data();
}

void saveLZ5(benchmark::State &state)
{
    const QImage image = sample(state);
    const QByteArray pixels = SamplePixels::joined(image);
    double vela = Never;
    double plain = Never;
    QByteArray expected;
    QByteArray stream;
    for (auto _ : state) {
        vela = std::min(vela, processorSeconds([&] { stream = savedLZ5(image); }));
        if (expected.isEmpty())
            plain = processorSeconds([&] { expected = PlainLZ5::encode(pixels, true); });
    }
    if (stream != expected)
        state.SkipWithError("the plain search gives other bytes");
    setLabel(state);
    state.counters["MB/s"] = pixels.size() / vela / 1e6;
    state.counters["times_plain"] = plain / vela;
}

template <bool (*load)(QImage &, QIODevice *), QByteArray (*saved)(const QImage &)>
void loadPixels(benchmark::State &state)
{
    const QImage image = sample(state);
    const QByteArray pixels = SamplePixels::joined(image);
    QByteArray stream = saved(image);
    QByteArray deflated(int(compressBound(uLong(pixels.size()))), 0);
    uLongf deflatedSize = uLongf(deflated.size());
    compress(reinterpret_cast<Bytef *>(deflated.data()), &deflatedSize,
             reinterpret_cast<const Bytef *>(pixels.constData()), uLong(pixels.size()));

    QImage loaded(image.size(), QImage::Format_Indexed8);
    double vela = Never;
    double zlib = Never;
    for (auto _ : state) {
        vela = std::min(vela, processorSeconds([&] {
                            for (int i = 0; i < Loads; ++i) {
                                QBuffer buffer(&stream);
                                load(loaded, &buffer);
                            }
                        }));
        zlib = std::min(zlib, processorSeconds([&] {
                            for (int i = 0; i < Loads; ++i) {
                                uLongf size = uLongf(pixels.size());
                                uncompress(loaded.bits(), &size,
                                           reinterpret_cast<const Bytef *>(deflated.constData()),
                                           deflatedSize);
                            }
                        }));
    }
    QBuffer buffer(&stream);
    if (!load(loaded, &buffer) || SamplePixels::joined(loaded) != pixels)
        state.SkipWithError("the pixels differ");
    setLabel(state);
    state.counters["MB/s"] = pixels.size() * Loads / vela / 1e6;
    state.counters["times_zlib"] = zlib / vela;
}

void everySample(benchmark::internal::Benchmark *job)
{
    for (const int colors : {2, 4, 16, 32}) {
        for (int kind = 0; kind < SamplePixels::KindCount; ++kind)
            job->Args({kind, colors});
    }
    job->Args({Drawn, 32});
}

} // namespace

BENCHMARK(saveLZ5)->Apply(everySample)->Iterations(5);
BENCHMARK_TEMPLATE(loadPixels, Vela::loadLZ5, savedLZ5)->Apply(everySample)->Iterations(200);
BENCHMARK_TEMPLATE(loadPixels, Vela::loadRLE8, savedRLE8)->Apply(everySample)->Iterations(200);

BENCHMARK_MAIN();

// SPDX-License-Identifier: MIT
// The operations on images of 1024 by 1024 pixels, each beside the plain way or beside the library
// that people would take for the job. Where the results must be equal they are compared first.
#include "image/plainmatch.h"

#include "image/colorquantizer.h"
#include "image/imageoperations.h"
#include "image/nearestcolor_p.h"

#include <QImage>

#include <benchmark/benchmark.h>

#if defined(VELA_HAS_IMAGEQUANT)
#include <libimagequant.h>
#endif

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using namespace Vela;

namespace {

constexpr int Side = 1024;

enum Content { Sprite, Photo, Noise, Glass };
constexpr const char *contentNames[] = {"sprite", "photo", "noise", "translucent"};

struct Colors
{
    RGBA palette[256] = {};
};

QRgb *pixels(QImage &image, int y)
{
    return reinterpret_cast<QRgb *>(image.scanLine(y));
}

/// Runs of 30 colours, a third of them transparent.
QImage spriteImage()
{
    std::mt19937 random(1);
    QImage image(Side, Side, QImage::Format_ARGB32);
    for (int y = 0; y < Side; ++y) {
        QRgb *row = pixels(image, y);
        for (int x = 0; x < Side;) {
            const QRgb color = random() % 3 == 0 ? 0 : 0xff000000 | (random() % 30) * 0x080705;
            const int end = std::min(Side, x + 1 + int(random() % 16));
            std::fill(row + x, row + end, color);
            x = end;
        }
    }
    return image;
}

/// Soft waves of light and colour with the grain of a camera.
QImage photoImage()
{
    std::mt19937 random(2);
    QImage image(Side, Side, QImage::Format_ARGB32);
    for (int y = 0; y < Side; ++y) {
        QRgb *row = pixels(image, y);
        for (int x = 0; x < Side; ++x) {
            const auto channel = [&](double a, double b) {
                const double wave = std::sin(x * a + y * b) + std::cos(x * b / 3 - y * a * 2);
                return std::clamp(int(128 + 60 * wave) + int(random() % 17) - 8, 0, 255);
            };
            row[x] = qRgb(channel(0.011, 0.007), channel(0.005, 0.013), channel(0.009, 0.003));
        }
    }
    return image;
}

QImage noiseImage(QRgb alpha)
{
    std::mt19937 random(3);
    QImage image(Side, Side, QImage::Format_ARGB32);
    for (int y = 0; y < Side; ++y)
        std::generate(pixels(image, y), pixels(image, y) + Side,
                      [&] { return QRgb(random()) | alpha; });
    return image;
}

const QImage &content(int kind)
{
    static const QImage images[] = {spriteImage(), photoImage(), noiseImage(0xff000000),
                                    noiseImage(0)};
    return images[kind];
}

/// The best 255 colours for the image behind a transparent one.
Colors paletteFor(const QImage &image)
{
    Colors colors;
    ColorQuantizer quantizer(255, 8);
    quantizer.processImage(image);
    RGBA table[256];
    quantizer.getColorTable(table);
    std::copy(table, table + 255, colors.palette + 1);
    for (int i = 1; i < 256; ++i)
        colors.palette[i].a = 255;
    return colors;
}

QVector<QRgb> tableOf(const Colors &colors)
{
    QVector<QRgb> table(256);
    std::transform(std::begin(colors.palette), std::end(colors.palette), table.begin(), toRgb);
    return table;
}

/// What is measured takes an image of each kind.
void contents(benchmark::internal::Benchmark *job)
{
    job->DenseRange(Sprite, Glass)->Unit(benchmark::kMillisecond);
}

void finish(benchmark::State &state)
{
    state.SetLabel(contentNames[state.range(0)]);
    state.SetItemsProcessed(state.iterations() * Side * Side);
}

void adapt(benchmark::State &state)
{
    const QImage image = content(int(state.range(0)));
    const Colors colors = paletteFor(image);
    QImage result = image;
    adaptImageToPalette(result, colors.palette);
    result.setColorTable({});
    if (result != PlainMatch::matched(image, colors.palette))
        state.SkipWithError("not the plain scan's result");
    for (auto _ : state) {
        result = image;
        adaptImageToPalette(result, colors.palette);
    }
    finish(state);
}
BENCHMARK(adapt)->Apply(contents);

void adaptPlain(benchmark::State &state)
{
    const QImage &image = content(int(state.range(0)));
    const Colors colors = paletteFor(image);
    for (auto _ : state)
        benchmark::DoNotOptimize(PlainMatch::matched(image, colors.palette).constBits());
    finish(state);
}
BENCHMARK(adaptPlain)->Apply(contents);

void adaptQImage(benchmark::State &state)
{
    const QImage &image = content(int(state.range(0)));
    const QVector<QRgb> table = tableOf(paletteFor(image));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            image.convertToFormat(QImage::Format_Indexed8, table, Qt::ThresholdDither).constBits());
    }
    finish(state);
}
BENCHMARK(adaptQImage)->Apply(contents);

void quantize(benchmark::State &state)
{
    const QImage &image = content(int(state.range(0)));
    for (auto _ : state)
        paletteFor(image);
    finish(state);
}
BENCHMARK(quantize)->Apply(contents);

#if defined(VELA_HAS_IMAGEQUANT)

std::vector<liq_color> liqPixels(const QImage &image)
{
    std::vector<liq_color> colors;
    for (int y = 0; y < Side; ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        std::transform(row, row + Side, std::back_inserter(colors), [](QRgb color) {
            const RGBA rgba = toRGBA(color);
            return liq_color{rgba.r, rgba.g, rgba.b, rgba.a};
        });
    }
    return colors;
}

/// The colours are fixed, so that nothing but the remapping differs from adapt().
void adaptImagequant(benchmark::State &state)
{
    const QImage &source = content(int(state.range(0)));
    const Colors colors = paletteFor(source);
    const std::vector<liq_color> input = liqPixels(source);
    std::vector<uchar> output(input.size());
    liq_attr *attributes = liq_attr_create();
    for (auto _ : state) {
        state.PauseTiming();
        liq_image *image = liq_image_create_rgba(attributes, input.data(), Side, Side, 0);
        for (const RGBA &entry : colors.palette)
            liq_image_add_fixed_color(image, {entry.r, entry.g, entry.b, entry.a});
        liq_result *result = nullptr;
        if (liq_image_quantize(image, attributes, &result) != LIQ_OK)
            state.SkipWithError("no palette");
        liq_set_dithering_level(result, 0);
        state.ResumeTiming();
        liq_write_remapped_image(result, image, output.data(), output.size());
        state.PauseTiming();
        liq_result_destroy(result);
        liq_image_destroy(image);
        state.ResumeTiming();
    }
    liq_attr_destroy(attributes);
    finish(state);
}
BENCHMARK(adaptImagequant)->Apply(contents);

void quantizeImagequant(benchmark::State &state)
{
    const std::vector<liq_color> input = liqPixels(content(int(state.range(0))));
    liq_attr *attributes = liq_attr_create();
    for (auto _ : state) {
        liq_image *image = liq_image_create_rgba(attributes, input.data(), Side, Side, 0);
        liq_result *result = nullptr;
        if (liq_image_quantize(image, attributes, &result) != LIQ_OK)
            state.SkipWithError("no palette");
        liq_result_destroy(result);
        liq_image_destroy(image);
    }
    liq_attr_destroy(attributes);
    finish(state);
}
BENCHMARK(quantizeImagequant)->Apply(contents);

#endif

void paletteIndex(benchmark::State &state)
{
    const QImage &image = content(int(state.range(0)));
    const Colors colors = paletteFor(image);
    const auto *first = reinterpret_cast<const QRgb *>(image.constBits());
    PaletteIndex check(colors.palette);
    if (!std::all_of(first, first + Side * Side, [&](QRgb color) {
            return check.find(toRGBA(color)) == nearestColor(colors.palette, toRGBA(color));
        }))
        state.SkipWithError("not the plain scan's result");
    for (auto _ : state) {
        PaletteIndex index(colors.palette);
        int sum = 0;
        std::for_each(first, first + Side * Side,
                      [&](QRgb color) { sum += index.find(toRGBA(color)); });
        benchmark::DoNotOptimize(sum);
    }
    finish(state);
}
BENCHMARK(paletteIndex)->Apply(contents);

void paletteIndexPlain(benchmark::State &state)
{
    const QImage &image = content(int(state.range(0)));
    const Colors colors = paletteFor(image);
    const auto *first = reinterpret_cast<const QRgb *>(image.constBits());
    for (auto _ : state) {
        int sum = 0;
        std::for_each(first, first + Side * Side,
                      [&](QRgb color) { sum += nearestColor(colors.palette, toRGBA(color)); });
        benchmark::DoNotOptimize(sum);
    }
    finish(state);
}
BENCHMARK(paletteIndexPlain)->Apply(contents);

/// To a width and height in pixels; of indices where the last number is 1.
void sizes(benchmark::internal::Benchmark *job)
{
    job->ArgsProduct({{300, 2048, 2500}, {0, 1}})->Unit(benchmark::kMillisecond);
}

QImage resizeSource(const benchmark::State &state)
{
    const QImage &image = content(Photo);
    return state.range(1) == 0
        ? image
        : image.convertToFormat(QImage::Format_Indexed8, tableOf(paletteFor(image)));
}

template <typename Resize>
void resize(benchmark::State &state, Resize job)
{
    const QImage image = resizeSource(state);
    Colors colors = paletteFor(content(Photo));
    const int side = int(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(job(image, QSize(side, side), colors.palette).constBits());
    state.SetItemsProcessed(state.iterations() * side * side);
}

void registerResize()
{
    const auto add = [](const char *name, auto job) {
        benchmark::RegisterBenchmark(name, [job](benchmark::State &state) {
            resize(state, job);
        })->Apply(sizes);
    };
    using Palette = RGBA(&)[256];
    add("nearest",
        [](const QImage &image, QSize size, Palette) { return resizeImageNearest(image, size); });
    add("nearestQImage", [](const QImage &image, QSize size, Palette) {
        return image.scaled(size, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    });
    add("bilinear", [](const QImage &image, QSize size, Palette palette) {
        return resizeImageBilinear(image, size, palette);
    });
    add("bilinearQImage", [](const QImage &image, QSize size, Palette) {
        return image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    });
    add("rotate", [](const QImage &image, QSize, Palette) { return rotateImage(image, 0.5F, 0); });
}

} // namespace

int main(int argc, char **argv)
{
    registerResize();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

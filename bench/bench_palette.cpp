// SPDX-License-Identifier: MIT
// PaletteObject::index() for a number of colours against the plain scan, with the same results.
#include "processortime.h"

#include "image/plainindex.h"

#include "image/paletteobject.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

using namespace Vela;

namespace {

enum Kind { Sprite, Photo, Noise };

// The colours of a picture, line by line.
std::vector<RGBA> makeColors(Kind kind, int count)
{
    std::mt19937 random(1);
    std::vector<RGBA> colors;
    for (int i = 0; i < count; ++i) {
        const unsigned number = random();
        const int x = i % 512;
        const int y = i / 512;
        switch (kind) {
        case Sprite: // runs of 32 colours
            colors.push_back(number % 8 || colors.empty()
                                 ? RGBA{quint8(number & 0xe0), quint8(number >> 8 & 0xc0), 90, 255}
                                 : colors.back());
            break;
        case Photo: // smooth, with some noise
            colors.push_back({quint8(x / 4 + number % 8), quint8(y / 8 + (number >> 8) % 8),
                              quint8((x + y) / 16), 255});
            break;
        case Noise:
            colors.push_back(
                {quint8(number), quint8(number >> 8), quint8(number >> 16), quint8(number >> 24)});
            break;
        }
    }
    return colors;
}

// Returns the seconds that this process worked.
template <typename Find>
double findAll(const std::vector<RGBA> &colors, std::vector<int> &indices, Find find)
{
    indices.clear();
    return processorSeconds([&] {
        for (RGBA color : colors)
            indices.push_back(find(color));
    });
}

void index(benchmark::State &state)
{
    static const char *const names[] = {"sprite", "photo", "noise"};
    state.SetLabel(names[state.range(0)]);
    const auto colors = makeColors(Kind(state.range(0)), int(state.range(1)));
    RGBA table[256];
    const std::vector<RGBA> entries = makeColors(Noise, 256);
    std::copy(entries.begin(), entries.end(), table);

    std::vector<int> expected(colors.size());
    std::vector<int> indices(colors.size());
    double plain = 0;
    double fast = 0;
    for (auto _ : state) {
        PaletteObject palette(&table);
        plain += findAll(colors, expected, [&](RGBA color) { return plainIndex(table, color); });
        const double seconds =
            findAll(colors, indices, [&](RGBA color) { return palette.index(color); });
        state.SetIterationTime(seconds);
        fast += seconds;
        if (indices != expected)
            state.SkipWithError("the results differ");
    }
    state.counters["times_plain"] = plain / fast;
}

BENCHMARK(index)
    ->ArgsProduct({{Sprite, Photo, Noise}, {1000, 10000, 1 << 18}})
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();

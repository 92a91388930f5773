// SPDX-License-Identifier: MIT
// The waveform of a long sound: the first view of ten minutes against one pass over the memory, the
// views after it, and edits of an hour against one move of the tail. What views show is compared
// with the plain rule that the tests use. Times are of this process's work alone.
#include "processortime.h"

#include "sound/audiodata.h"
#include "sound/audiowaveform.h"
#include "sound/plainwaveform.h"
#include "sound/samplesound.h"

#include <QUndoStack>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace Vela;

namespace {

constexpr quint32 rate = 44100;
constexpr unsigned int columns = 1920;

SoundSample stereo(quint16 precision, quint32 seconds)
{
    // Noise that repeats is as good as any: every value is looked at.
    const SampleInfo info = {2, precision, rate, rate * seconds};
    SoundSample sound = {info, {}};
    const SoundSample piece = SampleSound::noise({2, precision, rate, 65536});
    sound.data.reserve(int(info.samples) * frameSize(info));
    while (sound.data.size() < int(info.samples) * frameSize(info))
        sound.data.append(piece.data);
    sound.data.resize(int(info.samples) * frameSize(info));
    return sound;
}

// Rises and falls so slowly that in most columns the frames at the ends are the bounds, which have
// to be looked at one by one.
SoundSample slopes(quint32 seconds)
{
    constexpr int halfTurn = 1 << 19;
    SoundSample sound = {{2, 16, rate, rate * seconds}, {}};
    sound.data.resize(int(sound.samples) * frameSize(sound));
    char *to = sound.data.data();
    for (quint32 frame = 0; frame < sound.samples; ++frame, to += 4) {
        const int height = std::abs(int(frame % (2 * halfTurn)) - halfTurn) / 8 - 32768;
        qToLittleEndian(quint16(qBound(-32768, height, 32767)) * 0x10001U, to);
    }
    return sound;
}

// The rest is what others on the machine have cost.
double best(const std::vector<double> &times)
{
    return *std::min_element(times.begin(), times.end());
}

// Reads all bytes once, as fast as the memory gives them.
quint64 readAll(const QByteArray &data)
{
    quint64 sums[8] = {};
    quint64 words[8];
    for (int i = 0; i + int(sizeof(words)) <= data.size(); i += int(sizeof(words))) {
        std::memcpy(words, data.constData() + i, sizeof(words));
        for (int j = 0; j < 8; ++j)
            sums[j] ^= words[j];
    }
    quint64 sum = 0;
    for (const quint64 part : sums)
        sum ^= part;
    return sum;
}

void firstView(benchmark::State &state)
{
    const SoundSample sound = stereo(quint16(state.range(0)), 600);
    std::vector<double> passes;
    std::vector<double> views;
    for (auto _ : state) {
        AudioData audio;
        audio.setSample(sound);
        AudioWaveform waveform(&audio);
        waveform.setZoom(double(columns) / sound.samples);
        passes.push_back(processorSeconds([&] { benchmark::DoNotOptimize(readAll(sound.data)); }));
        views.push_back(processorSeconds([&] { waveform.setViewWidth(columns); }));
        state.SetIterationTime(views.back());
    }
    state.counters["of_one_pass"] = best(views) / best(passes);
}

BENCHMARK(firstView)->Arg(8)->Arg(16)->Arg(24)->Arg(32)->UseManualTime()->Unit(
    benchmark::kMillisecond);

// A view of ten minutes with so many frames a column.
void laterViews(benchmark::State &state)
{
    const SoundSample sound = stereo(quint16(state.range(0)), 600);
    AudioData audio;
    audio.setSample(sound);
    AudioWaveform waveform(&audio);
    waveform.setZoom(1.0 / double(state.range(1)));
    waveform.setViewWidth(columns);
    audio.select(sound.samples / 3, sound.samples / 2);
    unsigned int offset = 0;
    for (auto _ : state) {
        offset = (offset + 1234567) % (sound.samples / 2);
        const double scale = 1.0 + double(offset) / sound.samples;
        if (state.range(2) == 0)
            waveform.setOffset(offset);
        else
            waveform.setSelectionScale({scale, scale});
    }
    if (!(PlainWaveform(audio, waveform) == waveform))
        state.SkipWithError("the results differ");
}

BENCHMARK(laterViews)
    ->ArgNames({"bits", "step", "stretched"})
    ->ArgsProduct({{16}, {1, 2, 30, 127, 200, 500, 1000, 4000, 13700}, {0, 1}})
    ->ArgsProduct({{8, 24, 32}, {127, 13700}, {0}})
    ->Unit(benchmark::kMicrosecond);

// A selection of a second is dragged through ten minutes.
void dragSelection(benchmark::State &state)
{
    AudioData audio;
    audio.setSample(stereo(16, 600));
    AudioWaveform waveform(&audio);
    waveform.setZoom(double(columns) / audio.info().samples);
    waveform.setViewWidth(columns);
    unsigned int low = 1000000;
    audio.select(low, low + rate);
    for (auto _ : state) {
        low += 13700; // a column
        audio.dragSelection(low);
        waveform.update();
    }
    if (!(PlainWaveform(audio, waveform) == waveform))
        state.SkipWithError("the results differ");
}

BENCHMARK(dragSelection)->Iterations(500)->Unit(benchmark::kMicrosecond);

// A second is put into an hour, or in the place of as much or more; so far into it, in percent. The
// repair of the view is timed apart.
void edit(benchmark::State &state)
{
    AudioData audio;
    audio.setSample(state.range(2) == 0 ? stereo(16, 3600) : slopes(3600));
    AudioWaveform waveform(&audio);
    waveform.setZoom(double(columns) / audio.info().samples);
    waveform.setViewWidth(columns);
    QObject::disconnect(&audio, &AudioData::sampleChanged, nullptr, nullptr);
    const QByteArray second = stereo(16, 1).data;
    const auto start = unsigned(qint64(audio.info().samples) * state.range(0) / 100);
    const auto replaced = unsigned(rate * state.range(1) / 10);
    const int distance = second.size() - int(replaced) * 4;
    const int tail = audio.data().size() - int(start + replaced) * 4;
    QByteArray moved(tail + distance, 'x');
    const auto select = [&] { audio.select(start, start + replaced); };
    select();
    audio.replaceSelection(second); // makes room
    audio.undo();

    std::vector<double> moves;
    std::vector<double> edits;
    std::vector<double> undos;
    std::vector<double> views;
    for (auto _ : state) {
        char *bytes = moved.data();
        moves.push_back(processorSeconds([&] {
            if (distance != 0)
                std::memmove(bytes + distance, bytes, std::size_t(tail));
        }));
        select();
        edits.push_back(processorSeconds([&] { audio.replaceSelection(second); }));
        state.SetIterationTime(edits.back());
        views.push_back(processorSeconds([&] { waveform.update(); }));
        undos.push_back(processorSeconds([&] { audio.undo(); }));
        waveform.update();
    }
    state.counters["best_ms"] = best(edits) * 1000;
    state.counters["move_ms"] = best(moves) * 1000;
    state.counters["undo_ms"] = best(undos) * 1000;
    state.counters["view_ms"] = best(views) * 1000;
}

BENCHMARK(edit)
    ->ArgNames({"at", "replaced", "slopes"})
    ->ArgsProduct({{0, 50, 99}, {0, 5, 10}, {0, 1}})
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

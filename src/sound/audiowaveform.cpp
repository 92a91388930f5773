// SPDX-License-Identifier: MIT
#include "sound/audiowaveform.h"

#include "sound/audiodata.h"
#include "sound/soundsample.h"
#include "sound/waveformpyramid_p.h"

#include <QPainter>
#include <QVector>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Vela {

namespace {

/// Heights in the lane: a sample as it is shown. It never falls where \a sample rises, unless the
/// scale is negative; then it never rises.
float shown(float sample, double scale)
{
    return float(qBound(-1.0, sample * scale, 1.0));
}

double lerp(double from, double to, double t)
{
    return from + (to - from) * t;
}

/// The point at \a t of a quadratic curve that leans towards the nearer end, by de Casteljau's
/// rule.
float curve(float from, float to, double t)
{
    const double control = lerp(from, to, t);
    return float(lerp(lerp(from, control, t), lerp(control, to, t), t));
}

quint32 floatWord(float value)
{
    quint32 word;
    std::memcpy(&word, &value, sizeof(word));
    return word;
}

float wordFloat(quint32 word)
{
    float value;
    std::memcpy(&value, &word, sizeof(value));
    return value;
}

/// 1 has no place in 16 bits and gives the number next to it.
quint32 packedHalf(float value)
{
    return quint16(qint16(std::min(value * 32768.0, 32767.0)));
}

quint32 packedWord(float low, float high)
{
    return packedHalf(low) | packedHalf(high) << 16;
}

} // namespace

class AudioWaveformPrivate
{
public:
    /// Frames from \a from to in front of \a to, shown at a scale.
    struct Run
    {
        quint32 from;
        quint32 to;
        double sx;
        double sy;
    };

    explicit AudioWaveformPrivate(AudioData *data)
        : audio(data)
    {
    }

    void fill();
    quint32 add(const Run &run, quint32 column);
    void addCurve(const Run &run, double runStep, quint32 column, quint32 end);
    void addBounds(const Run &run, double runStep, quint32 column, quint32 end);
    float value(quint32 frame, quint32 channel, double scale) const;
    void cut(quint32 newWidth);
    QVector<QRect> bars(int channel, int axis, int half) const;
    bool isPacked(quint32 column) const
    {
        return (packed[column >> 5] >> (column & 31) & 1) != 0;
    }
    /// Sets a field and tells whether that changed it.
    template <typename T>
    static bool change(T &field, T to)
    {
        return std::exchange(field, to) != to;
    }

    AudioData *const audio;
    WaveformPyramid pyramid;
    SampleView sound = {};
    std::vector<quint32> points;
    std::vector<quint32> packed;
    quint32 width = 0;
    quint32 viewWidth = 0;
    quint32 offset = 0;
    double zoom = 1.0;
    double step = 1.0;
    QPointF selectionScale = {1.0, 1.0};
};

void AudioWaveformPrivate::fill()
{
    const SampleInfo &info = audio->info();
    sound = {audio->data().constData(), info.samples, audio->frameSize(), info.channels,
             info.precision};
    const double columns = offset < sound.frames ? (sound.frames - offset) * zoom : 0.0;
    width = quint32(std::min<double>(viewWidth, columns));
    points.assign(std::size_t(width) * sound.channels, 0);
    packed.assign((width >> 5) + 1, 0);
    if (width == 0)
        return;
    pyramid.repair(sound);

    unsigned int low = 0;
    unsigned int high = 0;
    audio->selection(low, high);
    const double end = std::floor(viewWidth * step + offset); // behind the last visible frame
    if (selectionScale == QPointF(1.0, 1.0) || low == high || high <= offset || low >= end) {
        add({offset, sound.frames, 1.0, 1.0}, 0);
        return;
    }
    quint32 column = add({offset, low, 1.0, 1.0}, 0);
    column = add({std::max(low, offset), high, selectionScale.x(), selectionScale.y()}, column);
    column = add({high, sound.frames, 1.0, 1.0}, column);
    cut(column);
}

/// Returns the column behind the run.
quint32 AudioWaveformPrivate::add(const Run &run, quint32 column)
{
    if (run.to <= run.from || run.sx == 0.0)
        return column;
    const double columns = std::round((run.to - run.from) * zoom * run.sx);
    const quint32 end = column + quint32(qBound(0.0, columns, double(width - column)));
    const double runStep = step / run.sx;
    if (runStep <= 1.0)
        addCurve(run, runStep, column, end);
    else
        addBounds(run, runStep, column, end);
    return end;
}

float AudioWaveformPrivate::value(quint32 frame, quint32 channel, double scale) const
{
    const quint32 sampleBytes = sound.frameSize / sound.channels;
    return frame < sound.frames
        ? shown(decodeSample(sound.frame(frame) + channel * sampleBytes, sound.precision), scale)
        : 0.0F;
}

void AudioWaveformPrivate::addCurve(const Run &run, double runStep, quint32 column, quint32 end)
{
    for (quint32 x = column; x < end; ++x) {
        const double p = (x - column) * runStep + run.from;
        const auto frame = quint32(p);
        const double t = p - frame;
        for (quint32 channel = 0; channel < sound.channels; ++channel) {
            const float here = value(frame, channel, run.sy);
            const float point = t == 0.0 || frame >= sound.frames
                ? here
                : curve(here, value(frame + 1, channel, run.sy), t);
            points[std::size_t(channel) * width + x] = floatWord(point);
        }
    }
}

void AudioWaveformPrivate::addBounds(const Run &run, double runStep, quint32 column, quint32 end)
{
    const quint32 lanes = std::min<quint32>(sound.channels, SampleBounds::MaxLanes);
    for (quint32 x = column; x < end; ++x) {
        const double p = (x - column) * runStep + run.from;
        const auto from = quint32(std::min<double>(p, sound.frames));
        const auto to = quint32(std::min<double>(std::ceil(p + runStep), sound.frames));
        if (to - from > 1) {
            const WaveformPyramid::Bounds bounds = pyramid.bounds(from, to);
            packed[x >> 5] |= 1U << (x & 31);
            for (quint32 channel = 0; channel < lanes; ++channel) {
                const float a = shown(bounds.low[channel], run.sy);
                const float b = shown(bounds.high[channel], run.sy);
                points[std::size_t(channel) * width + x] =
                    packedWord(std::min(a, b), std::max(a, b));
            }
        } else {
            for (quint32 channel = 0; channel < sound.channels; ++channel)
                points[std::size_t(channel) * width + x] = floatWord(value(from, channel, run.sy));
        }
    }
}

void AudioWaveformPrivate::cut(quint32 newWidth)
{
    if (newWidth == width)
        return;
    for (quint32 channel = 1; channel < sound.channels; ++channel) {
        const auto block = points.begin() + std::ptrdiff_t(channel) * width;
        std::copy(block, block + newWidth, points.begin() + std::ptrdiff_t(channel) * newWidth);
    }
    width = newWidth;
    points.resize(std::size_t(width) * sound.channels);
    packed.resize((width >> 5) + 1);
}

/// The columns of a channel, each long enough to touch the one before.
QVector<QRect> AudioWaveformPrivate::bars(int channel, int axis, int half) const
{
    const quint32 *words = points.data() + std::size_t(channel) * width;
    const auto row = [axis, half](double height) { return axis - qRound(height * half); };
    QVector<QRect> bars;
    bars.reserve(int(width));
    for (quint32 x = 0; x < width; ++x) {
        const bool isPair = isPacked(x);
        const double low = isPair ? qint16(words[x]) / 32768.0 : double(wordFloat(words[x]));
        const double high = isPair ? qint16(words[x] >> 16) / 32768.0 : low;
        int upper = row(high);
        int lower = row(low);
        if (x > 0) {
            upper = std::min(upper, bars.last().bottom() + 1);
            lower = std::max(lower, bars.last().top() - 1);
        }
        bars.append(QRect(QPoint(int(x), upper), QPoint(int(x), lower)));
    }
    return bars;
}

AudioWaveform::AudioWaveform(AudioData *audio, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<AudioWaveformPrivate>(audio))
{
    connect(audio, &AudioData::framesReplaced, this,
            [this](unsigned int from, unsigned int removed, unsigned int inserted) {
                d->pyramid.replace(from, removed, inserted);
            });
    connect(audio, &AudioData::sampleChanged, this, &AudioWaveform::update);
}

AudioWaveform::~AudioWaveform() = default;

unsigned int AudioWaveform::offset() const
{
    return d->offset;
}

void AudioWaveform::setOffset(unsigned int offset)
{
    if (d->change(d->offset, offset))
        update();
}

double AudioWaveform::zoom() const
{
    return d->zoom;
}

void AudioWaveform::setZoom(double zoom)
{
    if (!std::isfinite(zoom) || !std::isfinite(1.0 / zoom) || zoom < 0.0
        || !d->change(d->zoom, zoom))
        return;
    d->step = 1.0 / zoom;
    update();
}

double AudioWaveform::step() const
{
    return d->step;
}

unsigned int AudioWaveform::viewWidth() const
{
    return d->viewWidth;
}

void AudioWaveform::setViewWidth(unsigned int width)
{
    if (d->change(d->viewWidth, width))
        update();
}

QPointF AudioWaveform::selectionScale() const
{
    return d->selectionScale;
}

void AudioWaveform::setSelectionScale(QPointF scale)
{
    if (std::isfinite(scale.x()) && std::isfinite(scale.y()) && d->change(d->selectionScale, scale))
        update();
}

unsigned int AudioWaveform::width() const
{
    return d->width;
}

const std::vector<quint32> &AudioWaveform::points() const
{
    return d->points;
}

const std::vector<quint32> &AudioWaveform::packed() const
{
    return d->packed;
}

bool AudioWaveform::isPacked(unsigned int column) const
{
    return d->isPacked(column);
}

void AudioWaveform::update()
{
    d->fill();
    Q_EMIT changed();
}

void AudioWaveform::render(QPainter &painter, const Colors &colors, int top, int laneHeight,
                           int gap) const
{
    if (d->width == 0)
        return;
    painter.save();
    painter.setPen(Qt::NoPen);
    const int channels = int(d->points.size() / d->width);
    const int half = laneHeight / 2;
    for (int channel = 0; channel < channels; ++channel) {
        const int axis = top + channel * (laneHeight + gap) + half;
        painter.fillRect(0, axis, int(d->width), 1, colors.axis);
        painter.setBrush(colors.wave);
        painter.drawRects(d->bars(channel, axis, half));
    }
    painter.restore();
}

} // namespace Vela

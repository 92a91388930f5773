// SPDX-License-Identifier: MIT
#pragma once

#include "sound/audiodata.h"
#include "sound/audiowaveform.h"
#include "sound/soundsample.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

/// The columns of a waveform, worked out frame by frame.
class PlainWaveform
{
public:
    PlainWaveform(const Vela::AudioData &audio, const Vela::AudioWaveform &view)
        : m_audio(audio)
        , m_info(audio.info())
        , m_zoom(view.zoom())
        , m_step(view.step())
    {
        const unsigned int offset = view.offset();
        const double there = (double(m_info.samples) - offset) * m_zoom;
        width = unsigned(std::max(0.0, std::min<double>(view.viewWidth(), there)));
        m_columns.resize(m_info.channels);
        unsigned int low = 0;
        unsigned int high = 0;
        audio.selection(low, high);
        const auto last = static_cast<long long>(view.viewWidth() * m_step + offset);
        const QPointF scale = view.selectionScale();
        if (width > 0 && scale != QPointF(1, 1) && low < high && high > offset && low < last) {
            run(offset, low, 1, 1);
            run(std::max(low, offset), high, scale.x(), scale.y());
            run(high, m_info.samples, 1, 1);
            width = unsigned(m_packed.size());
        } else {
            run(offset, m_info.samples, 1, 1);
        }
        for (const std::vector<quint32> &column : m_columns)
            points.insert(points.end(), column.begin(), column.end());
        packed.resize(width / 32 + 1);
        for (unsigned int x = 0; x < width; ++x)
            packed[x / 32] |= unsigned(m_packed[x]) << x % 32;
    }

    bool operator==(const Vela::AudioWaveform &view) const
    {
        return view.width() == width && view.points() == points && view.packed() == packed;
    }

    unsigned int width = 0;
    std::vector<quint32> points;
    std::vector<quint32> packed;

private:
    float sample(long long frame, unsigned int channel, double scale) const
    {
        if (frame >= m_info.samples)
            return 0;
        const qint64 at =
            frame * Vela::frameSize(m_info) + qint64(channel) * Vela::sampleSize(m_info.precision);
        const double value =
            double(Vela::decodeSample(m_audio.data().constData() + at, m_info.precision)) * scale;
        return float(std::max(-1.0, std::min(1.0, value)));
    }

    void store(unsigned int channel, float value)
    {
        quint32 word;
        std::memcpy(&word, &value, sizeof(word));
        m_columns[channel].push_back(word);
    }

    void run(unsigned int from, unsigned int to, double sx, double sy)
    {
        if (to <= from || sx == 0)
            return;
        const double step = m_step / sx;
        const double columns = std::round((double(to) - from) * m_zoom * sx);
        for (double x = 0; x < columns && m_packed.size() < width; ++x) {
            const double p = x * step + from;
            const long long first = static_cast<long long>(std::floor(p));
            const long long behind =
                std::min<long long>(static_cast<long long>(std::ceil(p + step)), m_info.samples);
            const bool isPacked = step > 1 && behind - first > 1;
            m_packed.push_back(isPacked);
            for (unsigned int channel = 0; channel < m_info.channels; ++channel) {
                if (isPacked)
                    storeBounds(first, behind, channel, sy);
                else if (step > 1 || p == double(first))
                    store(channel, sample(first, channel, sy));
                else
                    storeCurve(first, p - double(first), channel, sy);
            }
        }
    }

    void storeCurve(long long frame, double t, unsigned int channel, double scale)
    {
        const auto lerp = [t](double a, double b) { return a + (b - a) * t; };
        const double from = double(sample(frame, channel, scale));
        const double to = double(sample(frame + 1, channel, scale));
        const double control = lerp(from, to);
        store(channel, float(lerp(lerp(from, control), lerp(control, to))));
    }

    void storeBounds(long long first, long long behind, unsigned int channel, double scale)
    {
        float low = 1;
        float high = -1;
        for (long long frame = first; frame < behind; ++frame) {
            low = std::min(low, sample(frame, channel, scale));
            high = std::max(high, sample(frame, channel, scale));
        }
        const auto bits = [](float value) {
            return unsigned(std::min(int(value * 32768.0F), 32767)) & 0xffff;
        };
        m_columns[channel].push_back(channel < 8 ? bits(low) | bits(high) << 16 : 0);
    }

    const Vela::AudioData &m_audio;
    const Vela::SampleInfo &m_info;
    const double m_zoom;
    const double m_step;
    std::vector<std::vector<quint32>> m_columns;
    std::vector<bool> m_packed;
};

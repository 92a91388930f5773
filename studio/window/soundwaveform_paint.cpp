// SPDX-License-Identifier: MIT
// What the view of a waveform looks like.
#include "sound/soundsample.h"
#include "studio/colors.h"
#include "studio/window/soundruler.h"
#include "studio/window/soundwaveform.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Studio {

namespace {

constexpr int LaneGap = 4; // pixels
constexpr int FocusWidth = 2;

} // namespace

int SoundWaveform::rulerHeight() const
{
    return fontMetrics().height() + 4;
}

void SoundWaveform::paintEvent(QPaintEvent *)
{
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), palette().color(QPalette::Base));
    painter.setPen(palette().color(QPalette::Text));
    if (frames() > 0)
        paintSound(painter);
    else
        painter.drawText(viewport()->rect().adjusted(FocusWidth, 0, -FocusWidth, 0),
                         Qt::AlignCenter | Qt::TextWordWrap, m_words);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), FocusWidth));
        painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
    }
}

// What goes with the waveform's columns is painted in pixels of the screen, so that it is sharp
// everywhere.
void SoundWaveform::paintSound(QPainter &painter)
{
    const QRect ruler(0, 0, viewport()->width(), rulerHeight());
    painter.fillRect(ruler, palette().color(QPalette::Window));
    painter.setPen(palette().color(QPalette::WindowText));
    const double rate = m_audio.info().frequency;
    if (rate > 0)
        drawTimeRuler(painter, ruler, m_waveform.offset() / rate,
                      (frameAt(1) - m_waveform.offset()) / rate);

    const double ratio = devicePixelRatioF();
    const int top = int(std::ceil(rulerHeight() * ratio));
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    paintLanes(painter,
               QRect(0, top, int(m_waveform.viewWidth()), int(viewport()->height() * ratio) - top));
    painter.restore();
}

/// Returns the column of a frame, or of one far out of view some column that is out of view, too.
int SoundWaveform::columnOf(double frame) const
{
    constexpr double far = 1e6;
    return int(std::lround(qBound(-far, xOf(frame) * devicePixelRatioF(), far)));
}

void SoundWaveform::paintLanes(QPainter &painter, const QRect &area)
{
    const double ratio = devicePixelRatioF();
    unsigned int low = 0;
    unsigned int high = 0;
    m_audio.selection(low, high);
    if (low != high)
        painter.fillRect(QRect(QPoint(columnOf(low), area.top()),
                               QPoint(std::max(columnOf(high) - 1, columnOf(low)), area.bottom()))
                             .intersected(area),
                         m_colors.color(QStringLiteral("sound_selection")));

    const int lanes = m_audio.info().channels;
    const int gap = int(std::lround(LaneGap * ratio));
    const int height = std::max(1, (area.height() + gap) / lanes - gap);
    for (int lane = 1; lane < lanes; ++lane)
        painter.fillRect(0, area.top() + lane * (height + gap) - gap, area.width(), gap,
                         palette().color(QPalette::Window));
    m_waveform.render(painter,
                      {m_colors.color(QStringLiteral("sound_wave")),
                       m_colors.color(QStringLiteral("sound_axis"))},
                      area.top(), height, gap);
    paintMark(painter, area, low, palette().color(QPalette::Text));
    if (low != high)
        paintMark(painter, area, high, palette().color(QPalette::Text));
    if (m_head >= 0)
        paintMark(painter, area, double(m_head), m_colors.color(QStringLiteral("sound_head")));
}

// On its own ground, as the waveform may be as bright.
void SoundWaveform::paintMark(QPainter &painter, const QRect &area, double frame,
                              const QColor &color)
{
    const int width = int(std::ceil(devicePixelRatioF()));
    const int x = columnOf(frame);
    painter.fillRect(x - width, area.top(), 3 * width, area.height(),
                     palette().color(QPalette::Base));
    painter.fillRect(x, area.top(), width, area.height(), color);
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/window/soundwaveform.h"

#include "sound/soundsample.h"

#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace Studio {

namespace {

constexpr double MostZoom = 64;   // pixels of the screen for a frame
constexpr double ZoomStep = 1.5;  // of a command
constexpr double WheelStep = 240; // eighths of a degree that double the zoom
constexpr int Leap = 10;          // keys with Ctrl go so many times through the view

} // namespace

SoundWaveform::SoundWaveform(const Colors &colors, QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_colors(colors)
    , m_waveform(&m_audio)
    , m_selecting(&m_audio, &m_waveform)
    , m_moving(&m_audio, &m_waveform)
{
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setAccessibleName(tr("Waveform"));
    connect(&m_waveform, &Vela::AudioWaveform::changed, viewport(), qOverload<>(&QWidget::update));
    connect(&m_audio, &Vela::AudioData::selectionChanged, this, [this] {
        viewport()->update();
        Q_EMIT selectionChanged();
    });
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this,
            [this](int value) { m_waveform.setOffset(unsigned(value)); });
}

void SoundWaveform::setSample(const Vela::SoundSample &sample)
{
    if (m_tool)
        m_tool->deactivated();
    m_tool = nullptr;
    viewport()->unsetCursor();
    m_head = -1;
    m_words.clear();
    m_audio.setSample(sample);
    zoomFit();
}

void SoundWaveform::showWords(const QString &words)
{
    setSample({});
    m_words = words;
    viewport()->update();
}

QString SoundWaveform::words() const
{
    return m_words;
}

const Vela::AudioData &SoundWaveform::audio() const
{
    return m_audio;
}

const Vela::AudioWaveform &SoundWaveform::waveform() const
{
    return m_waveform;
}

unsigned int SoundWaveform::frames() const
{
    return m_audio.info().samples;
}

double SoundWaveform::frameAt(double x) const
{
    return m_waveform.offset() + x * devicePixelRatioF() * m_waveform.step();
}

double SoundWaveform::xOf(double frame) const
{
    return (frame - m_waveform.offset()) * m_waveform.zoom() / devicePixelRatioF();
}

// For AudioData the end of the sound is what lies behind it.
void SoundWaveform::select(unsigned int start, unsigned int end)
{
    m_audio.select(start, end >= frames() ? frames() + 1 : end);
}

void SoundWaveform::selectAll()
{
    select(0, frames());
}

void SoundWaveform::setPlayHead(unsigned int frame)
{
    if (isSeen(double(m_head)) && !isSeen(frame) && !m_tool)
        scrollTo(frame);
    m_head = frame;
    viewport()->update();
}

void SoundWaveform::hidePlayHead()
{
    m_head = -1;
    viewport()->update();
}

double SoundWaveform::fittingZoom() const
{
    return std::min(double(std::max(m_waveform.viewWidth(), 1U)) / std::max(frames(), 1U),
                    MostZoom);
}

// The whole sound, or, of a very short one, a frame for each pixel.
double SoundWaveform::leastZoom() const
{
    return std::min(fittingZoom(), 1.0);
}

/// Zooms so that the frame at \a x stays there.
void SoundWaveform::setZoom(double zoom, double x)
{
    const double frame = frameAt(x);
    m_waveform.setZoom(qBound(leastZoom(), zoom, MostZoom));
    m_fits = m_waveform.zoom() == fittingZoom();
    updateBar();
    scrollTo(std::round(frame - x * devicePixelRatioF() * m_waveform.step()));
}

void SoundWaveform::zoomAtPlace(double factor)
{
    const double place = m_audio.selectionEnd();
    setZoom(m_waveform.zoom() * factor, isSeen(place) ? xOf(place) : viewport()->width() / 2.0);
}

void SoundWaveform::zoomIn()
{
    zoomAtPlace(ZoomStep);
}

void SoundWaveform::zoomOut()
{
    zoomAtPlace(1 / ZoomStep);
}

void SoundWaveform::zoomActual()
{
    zoomAtPlace(1 / m_waveform.zoom());
}

void SoundWaveform::zoomFit()
{
    setZoom(fittingZoom(), 0);
}

void SoundWaveform::scrollTo(double frame)
{
    horizontalScrollBar()->setValue(int(qBound(0.0, frame, double(frames()))));
    // A tool may have gone further than there is anything to see.
    m_waveform.setOffset(unsigned(horizontalScrollBar()->value()));
}

void SoundWaveform::showFrame(unsigned int frame)
{
    const double last = std::floor(frameAt(viewport()->width() - 1));
    if (frame < m_waveform.offset())
        scrollTo(frame);
    else if (frame > last)
        scrollTo(m_waveform.offset() + frame - last);
}

bool SoundWaveform::isSeen(double frame) const
{
    const double x = xOf(frame);
    return x >= 0 && x < viewport()->width();
}

void SoundWaveform::updateBar()
{
    const double seen = m_waveform.viewWidth() * m_waveform.step();
    QScrollBar *const bar = horizontalScrollBar();
    bar->setRange(0, int(std::max(0.0, std::ceil(frames() - seen))));
    bar->setPageStep(int(std::min(seen, double(frames()))));
    bar->setSingleStep(std::max(1, bar->pageStep() / 20));
}

/// Gives each pixel of the screen a column.
void SoundWaveform::fillWidth()
{
    m_waveform.setViewWidth(unsigned(std::ceil(viewport()->width() * devicePixelRatioF())));
    if (m_fits)
        return zoomFit();
    setZoom(m_waveform.zoom(), 0);
}

bool SoundWaveform::viewportEvent(QEvent *event)
{
    const bool handled = QAbstractScrollArea::viewportEvent(event);
    if (event->type() == QEvent::ScreenChangeInternal)
        fillWidth();
    return handled;
}

void SoundWaveform::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Space:
        if (!event->isAutoRepeat())
            Q_EMIT playWanted();
        return;
    case Qt::Key_Escape:
        if (m_audio.selectionStart() == m_audio.selectionEnd())
            return event->ignore();
        return m_audio.select(m_audio.selectionStart(), m_audio.selectionStart());
    default:
        if (!moveByKey(*event))
            event->ignore();
    }
}

// Moves the place, or with Shift the end of the selection.
bool SoundWaveform::moveByKey(const QKeyEvent &event)
{
    const double page = m_waveform.viewWidth() * m_waveform.step();
    const double step = std::max(
        1.0, event.modifiers() & Qt::ControlModifier ? page / Leap : std::ceil(m_waveform.step()));
    const double from = m_audio.selectionEnd();
    double to = 0;
    switch (event.key()) {
    case Qt::Key_Left:
        to = from - step;
        break;
    case Qt::Key_Right:
        to = from + step;
        break;
    case Qt::Key_PageUp:
        to = from - page;
        break;
    case Qt::Key_PageDown:
        to = from + page;
        break;
    case Qt::Key_Home:
        break;
    case Qt::Key_End:
        to = frames();
        break;
    default:
        return false;
    }
    const auto end = unsigned(qBound(0.0, std::floor(to), double(frames())));
    if (event.modifiers() & Qt::ShiftModifier)
        select(m_audio.selectionStart(), end);
    else
        m_audio.select(end, end);
    showFrame(m_audio.selectionEnd());
    return true;
}

Vela::AudioTool::Pointer SoundWaveform::pointer(const QMouseEvent &event) const
{
    const double last = frames() == 0 ? 0 : frames() - 1;
    double frame = std::max(0.0, std::floor(frameAt(event.x())));
    // While it drags, what is behind the sound stands for its end.
    if (frame > last)
        frame = m_tool ? frames() + 1.0 : last;
    return {event.modifiers(), event.buttons(), event.pos() * devicePixelRatioF(), unsigned(frame),
            0};
}

void SoundWaveform::mousePressEvent(QMouseEvent *event)
{
    if (m_tool || (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton))
        return;
    QCursor cursor = viewport()->cursor();
    const Vela::AudioTool::Pointer place = pointer(*event);
    m_tool = &m_moving;
    if (event->button() == Qt::LeftButton)
        m_tool = &m_selecting;
    m_tool->mousePress(place, cursor);
    viewport()->setCursor(cursor);
}

void SoundWaveform::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_tool)
        return;
    QCursor cursor = viewport()->cursor();
    m_tool->mouseMove(pointer(*event), cursor);
    if (m_tool == &m_selecting)
        showFrame(m_audio.selectionEnd());
    else
        scrollTo(m_waveform.offset());
}

void SoundWaveform::mouseReleaseEvent(QMouseEvent *event)
{
    const Qt::MouseButton button = m_tool == &m_moving ? Qt::MiddleButton : Qt::LeftButton;
    if (!m_tool || event->button() != button)
        return;
    QCursor cursor = viewport()->cursor();
    m_tool->mouseRelease(pointer(*event), cursor);
    m_tool = nullptr;
    viewport()->unsetCursor();
}

void SoundWaveform::wheelEvent(QWheelEvent *event)
{
    const QPoint turn = event->angleDelta();
    const bool scrolls = turn.y() == 0 || event->modifiers() & Qt::ShiftModifier;
    QScrollBar *const bar = horizontalScrollBar();
    if (scrolls)
        bar->setValue(bar->value()
                      - int(double(turn.y() == 0 ? turn.x() : turn.y())
                            / QWheelEvent::DefaultDeltasPerStep * 3 * bar->singleStep()));
    else
        setZoom(m_waveform.zoom() * std::exp2(turn.y() / WheelStep), event->position().x());
    event->accept();
}

void SoundWaveform::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    fillWidth();
}

void SoundWaveform::focusInEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void SoundWaveform::focusOutEvent(QFocusEvent *event)
{
    QAbstractScrollArea::focusOutEvent(event);
    viewport()->update();
}

} // namespace Studio

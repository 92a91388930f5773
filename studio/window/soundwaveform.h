// SPDX-License-Identifier: MIT
#pragma once

#include "sound/audiodata.h"
#include "sound/audiotools.h"
#include "sound/audiowaveform.h"

#include <QAbstractScrollArea>

namespace Studio {

class Colors;

/// Shows the waveform of a sound, a lane for each channel under a ruler of time, with a selection
/// and with the place that is heard. A selection without frames is a place in the sound.
///
/// The waveform has a column for each pixel of the screen; positions here are the widget's pixels.
class SoundWaveform : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit SoundWaveform(const Colors &colors, QWidget *parent = nullptr);

    /// Shows another sound as a whole, with nothing selected.
    void setSample(const Vela::SoundSample &sample);
    /// Shows no sound, but words that say why.
    void showWords(const QString &words);
    /// Returns the words in the place of a sound; empty if there is one.
    QString words() const;
    const Vela::AudioData &audio() const;
    const Vela::AudioWaveform &waveform() const;
    /// Returns the frame at a position, which may be outside of the sound.
    double frameAt(double x) const;
    /// Returns the position of a frame.
    double xOf(double frame) const;
    void select(unsigned int start, unsigned int end);
    /// Shows which frame is heard, and scrolls along where that leaves the view.
    void setPlayHead(unsigned int frame);
    void hidePlayHead();

public Q_SLOTS:
    void selectAll();
    void zoomIn();
    void zoomOut();
    /// A frame for each pixel of the screen.
    void zoomActual();
    /// The whole sound.
    void zoomFit();

Q_SIGNALS:
    void selectionChanged();
    /// The key that plays was pressed.
    void playWanted();

protected:
    bool viewportEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    unsigned int frames() const;
    double fittingZoom() const;
    double leastZoom() const;
    void setZoom(double zoom, double x);
    void zoomAtPlace(double factor);
    void scrollTo(double frame);
    void showFrame(unsigned int frame);
    bool isSeen(double frame) const;
    void updateBar();
    void fillWidth();
    bool moveByKey(const QKeyEvent &event);
    Vela::AudioTool::Pointer pointer(const QMouseEvent &event) const;
    int rulerHeight() const;
    int columnOf(double frame) const;
    void paintSound(QPainter &painter);
    void paintLanes(QPainter &painter, const QRect &area);
    void paintMark(QPainter &painter, const QRect &area, double frame, const QColor &color);

    const Colors &m_colors;
    Vela::AudioData m_audio;
    Vela::AudioWaveform m_waveform;
    Vela::SelectionTool m_selecting;
    Vela::MoveTool m_moving;
    QString m_words;
    Vela::AudioTool *m_tool = nullptr; ///< that of the button that is down
    qint64 m_head = -1;                ///< the frame that is heard; below 0 for none
    bool m_fits = true;                ///< the whole sound stays in view
};

} // namespace Studio

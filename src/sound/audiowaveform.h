// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QColor>
#include <QObject>
#include <QPointF>
#include <memory>
#include <vector>

class QPainter;

namespace Vela {

class AudioData;
class AudioWaveformPrivate;

/// Reduces a sound to what one screen of pixel columns needs. Main thread only.
///
/// The first look at a sound reads all of it; after that, what a view costs depends on its columns,
/// and an edit costs its own frames again.
class VELA_EXPORT AudioWaveform : public QObject
{
    Q_OBJECT

public:
    struct Colors
    {
        QColor wave;
        QColor axis; ///< the line of silence in each lane
    };

    /// \a audio has to live as long as the waveform.
    explicit AudioWaveform(AudioData *audio, QObject *parent = nullptr);
    ~AudioWaveform() override;

    /// The first visible frame.
    unsigned int offset() const;
    void setOffset(unsigned int offset);
    /// Pixels per frame; starts at 1. Only positive numbers are taken.
    double zoom() const;
    void setZoom(double zoom);
    /// Frames per pixel.
    double step() const;
    /// Columns that there is room for.
    unsigned int viewWidth() const;
    void setViewWidth(unsigned int width);
    /// How the selection is shown while it is being stretched: x in time, about its first visible
    /// frame, y in height. (1, 1) shows it as it is. Only finite numbers are taken.
    QPointF selectionScale() const;
    void setSelectionScale(QPointF scale);

    /// Columns that there are.
    unsigned int width() const;
    /// width() entries for each channel, one channel behind the other. An entry holds the bits of a
    /// float from -1 to 1, or where the column is packed two 16-bit numbers: 32768 times the lowest
    /// sample of the column in the low half, and the highest in the high half, each rounded towards
    /// zero; 32767 stands for 1, too. Packed columns show nothing of channels behind the eighth.
    const std::vector<quint32> &points() const;
    /// A bit for each column, the lowest of the first word first.
    const std::vector<quint32> &packed() const;
    bool isPacked(unsigned int column) const;

    /// Draws a lane for each channel, one under the other, \a gap pixels apart, from \a top on.
    void render(QPainter &painter, const Colors &colors, int top, int laneHeight, int gap) const;

public Q_SLOTS:
    /// Renews the points. Setters and the sound's sampleChanged() do that themselves.
    void update();

Q_SIGNALS:
    void changed();

private:
    const std::unique_ptr<AudioWaveformPrivate> d;
};

} // namespace Vela

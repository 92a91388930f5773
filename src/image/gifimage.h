// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "image/rgba.h"

#include <QImage>
#include <QList>
#include <QVector>

class QIODevice;

namespace Vela {

/// A GIF file: one image, or the frames of an animation, with their colour maps as they stand in
/// the file. Reading and writing the bit stream is giflib's.
class VELA_EXPORT GIFImage
{
public:
    /// Says that no colour is transparent.
    static constexpr qint16 NoTransparent = -1;

    struct SubImage
    {
        QImage image;          ///< Format_Indexed8, or Format_Mono in a file of two colours
        QVector<RGB> colorMap; ///< the frame's own colours; empty if it has none
        quint16 left = 0;      ///< position on the screen, in pixels
        quint16 top = 0;
        qint16 transparent = NoTransparent; ///< index of a colour
        float delay = 0;                    ///< in hundredths of a second; reading leaves it at 0
    };

    GIFImage();
    GIFImage(unsigned short width, unsigned short height, bool loop);

    /// Returns whether the file was read to its end; what came until then is taken over. Opens a
    /// device that is closed.
    bool load(QIODevice *device);
    /// Returns false without images, and for a device that does not take the file. Fractions of
    /// delays pass on to the next frame. Opens a device that is closed.
    bool save(QIODevice *device);

    /// Returns whether the animation begins again at its end.
    bool canLoop() const;
    void setLoop(bool loop);
    /// The size of the screen in pixels.
    unsigned short width() const;
    void setWidth(unsigned short width);
    unsigned short height() const;
    void setHeight(unsigned short height);
    /// The colours of the frames that have none of their own; empty if there are none.
    const QVector<RGB> &globalColorMap() const;
    QVector<RGB> &globalColorMap();
    const QList<SubImage> &images() const;
    QList<SubImage> &images();

private:
    bool m_loop = false;
    quint16 m_width = 0;
    quint16 m_height = 0;
    QVector<RGB> m_globalColorMap;
    QList<SubImage> m_images;
};

/// A frame of an animation that saveGIF() writes.
struct AnimImageFrame
{
    QImage image;
    qint32 x = 0; ///< the point of the image that all frames have in common, in pixels
    qint32 y = 0;
    qint32 ticks = 0; ///< duration in 1/60 of a second
};

/// Writes an animation as a GIF, with the anchor points of all frames in one place.
///
/// \a scale multiplies the size, \a velocity divides the durations. With \a sharedPalette the first
/// frame's colours serve all frames. Frames that have no palette are quantised to 255 colours and a
/// transparent one. Returns false without frames, without a device and if writing fails.
VELA_EXPORT bool saveGIF(QIODevice *device, const QVector<AnimImageFrame> &frames, float scale,
                         float velocity, bool sharedPalette, bool loop);

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "image/rgba.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>

namespace Vela {

/// How resizeImage() makes new pixels, in the order that users see.
enum ImageResizeFilter {
    NearestFilter = 0,
    BilinearFilter = 1,
    EpxNearestFilter = 2,
    EpxBilinearFilter = 3,
    HqNearestFilter = 4,
    HqBilinearFilter = 5
};

/// Replaces the image by a Format_Indexed8 one in which each pixel is the nearest of the 256
/// colours, the first of them where several are equally near.
///
/// The distance is the sum of the squared differences of red, green and blue, which counts less the
/// more transparent the pixel is, and of the squared difference of alpha. The new colour table is
/// opaque unless the image has alpha.
VELA_EXPORT void adaptImageToPalette(QImage &image, const RGBA *palette);

/// Returns the bounds of what can be seen, moved outwards by \a margin pixels within the image, or
/// a null rectangle if there is nothing. In an image that knows no transparency the colour of its
/// first pixel is the background.
VELA_EXPORT QRect cropImageRect(const QImage &image, int margin);
/// Cuts the image to cropImageRect(). \a offset, which may be null, receives the left and top of
/// the rectangle. Returns false, with nothing changed, if there is nothing to see or to cut off.
VELA_EXPORT bool cropImage(QImage &image, QPoint *offset, int margin);

/// Resizes an image to the size in pixels, in its own format. \a palette holds the colours of a
/// Format_Indexed8 image. Returns a null image for a filter that does not exist, for an empty image
/// or size, and where the result would take more than 2 GiB. The colour table is left to the
/// caller.
///
/// Formats of other than one byte or four of eight bits a channel become Format_ARGB32, here and in
/// rotateImage().
VELA_EXPORT QImage resizeImage(QImage image, QSize size, RGBA (&palette)[256],
                               ImageResizeFilter filter);
/// Resizes by taking the nearest pixel, in steps of 1/65536 of a pixel.
VELA_EXPORT QImage resizeImageNearest(QImage image, QSize size);
/// Resizes by interpolating between the four pixels around each place.
VELA_EXPORT QImage resizeImageBilinear(QImage image, QSize size, RGBA (&palette)[256]);

/// Turns an image clockwise about its first pixel by taking the nearest pixel; the result is as
/// large as what is turned. What lies outside of the image becomes \a fill: an index, or a colour.
/// Returns a null image for an empty image, an angle that is no number, and more than 2 GiB.
VELA_EXPORT QImage rotateImage(QImage image, float radians, unsigned int fill);

} // namespace Vela

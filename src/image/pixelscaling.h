// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QImage>

namespace Vela {

/// Enlarges an image of one or four bytes a pixel by \a factor, 2 or 3, without new colours. The
/// rules are EPX (Eric Johnston, 1992), published again as Scale2x, and Scale3x (Andrea Mazzoleni,
/// 2001), on raw values; a neighbour outside of the image counts as the pixel itself. The colour
/// table is not copied. Any other depth or factor gives a null image, as does more than 2 GiB.
VELA_EXPORT QImage scaleEPX(const QImage &image, int factor);

/// Enlarges a picture by \a factor, 2, 3 or 4, with the hq2x, hq3x or hq4x filter (Maxim Stepin,
/// 2003); any other factor writes nothing. \a source holds \a width by \a height pixels 0xAARRGGBB
/// without padding; rows of \a target have \a targetRowBytes bytes, a multiple of 4, of which those
/// past the pixels are left alone. Outside of the picture its border goes on. Alpha takes no part
/// in the choice of what is mixed, and is mixed with the weights of the colours.
VELA_EXPORT void scaleHQ(int factor, const quint32 *source, int width, int height, quint32 *target,
                         int targetRowBytes);

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "studio/cli/imagefiles.h"

namespace Studio {

/// Returns an image of Format_Indexed8 with the colours of \a table, in their order. A pixel that
/// is hardly seen, of less than half opacity, gets the palette's transparent colour, or else the
/// colour 0, which becomes transparent and which no other pixel gets.
QImage fittedToPalette(const QImage &image, const ColorTable &table);

/// Returns an image of Format_Indexed8 with \a count colours at most, 2 to 256. An image that uses
/// only the first \a count colours of its palette keeps them. Otherwise the first colour is the
/// transparent one if there are pixels that are hardly seen.
QImage reducedToColors(const QImage &image, int count);

} // namespace Studio

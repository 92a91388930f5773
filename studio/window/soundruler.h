// SPDX-License-Identifier: MIT
#pragma once

class QPainter;
class QRect;

namespace Studio {

/// Draws a ruler of time with marks at round times, as many as have room for their words.
/// \a start is the time at its left end, and \a step that between two of the painter's pixels,
/// more than 0; both are in seconds.
void drawTimeRuler(QPainter &painter, const QRect &area, double start, double step);

} // namespace Studio

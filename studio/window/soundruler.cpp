// SPDX-License-Identifier: MIT
#include "studio/window/soundruler.h"

#include "studio/window/soundwords.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace Studio {

namespace {

constexpr int Space = 14;  // pixels between the words of two marks
constexpr int Padding = 3; // pixels between a mark and its words
constexpr int Parts = 5;   // small marks from one mark to the next

/// Returns the first round time that is not below \a least.
double roundTime(double least)
{
    constexpr double seconds[] = {1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600};
    if (least > seconds[0]) {
        const auto found = std::lower_bound(std::begin(seconds), std::end(seconds), least);
        return found != std::end(seconds) ? *found : std::ceil(least / 3600) * 3600;
    }
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least)
            return factor * power;
    }
    return 10 * power;
}

} // namespace

void drawTimeRuler(QPainter &painter, const QRect &area, double start, double step)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const double end = start + area.width() * step;
    // The digits behind the point follow from the distance, and their width from the digits.
    double distance = 0;
    int digits = 0;
    for (int width = 0, wanted = 1; width < wanted;) {
        width = wanted;
        distance = roundTime(width * step);
        digits = std::max(0, -int(std::floor(std::log10(distance) + 1e-9)));
        wanted = std::max(width, metrics.horizontalAdvance(timeWords(end, digits)) + Space);
    }

    const double part = distance / Parts;
    const double first = std::floor(start / part);
    for (double mark = first; mark * part < end; ++mark) {
        const int x = area.left() + int(std::lround((mark * part - start) / step));
        const bool isLarge = std::fmod(mark, Parts) == 0;
        painter.drawLine(x, isLarge ? area.top() : area.bottom() - 3, x, area.bottom());
        const QString words = isLarge ? timeWords(mark * part, digits) : QString();
        const QRect place(x + Padding, area.top(), metrics.horizontalAdvance(words), area.height());
        if (area.contains(place)) // words that are cut off may read as another time
            painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter, words);
    }
}

} // namespace Studio

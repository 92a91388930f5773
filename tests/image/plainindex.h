// SPDX-License-Identifier: MIT
#pragma once

#include "image/rgba.h"

/// Scans all entries for the nearest one, to compare the faster ways with.
inline int plainIndex(const Vela::RGBA *palette, Vela::RGBA color)
{
    const auto square = [](int value) { return value * value; };
    int best = 1 << 30;
    int bestAlpha = 255;
    int index = 0;
    for (int i = 0; i < 256; ++i) {
        const Vela::RGBA entry = palette[i];
        const int distance =
            square(entry.r - color.r) + square(entry.g - color.g) + square(entry.b - color.b);
        const int alpha = entry.a - color.a;
        if (distance > best || (distance == best && alpha >= bestAlpha))
            continue;
        best = distance;
        bestAlpha = alpha & 0xff;
        index = i;
    }
    return index;
}

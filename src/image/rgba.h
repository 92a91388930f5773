// SPDX-License-Identifier: MIT
#pragma once

#include <QRgb>
#include <QtGlobal>

namespace Vela {

/// An opaque colour, as colour maps of files hold it.
struct RGB
{
    quint8 r = 0;
    quint8 g = 0;
    quint8 b = 0;
};

/// A colour with its opacity. Its bytes do not lie in memory as those of a QRgb do.
///
/// A palette is RGBA[256]. In sprites the colour 0 is the transparent one.
struct RGBA
{
    quint8 r = 0;
    quint8 g = 0;
    quint8 b = 0;
    quint8 a = 0;
};

static_assert(sizeof(RGB) == 3 && sizeof(RGBA) == 4, "palettes go to files and textures as bytes");

inline bool operator==(RGB a, RGB b)
{
    return a.r == b.r && a.g == b.g && a.b == b.b;
}

inline bool operator!=(RGB a, RGB b)
{
    return !(a == b);
}

inline bool operator==(RGBA a, RGBA b)
{
    return a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a;
}

inline bool operator!=(RGBA a, RGBA b)
{
    return !(a == b);
}

/// Returns 0xAARRGGBB.
inline QRgb toRgb(RGBA color)
{
    return qRgba(color.r, color.g, color.b, color.a);
}

inline RGBA toRGBA(QRgb color)
{
    return {static_cast<quint8>(qRed(color)), static_cast<quint8>(qGreen(color)),
            static_cast<quint8>(qBlue(color)), static_cast<quint8>(qAlpha(color))};
}

} // namespace Vela

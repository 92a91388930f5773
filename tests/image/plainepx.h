// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QVector>

/// Scale2x and Scale3x one pixel after the other, as their publication writes them, for a
/// comparison with the fast way. Values are raw: indices or 32-bit colours.
class PlainEPX
{
public:
    explicit PlainEPX(const QImage &image)
        : m_image(image)
    {
    }

    QImage scaled(int factor)
    {
        QImage target(m_image.size() * factor, m_image.format());
        for (int y = 0; y < m_image.height(); ++y) {
            for (int x = 0; x < m_image.width(); ++x) {
                const QVector<uint> block = factor == 2 ? twice(x, y) : thrice(x, y);
                for (int i = 0; i < block.size(); ++i)
                    setValue(target, x * factor + i % factor, y * factor + i / factor, block[i]);
            }
        }
        return target;
    }

private:
    static uint value(const QImage &image, int x, int y)
    {
        return image.depth() == 8 ? image.constScanLine(y)[x]
                                  : reinterpret_cast<const uint *>(image.constScanLine(y))[x];
    }

    static void setValue(QImage &image, int x, int y, uint value)
    {
        if (image.depth() == 8)
            image.scanLine(y)[x] = uchar(value);
        else
            reinterpret_cast<uint *>(image.scanLine(y))[x] = value;
    }

    /// The neighbour of a pixel, or the pixel where there is none.
    uint near(int x, int y, int dx, int dy) const
    {
        return m_image.valid(x + dx, y + dy) ? value(m_image, x + dx, y + dy)
                                             : value(m_image, x, y);
    }

    QVector<uint> twice(int x, int y) const
    {
        const uint b = near(x, y, 0, -1), d = near(x, y, -1, 0), e = near(x, y, 0, 0),
                   f = near(x, y, 1, 0), h = near(x, y, 0, 1);
        if (b == h || d == f)
            return QVector<uint>(4, e);
        return {d == b ? d : e, b == f ? f : e, d == h ? d : e, h == f ? f : e};
    }

    QVector<uint> thrice(int x, int y) const
    {
        const uint a = near(x, y, -1, -1), b = near(x, y, 0, -1), c = near(x, y, 1, -1),
                   d = near(x, y, -1, 0), e = near(x, y, 0, 0), f = near(x, y, 1, 0),
                   g = near(x, y, -1, 1), h = near(x, y, 0, 1), i = near(x, y, 1, 1);
        if (b == h || d == f)
            return QVector<uint>(9, e);
        return {d == b ? d : e,
                (d == b && e != c) || (b == f && e != a) ? b : e,
                b == f ? f : e,
                (d == b && e != g) || (d == h && e != a) ? d : e,
                e,
                (b == f && e != i) || (h == f && e != c) ? f : e,
                d == h ? d : e,
                (d == h && e != i) || (h == f && e != g) ? h : e,
                h == f ? f : e};
    }

    const QImage m_image;
};

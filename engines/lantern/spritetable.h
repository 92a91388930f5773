// SPDX-License-Identifier: MIT
#pragma once

#include "image/imageformats.h"
#include "image/subitem.h"

#include <QByteArray>
#include <QPoint>
#include <QVector>

class QIODevice;

namespace Lantern {

/// The tables at the beginning of a sprites file: where its streams are, and what they are used
/// for. docs/lantern.md tells the layout.
struct SpriteTable
{
    /// Stands for no stream and no palette.
    static constexpr quint32 None = 0xFFFFFFFF;

    struct Stream
    {
        qint64 offset = 0; ///< from the file's start, in bytes
        quint32 size = 0;  ///< in bytes
        quint32 crc = 0;   ///< CRC32 of the plain data
        quint16 encoding = 0;
        Vela::ImageInfo info; ///< Format_Invalid for a palette
    };

    struct Palette
    {
        Vela::SubItem identifier;
        quint32 stream = None;
    };

    struct Sprite
    {
        Vela::SubItem identifier;
        QPoint axis;
        quint32 palette = None;
        quint32 stream = None;
    };

    /// Reads the tables, and leaves the device behind them. Returns false with a reason in \a error
    /// if they are broken or do not fit the device's size.
    bool read(QIODevice &device, QString &error);
    /// Returns the tables as bytes, with the streams in their order behind them.
    QByteArray write();

    QVector<Stream> streams;
    QVector<Palette> palettes;
    QVector<Sprite> sprites;
    bool isPreferred = false; ///< all images have their preferred encoding
    QByteArray original;      ///< the tables as they were read
};

} // namespace Lantern

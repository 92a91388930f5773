// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/tablefile.h"

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

    /// Format_Invalid is for a palette.
    using Stream = TableStream<Vela::ImageInfo>;

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

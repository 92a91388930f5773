// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/tablefile.h"

#include "sound/soundsample.h"

#include <QByteArray>
#include <QString>
#include <QVector>

class QIODevice;

namespace Lantern {

/// The tables at the beginning of a sounds file: where its streams are, and the names of the sounds
/// that they are used for. docs/lantern.md tells the layout.
struct SoundTable
{
    /// Stands for no stream.
    static constexpr quint32 None = 0xFFFFFFFF;

    using Stream = TableStream<Vela::SampleInfo>;

    struct Sound
    {
        QString name;
        quint32 stream = None;
    };

    /// Reads the tables, and leaves the device behind them. Returns false with a reason in \a error
    /// if they are broken or do not fit the device's size.
    bool read(QIODevice &device, QString &error);
    /// Returns the tables as bytes, with the streams in their order behind them.
    QByteArray write();

    QVector<Stream> streams;
    QVector<Sound> sounds;
    bool isPreferred = false; ///< all streams have their preferred encoding, or a lossy one
    QByteArray original;      ///< the tables as they were read
};

} // namespace Lantern

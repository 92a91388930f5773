// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <memory>

class QIODevice;

namespace Vela {
class ProjectFile;
}

namespace Studio {

/// What can be shown of a file.
struct FileContent
{
    enum Kind { Missing, Text, Image, Sound, Other };

    Kind kind = Missing;
    qint64 size = 0; ///< bytes of the whole file
    QString text;    ///< its beginning, where the file is longer than LargestText
    bool cut = false;
    QImage image;
    QByteArray format; ///< of a sound, as for Vela::loadSound()
    /// A sound, open for reading. It is let go of on the main thread.
    std::shared_ptr<QIODevice> device;

    static constexpr qint64 LargestText = 2 * 1024 * 1024;
    static constexpr qint64 LargestImage = 64 * 1024 * 1024;
    static constexpr qint64 LargestPixels = 4096 * 4096;

    /// Returns the content as it stands in the open file, with changes that are not saved.
    static FileContent of(Vela::ProjectFile &file);
    /// Returns the format of a file that by its name is one sound; empty for others.
    static QByteArray soundFormat(const Vela::ProjectFile &file);
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QString>

namespace Vela {
class ProjectFile;
}

namespace Studio {

/// What can be shown of a file.
struct FileContent
{
    enum Kind { Missing, Text, Image, Other };

    Kind kind = Missing;
    qint64 size = 0; ///< bytes of the whole file
    QString text;    ///< its beginning, where the file is longer than LargestText
    bool cut = false;
    QImage image;

    static constexpr qint64 LargestText = 2 * 1024 * 1024;
    static constexpr qint64 LargestImage = 64 * 1024 * 1024;
    static constexpr qint64 LargestPixels = 4096 * 4096;

    /// Returns the content as it stands in the open file, with changes that are not saved.
    static FileContent of(Vela::ProjectFile &file);
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QImage>

namespace Vela {

/// What the header of a PCX file says.
struct PcxHeader
{
    static constexpr int Size = 128;
    static constexpr int ColorsAt = 16; ///< where 16 colours stand, three bytes each

    bool isKnown = false; ///< whether it is a PCX file of version 5
    int width = 0;        ///< in pixels; below 1 in a file that is damaged
    int height = 0;
    int planes = 0;
    int depth = 0;                                  ///< bits of all planes together
    int lineLength = 0;                             ///< bytes in a line of one plane
    QImage::Format format = QImage::Format_Invalid; ///< invalid for another depth

    /// Returns the header of \a bytes, Size of them.
    static PcxHeader read(const char *bytes);
};

} // namespace Vela

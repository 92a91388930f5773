// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

class QPainter;
class QRect;
class QTextBlock;

namespace Vela {

/// A mark beside a line, such as a breakpoint. It belongs to whoever made it, and is taken out of
/// its document before it is destroyed.
class VELA_EXPORT CodeMark
{
public:
    virtual ~CodeMark();

    /// Called with the line, from 1, that the mark was put on.
    virtual void setLine(int line) = 0;
    /// Called behind setLine() with the line itself.
    virtual void setBlock(const QTextBlock &block) = 0;
    /// Called when the line goes away; the line has forgotten the mark by itself.
    virtual void lineRemoved() = 0;
    /// Paints the mark into the column of marks beside its line.
    virtual void paint(QPainter &painter, const QRect &rect) const = 0;
};

} // namespace Vela

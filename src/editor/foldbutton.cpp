// SPDX-License-Identifier: MIT
#include "editor/foldbutton.h"

#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace Vela {

namespace {

const int textGap = 4; // pixels between arrow and text, as Qt's styles have it

} // namespace

void FoldButton::paintEvent(QPaintEvent *event)
{
    if (!isRightToLeft()) {
        QToolButton::paintEvent(event);
        return;
    }
    QStyleOptionToolButton option;
    initStyleOption(&option);
    const QString text = option.text;
    option.text.clear();
    option.direction = Qt::LeftToRight;
    QStylePainter painter(this);
    painter.save();
    painter.translate(width(), 0);
    painter.scale(-1, 1);
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
    painter.restore();

    const int frame = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, this);
    const QRect room = rect().adjusted(frame, 0, -(frame + option.iconSize.width() + textGap), 0);
    painter.drawItemText(room, Qt::AlignRight | Qt::AlignVCenter | Qt::TextShowMnemonic,
                         option.palette, isEnabled(), text, foregroundRole());
}

} // namespace Vela

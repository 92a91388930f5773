// SPDX-License-Identifier: MIT
#pragma once

#include <QToolButton>

namespace Vela {

/// A button with an arrow, and perhaps a text beside it, that reads in both directions: Qt's own
/// draws the two over each other from right to left, and its arrow away from the text. The arrow
/// stays Qt::RightArrow for what is closed; the picture is what turns round.
class FoldButton : public QToolButton
{
public:
    using QToolButton::QToolButton;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace Vela

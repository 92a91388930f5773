// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

class QWidget;

namespace Vela {

/// Returns how much larger than at 96 DPI the system shows the window of a widget; 1 where it does
/// not tell.
qreal screenScale(const QWidget &widget);

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "editor/screenscale_p.h"

#include <QLibrary>
#include <QWidget>

#include <qt_windows.h>

namespace Vela {

qreal screenScale(const QWidget &widget)
{
    using DpiOf = UINT(WINAPI *)(HWND window);
    static const auto dpiOf =
        reinterpret_cast<DpiOf>(QLibrary::resolve(QStringLiteral("user32"), "GetDpiForWindow"));
    // No window has a DPI of 0.
    const UINT dpi = dpiOf ? dpiOf(reinterpret_cast<HWND>(widget.effectiveWinId())) : 0;
    return dpi > 0 ? dpi / 96.0 : 1;
}

} // namespace Vela

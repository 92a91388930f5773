// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>

namespace Studio {

/// Returns the program's own icon of that name, else the one of the desktop's theme, else a null
/// icon.
QIcon namedIcon(const QString &name);

} // namespace Studio

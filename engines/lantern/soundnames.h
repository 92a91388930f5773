// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

namespace Lantern {

/// Returns whether a sound may be called so: as a file could be called on every system, without
/// folder and extension.
bool isSoundName(const QString &name);

/// Returns the wanted name, "sound" in place of none, or the first one of NAME-2, NAME-3 and so on
/// that is not used.
QString freeSoundName(const QString &wanted, const std::function<bool(const QString &)> &isUsed);

} // namespace Lantern

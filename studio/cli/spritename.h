// SPDX-License-Identifier: MIT
#pragma once

#include "image/subitem.h"

#include <QString>

namespace Studio {

/// Returns the name that the sprite of an identifier has in texts and as a file: "GROUP_IMAGE".
QString spriteName(Vela::SubItem identifier);
/// Reads such a name. Returns false for any other.
bool readSpriteName(const QString &name, Vela::SubItem *identifier);

} // namespace Studio

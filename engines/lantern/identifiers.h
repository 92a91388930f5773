// SPDX-License-Identifier: MIT
#pragma once

#include "image/subitem.h"

#include <QVariant>

namespace Lantern {

/// Reads the identifier of a sprite or a palette: a Vela::SubItem, "GROUP,IMAGE" or "GROUP_IMAGE".
/// Returns false, with \a identifier as it was, for anything else.
bool readIdentifier(const QVariant &variant, Vela::SubItem &identifier);
/// Returns "GROUP,IMAGE".
QString identifierText(Vela::SubItem identifier);
/// Returns "GROUP_IMAGE", the name of a sprite in texts and files.
QString identifierName(Vela::SubItem identifier);
/// Returns the name that texts have for an identifier; a text that is none is a name already.
QString spriteNameOf(const QVariant &identifier);

} // namespace Lantern

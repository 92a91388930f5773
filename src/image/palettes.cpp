// SPDX-License-Identifier: MIT
#include "image/palettes.h"

namespace Vela {

Palettes::Palettes(QObject *parent)
    : OrganizableObject(parent)
{
}

} // namespace Vela

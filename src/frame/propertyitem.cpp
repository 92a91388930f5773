// SPDX-License-Identifier: MIT
#include "frame/propertyitem.h"

namespace Vela {

PropertyItem::~PropertyItem() = default;

} // namespace Vela

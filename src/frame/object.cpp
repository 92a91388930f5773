// SPDX-License-Identifier: MIT
#include "frame/object.h"

namespace Vela {

Object::~Object() = default;

} // namespace Vela

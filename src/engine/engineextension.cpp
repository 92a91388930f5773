// SPDX-License-Identifier: MIT
#include "engine/engineextension.h"

namespace Vela {

Extension::Type EngineExtension::type() const
{
    return EngineProvider;
}

} // namespace Vela

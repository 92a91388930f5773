// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extension.h"

namespace Vela {

class Engine;

/// The extension of type EngineProvider: what makes an engine known to the host.
class VELA_EXPORT EngineExtension : public Extension
{
public:
    Type type() const override;

    /// Returns the engine. It belongs to the extension and lives as long.
    virtual Engine *engine() = 0;
};

} // namespace Vela

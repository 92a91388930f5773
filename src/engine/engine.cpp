// SPDX-License-Identifier: MIT
#include "engine/engine.h"

#include "frame/interface.h"

namespace Vela {

Engine::Engine(const QString &engineName)
    : EnginePrivate(engineName)
{
}

Engine::~Engine() = default;

QString Engine::path() const
{
    const Interface *host = Interface::instance();
    return host ? host->userFolder() + engineFolder() : engineFolder();
}

} // namespace Vela

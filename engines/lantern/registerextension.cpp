// SPDX-License-Identifier: MIT
#include "lantern/engine.h"
#include "lantern/zipextension.h"

#include "engine/extensionmanager.h"

#include <memory>

namespace {

// The manager takes an extension over unless one of that name is there already.
void add(std::unique_ptr<Vela::Extension> extension)
{
    if (Vela::ExtensionManager::add(extension.get()))
        extension.release();
}

} // namespace

extern "C" Q_DECL_EXPORT void registerExtension(Vela::ExtensionManager *)
{
    add(std::make_unique<Lantern::EngineExtension>());
    add(std::make_unique<Lantern::ZipExtension>());
}

// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extensionmanager.h"

#include <QList>
#include <QString>

namespace Vela {
class Engine;
}

namespace Studio {

/// Loads the extension modules of a folder, and the options of the engines among them. A program
/// makes one behind setGlobalInterface(), and deletes it when every project is closed.
class EngineLoader
{
public:
    explicit EngineLoader(const QString &folder);

    /// Returns the engines in the order in which they registered. They stay their extensions'.
    static QList<Vela::Engine *> engines();
    /// Returns the first engine that takes \a path for a project of its own, or null.
    static Vela::Engine *engineFor(const QString &path);

private:
    Q_DISABLE_COPY(EngineLoader)

    Vela::ExtensionManager m_manager;
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extensionmanager.h"

#include <QList>
#include <QString>
#include <QTranslator>
#include <memory>
#include <vector>

namespace Vela {
class Engine;
}

namespace Studio {

/// Loads the extension modules of a folder, with the options of the engines among them and what
/// these have in the user's language: the files "translations/engine_LANGUAGE.qm" in their folders.
/// A program makes one behind setGlobalInterface(), and deletes it when every project is closed.
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
    std::vector<std::unique_ptr<QTranslator>> m_translators;
};

} // namespace Studio

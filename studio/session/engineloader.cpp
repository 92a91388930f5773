// SPDX-License-Identifier: MIT
#include "studio/session/engineloader.h"

#include "engine/engine.h"
#include "engine/engineextension.h"

#include <QCoreApplication>
#include <QLocale>
#include <algorithm>

namespace Studio {

EngineLoader::EngineLoader(const QString &folder)
    : m_manager(folder)
{
    const QList<Vela::Engine *> all = engines();
    for (Vela::Engine *engine : all) {
        engine->load();
        auto translator = std::make_unique<QTranslator>();
        if (translator->load(QLocale(), QStringLiteral("engine"), QStringLiteral("_"),
                             engine->installedPath() + QStringLiteral("/translations"))) {
            QCoreApplication::installTranslator(translator.get());
            m_translators.push_back(std::move(translator));
        }
    }
}

QList<Vela::Engine *> EngineLoader::engines()
{
    QList<Vela::Engine *> result;
    const auto &extensions = Vela::ExtensionManager::list(Vela::Extension::EngineProvider);
    for (Vela::Extension *extension : extensions) {
        auto *provider = dynamic_cast<Vela::EngineExtension *>(extension);
        if (provider && provider->engine())
            result.append(provider->engine());
    }
    return result;
}

Vela::Engine *EngineLoader::engineFor(const QString &path)
{
    const QList<Vela::Engine *> all = engines();
    const auto found = std::find_if(all.begin(), all.end(), [&path](const Vela::Engine *engine) {
        return engine->canOpen(path);
    });
    return found == all.end() ? nullptr : *found;
}

} // namespace Studio

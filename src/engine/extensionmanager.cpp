// SPDX-License-Identifier: MIT
#include "engine/extensionmanager.h"

#include <QDir>
#include <QLibrary>

#include <cstring>
#include <memory>

namespace Vela {

namespace {

QList<Extension *> &extensionsOf(int type)
{
    static QList<Extension *> lists[Extension::TypeCount];
    return lists[type];
}

QList<QLibrary *> &libraries()
{
    static QList<QLibrary *> list;
    return list;
}

QStringList moduleNameFilters()
{
    QStringList filters{QStringLiteral("*x.dll")};
#ifndef Q_OS_WIN
    filters.append(QStringLiteral("*x.so"));
#endif
    return filters;
}

const char *identifierOf(const Extension *extension)
{
    const char *identifier =
        extension->type() == Extension::Plugin ? extension->identifier() : extension->format();
    return identifier ? identifier : "";
}

} // namespace

ExtensionManager::ExtensionManager(const QString &folder)
{
    const QStringList names =
        QDir(folder).entryList(moduleNameFilters(), QDir::Files | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        auto library = std::make_unique<QLibrary>(folder + QLatin1Char('/') + name);
        const auto registerExtension =
            reinterpret_cast<RegisterExtension>(library->resolve("registerExtension"));
        if (!registerExtension)
            continue;
        registerExtension(this);
        libraries().append(library.release());
    }
}

ExtensionManager::~ExtensionManager()
{
    for (int type = 0; type < Extension::TypeCount; ++type) {
        QList<Extension *> &extensions = extensionsOf(type);
        while (!extensions.isEmpty())
            delete extensions.takeLast();
    }
    // Qt keeps a module mapped when only its QLibrary goes. That is wanted: text literals of the
    // module may live on in strings that the host holds.
    while (!libraries().isEmpty())
        delete libraries().takeLast();
}

bool ExtensionManager::add(Extension *extension)
{
    const int type = extension->type();
    if (type < 0 || type >= Extension::TypeCount)
        return false;
    QList<Extension *> &extensions = extensionsOf(type);
    for (const Extension *present : qAsConst(extensions)) {
        if (std::strcmp(identifierOf(present), identifierOf(extension)) == 0)
            return false;
    }
    extensions.append(extension);
    return true;
}

const QList<Extension *> &ExtensionManager::list(Extension::Type type)
{
    return extensionsOf(type);
}

} // namespace Vela

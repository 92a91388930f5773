// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extension.h"

#include <QList>
#include <QString>

class QLibrary;

namespace Vela {

class ExtensionManager;

/// What a module exports under the undecorated name "registerExtension".
using RegisterExtension = void (*)(ExtensionManager *manager);

/// Loads the extension modules of a folder, and keeps what they register by type. A host makes one
/// at start, behind setGlobalInterface(), and deletes it when nothing of an extension is in use:
/// the extensions go first, then the handles of their modules.
class VELA_EXPORT ExtensionManager
{
public:
    explicit ExtensionManager(const QString &folder);
    ~ExtensionManager();

    /// Takes \a extension over and returns true. If one with the same identifier is there already
    /// it stays, the new one remains its caller's, and the result is false.
    static bool add(Extension *extension);
    /// Returns the extensions of a type, in the order of their registration.
    static const QList<Extension *> &list(Extension::Type type);

private:
    Q_DISABLE_COPY(ExtensionManager)
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extensionmanager.h"

#include <algorithm>

namespace Vela {

/// Tries the extensions of a type and a format until \a call returns true for one, which comes as
/// a \a Codec, the class of that type. Returns whether there is one.
template <typename Codec, typename Call>
bool tryExtensions(Extension::Type type, const char *format, Call call)
{
    const QList<Extension *> &extensions = ExtensionManager::list(type);
    return std::any_of(extensions.begin(), extensions.end(), [&](Extension *extension) {
        return qstrcmp(extension->format(), format) == 0 && call(static_cast<Codec *>(extension));
    });
}

} // namespace Vela

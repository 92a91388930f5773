// SPDX-License-Identifier: MIT
#pragma once

#include <QKeySequence>
#include <QString>

namespace Studio {

/// What Studio adds to an action that the library or an engine makes.
struct LibraryAction
{
    const char *key;
    const char *place; ///< key of the menu that the action belongs to
    QKeySequence shortcut;

    /// Returns an empty row for an action that Studio knows nothing of.
    static LibraryAction of(const QString &key);
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace Vela {
class Interface;
}

namespace Studio {

/// What was open when the program ended, kept among the settings.
struct LastSession
{
    QString project;      ///< the path that opens it; empty if none was open
    QString file;         ///< the current file, relative to the project's root
    QStringList expanded; ///< the expanded folders of the tree, likewise
    QStringList shown;    ///< the files of the bar of open files, likewise

    void store(Vela::Interface &host) const;
    static LastSession stored(const Vela::Interface &host);
    static void forget(Vela::Interface &host);
};

} // namespace Studio

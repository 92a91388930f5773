// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Studio {

/// Where the programs keep the user's files and find what was installed with them. All paths are
/// absolute, with "/" and without one at the end.
class Folders
{
public:
    enum Place {
        UserPlace,    ///< the system's place for configurations
        PortablePlace ///< beside the program
    };

    /// A file named "portable" beside the program makes every place the portable one. The user's
    /// folders are made where they are missing; a failure shows when something is written there.
    explicit Folders(Place place = UserPlace);

    bool isPortable() const;
    QString userFolder() const;
    /// Returns the folder of the engines' configuration files.
    QString dataFolder() const;
    QString settingsFile() const;
    /// Returns the folder of what was installed for the engines.
    QString libraryFolder() const;
    /// Returns the folder of the extension modules; the environment variable
    /// VELA_EXTENSIONS_PATH replaces it.
    QString extensionsFolder() const;

private:
    bool m_portable;
    QString m_userFolder;
};

} // namespace Studio

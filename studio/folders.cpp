// SPDX-License-Identifier: MIT
#include "studio/folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace Studio {

namespace {

QString besideProgram(const QString &path)
{
    return QDir::cleanPath(QDir(QCoreApplication::applicationDirPath()).absoluteFilePath(path));
}

} // namespace

Folders::Folders(Place place)
    : m_portable(place == PortablePlace
                 || QFileInfo::exists(besideProgram(QStringLiteral("portable"))))
{
    // The generic place and not the application's own: both programs share one configuration.
    m_userFolder = m_portable
        ? besideProgram(QStringLiteral("vela-user"))
        : QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
            + QStringLiteral("/Vela");
    QDir().mkpath(dataFolder());
}

bool Folders::isPortable() const
{
    return m_portable;
}

QString Folders::userFolder() const
{
    return m_userFolder;
}

QString Folders::dataFolder() const
{
    return m_userFolder + QStringLiteral("/engines-config");
}

QString Folders::settingsFile() const
{
    return m_userFolder + QStringLiteral("/vela.ini");
}

QString Folders::libraryFolder() const
{
    return besideProgram(QStringLiteral(STUDIO_SHARE_PATH));
}

QString Folders::extensionsFolder() const
{
    const QString given = qEnvironmentVariable("VELA_EXTENSIONS_PATH");
    return given.isEmpty() ? besideProgram(QStringLiteral(STUDIO_EXTENSIONS_PATH))
                           : QDir::cleanPath(QDir().absoluteFilePath(given));
}

} // namespace Studio

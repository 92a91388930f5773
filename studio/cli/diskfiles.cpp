// SPDX-License-Identifier: MIT
#include "studio/cli/diskfiles.h"

#include "engine/extensionmanager.h"
#include "frame/fileutils.h"
#include "studio/cli/commandline.h"
#include "studio/cli/console.h"
#include "studio/cli/projectcall.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QSaveFile>

#include <algorithm>

namespace Studio {

bool failFile(const QString &file, const QString &reason, QString *error)
{
    *error = QStringLiteral("%1: %2").arg(file, reason);
    return false;
}

bool openFile(QFile &device, const QString &file, QString *error)
{
    device.setFileName(ProjectSession::normalizedPath(file));
    if (QFileInfo(device.fileName()).isDir())
        return failFile(file, QStringLiteral("is a folder"), error);
    return device.open(QIODevice::ReadOnly) || failFile(file, device.errorString(), error);
}

bool writeFile(const QString &file, const QByteArray &bytes, QString *error)
{
    QSaveFile device(ProjectSession::normalizedPath(file));
    if (device.open(QIODevice::WriteOnly) && device.write(bytes) == bytes.size()
        && Vela::commitFile(device))
        return true;
    return failFile(file, device.errorString(), error);
}

bool hasFile(const QString &file)
{
    const QFileInfo info(ProjectSession::normalizedPath(file));
    if (!info.isFile())
        Console::report((info.exists() ? QStringLiteral("%1: is not a file")
                                       : QStringLiteral("%1: there is no such file"))
                            .arg(file));
    return info.isFile();
}

int finishFile(const Call &call, const QString &file, const QByteArray &bytes)
{
    const bool isDryRun = call.options.testFlag(DryRun);
    QString error;
    if (!isDryRun && !writeFile(file, bytes, &error))
        return Console::fail(error);
    if (call.options.testFlag(Json))
        printJson({{QStringLiteral("path"), ProjectSession::normalizedPath(file)},
                   {QStringLiteral("size"), bytes.size()},
                   {QStringLiteral("written"), !isDryRun}});
    else if (!call.options.testFlag(Quiet))
        Console::print(file + QLatin1Char('\n'));
    return Done;
}

bool hasExtension(Vela::Extension::Type type, const QByteArray &format)
{
    const auto &extensions = Vela::ExtensionManager::list(type);
    return std::any_of(extensions.begin(), extensions.end(), [&format](Vela::Extension *extension) {
        return format == extension->format();
    });
}

} // namespace Studio

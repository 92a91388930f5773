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

namespace {

/// A disk that fills up takes a part without an error; asking for the rest brings the reason.
bool writeAll(QIODevice &device, const QByteArray &bytes)
{
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 count = device.write(bytes.constData() + written, bytes.size() - written);
        if (count <= 0)
            return false;
        written += count;
    }
    return true;
}

} // namespace

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

bool isReplaceable(const QString &file, QString *error)
{
    QFileInfo info(ProjectSession::normalizedPath(file));
    if (info.isSymLink())
        info.setFile(info.symLinkTarget());
    const QFileInfo folder(info.path());
    if (info.isDir())
        return failFile(file, QStringLiteral("is a folder"), error);
    if (!folder.isDir())
        return failFile(file, QStringLiteral("its folder is not there"), error);
    return (folder.isWritable() && (!info.exists() || info.isWritable()))
        || failFile(file, QStringLiteral("may not be written"), error);
}

bool writeFile(const QString &file, const QByteArray &bytes, QString *error)
{
    if (!isReplaceable(file, error))
        return false;
    QSaveFile device(ProjectSession::normalizedPath(file));
    if (device.open(QIODevice::WriteOnly) && writeAll(device, bytes) && Vela::commitFile(device))
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

void warn(const Call &call, const QString &file, const QString &text)
{
    if (!call.options.testFlag(Quiet))
        Console::report(QStringLiteral("warning: %1: %2").arg(file, text));
}

int finishFile(const Call &call, const QString &file, const QByteArray &bytes)
{
    const bool isDryRun = call.options.testFlag(DryRun);
    QString error;
    if (!(isDryRun ? isReplaceable(file, &error) : writeFile(file, bytes, &error)))
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

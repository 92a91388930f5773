// SPDX-License-Identifier: MIT
#include "studio/cli/collectionimport.h"

#include "frame/filesystemarchive.h"
#include "studio/cli/commandline.h"
#include "studio/cli/diskfiles.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>

namespace Studio {

namespace {

/// Returns whether it was saved; otherwise the reason has been reported.
///
/// An archive would write a new file in its place, where a break leaves half of it, and would put a
/// file where there was a link.
bool save(Vela::ProjectFile &collection, const QString &file)
{
    const auto job = createJob("Save");
    const QTemporaryDir folder;
    const QString copy = folder.filePath(QFileInfo(file).fileName());
    if (!collection.toFile(Vela::FileSystemArchive::instance(), copy, Vela::ProjectFile::Copy,
                           job.get()))
        return false;
    QFile device;
    QString error;
    if (openFile(device, copy, &error) && writeFile(file, device.readAll(), &error))
        return true;
    job->error(error);
    return false;
}

void printItems(const Call &call, const QVector<ImportedItem> &items, bool isWritten,
                const char *word)
{
    QJsonArray array;
    QList<QStringList> rows;
    for (const ImportedItem &item : items) {
        array.append(QJsonObject{{QStringLiteral("identifier"), item.name},
                                 {QStringLiteral("file"), item.file}});
        rows.append({item.name, item.file});
    }
    const QString file = call.arguments.first();
    if (call.options.testFlag(Json))
        printJson({{QStringLiteral("path"), ProjectSession::normalizedPath(file)},
                   {QLatin1String(word), array},
                   {QStringLiteral("written"), isWritten}});
    else if (!call.options.testFlag(Quiet) && !items.isEmpty())
        Console::print(call.options.testFlag(DryRun) ? QList<QStringList>{{file}} : rows);
}

} // namespace

int finishImport(const Call &call, Vela::ProjectFile &collection,
                 const QVector<ImportedItem> &items, int wanted, const char *word)
{
    const QString file = call.arguments.first();
    const bool isDryRun = call.options.testFlag(DryRun);
    const bool isWritten = !items.isEmpty() && !isDryRun;
    QString error;
    if (isDryRun && !isReplaceable(file, &error))
        return Console::fail(error);
    if (isWritten && !save(collection, file))
        return Failed;
    printItems(call, items, isWritten, word);
    return items.size() == wanted ? Done : Failed;
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/cli/collectionimport.h"

#include "frame/filesystemarchive.h"
#include "studio/cli/commandline.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Studio {

namespace {

/// Returns whether it was saved; otherwise the reason has been reported.
bool save(Vela::ProjectFile &collection, const QString &file)
{
    const auto job = createJob("Save");
    return collection.toFile(Vela::FileSystemArchive::instance(),
                             ProjectSession::normalizedPath(file), 0, job.get());
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
    const bool isWritten = !items.isEmpty() && !call.options.testFlag(DryRun);
    if (isWritten && !save(collection, call.arguments.first()))
        return Failed;
    printItems(call, items, isWritten, word);
    return items.size() == wanted ? Done : Failed;
}

} // namespace Studio

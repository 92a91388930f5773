// SPDX-License-Identifier: MIT
#pragma once

#include "studio/cli/console.h"
#include "studio/cli/decodefiles.h"
#include "studio/cli/standalonefile.h"

#include <QFileInfo>
#include <QStringList>
#include <QVector>

namespace Studio {

struct Call;

/// An item that a collection took: its name for users, and the file that it came from.
struct ImportedItem
{
    QString name;
    QString file;
};

/// Puts the content of files into a collection, as decodeFiles() has it. \a put returns the name of
/// the item that has the content, or an empty one if the collection does not take it.
template <class Decode, class Put>
QVector<ImportedItem> importFiles(const QStringList &files, int batchSize, Decode decode, Put put)
{
    QVector<ImportedItem> result;
    decodeFiles("Import", files, batchSize, decode, [&](const QString &file, const auto &content) {
        const QString name = put(file, content);
        if (name.isEmpty())
            return QStringLiteral("%1: the file cannot take it").arg(file);
        result.append({name, file});
        return QString();
    });
    return result;
}

/// Saves a collection into which a call has put \a items out of \a wanted files, unless it is a dry
/// run or there is none, and tells what came. \a word is what JSON calls the items. Returns an
/// ExitCode.
int finishImport(const Call &call, Vela::ProjectFile &collection,
                 const QVector<ImportedItem> &items, int wanted, const char *word);

/// Opens the collection of a name, or makes it if there is none. Reports the reason and returns
/// null on failure.
template <class Collection>
StandaloneFile<Collection> openOrCreate(const QString &file)
{
    return QFileInfo::exists(ProjectSession::normalizedPath(file))
        ? openStandalone<Collection>(file)
        : createStandalone<Collection>(file);
}

} // namespace Studio

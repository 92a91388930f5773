// SPDX-License-Identifier: MIT
#pragma once

#include "studio/cli/commandline.h"
#include "studio/cli/console.h"
#include "studio/cli/standalonefile.h"

#include <QByteArray>
#include <QDir>
#include <QSet>
#include <QStringList>
#include <QVector>

#include <functional>

namespace Vela {
class JobStats;
}

namespace Studio {

/// What becomes of an item of a collection. The texts do not name its file.
struct EncodedItem
{
    QByteArray bytes;
    QString error;   ///< why there are none
    QString warning; ///< what the format does not hold of the item
};

/// An item of a collection on its way to a file.
struct ExportedItem
{
    QString name; ///< of the file, without folder and format; one that any disk takes
    std::function<EncodedItem()> encode; ///< called on any thread; null to leave the item out
    QString leftOut;                     ///< why it is left out
};

/// Writes the items of a collection into files of their own.
class CollectionExport
{
public:
    /// The second argument of \a call is the folder. \a batchSize items are in memory at once.
    CollectionExport(const Call &call, const QByteArray &format, int batchSize);

    /// Writes \a count items, which \a itemAt returns on the main thread, and tells the names of
    /// their files. Returns an ExitCode.
    int run(unsigned int count, const std::function<ExportedItem(unsigned int)> &itemAt);

private:
    QString fileOf(const QString &name);
    void write(const QVector<ExportedItem> &items, Vela::JobStats &job);
    void printFiles() const;

    const Call &m_call;
    const QDir m_folder;
    const QByteArray m_format;
    const int m_batchSize;
    QSet<QString> m_names; // in one case: some disks know no other
    QStringList m_files;
    bool m_isComplete = true;
};

/// Writes the items of the collection that a call names. \a itemOf makes an ExportedItem of an item
/// and the format. Returns an ExitCode.
template <class Collection, class ItemOf>
int exportCollection(const Call &call, const QByteArray &format, int batchSize, ItemOf itemOf)
{
    const auto collection = openStandalone<Collection>(call.arguments.first());
    if (!collection)
        return Failed;
    return CollectionExport(call, format, batchSize)
        .run(collection->count(), [&collection, &format, itemOf](unsigned int index) {
            return itemOf(*collection->at(index), format);
        });
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/cli/collectionexport.h"

#include "frame/jobstats.h"
#include "studio/cli/commandline.h"
#include "studio/cli/console.h"
#include "studio/cli/diskfiles.h"
#include "studio/cli/parallel.h"
#include "studio/cli/projectcall.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace Studio {

namespace {

/// An item and its file.
struct Written
{
    std::function<EncodedItem()> encode;
    QString file;
    bool isDryRun = false;
    QString error;
    QString warning;
};

/// Runs on any thread.
Written written(Written item)
{
    const EncodedItem encoded = item.encode();
    item.encode = nullptr;
    item.warning = encoded.warning;
    if (!encoded.error.isEmpty())
        failFile(item.file, encoded.error, &item.error);
    else if (!item.isDryRun)
        writeFile(item.file, encoded.bytes, &item.error);
    else if (QFileInfo::exists(ProjectSession::normalizedPath(QFileInfo(item.file).path())))
        isReplaceable(item.file, &item.error);
    return item;
}

/// Returns whether there is a folder; makes it, or tells in a dry run whether it can be made.
bool hasFolder(const QString &path, bool isDryRun)
{
    if (!isDryRun)
        return QDir().mkpath(path);
    QFileInfo nearest(path);
    while (!nearest.exists() && !nearest.isRoot())
        nearest.setFile(nearest.path());
    return nearest.isDir() && (nearest.filePath() == path || nearest.isWritable());
}

} // namespace

CollectionExport::CollectionExport(const Call &call, const QByteArray &format, int batchSize)
    : m_call(call)
    , m_folder(call.arguments.at(1))
    , m_format(format)
    , m_batchSize(batchSize)
{
}

int CollectionExport::run(unsigned int count,
                          const std::function<ExportedItem(unsigned int)> &itemAt)
{
    const QString path = ProjectSession::normalizedPath(m_call.arguments.at(1));
    if (!hasFolder(path, m_call.options.testFlag(DryRun)))
        return Console::fail(
            QStringLiteral("%1: the folder cannot be made").arg(m_call.arguments.at(1)));
    {
        const auto job = createJob("Export");
        job->setMaximum(count);
        QVector<ExportedItem> items;
        for (unsigned int i = 0; i < count; ++i) {
            items.append(itemAt(i));
            if (items.size() < m_batchSize && i + 1 < count)
                continue;
            write(items, *job);
            items.clear();
            job->setValue(i + 1);
        }
    }
    printFiles();
    return m_isComplete ? Done : Failed;
}

QString CollectionExport::fileOf(const QString &name)
{
    QString unique = name;
    for (int i = 2; m_names.contains(unique.toCaseFolded()); ++i)
        unique = QStringLiteral("%1-%2").arg(name).arg(i);
    m_names.insert(unique.toCaseFolded());
    return m_folder.filePath(unique + QLatin1Char('.') + QString::fromUtf8(m_format).toLower());
}

void CollectionExport::write(const QVector<ExportedItem> &items, Vela::JobStats &job)
{
    QVector<Written> batch;
    for (const ExportedItem &item : items) {
        if (item.encode)
            batch.append({item.encode, fileOf(item.name), m_call.options.testFlag(DryRun), {}, {}});
        else
            warn(m_call, item.name, item.leftOut);
    }
    mapInParallel(batch, written);
    for (const Written &item : qAsConst(batch)) {
        if (!item.error.isEmpty()) {
            job.error(item.error);
            m_isComplete = false;
            continue;
        }
        m_files.append(item.file);
        if (!item.warning.isEmpty())
            warn(m_call, item.file, item.warning);
    }
}

void CollectionExport::printFiles() const
{
    if (m_call.options.testFlag(Json)) {
        QStringList names;
        for (const QString &file : m_files)
            names.append(QFileInfo(file).fileName());
        printJson(
            {{QStringLiteral("path"), ProjectSession::normalizedPath(m_folder.path())},
             {QStringLiteral("files"), QJsonArray::fromStringList(names)},
             {QStringLiteral("written"), !m_files.isEmpty() && !m_call.options.testFlag(DryRun)}});
    } else if (!m_call.options.testFlag(Quiet) && !m_files.isEmpty()) {
        Console::print(m_files.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    }
}

} // namespace Studio

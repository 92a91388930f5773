// SPDX-License-Identifier: MIT
#pragma once

#include "frame/jobstats.h"
#include "studio/cli/parallel.h"
#include "studio/cli/projectcall.h"

#include <QStringList>

namespace Studio {

/// Decodes files on all cores, with \a batchSize of them in memory at once.
///
/// \a decode makes content of a file on any thread, or sets an error. \a take gets each file's
/// name, as the user gave it, and its content on the main thread, in their order. What it returns
/// is why it does not take them, which is reported, as the errors are.
template <class Decode, class Take>
void decodeFiles(const char *jobText, const QStringList &files, int batchSize, Decode decode,
                 Take take)
{
    struct Decoded
    {
        QString file;
        decltype(decode(QString(), nullptr)) content;
        QString error;
    };
    const auto job = createJob(jobText);
    job->setMaximum(static_cast<unsigned int>(files.size()));
    for (int i = 0; i < files.size(); i += batchSize) {
        QVector<Decoded> batch;
        for (const QString &file : files.mid(i, batchSize))
            batch.append({file, {}, {}});
        mapInParallel(batch, [&decode](Decoded item) {
            item.content = decode(item.file, &item.error);
            return item;
        });
        for (const Decoded &item : qAsConst(batch)) {
            const QString error = item.error.isEmpty() ? take(item.file, item.content) : item.error;
            if (!error.isEmpty())
                job->error(error);
        }
        job->setValue(static_cast<unsigned int>(i + batch.size()));
    }
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/jobstats.h"

#include <QObject>
#include <QStringList>

namespace Studio {

/// The progress of saves that go on in the background: what is being written, to be shown beside
/// the work that goes on, and what failed. Jobs are made and ended on the main thread, and must end
/// before this object.
class SaveProgress : public QObject, public Vela::ProgressProvider
{
    Q_OBJECT

public:
    using QObject::QObject;

    Vela::ProgressJob *createJob(const QString &text, int flags) override;

    /// Returns the text of the job that began last; empty while there is none.
    QString text() const;
    /// Returns the failures since the last call.
    QStringList takeErrors();

Q_SIGNALS:
    /// A job has begun, or ended.
    void changed();

private:
    friend class SaveJob;

    QStringList m_texts;
    QStringList m_errors;
};

} // namespace Studio

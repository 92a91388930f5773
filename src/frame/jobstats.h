// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

class QString;

namespace Vela {

/// The progress sink of one long job, implemented by the host. Wherever the library takes a
/// JobStats pointer it may be null, and then the job reports nothing.
class VELA_EXPORT JobStats
{
public:
    virtual ~JobStats();

    /// Returns whether the user asked for the job to end. The job decides when it can.
    virtual bool wasCancelled() const = 0;
    /// Sets the value at which the job is complete; 0 means that it is not known.
    virtual void setMaximum(unsigned int maximum) = 0;
    virtual void setValue(unsigned int value) = 0;
    virtual void incrementValue() = 0;
    /// Reports a failure inside the job, as a text for the user.
    virtual void error(const QString &text) = 0;

protected:
    JobStats() = default;
    Q_DISABLE_COPY(JobStats)
};

/// A job that a ProgressProvider made.
class VELA_EXPORT ProgressJob : public JobStats
{
public:
    /// Says whether the job is known to take long (1) or not (0), so that the host can choose
    /// between a dialog and a quiet mark.
    virtual void setLengthy(int lengthy) = 0;
};

/// The factory of progress jobs, implemented by the host.
class VELA_EXPORT ProgressProvider
{
public:
    virtual ~ProgressProvider();

    /// Begins a job shown under \a text and returns it; \a flags are the host's to read, and the
    /// library passes 0. The caller owns the job, and deleting it ends it. May return null.
    virtual ProgressJob *createJob(const QString &text, int flags) = 0;

protected:
    ProgressProvider() = default;
    Q_DISABLE_COPY(ProgressProvider)
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/jobstats.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <functional>

class QIODevice;
class QProgressDialog;
class QWidget;

namespace Studio {

class DialogProgress;

/// A job that a window shows: a dialog with a way to cancel, once the job has lasted a while.
///
/// The job runs on the main thread and keeps the windows alive by letting events through, at most
/// every 30 ms and never from inside such a round. Until the dialog shows and keeps the user out,
/// no input goes through: nobody can start a second job in the midst of the first.
class DialogJob : public Vela::ProgressJob
{
public:
    DialogJob(DialogProgress &provider, const QString &text);
    /// Ends the dialog and hands the errors to the provider.
    ~DialogJob() override;

    bool wasCancelled() const override;
    void setMaximum(unsigned int maximum) override;
    void setValue(unsigned int value) override;
    void incrementValue() override;
    void error(const QString &text) override;
    void setLengthy(int lengthy) override;

private:
    void update();
    void show();

    DialogProgress &m_provider;
    QString m_text;
    QStringList m_errors;
    QPointer<QProgressDialog> m_dialog;
    QElapsedTimer m_started;
    QElapsedTimer m_updated;
    unsigned int m_maximum = 0;
    unsigned int m_value = 0;
    int m_delay;
    bool m_cancelled = false;
};

/// The progress of the window's jobs. The errors of a job are shown together when it has ended.
class DialogProgress : public Vela::ProgressProvider
{
public:
    /// \a window returns the parent of the dialogs, which may be null.
    explicit DialogProgress(std::function<QWidget *()> window);

    Vela::ProgressJob *createJob(const QString &text, int flags) override;

private:
    friend class DialogJob;

    void showErrors(const QString &text, const QStringList &errors) const;

    std::function<QWidget *()> m_window;
    bool m_inEvents = false;
};

/// The progress of a program without a window.
class ConsoleProgress : public Vela::ProgressProvider
{
public:
    enum Output {
        ErrorsOnly,
        Progress ///< a line of a terminal, written anew with each tenth of a job, gone at its end
    };

    /// \a device is open for writing and outlives this object and its jobs.
    ConsoleProgress(QIODevice &device, Output output);

    Vela::ProgressJob *createJob(const QString &text, int flags) override;

    /// Returns the errors of all jobs until now, each behind the text of its job.
    QStringList errors() const;

private:
    friend class ConsoleJob;

    void write(const QString &text);

    QIODevice &m_device;
    Output m_output;
    QStringList m_errors;
};

} // namespace Studio

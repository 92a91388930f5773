// SPDX-License-Identifier: MIT
#pragma once

#include "studio/host.h"

#include <QFile>
#include <QHash>

namespace Studio {

class ConsoleProgress;

/// The host of the command line: Vela Studio's, with the user's settings to read only, texts on
/// standard error, progress there too if it is a terminal, and no watching of files.
class ConsoleHost : public Host
{
    Q_OBJECT

public:
    /// A quiet one shows no progress.
    explicit ConsoleHost(bool isQuiet);
    ~ConsoleHost() override;

    /// Returns whether a job has reported an error.
    bool hasErrors() const;

    QVariant option(const QString &key, const QVariant &defaultValue) const override;
    /// Keeps the value as long as the program runs.
    void setOption(const QString &key, const QVariant &value) override;
    void log(const QString &text) override;

private:
    QFile m_errorOutput;
    ConsoleProgress *m_progress;
    QHash<QString, QVariant> m_options;
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/cli/consolehost.h"

#include "studio/cli/console.h"
#include "studio/progress.h"

#include <cstdio>
#include <unistd.h>

namespace Studio {

ConsoleHost::ConsoleHost(bool isQuiet)
    : Host(Folders())
    , m_options{{QStringLiteral("enable_file_watcher"), false}}
{
    m_errorOutput.open(stderr, QIODevice::WriteOnly | QIODevice::Unbuffered);
    const bool isShown = !isQuiet && isatty(fileno(stderr));
    auto progress = std::make_unique<ConsoleProgress>(
        m_errorOutput, isShown ? ConsoleProgress::Progress : ConsoleProgress::ErrorsOnly);
    m_progress = progress.get();
    setProgressProvider(std::move(progress));
}

ConsoleHost::~ConsoleHost() = default;

bool ConsoleHost::hasErrors() const
{
    return !m_progress->errors().isEmpty();
}

QVariant ConsoleHost::option(const QString &key, const QVariant &defaultValue) const
{
    const auto own = m_options.constFind(key);
    if (own == m_options.constEnd())
        return Host::option(key, defaultValue);
    return own->isValid() ? *own : defaultValue;
}

void ConsoleHost::setOption(const QString &key, const QVariant &value)
{
    m_options.insert(key, value);
}

void ConsoleHost::log(const QString &text)
{
    Console::report(text);
}

} // namespace Studio

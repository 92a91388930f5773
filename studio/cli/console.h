// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace Studio {

/// What the command line answers to whoever called it.
enum ExitCode {
    Done = 0,          ///< everything asked for was done
    ContentErrors = 1, ///< the content that was checked has errors
    Failed = 2         ///< the call is wrong, or something could not be done
};

/// The two streams of the command line, in UTF-8.
class Console
{
public:
    /// Writes \a text to standard output as it stands.
    static void print(const QString &text);
    /// Writes rows to standard output, with two blanks at least between their columns, which stand
    /// below each other.
    static void print(const QList<QStringList> &rows);
    /// Writes \a text and a line end to standard error, behind the program's name.
    static void report(const QString &text);
    /// Reports why a command cannot be done, and returns Failed.
    static int fail(const QString &reason);
    /// Returns whether all output has arrived; false where standard output is full or closed.
    static bool finish();
};

} // namespace Studio

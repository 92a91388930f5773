// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extension.h"

#include <QByteArray>
#include <QString>

class QFile;

namespace Studio {

struct Call;

// The functions below name files as the user does. On failure they return false, with the whole
// reason in \a error.

/// Sets an error to a file's name and a reason, and returns false.
bool failFile(const QString &file, const QString &reason, QString *error);
/// Opens a file to read. May be called from any thread.
bool openFile(QFile &device, const QString &file, QString *error);
/// Returns whether writeFile() may write a file, as far as that can be told before: what a dry run
/// asks. May be called from any thread.
bool isReplaceable(const QString &file, QString *error);
/// Replaces a file in one step; a link stays, and what it leads to is replaced. May be called from
/// any thread.
bool writeFile(const QString &file, const QByteArray &bytes, QString *error);

/// Returns whether there is a file of that name, which is no folder; otherwise the reason has been
/// reported.
bool hasFile(const QString &file);

/// Reports what a call loses, unless it is quiet.
void warn(const Call &call, const QString &file, const QString &text);

/// Ends a call that makes one file: replaces it, unless the call is a dry run, and tells what it is
/// unless the call is quiet. Returns an ExitCode.
int finishFile(const Call &call, const QString &file, const QByteArray &bytes);

/// Returns whether an extension of that type is for a format.
bool hasExtension(Vela::Extension::Type type, const QByteArray &format);

} // namespace Studio

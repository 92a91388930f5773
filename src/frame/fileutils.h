// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

class QFileDevice;
class QIODevice;
class QSaveFile;
class QWidget;

namespace Vela {

class Archive;

/// Asks for one file to open. The setting "use_native_open" chooses between the system's dialog
/// and Qt's. An empty result means that the user gave up. Needs an installed host.
VELA_EXPORT QString getOpenFileName(QWidget *parent, const QString &caption, const QString &dir,
                                    const QString &filter);
/// Asks for files to open, sorted by prefix and number if the setting "sort_file_names" is on.
VELA_EXPORT QStringList getOpenFileNames(QWidget *parent, const QString &caption,
                                         const QString &dir, const QString &filter);
VELA_EXPORT QString getSaveFileName(QWidget *parent, const QString &caption, const QString &dir,
                                    const QString &filter);
VELA_EXPORT QString getExistingDirectory(QWidget *parent, const QString &caption,
                                         const QString &dir);

/// Sorts file names so that "walk2.png" comes before "walk10.png". Names that are not a prefix
/// without digits, a number and an extension keep plain string order.
VELA_EXPORT void sortFileNames(QStringList &names);

/// Copies a file from one archive to another. Returns false for equal names, even in two archives,
/// and if either file cannot be opened.
VELA_EXPORT bool copyFile(Archive &from, const QString &fromName, Archive &to,
                          const QString &toName);

/// Finds \a path under the folder \a base where the store writes letters in another case. Returns
/// the absolute name with the store's spelling; a part with no match stays as it was written.
VELA_EXPORT QString fixFileCase(const QString &base, Archive &archive, const QString &path);

/// Returns \a path relative to the folder \a base; both may use "\" or "/".
VELA_EXPORT QString absolutePathToRelative(const QString &path, const QString &base);

/// Returns the part behind the last dot of a file name, in upper case and without the dot.
VELA_EXPORT QByteArray fileExtension(const QString &fileName);

/// Returns \a length letters and digits from qrand(); empty for a length below 1.
VELA_EXPORT QString randomString(int length);

/// Reads and discards \a count bytes, for devices that cannot seek. Goes on asking at the end of
/// the device.
VELA_EXPORT void skipRead(QIODevice *device, unsigned int count);

/// Writes what a file still holds back. Returns false, with the reason in the file's errorString(),
/// if that is not possible.
VELA_EXPORT bool flushFile(QFileDevice &file);

/// Puts a new file in the place of the old one, if all of it can be written; otherwise the old one
/// stands, and the result is false.
VELA_EXPORT bool commitFile(QSaveFile &file);

} // namespace Vela

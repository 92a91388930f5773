// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/packedfiles.h"
#include "lantern/ziparchive.h"

#include <QDateTime>
#include <QHash>
#include <QMap>

class QuaZip;

namespace Lantern {

/// A new zip archive. Each file is packed once it is closed, into a nameless temporary file beside
/// the target, and can be read, replaced, renamed and removed until the archive is released. Then
/// what is there is written out by name and takes the target's name, all or nothing.
class ZipWriter : public ZipArchive
{
public:
    explicit ZipWriter(const QString &fileName);
    ~ZipWriter() override;

    /// Makes the target's folder and the temporary file; false if that fails.
    bool open();

    QIODevice *openFile(const QString &path, QIODevice::OpenMode mode) override;
    void closeFile(QIODevice *device) override;
    void discardFile(QIODevice *device) override;
    bool removeFile(const QString &path) override;
    bool renameFile(const QString &from, const QString &to) override;
    bool isReadOnly() const override;
    bool isWritable(const QString &path) const override;

protected:
    /// Writes the target. A failure is reported, and leaves what stood under its name.
    void free() override;

private:
    bool commit();
    bool copyEntry(QuaZip &zip, const QString &name, int number);

    PackedFiles m_packed;
    QMap<QString, int> m_entries; // numbers of packed files
    QHash<QIODevice *, QString> m_writing;
    QDateTime m_time; // of every entry: a store knows no other
    bool m_failed = false;
};

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/ziparchive.h"

#include <QHash>
#include <quazip.h>
#include <unzip.h>

namespace Lantern {

/// A zip archive that is read. A file is unpacked and its checksum tested before its device is
/// handed out, so a broken one is never used in part.
class ZipReader : public ZipArchive
{
public:
    explicit ZipReader(const QString &fileName);

    /// Reads the list of entries. False for a file that is no whole zip archive. Entries that leave
    /// the root, links, encrypted ones and such as no honest packer writes are reported and left
    /// out.
    bool open();

    QIODevice *openFile(const QString &path, QIODevice::OpenMode mode) override;
    void closeFile(QIODevice *device) override;
    void discardFile(QIODevice *device) override;
    bool removeFile(const QString &path) override;
    bool renameFile(const QString &from, const QString &to) override;
    bool isReadOnly() const override;
    bool isWritable(const QString &path) const override;

private:
    struct Entry
    {
        unz64_file_pos position;
        quint64 size = 0;
    };

    /// Takes in the current entry, with the buffer for its name and what the archive's size leaves
    /// for packed bytes.
    bool readEntry(QByteArray &name, quint64 &bytesLeft);
    QString entryText(const QByteArray &name, bool utf8) const;
    bool unpack(const Entry &entry, QIODevice &target);

    QuaZip m_zip;
    QHash<QString, Entry> m_entries;
};

} // namespace Lantern

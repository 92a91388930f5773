// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/ziparchive.h"

#include <QDateTime>
#include <QHash>
#include <QMap>
#include <QTemporaryFile>

#include <zlib.h>

class QuaZip;

namespace Lantern {

class SpoolDevice;

/// A new zip archive. Each file is packed when it is closed, into a nameless temporary file beside
/// the target, and can be read, replaced, renamed and removed until the archive is released. Then
/// what is there is written out and takes the target's name, all or nothing.
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
    // A packed file; the offset is in the temporary file.
    struct Packed
    {
        qint64 offset = 0;
        qint64 packedSize = 0;
        qint64 size = 0;
        quint32 crc = 0;
    };

    bool pack(SpoolDevice &source, Packed &packed);
    bool unpack(const Packed &packed, SpoolDevice &target);
    bool commit();
    bool copyEntry(QuaZip &zip, const QString &name, const Packed &packed);

    QTemporaryFile m_packed;
    qint64 m_packedEnd = 0;
    QMap<QString, Packed> m_entries;
    QHash<QIODevice *, QString> m_writing;
    z_stream m_deflate = {};
    // Blocks of deflate(), kept for all files: making them anew costs small files dear.
    QByteArray m_in;
    QByteArray m_out;
    QDateTime m_time; // of every entry: a store knows no other
    bool m_failed = false;
};

} // namespace Lantern

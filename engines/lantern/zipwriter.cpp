// SPDX-License-Identifier: MIT
#include "lantern/zipwriter.h"

#include "lantern/spooldevice.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QSaveFile>

#include <quazip.h>
#include <quazipfile.h>

#include <memory>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

constexpr int blockSize = 128 * 1024;

// No zlib header: the archive has its own.
constexpr int rawWindow = -MAX_WBITS;
// The longest name that an entry can have, in bytes.
constexpr int longestName = 65535;

Bytef *bytes(QByteArray &block)
{
    return reinterpret_cast<Bytef *>(block.data());
}

} // namespace

ZipWriter::ZipWriter(const QString &fileName)
    : ZipArchive(fileName)
    , m_packed(fileName + QStringLiteral(".XXXXXX"))
    , m_in(blockSize, Qt::Uninitialized)
    , m_out(blockSize, Qt::Uninitialized)
{
    if (deflateInit2(&m_deflate, Z_DEFAULT_COMPRESSION, Z_DEFLATED, rawWindow, MAX_MEM_LEVEL - 1,
                     Z_DEFAULT_STRATEGY)
        != Z_OK)
        m_failed = true;
}

ZipWriter::~ZipWriter()
{
    deflateEnd(&m_deflate);
    qDeleteAll(m_writing.keys());
}

bool ZipWriter::open()
{
    return !m_failed && QDir().mkpath(QFileInfo(path()).absolutePath())
        && !QFileInfo(path()).isDir() && m_packed.open();
}

QIODevice *ZipWriter::openFile(const QString &path, QIODevice::OpenMode mode)
{
    const QString entry = entryName(path);
    const auto packed = m_entries.constFind(entry);
    const bool known = packed != m_entries.constEnd();
    const bool writes = mode & QIODevice::WriteOnly;
    if (writes ? !canAdd(entry) || entry.toUtf8().size() > longestName : !known)
        return nullptr;

    auto device = std::make_unique<SpoolDevice>();
    device->open(QIODevice::WriteOnly);
    const bool keepsOld = mode & (QIODevice::ReadOnly | QIODevice::Append);
    if (known && keepsOld && !unpack(*packed, *device))
        return nullptr;
    device->close();
    device->open(mode & QIODevice::ReadWrite);
    if (mode & QIODevice::Append)
        device->seek(device->size());
    if (writes)
        m_writing.insert(device.get(), entry);
    return device.release();
}

void ZipWriter::closeFile(QIODevice *device)
{
    const std::unique_ptr<QIODevice> owned(device);
    const QString entry = m_writing.take(device);
    if (entry.isEmpty())
        return;
    Packed packed;
    if (pack(static_cast<SpoolDevice &>(*device), packed) && addName(entry))
        m_entries.insert(entry, packed);
    else
        m_failed = true;
}

void ZipWriter::discardFile(QIODevice *device)
{
    m_writing.remove(device);
    delete device;
}

bool ZipWriter::removeFile(const QString &path)
{
    const QString entry = entryName(path);
    if (!m_entries.remove(entry))
        return false;
    removeName(entry);
    return true;
}

bool ZipWriter::renameFile(const QString &from, const QString &to)
{
    const QString oldEntry = entryName(from);
    const QString newEntry = entryName(to);
    if (!m_entries.contains(oldEntry) || m_entries.contains(newEntry) || !addName(newEntry))
        return false;
    removeName(oldEntry);
    m_entries.insert(newEntry, m_entries.take(oldEntry));
    return true;
}

bool ZipWriter::isReadOnly() const
{
    return false;
}

bool ZipWriter::isWritable(const QString &path) const
{
    return canAdd(entryName(path));
}

bool ZipWriter::pack(SpoolDevice &source, Packed &packed)
{
    m_deflate.avail_in = 0;
    packed.offset = m_packedEnd;
    packed.size = source.size();
    packed.crc = quint32(crc32(0, nullptr, 0));
    if (!source.isWhole() || !m_packed.seek(m_packedEnd) || deflateReset(&m_deflate) != Z_OK)
        return false;
    source.close();
    source.open(QIODevice::ReadOnly | QIODevice::Unbuffered);

    qint64 left = packed.size;
    int result = Z_OK;
    while (result != Z_STREAM_END) {
        if (m_deflate.avail_in == 0 && left > 0) {
            const qint64 length = source.read(m_in.data(), m_in.size());
            if (length <= 0)
                return false;
            left -= length;
            packed.crc = quint32(crc32(packed.crc, bytes(m_in), uInt(length)));
            m_deflate.next_in = bytes(m_in);
            m_deflate.avail_in = uInt(length);
        }
        m_deflate.next_out = bytes(m_out);
        m_deflate.avail_out = uInt(m_out.size());
        result = deflate(&m_deflate, left > 0 ? Z_NO_FLUSH : Z_FINISH);
        const qint64 length = m_out.size() - qint64(m_deflate.avail_out);
        if (result == Z_STREAM_ERROR || m_packed.write(m_out.constData(), length) != length)
            return false;
        packed.packedSize += length;
    }
    m_packedEnd += packed.packedSize;
    return true;
}

bool ZipWriter::unpack(const Packed &packed, SpoolDevice &target)
{
    z_stream stream = {};
    if (!m_packed.seek(packed.offset) || inflateInit2(&stream, rawWindow) != Z_OK)
        return false;
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> guard(&stream, &inflateEnd);
    QByteArray in(blockSize, Qt::Uninitialized);
    QByteArray out(blockSize, Qt::Uninitialized);
    qint64 left = packed.packedSize;
    int result = Z_OK;
    while (result != Z_STREAM_END) {
        if (stream.avail_in == 0) {
            const qint64 length = m_packed.read(in.data(), qMin(left, qint64(in.size())));
            if (length <= 0)
                return false;
            left -= length;
            stream.next_in = bytes(in);
            stream.avail_in = uInt(length);
        }
        stream.next_out = bytes(out);
        stream.avail_out = uInt(out.size());
        result = inflate(&stream, Z_NO_FLUSH);
        const qint64 length = out.size() - qint64(stream.avail_out);
        if ((result != Z_OK && result != Z_STREAM_END)
            || target.write(out.constData(), length) != length)
            return false;
    }
    return true;
}

void ZipWriter::free()
{
    // A file that was never closed is missing in the archive.
    if (m_failed || !m_writing.isEmpty() || !commit())
        report(Texts::tr("The archive '%1' could not be written.").arg(path()));
    delete this;
}

bool ZipWriter::commit()
{
    m_time = QDateTime::currentDateTime();
    // Its old content stands until the new one is whole.
    QSaveFile target(path());
    if (!target.open(QIODevice::WriteOnly))
        return false;
    QuaZip zip(&target);
    zip.setAutoClose(false);
    zip.setUtf8Enabled(true);
    zip.setDataDescriptorWritingEnabled(false);
    if (!zip.open(QuaZip::mdCreate))
        return false;
    bool written = true;
    for (auto entry = m_entries.cbegin(); written && entry != m_entries.cend(); ++entry)
        written = copyEntry(zip, entry.key(), entry.value());
    zip.close();
    return written && zip.getZipError() == ZIP_OK && target.commit();
}

bool ZipWriter::copyEntry(QuaZip &zip, const QString &name, const Packed &packed)
{
    constexpr qint64 zip64Size = 0xFFFFFFFF;
    QuaZipNewInfo info(name);
    info.dateTime = m_time;
    info.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    info.uncompressedSize = ulong(packed.size);
    zip.setZip64Enabled(packed.size >= zip64Size || packed.packedSize >= zip64Size);

    QuaZipFile file(&zip);
    if (!file.open(QIODevice::WriteOnly, info, nullptr, packed.crc, Z_DEFLATED,
                   Z_DEFAULT_COMPRESSION, true)
        || !m_packed.seek(packed.offset))
        return false;
    QByteArray block(int(qMin(packed.packedSize, qint64(blockSize))), Qt::Uninitialized);
    for (qint64 left = packed.packedSize; left > 0;) {
        const qint64 length = m_packed.read(block.data(), qMin(left, qint64(block.size())));
        if (length <= 0 || file.write(block.constData(), length) != length)
            return false;
        left -= length;
    }
    file.close();
    return file.getZipError() == ZIP_OK;
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "lantern/zipwriter.h"

#include "lantern/spooldevice.h"

#include "frame/fileutils.h"

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

// The longest name that an entry can have, in bytes.
constexpr int longestName = 65535;

} // namespace

ZipWriter::ZipWriter(const QString &fileName)
    : ZipArchive(fileName)
    , m_packed(fileName)
{
}

ZipWriter::~ZipWriter()
{
    qDeleteAll(m_writing.keys());
}

bool ZipWriter::open()
{
    return QDir().mkpath(QFileInfo(path()).absolutePath()) && !QFileInfo(path()).isDir()
        && m_packed.open();
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
    if (known && keepsOld && !(m_packed.finish() && m_packed.unpack(*packed, *device)))
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
    if (addName(entry))
        m_entries.insert(entry, m_packed.add(static_cast<SpoolDevice &>(*device)));
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

void ZipWriter::free()
{
    // A file that was never closed is missing in the archive.
    if (m_failed || !m_writing.isEmpty() || !m_packed.finish() || !commit())
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
    return written && zip.getZipError() == ZIP_OK && Vela::commitFile(target);
}

bool ZipWriter::copyEntry(QuaZip &zip, const QString &name, int number)
{
    constexpr qint64 zip64Size = 0xFFFFFFFF;
    const PackedFiles::File &packed = m_packed.at(number);
    QuaZipNewInfo info(name);
    info.dateTime = m_time;
    info.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    info.uncompressedSize = ulong(packed.size);
    zip.setZip64Enabled(packed.size >= zip64Size || packed.packedSize >= zip64Size);

    QuaZipFile file(&zip);
    if (!file.open(QIODevice::WriteOnly, info, nullptr, packed.crc, Z_DEFLATED,
                   Z_DEFAULT_COMPRESSION, true)
        || !m_packed.copyPacked(number, file))
        return false;
    file.close();
    return file.getZipError() == ZIP_OK;
}

} // namespace Lantern

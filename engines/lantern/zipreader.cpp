// SPDX-License-Identifier: MIT
#include "lantern/zipreader.h"

#include "lantern/spooldevice.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTextCodec>

#include <zlib.h>

#include <limits>
#include <memory>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

constexpr int blockSize = 128 * 1024;
// The longest name that an entry can have, in bytes.
constexpr int longestName = 65535;

// The general purpose flags of an entry, and the type of a Unix file in its attributes.
constexpr uLong encryptedFlag = 1;
constexpr uLong utf8Flag = 1 << 11;
constexpr uLong unixTypeMask = 0xF000;
constexpr uLong unixLink = 0xA000;

bool isLink(const unz_file_info64 &info)
{
    constexpr uLong unixSystem = 3;
    return info.version >> 8 == unixSystem && (info.external_fa >> 16 & unixTypeMask) == unixLink;
}

// Deflate makes at most 1032 bytes of one. Above a size that no part of a game has, even a part of
// that is taken for an attack on the disk.
bool isBelievable(const unz_file_info64 &info)
{
    constexpr ZPOS64_T largeSize = ZPOS64_T(1) << 30;
    constexpr ZPOS64_T largeRatio = 100;
    const ZPOS64_T packed = info.compressed_size;
    const ZPOS64_T size = info.uncompressed_size;
    if (info.compression_method == 0)
        return packed == size;
    if (info.compression_method != Z_DEFLATED || packed > std::numeric_limits<qint64>::max() / 2000)
        return false;
    return size <= 1032 * (packed + 1) && (size <= largeSize || size <= largeRatio * packed);
}

// Returns whether the record at the end of an archive is there in full: of one that is cut inside
// it the zip library makes an empty archive.
bool hasWholeEnd(const QString &fileName)
{
    constexpr int recordSize = 22;
    constexpr int longestComment = 65535;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)
        || !file.seek(qMax(qint64(0), file.size() - recordSize - longestComment)))
        return false;
    const QByteArray end = file.readAll();
    const int record = end.lastIndexOf("PK\5\6");
    if (record < 0 || end.size() - record < recordSize)
        return false;
    const int comment = quint8(end.at(record + 20)) | quint8(end.at(record + 21)) << 8;
    return end.size() - record >= recordSize + comment;
}

} // namespace

ZipReader::ZipReader(const QString &fileName)
    : ZipArchive(fileName)
    , m_zip(fileName)
{
}

bool ZipReader::open()
{
    if (!hasWholeEnd(path()) || !m_zip.open(QuaZip::mdUnzip))
        return false;
    if (m_zip.getEntriesCount() == 0)
        return true;
    // Entries that share their bytes would make much out of little.
    quint64 bytesLeft = quint64(QFileInfo(path()).size());
    QByteArray name(longestName, Qt::Uninitialized);
    int result = unzGoToFirstFile(m_zip.getUnzFile());
    while (result == UNZ_OK) {
        if (!readEntry(name, bytesLeft))
            return false;
        result = unzGoToNextFile(m_zip.getUnzFile());
    }
    return result == UNZ_END_OF_LIST_OF_FILE;
}

bool ZipReader::readEntry(QByteArray &name, quint64 &bytesLeft)
{
    unz_file_info64 info;
    Entry entry;
    if (unzGetCurrentFileInfo64(m_zip.getUnzFile(), &info, name.data(), uLong(name.size()), nullptr,
                                0, nullptr, 0)
            != UNZ_OK
        || unzGetFilePos64(m_zip.getUnzFile(), &entry.position) != UNZ_OK
        || info.compressed_size > bytesLeft)
        return false;
    bytesLeft -= info.compressed_size;
    entry.size = info.uncompressed_size;

    const QString stored = entryText(name.left(int(info.size_filename)), info.flag & utf8Flag);
    const bool folder = stored.endsWith(QLatin1Char('/'));
    const bool safe =
        !stored.isEmpty() && entryName(stored) == (folder ? stored.chopped(1) : stored);
    if (!safe || isLink(info) || info.flag & encryptedFlag || !isBelievable(info)) {
        report(Texts::tr("The entry '%1' of '%2' is not safe to read and is left out.")
                   .arg(stored.left(100), path()));
    } else if (!folder && !hasFile(stored) && addName(stored)) {
        m_entries.insert(stored, entry);
    }
    return true;
}

// Names without the flag are UTF-8 in most archives, and else those of old systems.
QString ZipReader::entryText(const QByteArray &name, bool utf8) const
{
    QTextCodec::ConverterState state;
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(name.constData(), name.size(), &state);
    if (utf8 || (state.invalidChars == 0 && state.remainingChars == 0))
        return text;
    QTextCodec *const old = QTextCodec::codecForName("IBM850");
    return old ? old->toUnicode(name) : QString::fromLatin1(name);
}

QIODevice *ZipReader::openFile(const QString &path, QIODevice::OpenMode mode)
{
    const auto entry = m_entries.constFind(entryName(path));
    if (entry == m_entries.constEnd() || mode & QIODevice::WriteOnly)
        return nullptr;
    auto device = std::make_unique<SpoolDevice>();
    device->open(QIODevice::WriteOnly);
    if (!unpack(*entry, *device)) {
        report(Texts::tr("The entry '%1' of '%2' is damaged.").arg(path, this->path()));
        return nullptr;
    }
    device->close();
    device->open(mode);
    return device.release();
}

bool ZipReader::unpack(const Entry &entry, QIODevice &target)
{
    const unzFile zip = m_zip.getUnzFile();
    if (unzGoToFilePos64(zip, &entry.position) != UNZ_OK || unzOpenCurrentFile(zip) != UNZ_OK)
        return false;
    QByteArray block(blockSize, Qt::Uninitialized);
    quint64 total = 0;
    bool whole = true;
    while (whole) {
        const int length = unzReadCurrentFile(zip, block.data(), unsigned(block.size()));
        if (length == 0)
            break;
        total += quint64(qMax(length, 0));
        whole =
            length > 0 && total <= entry.size && target.write(block.constData(), length) == length;
    }
    // Closing tests the checksum.
    const bool checked = unzCloseCurrentFile(zip) == UNZ_OK;
    return whole && checked && total == entry.size;
}

void ZipReader::closeFile(QIODevice *device)
{
    delete device;
}

void ZipReader::discardFile(QIODevice *device)
{
    delete device;
}

bool ZipReader::removeFile(const QString &)
{
    return false;
}

bool ZipReader::renameFile(const QString &, const QString &)
{
    return false;
}

bool ZipReader::isReadOnly() const
{
    return true;
}

bool ZipReader::isWritable(const QString &) const
{
    return false;
}

} // namespace Lantern

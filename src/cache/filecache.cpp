// SPDX-License-Identifier: MIT
#include "cache/filecache.h"

#include "frame/fileutils.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <limits>

namespace Vela {

namespace {

unsigned int encodingOf(const FileCache *cache, const QString &fileName)
{
    const FileCache::FileCodec *codec = cache->codec();
    return codec ? codec->encodingOf(QFileInfo(fileName).suffix()) : 0;
}

unsigned int sizeOf(const QString &fileName)
{
    constexpr qint64 most = std::numeric_limits<unsigned int>::max();
    return unsigned(std::min(QFileInfo(fileName).size(), most));
}

} // namespace

FileCache::Item::Item(FileCache *cache, const ItemInfo &info)
    : StreamCache::Item(cache)
    , m_fileName(info.fileName)
{
    describe(sizeOf(m_fileName), encodingOf(cache, m_fileName), info.codecData, 0);
}

QByteArray FileCache::Item::rawData()
{
    QFile file(m_fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool FileCache::Item::setRawData(const QByteArray &data, unsigned int encoding, void *codecData,
                                 unsigned int crc)
{
    if (encoding == 0)
        return false;
    // The old file stays until the new one is whole.
    QSaveFile file(m_fileName);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !commitFile(file))
        return false;
    return StreamCache::Item::setRawData(data, encoding, codecData, crc);
}

QString FileCache::Item::fileName() const
{
    return m_fileName;
}

bool FileCache::Item::isValid() const
{
    return size() > 0;
}

bool FileCache::Item::remove()
{
    return QFile::remove(m_fileName);
}

bool FileCache::Item::rename(const QString &fileName)
{
    if (!QFile::rename(m_fileName, fileName))
        return false;
    m_fileName = fileName;
    return true;
}

FileCache::FileCache(FileCodec *codec)
    : StreamCache(codec)
{
}

FileCache::FileCodec *FileCache::codec() const
{
    return static_cast<FileCodec *>(StreamCache::codec());
}

StreamCache::Type FileCache::type() const
{
    return Files;
}

StreamCache::Item *FileCache::newItem(const QVariant &source)
{
    if (source.userType() == qMetaTypeId<ItemInfo>())
        return new Item(this, source.value<ItemInfo>());
    return new Item(this, source.toString());
}

} // namespace Vela

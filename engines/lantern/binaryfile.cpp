// SPDX-License-Identifier: MIT
#include "lantern/binaryfile.h"

#include "frame/archive.h"

namespace Lantern {

namespace {

QString sizeProperty()
{
    return QStringLiteral("Size");
}

} // namespace

BinaryFile::BinaryFile(const char *extension)
    : ContentFile(extension)
{
}

QByteArray BinaryFile::data() const
{
    ensureLoaded();
    return m_data;
}

void BinaryFile::setData(const QByteArray &data)
{
    ensureLoaded();
    m_data = data;
    m_modified = true;
}

bool BinaryFile::isModified() const
{
    return m_modified;
}

bool BinaryFile::isEmpty() const
{
    return data().isEmpty();
}

QList<BinaryFile::SearchResult> BinaryFile::search(const Vela::RegExp &, unsigned int) const
{
    return {};
}

void BinaryFile::replace(const QList<SearchResult> &, const QString &)
{
}

QStringList BinaryFile::propertyNames() const
{
    return {sizeProperty()};
}

QVariant BinaryFile::property(const QString &name) const
{
    return name == sizeProperty() ? QVariant(size()) : QVariant();
}

// A file may be long, and only looked at.
qint64 BinaryFile::size() const
{
    if (isLoaded())
        return m_data.size();
    QIODevice *const device = archive().openFile(fileName(), QIODevice::ReadOnly);
    const qint64 size = device ? device->size() : 0;
    if (device)
        archive().closeFile(device);
    return size;
}

void BinaryFile::setProperty(const QString &, const QVariant &)
{
}

bool BinaryFile::read(Vela::Archive &archive, const QString &name, QString &error)
{
    QByteArray data;
    if (!readAll(archive, name, largestFile, data, error))
        return false;
    m_data = data;
    m_modified = true;
    return true;
}

bool BinaryFile::encode(QByteArray &data, QString &) const
{
    data = m_data;
    return true;
}

void BinaryFile::dropContent()
{
    m_data.clear();
    m_modified = false;
}

void BinaryFile::markSaved()
{
    m_modified = false;
}

Vela::Messages *BinaryFile::fileMessages() const
{
    return nullptr;
}

} // namespace Lantern

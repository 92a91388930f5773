// SPDX-License-Identifier: MIT
#include "studio/window/filecontent.h"

#include "frame/archive.h"
#include "frame/propertyitem.h"
#include "frame/textcodecs.h"
#include "project/projectfile.h"
#include "sound/soundformats.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>

namespace Studio {

namespace {

/// Takes the one file that a save writes into memory: the way to a content that only the file
/// itself can put into bytes.
class CapturingArchive : public Vela::Archive
{
public:
    QString name() const override
    {
        return QStringLiteral("memory");
    }
    QString path() const override
    {
        return QString();
    }
    QString absoluteFilePath(const QString &) const override
    {
        return QString();
    }
    QString absoluteFileName(const QString &path) const override
    {
        return path;
    }
    using Archive::entries;
    QStringList entries(const QString &, const QStringList &, QDir::Filters,
                        QDir::SortFlags) const override
    {
        return QStringList();
    }
    QIODevice *openFile(const QString &, QIODevice::OpenMode mode) override
    {
        auto *buffer = new QBuffer(&data);
        if (mode & QIODevice::WriteOnly)
            data.clear();
        buffer->open(mode);
        return buffer;
    }
    void closeFile(QIODevice *device) override
    {
        delete device;
    }
    void discardFile(QIODevice *device) override
    {
        delete device;
    }
    bool removeFile(const QString &) override
    {
        return false;
    }
    bool renameFile(const QString &, const QString &) override
    {
        return false;
    }
    void flush() override
    {
    }
    bool isReadOnly() const override
    {
        return false;
    }
    bool isWritable(const QString &) const override
    {
        return true;
    }
    bool fileExists(const QString &) const override
    {
        return false;
    }
    bool directoryExists(const QString &) const override
    {
        return false;
    }

    QByteArray data;

protected:
    void free() override
    {
    }
};

/// Opens what is stored. The archive lives as long as the device.
std::shared_ptr<QIODevice> openStored(const Vela::ProjectFile &file)
{
    Vela::Archive &archive = file.archive();
    QIODevice *const device = archive.openFile(file.fileName(), QIODevice::ReadOnly);
    if (!device)
        return nullptr;
    archive.addRef();
    return {device, [&archive](QIODevice *open) {
                archive.closeFile(open);
                archive.release();
            }};
}

bool readStored(const Vela::ProjectFile &file, FileContent &content, QByteArray &data)
{
    const std::shared_ptr<QIODevice> device = openStored(file);
    if (!device)
        return false;
    content.size = device->size();
    data = device->read(FileContent::LargestImage);
    return true;
}

bool readOpen(Vela::ProjectFile &file, FileContent &content, QByteArray &data)
{
    CapturingArchive archive;
    if (!file.toFile(archive, file.fileName(), Vela::ProjectFile::Copy, nullptr))
        return false;
    data = archive.data;
    content.size = data.size();
    return true;
}

/// Opens what a save would write; null if that fails.
std::shared_ptr<QIODevice> openChanged(Vela::ProjectFile &file)
{
    FileContent content;
    QByteArray data;
    if (!readOpen(file, content, data))
        return nullptr;
    const auto buffer = std::make_shared<QBuffer>();
    buffer->setData(data);
    buffer->open(QIODevice::ReadOnly);
    return buffer;
}

bool takeImage(const QByteArray &data, FileContent &content)
{
    QBuffer buffer;
    buffer.setData(data);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.isEmpty() || qint64(size.width()) * size.height() > FileContent::LargestPixels)
        return false;
    content.image = reader.read();
    return !content.image.isNull();
}

int codecOf(const Vela::ProjectFile &file)
{
    const auto *item = dynamic_cast<const Vela::PropertyItem *>(&file);
    const QString name = item ? item->property(QStringLiteral("Encoding")).toString() : QString();
    return name.isEmpty() ? -1 : Vela::TextCodecs::index(name.toLatin1().constData());
}

} // namespace

FileContent FileContent::of(Vela::ProjectFile &file)
{
    FileContent content;
    QByteArray data;
    const bool changed = file.isModified() && file.canSave();
    content.format = soundFormat(file);
    if (!content.format.isEmpty()) {
        content.device = changed ? openChanged(file) : openStored(file);
        content.kind = content.device ? Sound : Missing;
        content.size = content.device ? content.device->size() : 0;
        return content;
    }
    if (!(changed ? readOpen(file, content, data) : readStored(file, content, data)))
        return content;

    content.kind = Other;
    const bool isText = file.capabilities() & Vela::ProjectFile::HasText;
    if (!isText && takeImage(data, content)) {
        content.kind = Image;
    } else if (isText || !data.left(8192).contains('\0')) {
        int codec = codecOf(file);
        content.kind = Text;
        content.cut = content.size > LargestText;
        content.text = Vela::TextCodecs::stringFromData(data.left(int(LargestText)), &codec);
    }
    return content;
}

QByteArray FileContent::soundFormat(const Vela::ProjectFile &file)
{
    const QByteArray suffix = QFileInfo(file.fileName()).suffix().toLatin1();
    // The filter has a pattern for each format, with a blank or a bracket behind it.
    const QByteArray pattern = "*." + suffix.toLower();
    const QByteArray filter = Vela::soundFileExtension(Vela::AllSounds);
    const bool isKnown = filter.contains(pattern + ' ') || filter.contains(pattern + ')');
    return isKnown ? suffix.toUpper() : QByteArray();
}

} // namespace Studio

// SPDX-License-Identifier: MIT
// A file of sprites from anybody: it is refused, or what is in it comes back after saving.
#include "lantern/spritesfile.h"
#include "require.h"

#include "frame/checksum.h"
#include "support/memoryarchive.h"

#include <QtEndian>

#include <cstdint>
#include <vector>

namespace {

struct Release
{
    void operator()(Lantern::SpritesFile *file) const
    {
        file->release();
    }
};

using Held = std::unique_ptr<Lantern::SpritesFile, Release>;

// Sets the checksum of the tables right, unless the file is too short for them, and takes those of
// the streams away, so that what they cover is fuzzed, too.
void mendChecksums(QByteArray &file)
{
    constexpr qint64 headBytes = 20;
    constexpr qint64 streamBytes = 24;
    if (file.size() < headBytes)
        return;
    const auto count = [&file](int at) {
        return qint64(qFromLittleEndian<quint32>(file.constData() + at));
    };
    const qint64 end = headBytes + count(8) * streamBytes + count(12) * 12 + count(16) * 24;
    if (end + 4 > file.size())
        return;
    for (qint64 i = 0; i < count(8); ++i)
        qToLittleEndian<quint32>(0, file.data() + headBytes + i * streamBytes + 12);
    qToLittleEndian(Vela::CRC32(file.constData(), std::size_t(end)), file.data() + end);
}

QString path()
{
    return QStringLiteral("/f.sprites");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    mendChecksums(bytes);
    MemoryArchive archive({{path(), bytes}});
    const Held file(new Lantern::SpritesFile);
    if (!file->fromFile(archive, path(), 0, nullptr))
        return 0;
    std::vector<QImage> images;
    for (unsigned int i = 0; i < file->count(); ++i) {
        images.push_back(file->at(i)->image());
        require(images.back().isNull()
                || images.back().width() == file->at(i)->imageProperties().width);
    }
    file->add(QVariant(), QImage(2, 2, QImage::Format_ARGB32), Vela::ShareMode::Share);
    if (!file->toFile(archive, path(), 0, nullptr))
        return 0;
    const Held again(new Lantern::SpritesFile);
    require(again->fromFile(archive, path(), 0, nullptr));
    require(again->count() == file->count());
    for (unsigned int i = 0; i + 1 < again->count(); ++i)
        require(again->at(i)->image() == images[i]);
    return 0;
}

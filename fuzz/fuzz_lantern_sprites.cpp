// SPDX-License-Identifier: MIT
// A file of sprites from anybody: it is refused, or what is in it comes back after saving.
#include "lantern/spritesfile.h"
#include "mendtables.h"
#include "require.h"

#include "support/memoryarchive.h"

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

QString path()
{
    return QStringLiteral("/f.sprites");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    mendTables(bytes, {24, 12, 24});
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

// SPDX-License-Identifier: MIT
// A file of sounds from anybody: it is refused, or what is in it comes back after saving.
#include "lantern/soundsfile.h"
#include "mendtables.h"
#include "require.h"

#include "support/memoryarchive.h"

#include <cstdint>
#include <vector>

namespace {

// A stream of a few bytes may be silence of any length.
constexpr qint64 mostBytes = 8 * 1024 * 1024;

struct Release
{
    void operator()(Lantern::SoundsFile *file) const
    {
        file->release();
    }
};

using Held = std::unique_ptr<Lantern::SoundsFile, Release>;

QString path()
{
    return QStringLiteral("/f.sounds");
}

bool isTooLong(const Lantern::SoundsFile &file)
{
    qint64 bytes = 0;
    for (unsigned int i = 0; i < file.count(); ++i) {
        const Vela::SampleInfo info = file.at(i)->info();
        bytes += qint64(info.samples) * frameSize(info);
    }
    return bytes > mostBytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    mendTables(bytes, {30, 6, 1});
    MemoryArchive archive({{path(), bytes}});
    const Held file(new Lantern::SoundsFile);
    if (!file->fromFile(archive, path(), 0, nullptr) || isTooLong(*file))
        return 0;
    std::vector<Vela::SoundSample> sounds;
    for (unsigned int i = 0; i < file->count(); ++i) {
        const Vela::SampleInfo info = file->at(i)->info();
        const Vela::SoundSample sound = file->at(i)->sample();
        require(sound.data.isEmpty()
                || (sound.channels == info.channels && sound.precision == info.precision
                    && sound.frequency == info.frequency && sound.samples == info.samples
                    && sound.data.size() == qint64(info.samples) * frameSize(info)));
        sounds.push_back(sound);
    }
    file->add(QVariant(), Vela::SoundSample(), Vela::ShareMode::Share);
    if (!file->toFile(archive, path(), 0, nullptr))
        return 0;
    const Held again(new Lantern::SoundsFile);
    require(again->fromFile(archive, path(), 0, nullptr));
    require(again->count() == file->count());
    for (unsigned int i = 0; i + 1 < again->count(); ++i)
        require(again->at(i)->sample().data == sounds[i].data);
    return 0;
}

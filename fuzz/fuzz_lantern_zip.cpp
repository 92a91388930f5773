// SPDX-License-Identifier: MIT
// Reads arbitrary bytes as a zip archive: whatever is listed is below the root and can be asked
// for, and what is handed out is no more than the input can hold.
#include "lantern/zipextension.h"

#include "frame/archive.h"

#include <QCoreApplication>
#include <QTemporaryFile>

#include <cstdlib>

namespace {

// What deflate makes of one byte, at most.
constexpr qint64 largestRatio = 1032;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

qint64 readFile(Vela::Archive &archive, const QString &path)
{
    QIODevice *const device = archive.openFile(path, QIODevice::ReadOnly);
    if (!device)
        return 0;
    const qint64 size = device->size();
    char block[4096];
    qint64 total = 0;
    for (qint64 length = 1; length > 0; total += length) {
        length = device->read(block, sizeof block);
        require(length >= 0);
    }
    require(total == size);
    archive.closeFile(device);
    return size;
}

// Returns the size of everything in a folder.
qint64 readFolder(Vela::Archive &archive, const QString &folder)
{
    qint64 total = 0;
    const QStringList names = archive.entries(folder, QDir::AllEntries, QDir::Name);
    for (const QString &name : names) {
        require(!name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..")
                && !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\')));
        const QString path = folder + QLatin1Char('/') + name;
        const bool isFile = archive.fileExists(path);
        require(isFile != archive.directoryExists(path));
        total += isFile ? readFile(archive, path) : readFolder(archive, path);
    }
    return total;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QTemporaryFile file;
    require((file.isOpen() || file.open()) && file.resize(0) && file.seek(0));
    require(file.write(reinterpret_cast<const char *>(data), qint64(size)) == qint64(size)
            && file.flush());
    Vela::Archive *const archive =
        Lantern::ZipExtension().openArchive(file.fileName(), Vela::Extension::ReadMode);
    if (!archive)
        return 0;
    require(readFolder(*archive, QString()) <= largestRatio * qint64(size));
    archive->release();
    return 0;
}

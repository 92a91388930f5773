// SPDX-License-Identifier: MIT
#include "frame/filesync_p.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace Vela {

namespace {

bool sync(int descriptor)
{
    int result = 0;
    do {
        result = ::fsync(descriptor);
    } while (result != 0 && errno == EINTR);
    // EINVAL comes from a file system that has nothing to wait for.
    return result == 0 || errno == EINVAL;
}

/// Brings a new name to the disk. A folder that can't be read can't be waited for either, and the
/// content is safe without it on every journalling file system.
void syncFolder(const QString &path)
{
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (folder < 0)
        return;
    sync(folder);
    ::close(folder);
}

} // namespace

bool syncToDisk(const QFileDevice &file)
{
    if (!sync(file.handle()))
        return false;
    syncFolder(QFileInfo(file.fileName()).absolutePath());
    return true;
}

} // namespace Vela

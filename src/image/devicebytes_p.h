// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QIODevice>

namespace Vela {

/// Opens \a device for \a mode, ReadOnly or WriteOnly, if it is not ready for that.
inline bool openDevice(QIODevice *device, QIODevice::OpenModeFlag mode)
{
    const bool ready = mode == QIODevice::ReadOnly ? device->isReadable() : device->isWritable();
    return ready || device->open(mode);
}

/// Returns all that is left in a device and leaves it there, also in one that is sequential. A
/// codec reads these bytes and then skips in the device what it took of them.
inline QByteArray peekAll(QIODevice *device)
{
    device->startTransaction();
    const QByteArray bytes = device->readAll();
    device->rollbackTransaction();
    return bytes;
}

} // namespace Vela

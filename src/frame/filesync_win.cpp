// SPDX-License-Identifier: MIT
#include "frame/filesync_p.h"

#include <qt_windows.h>

#include <io.h>

namespace Vela {

bool syncToDisk(const QFileDevice &file)
{
    // The system writes names in order by itself.
    return ::FlushFileBuffers(reinterpret_cast<HANDLE>(::_get_osfhandle(file.handle()))) != 0;
}

} // namespace Vela

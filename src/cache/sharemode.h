// SPDX-License-Identifier: MIT
#pragma once

#include "frame/filesystemarchive.h"

namespace Vela {

/// Whether equal pixels, colours or frames of sound may be held once for several items: no, yes, or
/// as the user says.
using ShareMode = FileSystemArchive::ShareMode;

} // namespace Vela

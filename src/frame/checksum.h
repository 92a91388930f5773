// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QtGlobal>
#include <cstddef>

namespace Vela {

/// Returns the reflected CRC of \a length bytes with the polynomial 0xEDB88320, begun with all ones
/// and not complemented at the end: the complement of the usual CRC-32. 0xFFFFFFFF for no bytes.
/// Exported with an undecorated name.
extern "C" VELA_EXPORT quint32 CRC32(const char *data, std::size_t length);

/// Returns the reflected CRC of \a length bytes with the polynomial 0x95AC9329AC4BC9B5, begun with
/// all ones and not complemented at the end. All ones for no bytes. Exported with an undecorated
/// name.
extern "C" VELA_EXPORT quint64 CRC64(const unsigned char *data, std::size_t length);

} // namespace Vela

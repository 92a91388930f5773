// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDevice>

namespace Vela {

/// Waits until an open file's content, and its name where the system keeps that apart, are on the
/// disk and would survive a loss of power. Returns false with the system's error set.
bool syncToDisk(const QFileDevice &file);

} // namespace Vela

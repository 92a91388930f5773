// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Marks what the library exports; everything else stays hidden.
#if defined(VELACORE_STATIC)
#define VELA_EXPORT
#elif defined(VELACORE_BUILD)
#define VELA_EXPORT Q_DECL_EXPORT
#else
#define VELA_EXPORT Q_DECL_IMPORT
#endif

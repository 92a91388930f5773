// SPDX-License-Identifier: MIT
// A library that is no extension.
#include <QtGlobal>

extern "C" Q_DECL_EXPORT int somethingElse()
{
    return 1;
}

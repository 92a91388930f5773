// SPDX-License-Identifier: MIT
#include "engine/extension.h"

namespace Vela {

Archive *Extension::openArchive(const QString &, int)
{
    return nullptr;
}

} // namespace Vela

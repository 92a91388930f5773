// SPDX-License-Identifier: MIT
#include "project/filesaver.h"

namespace Vela {

FileSaver::~FileSaver() = default;

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "frame/jobstats.h"

namespace Vela {

JobStats::~JobStats() = default;

ProgressProvider::~ProgressProvider() = default;

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program where \a condition does not hold. The compiler makes one of all calls of
/// abort() in a function, so the line says which it was.
inline void require(bool condition, int line = __builtin_LINE())
{
    if (condition)
        return;
    std::fprintf(stderr, "the requirement in line %d is not met\n", line);
    std::abort();
}

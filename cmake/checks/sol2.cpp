// SPDX-License-Identifier: MIT
#include <sol/sol.hpp>

int main()
{
    sol::state lua;
    lua["answer"] = 42;
    return lua.get<int>("answer") == 42 ? 0 : 1;
}

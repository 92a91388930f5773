// SPDX-License-Identifier: MIT
#include <mpg123.h>

int main()
{
    return mpg123_init();
}

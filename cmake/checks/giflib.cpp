// SPDX-License-Identifier: MIT
#include <gif_lib.h>

int main()
{
    return GifErrorString(0) ? 0 : 1;
}

// SPDX-License-Identifier: MIT
#include <uchardet/uchardet.h>

int main()
{
    uchardet_t detector = uchardet_new();
    uchardet_delete(detector);
}

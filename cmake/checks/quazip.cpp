// SPDX-License-Identifier: MIT
#include <quazip.h>

int main()
{
    QuaZip zip;
    return zip.isOpen() ? 1 : 0;
}

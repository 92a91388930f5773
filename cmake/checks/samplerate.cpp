// SPDX-License-Identifier: MIT
#include <samplerate.h>

int main()
{
    int error = 0;
    src_delete(src_new(SRC_SINC_BEST_QUALITY, 1, &error));
    return error;
}

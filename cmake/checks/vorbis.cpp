// SPDX-License-Identifier: MIT
#include <vorbis/vorbisenc.h>
#include <vorbis/vorbisfile.h>

int main()
{
    vorbis_info info;
    vorbis_info_init(&info);
    const int result = vorbis_encode_init_vbr(&info, 2, 44100, 0.5F);
    vorbis_info_clear(&info);
    return ov_time_total(nullptr, -1) == 0 ? 1 : result;
}

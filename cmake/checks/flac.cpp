// SPDX-License-Identifier: MIT
#include <FLAC/stream_decoder.h>
#include <FLAC/stream_encoder.h>

int main()
{
    FLAC__stream_decoder_delete(FLAC__stream_decoder_new());
    FLAC__stream_encoder_delete(FLAC__stream_encoder_new());
}

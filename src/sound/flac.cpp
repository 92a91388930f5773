// SPDX-License-Identifier: MIT
#include "image/devicebytes_p.h"
#include "sound/devicestream_p.h"
#include "sound/soundformats.h"

#include <FLAC/stream_decoder.h>
#include <FLAC/stream_encoder.h>

#include <memory>
#include <vector>

namespace Vela {

namespace {

struct HandleDeleter
{
    void operator()(FLAC__StreamDecoder *decoder) const
    {
        FLAC__stream_decoder_delete(decoder);
    }
    void operator()(FLAC__StreamEncoder *encoder) const
    {
        FLAC__stream_encoder_delete(encoder);
    }
};

// What a stream says about itself, and the frames that came so far.
struct Decoding
{
    Decoding(QIODevice *device, int mostData)
        : stream(device)
        , most(mostData)
    {
    }

    bool append(const FLAC__FrameHeader &header, const FLAC__int32 *const planes[]);

    DeviceStream stream;
    const int most; // bytes
    SoundSample sample;
    quint32 bits = 0;
    bool isTooLong = false;
};

FLAC__StreamDecoderReadStatus readCallback(const FLAC__StreamDecoder *, FLAC__byte to[],
                                           size_t *size, void *client)
{
    auto *const decoding = static_cast<Decoding *>(client);
    *size = size_t(decoding->stream.read(reinterpret_cast<char *>(to), qint64(*size)));
    return *size > 0 ? FLAC__STREAM_DECODER_READ_STATUS_CONTINUE
                     : FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM;
}

void metadataCallback(const FLAC__StreamDecoder *, const FLAC__StreamMetadata *metadata,
                      void *client)
{
    auto *const decoding = static_cast<Decoding *>(client);
    const FLAC__StreamMetadata_StreamInfo &info = metadata->data.stream_info;
    decoding->sample.channels = quint16(info.channels);
    decoding->sample.precision = storedPrecision(info.bits_per_sample);
    decoding->sample.frequency = info.sample_rate;
    decoding->bits = info.bits_per_sample;
}

// Appends a frame of the stream, which is a plane for each channel. Samples with fewer bits than
// their bytes take the upper ones.
bool Decoding::append(const FLAC__FrameHeader &header, const FLAC__int32 *const planes[])
{
    if (header.channels != sample.channels || header.bits_per_sample != bits)
        return false;
    const int frame = frameSize(sample);
    const int size = sample.data.size();
    const auto count = int(header.blocksize);
    isTooLong = qint64(count) * frame > most - size;
    if (isTooLong)
        return false;
    sample.data.resize(size + count * frame);
    char *const to = sample.data.data() + size;
    return withSampleBytes(sample.precision, [&](auto bytes) {
        const auto shift = int(bytes.Size * 8 - bits);
        for (int channel = 0; channel < sample.channels; ++channel) {
            const FLAC__int32 *const from = planes[channel];
            char *next = to + channel * bytes.Size;
            for (int i = 0; i < count; ++i, next += frame)
                bytes.store(qint32(quint32(from[i]) << shift), next);
        }
        return true;
    });
}

FLAC__StreamDecoderWriteStatus writeCallback(const FLAC__StreamDecoder *, const FLAC__Frame *frame,
                                             const FLAC__int32 *const planes[], void *client)
{
    return static_cast<Decoding *>(client)->append(frame->header, planes)
        ? FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE
        : FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
}

// The decoder finds the next frame after an error by itself.
void errorCallback(const FLAC__StreamDecoder *, FLAC__StreamDecoderErrorStatus, void *)
{
}

// Where an encoder writes. It goes back at the end, to complete its header.
struct Output
{
    QIODevice *device;
    qint64 end = 0;
};

FLAC__StreamEncoderWriteStatus outputCallback(const FLAC__StreamEncoder *, const FLAC__byte bytes[],
                                              size_t size, uint32_t, uint32_t, void *client)
{
    auto *const output = static_cast<Output *>(client);
    const qint64 count = output->device->write(reinterpret_cast<const char *>(bytes), qint64(size));
    output->end = qMax(output->end, output->device->pos());
    return count == qint64(size) ? FLAC__STREAM_ENCODER_WRITE_STATUS_OK
                                 : FLAC__STREAM_ENCODER_WRITE_STATUS_FATAL_ERROR;
}

FLAC__StreamEncoderSeekStatus seekCallback(const FLAC__StreamEncoder *, FLAC__uint64 offset,
                                           void *client)
{
    return static_cast<Output *>(client)->device->seek(qint64(offset))
        ? FLAC__STREAM_ENCODER_SEEK_STATUS_OK
        : FLAC__STREAM_ENCODER_SEEK_STATUS_ERROR;
}

FLAC__StreamEncoderTellStatus tellCallback(const FLAC__StreamEncoder *, FLAC__uint64 *offset,
                                           void *client)
{
    *offset = FLAC__uint64(static_cast<Output *>(client)->device->pos());
    return FLAC__STREAM_ENCODER_TELL_STATUS_OK;
}

// Encodes the frames, which become numbers of as many bits as the precision.
template <typename Bytes>
bool encodeFrames(FLAC__StreamEncoder *encoder, const SoundSample &sample, Bytes bytes)
{
    constexpr int blockFrames = 10000;
    const int shift = Bytes::Size * 8 - sample.precision;
    const int frames = wholeFrames(sample);
    std::vector<FLAC__int32> values(size_t(qMin(blockFrames, frames)) * sample.channels);
    const char *from = sample.data.constData();
    for (int at = 0; at < frames; at += blockFrames) {
        const int count = qMin(blockFrames, frames - at);
        for (int i = 0; i < count * sample.channels; ++i, from += Bytes::Size)
            values[size_t(i)] = bytes.load(from) >> shift;
        if (!FLAC__stream_encoder_process_interleaved(encoder, values.data(), quint32(count)))
            return false;
    }
    return true;
}

} // namespace

SoundSample soundFromFLAC(QIODevice *device)
{
    return soundFromFLAC(device, LargestData);
}

SoundSample soundFromFLAC(QIODevice *device, int most)
{
    if (!openDevice(device, QIODevice::ReadOnly))
        return {};
    Decoding decoding(device, most);
    const std::unique_ptr<FLAC__StreamDecoder, HandleDeleter> decoder(FLAC__stream_decoder_new());
    if (!decoder
        || FLAC__stream_decoder_init_stream(decoder.get(), readCallback, nullptr, nullptr, nullptr,
                                            nullptr, writeCallback, metadataCallback, errorCallback,
                                            &decoding)
            != FLAC__STREAM_DECODER_INIT_STATUS_OK)
        return {};
    FLAC__stream_decoder_process_until_end_of_stream(decoder.get());
    SoundSample &sample = decoding.sample;
    if (sample.channels == 0 || decoding.isTooLong)
        return {};
    sample.data.squeeze();
    sample.samples = quint32(sample.data.size() / frameSize(sample));
    return sample;
}

bool soundToFLAC(const SoundSample &sample, QIODevice *device)
{
    const std::unique_ptr<FLAC__StreamEncoder, HandleDeleter> encoder(FLAC__stream_encoder_new());
    if (!encoder || !openDevice(device, QIODevice::WriteOnly))
        return false;
    FLAC__stream_encoder_set_channels(encoder.get(), sample.channels);
    FLAC__stream_encoder_set_bits_per_sample(encoder.get(), sample.precision);
    FLAC__stream_encoder_set_sample_rate(encoder.get(), sample.frequency);
    FLAC__stream_encoder_set_compression_level(encoder.get(), 8);
    // Allows frequencies that cannot be streamed.
    FLAC__stream_encoder_set_streamable_subset(encoder.get(), false);
    FLAC__stream_encoder_set_total_samples_estimate(encoder.get(), quint32(wholeFrames(sample)));
    const bool canSeek = !device->isSequential();
    Output output = {device};
    if (FLAC__stream_encoder_init_stream(encoder.get(), outputCallback,
                                         canSeek ? seekCallback : nullptr,
                                         canSeek ? tellCallback : nullptr, nullptr, &output)
        != FLAC__STREAM_ENCODER_INIT_STATUS_OK)
        return false;
    bool ok = withSampleBytes(
        sample.precision, [&](auto bytes) { return encodeFrames(encoder.get(), sample, bytes); });
    ok = FLAC__stream_encoder_finish(encoder.get()) && ok;
    return (!canSeek || device->seek(output.end)) && ok;
}

} // namespace Vela

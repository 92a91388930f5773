// SPDX-License-Identifier: MIT
#include "image/devicebytes_p.h"
#include "sound/devicestream_p.h"
#include "sound/soundformats.h"

#include <vorbis/vorbisenc.h>
#include <vorbis/vorbisfile.h>

#include <cmath>
#include <cstdlib>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Vela {

namespace {

size_t readCallback(void *to, size_t size, size_t count, void *stream)
{
    const qint64 bytes =
        static_cast<DeviceStream *>(stream)->read(static_cast<char *>(to), qint64(size * count));
    return size_t(bytes) / size;
}

int seekCallback(void *stream, ogg_int64_t offset, int whence)
{
    return static_cast<DeviceStream *>(stream)->seek(offset, whence) < 0 ? -1 : 0;
}

long tellCallback(void *stream)
{
    return static_cast<DeviceStream *>(stream)->seek(0, SEEK_CUR);
}

// Rounds to 16 bits, as ov_read() does, only faster.

#if defined(__SSE2__)
// Four samples, in the lower half.
__m128i toShorts(const float *from)
{
    const __m128 lowest = _mm_set1_ps(-32768);
    const __m128 highest = _mm_set1_ps(32767);
    const __m128 value = _mm_mul_ps(_mm_loadu_ps(from), _mm_set1_ps(32768));
    const __m128i rounded = _mm_cvtps_epi32(_mm_min_ps(_mm_max_ps(value, lowest), highest));
    return _mm_packs_epi32(rounded, rounded);
}
#endif

qint16 toShort(float value)
{
    return qint16(std::lrint(qBound(-32768.0F, value * 32768, 32767.0F)));
}

void storeShorts(const float *const planes[], int channels, int frames, char *to)
{
    int i = 0;
#if defined(__SSE2__)
    if (channels == 1) {
        for (; i + 4 <= frames; i += 4, to += 8)
            _mm_storel_epi64(reinterpret_cast<__m128i *>(to), toShorts(planes[0] + i));
    } else if (channels == 2) {
        for (; i + 4 <= frames; i += 4, to += 16)
            _mm_storeu_si128(reinterpret_cast<__m128i *>(to),
                             _mm_unpacklo_epi16(toShorts(planes[0] + i), toShorts(planes[1] + i)));
    }
#endif
    for (; i < frames; ++i) {
        for (int channel = 0; channel < channels; ++channel, to += 2)
            SampleBytes<2>::store(toShort(planes[channel][i]), to);
    }
}

class Decoder
{
public:
    explicit Decoder(QIODevice *device)
        : m_stream(device)
    {
        m_isOpen = ov_open_callbacks(&m_stream, &m_file, nullptr, 0,
                                     {readCallback, seekCallback, nullptr, tellCallback})
            == 0;
    }
    ~Decoder()
    {
        if (m_isOpen)
            ov_clear(&m_file);
    }

    SoundSample decode(int most);

private:
    Q_DISABLE_COPY(Decoder)

    // Reads on as long as the streams, where there are several in a row, have as many channels.
    int read(char *to, int most, int channels)
    {
        float **planes = nullptr;
        int stream = 0;
        const int frame = channels * 2;
        const auto count = int(ov_read_float(&m_file, &planes, most / frame, &stream));
        if (count < 1 || ov_info(&m_file, -1)->channels != channels)
            return 0;
        storeShorts(planes, channels, count, to);
        return count * frame;
    }

    DeviceStream m_stream;
    OggVorbis_File m_file = {};
    bool m_isOpen;
};

SoundSample Decoder::decode(int most)
{
    const vorbis_info *const info = m_isOpen ? ov_info(&m_file, -1) : nullptr;
    if (!info)
        return {};
    constexpr int blockSize = 65536;
    const int channels = info->channels;
    SoundSample sample;
    sample.channels = quint16(channels);
    sample.precision = 16;
    sample.frequency = quint32(info->rate);
    if (!appendBlocks(&sample.data, blockSize, most,
                      [&](char *to, int size) { return read(to, size, channels); }))
        return {};
    sample.samples = quint32(sample.data.size() / frameSize(sample));
    return sample;
}

class Encoder
{
public:
    Encoder(QIODevice *device, int serial)
        : m_device(device)
    {
        vorbis_info_init(&m_info);
        vorbis_comment_init(&m_comment);
        ogg_stream_init(&m_stream, serial);
    }
    ~Encoder()
    {
        ogg_stream_clear(&m_stream);
        if (m_hasState) {
            vorbis_block_clear(&m_block);
            vorbis_dsp_clear(&m_state);
        }
        vorbis_comment_clear(&m_comment);
        vorbis_info_clear(&m_info);
    }

    bool encode(const SoundSample &sample);

private:
    Q_DISABLE_COPY(Encoder)

    bool start(const SampleInfo &info);
    template <typename Bytes>
    bool encodeFrames(const SoundSample &sample, Bytes bytes);
    // Encodes what was analysed so far.
    bool encodeBlocks();
    bool write(const ogg_page &page);

    QIODevice *m_device;
    vorbis_info m_info;
    vorbis_comment m_comment;
    vorbis_dsp_state m_state;
    vorbis_block m_block;
    ogg_stream_state m_stream;
    bool m_hasState = false;
};

bool Encoder::write(const ogg_page &page)
{
    return m_device->write(reinterpret_cast<const char *>(page.header), page.header_len)
        == page.header_len
        && m_device->write(reinterpret_cast<const char *>(page.body), page.body_len)
        == page.body_len;
}

bool Encoder::start(const SampleInfo &info)
{
    constexpr float quality = 0.4F;
    if (vorbis_encode_init_vbr(&m_info, info.channels, long(info.frequency), quality) != 0)
        return false;
    vorbis_analysis_init(&m_state, &m_info);
    vorbis_block_init(&m_state, &m_block);
    m_hasState = true;

    ogg_packet headers[3];
    vorbis_analysis_headerout(&m_state, &m_comment, &headers[0], &headers[1], &headers[2]);
    for (ogg_packet &header : headers)
        ogg_stream_packetin(&m_stream, &header);
    ogg_page page;
    while (ogg_stream_flush(&m_stream, &page) != 0) {
        if (!write(page))
            return false;
    }
    return true;
}

bool Encoder::encodeBlocks()
{
    ogg_packet packet;
    ogg_page page;
    while (vorbis_analysis_blockout(&m_state, &m_block) == 1) {
        vorbis_analysis(&m_block, nullptr);
        vorbis_bitrate_addblock(&m_block);
        while (vorbis_bitrate_flushpacket(&m_state, &packet) != 0) {
            ogg_stream_packetin(&m_stream, &packet);
            while (ogg_stream_pageout(&m_stream, &page) != 0) {
                if (!write(page))
                    return false;
            }
        }
    }
    return true;
}

// Returns a sample as a number. Those of 8 bits stay unsigned.
float toFloat(SampleBytes<1>, const char *from)
{
    return float(uchar(*from) / 255.0);
}

float toFloat(SampleBytes<2> bytes, const char *from)
{
    return float(bytes.load(from) / 32767.0);
}

float toFloat(SampleBytes<3> bytes, const char *from)
{
    return float(bytes.load(from) * 5.960464477539063e-08);
}

float toFloat(SampleBytes<4> bytes, const char *from)
{
    return float(bytes.load(from) * 4.656612873077393e-10);
}

template <typename Bytes>
bool Encoder::encodeFrames(const SoundSample &sample, Bytes bytes)
{
    constexpr int blockFrames = 65536;
    const int size = frameSize(sample);
    const int frames = wholeFrames(sample);
    for (int at = 0; at < frames; at += blockFrames) {
        const int count = qMin(blockFrames, frames - at);
        float **const planes = vorbis_analysis_buffer(&m_state, count);
        for (int channel = 0; channel < sample.channels; ++channel) {
            const char *from = sample.data.constData() + qint64(at) * size + channel * Bytes::Size;
            for (int i = 0; i < count; ++i, from += size)
                planes[channel][i] = toFloat(bytes, from);
        }
        vorbis_analysis_wrote(&m_state, count);
        if (!encodeBlocks())
            return false;
    }
    return true;
}

bool Encoder::encode(const SoundSample &sample)
{
    if (!start(sample) || !withSampleBytes(sample.precision, [&](auto bytes) {
            return encodeFrames(sample, bytes);
        }))
        return false;
    vorbis_analysis_wrote(&m_state, 0);
    return encodeBlocks();
}

} // namespace

SoundSample soundFromOGG(QIODevice *device)
{
    return soundFromOGG(device, LargestData);
}

SoundSample soundFromOGG(QIODevice *device, int most)
{
    return openDevice(device, QIODevice::ReadOnly) ? Decoder(device).decode(most) : SoundSample();
}

bool soundToOGG(const SoundSample &sample, QIODevice *device)
{
    return soundToOGG(sample, device, std::rand());
}

bool soundToOGG(const SoundSample &sample, QIODevice *device, int serial)
{
    return openDevice(device, QIODevice::WriteOnly) && Encoder(device, serial).encode(sample);
}

} // namespace Vela

// SPDX-License-Identifier: MIT
// Codecs of sounds against the bare calls of their libraries, with whole files in memory, and
// libsndfile where it is installed; resampleSound() against src_simple() alone. The results are
// compared, too.
#include "processortime.h"

#include "sound/samplesound.h"

#include "sound/soundformats.h"

#include <QBuffer>

#include <FLAC/stream_decoder.h>
#include <FLAC/stream_encoder.h>
#include <benchmark/benchmark.h>
#include <mpg123.h>
#include <samplerate.h>
#include <vorbis/vorbisenc.h>
#include <vorbis/vorbisfile.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#ifdef VELA_HAS_SNDFILE
#include <sndfile.h>
#endif

namespace {

/// Tones with some noise, so that it compresses as music does.
Vela::SoundSample music(quint32 seconds)
{
    Vela::SoundSample sound = SampleSound::tones(2, 44100, 44100 * seconds);
    std::mt19937 random(1);
    for (int i = 0; i < sound.data.size(); i += 2) {
        char *const at = sound.data.data() + i;
        qToLittleEndian(qint16(qFromLittleEndian<qint16>(at) + qint16(random() % 512) - 256), at);
    }
    return sound;
}

/// A file in memory, read and written by plain copies.
struct Memory
{
    QByteArray bytes;
    qint64 at = 0;

    qint64 read(void *to, qint64 most)
    {
        const qint64 count = qMin(most, bytes.size() - at);
        std::memcpy(to, bytes.constData() + at, size_t(count));
        at += count;
        return count;
    }
    qint64 write(const void *from, qint64 count)
    {
        if (at + count > bytes.size())
            bytes.resize(int(at + count));
        std::memcpy(bytes.data() + at, from, size_t(count));
        at += count;
        return count;
    }
    qint64 seek(qint64 offset, int whence)
    {
        at = offset + (whence == SEEK_CUR ? at : whence == SEEK_END ? bytes.size() : 0);
        return at;
    }
};

Memory *memory(void *client)
{
    return static_cast<Memory *>(client);
}

QByteArray bareWavDecode(Memory file)
{
    return file.bytes.mid(44);
}

QByteArray bareOggDecode(Memory file)
{
    const ov_callbacks callbacks = {
        [](void *to, size_t size, size_t count, void *client) {
            return size_t(memory(client)->read(to, qint64(size * count))) / size;
        },
        [](void *client, ogg_int64_t offset, int whence) {
            memory(client)->seek(offset, whence);
            return 0;
        },
        nullptr, [](void *client) { return long(memory(client)->at); }};
    OggVorbis_File vorbis;
    ov_open_callbacks(&file, &vorbis, nullptr, 0, callbacks);
    QByteArray data(int(ov_pcm_total(&vorbis, -1)) * ov_info(&vorbis, -1)->channels * 2,
                    Qt::Uninitialized);
    int stream = 0;
    for (int at = 0; at < data.size();) {
        const long count = ov_read(&vorbis, data.data() + at, data.size() - at, 0, 2, 1, &stream);
        if (count < 1)
            break;
        at += int(count);
    }
    ov_clear(&vorbis);
    return data;
}

/// Takes the planes as they are.
struct FlacPlanes
{
    Memory file;
    std::vector<FLAC__int32> planes[2];
    size_t at = 0;
};

QByteArray bareFlacDecode(Memory file)
{
    FlacPlanes result = {std::move(file), {}};
    FLAC__StreamDecoder *const decoder = FLAC__stream_decoder_new();
    FLAC__stream_decoder_init_stream(
        decoder,
        [](const FLAC__StreamDecoder *, FLAC__byte to[], size_t *size, void *client) {
            *size = size_t(static_cast<FlacPlanes *>(client)->file.read(to, qint64(*size)));
            return *size > 0 ? FLAC__STREAM_DECODER_READ_STATUS_CONTINUE
                             : FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM;
        },
        nullptr, nullptr, nullptr, nullptr,
        [](const FLAC__StreamDecoder *, const FLAC__Frame *frame, const FLAC__int32 *const from[],
           void *client) {
            auto *const to = static_cast<FlacPlanes *>(client);
            for (int i = 0; i < 2; ++i)
                std::memcpy(to->planes[i].data() + to->at, from[i], frame->header.blocksize * 4);
            to->at += frame->header.blocksize;
            return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
        },
        [](const FLAC__StreamDecoder *, const FLAC__StreamMetadata *metadata, void *client) {
            for (auto &plane : static_cast<FlacPlanes *>(client)->planes)
                plane.resize(metadata->data.stream_info.total_samples);
        },
        [](const FLAC__StreamDecoder *, FLAC__StreamDecoderErrorStatus, void *) {}, &result);
    FLAC__stream_decoder_process_until_end_of_stream(decoder);
    FLAC__stream_decoder_delete(decoder);
    return {};
}

QByteArray bareMp3Decode(Memory file)
{
    mpg123_init();
    mpg123_handle *const handle = mpg123_new(nullptr, nullptr);
    mpg123_replace_reader_handle(
        handle,
        [](void *client, void *to, size_t size) {
            return ssize_t(memory(client)->read(to, qint64(size)));
        },
        [](void *client, off_t offset, int whence) {
            return off_t(memory(client)->seek(offset, whence));
        },
        nullptr);
    mpg123_open_handle(handle, &file);
    long rate = 0;
    int channels = 0;
    int encoding = 0;
    mpg123_getformat(handle, &rate, &channels, &encoding);
    mpg123_scan(handle);
    QByteArray data(int(mpg123_length(handle)) * channels * 2, Qt::Uninitialized);
    const size_t block = mpg123_outblock(handle);
    size_t at = 0;
    size_t count = 0;
    while (at < size_t(data.size())
           && mpg123_read(handle, data.data() + at, qMin(block, size_t(data.size()) - at), &count)
               == MPG123_OK)
        at += count;
    mpg123_delete(handle);
    return data;
}

void writePage(Memory *file, const ogg_page &page)
{
    file->write(page.header, page.header_len);
    file->write(page.body, page.body_len);
}

Memory bareOggEncode(const Vela::SoundSample &sound)
{
    Memory file;
    vorbis_info info;
    vorbis_comment comment;
    vorbis_dsp_state state;
    vorbis_block block;
    ogg_stream_state stream;
    ogg_packet packets[3];
    ogg_page page;
    vorbis_info_init(&info);
    vorbis_comment_init(&comment);
    vorbis_encode_init_vbr(&info, 2, long(sound.frequency), 0.4F);
    vorbis_analysis_init(&state, &info);
    vorbis_block_init(&state, &block);
    ogg_stream_init(&stream, std::rand());
    vorbis_analysis_headerout(&state, &comment, &packets[0], &packets[1], &packets[2]);
    for (ogg_packet &packet : packets)
        ogg_stream_packetin(&stream, &packet);
    while (ogg_stream_flush(&stream, &page) != 0)
        writePage(&file, page);
    const auto *from = reinterpret_cast<const qint16 *>(sound.data.constData());
    int count = 1;
    for (quint32 at = 0; count > 0; at += quint32(count)) {
        count = int(qMin(65536U, sound.samples - at));
        float **const planes = count > 0 ? vorbis_analysis_buffer(&state, count) : nullptr;
        for (int i = 0; i < count; ++i, from += 2) {
            planes[0][i] = float(from[0] / 32767.0);
            planes[1][i] = float(from[1] / 32767.0);
        }
        vorbis_analysis_wrote(&state, count);
        while (vorbis_analysis_blockout(&state, &block) == 1) {
            vorbis_analysis(&block, nullptr);
            vorbis_bitrate_addblock(&block);
            while (vorbis_bitrate_flushpacket(&state, packets) != 0) {
                ogg_stream_packetin(&stream, packets);
                while (ogg_stream_pageout(&stream, &page) != 0)
                    writePage(&file, page);
            }
        }
    }
    ogg_stream_clear(&stream);
    vorbis_block_clear(&block);
    vorbis_dsp_clear(&state);
    vorbis_comment_clear(&comment);
    vorbis_info_clear(&info);
    return file;
}

/// The samples are at hand as the library takes them.
Memory bareFlacEncode(const Vela::SoundSample &sound)
{
    static const std::vector<FLAC__int32> values = [&sound] {
        const auto *const from = reinterpret_cast<const qint16 *>(sound.data.constData());
        return std::vector<FLAC__int32>(from, from + sound.data.size() / 2);
    }();
    Memory file;
    FLAC__StreamEncoder *const encoder = FLAC__stream_encoder_new();
    FLAC__stream_encoder_set_channels(encoder, 2);
    FLAC__stream_encoder_set_bits_per_sample(encoder, 16);
    FLAC__stream_encoder_set_sample_rate(encoder, sound.frequency);
    FLAC__stream_encoder_set_compression_level(encoder, 8);
    FLAC__stream_encoder_init_stream(
        encoder,
        [](const FLAC__StreamEncoder *, const FLAC__byte bytes[], size_t size, uint32_t, uint32_t,
           void *client) {
            memory(client)->write(bytes, qint64(size));
            return FLAC__STREAM_ENCODER_WRITE_STATUS_OK;
        },
        [](const FLAC__StreamEncoder *, FLAC__uint64 offset, void *client) {
            memory(client)->seek(qint64(offset), SEEK_SET);
            return FLAC__STREAM_ENCODER_SEEK_STATUS_OK;
        },
        [](const FLAC__StreamEncoder *, FLAC__uint64 *offset, void *client) {
            *offset = FLAC__uint64(memory(client)->at);
            return FLAC__STREAM_ENCODER_TELL_STATUS_OK;
        },
        nullptr, &file);
    for (quint32 at = 0; at < sound.samples; at += 10000)
        FLAC__stream_encoder_process_interleaved(encoder, values.data() + size_t(at) * 2,
                                                 qMin(10000U, sound.samples - at));
    FLAC__stream_encoder_finish(encoder);
    FLAC__stream_encoder_delete(encoder);
    return file;
}

Memory bareWavEncode(const Vela::SoundSample &sound)
{
    Memory file;
    file.bytes.reserve(sound.data.size() + 44);
    file.bytes.resize(44);
    file.at = 44;
    file.write(sound.data.constData(), sound.data.size());
    return file;
}

#ifdef VELA_HAS_SNDFILE
SF_VIRTUAL_IO sndfileCallbacks()
{
    return {[](void *client) { return sf_count_t(memory(client)->bytes.size()); },
            [](sf_count_t offset, int whence, void *client) {
                return sf_count_t(memory(client)->seek(offset, whence));
            },
            [](void *to, sf_count_t count, void *client) {
                return sf_count_t(memory(client)->read(to, count));
            },
            [](const void *from, sf_count_t count, void *client) {
                return sf_count_t(memory(client)->write(from, count));
            },
            [](void *client) { return sf_count_t(memory(client)->at); }};
}

QByteArray peerDecode(Memory file)
{
    SF_VIRTUAL_IO callbacks = sndfileCallbacks();
    SF_INFO info = {};
    SNDFILE *const handle = sf_open_virtual(&callbacks, SFM_READ, &info, &file);
    QByteArray data(int(info.frames) * info.channels * 2, Qt::Uninitialized);
    sf_readf_short(handle, reinterpret_cast<short *>(data.data()), info.frames);
    sf_close(handle);
    return data;
}

Memory peerEncode(const Vela::SoundSample &sound, int format)
{
    Memory file;
    SF_VIRTUAL_IO callbacks = sndfileCallbacks();
    SF_INFO info = {};
    info.samplerate = int(sound.frequency);
    info.channels = sound.channels;
    info.format = format;
    SNDFILE *const handle = sf_open_virtual(&callbacks, SFM_WRITE, &info, &file);
    double quality = 0.4;
    double level = 1;
    if (format == (SF_FORMAT_OGG | SF_FORMAT_VORBIS))
        sf_command(handle, SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof(quality));
    else
        sf_command(handle, SFC_SET_COMPRESSION_LEVEL, &level, sizeof(level));
    sf_writef_short(handle, reinterpret_cast<const short *>(sound.data.constData()),
                    sf_count_t(sound.samples));
    sf_close(handle);
    return file;
}

constexpr int sndfileFormats[] = {
    SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_OGG | SF_FORMAT_VORBIS,
    SF_FORMAT_FLAC | SF_FORMAT_PCM_16, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III};
#endif

struct Codec
{
    const char *format;
    QByteArray (*decode)(Memory file);
    Memory (*encode)(const Vela::SoundSample &sound); // null if there is none
};

constexpr Codec codecs[] = {
    {"WAV", bareWavDecode, bareWavEncode},
    {"OGG", bareOggDecode, bareOggEncode},
    {"FLAC", bareFlacDecode, bareFlacEncode},
    {"MP3", bareMp3Decode, nullptr},
};

const Vela::SoundSample &sample()
{
    static const Vela::SoundSample sound = music(20);
    return sound;
}

QByteArray encoded(const char *format)
{
    QBuffer buffer;
    return Vela::saveSound(&buffer, format, sample()) ? buffer.data() : QByteArray();
}

void decode(benchmark::State &state, int index)
{
    const Codec &codec = codecs[index];
    QByteArray file = encoded(codec.format);
#ifdef VELA_HAS_SNDFILE
    if (file.isEmpty())
        file = peerEncode(sample(), sndfileFormats[index]).bytes;
#endif
    if (file.isEmpty()) {
        state.SkipWithError("nothing here writes such a file");
        return;
    }
    Vela::SoundSample sound;
    QByteArray bareData;
    QByteArray peerData;
    BestTime ours;
    BestTime bare;
    BestTime peer;
    for (auto _ : state) {
        QBuffer buffer(&file);
        ours.measure([&] { Vela::loadSound(&buffer, codec.format, sound); });
        bare.measure([&] { bareData = codec.decode({file}); });
#ifdef VELA_HAS_SNDFILE
        peer.measure([&] { peerData = peerDecode({file}); });
#endif
    }
    if (sound.samples < sample().samples || (!bareData.isEmpty() && bareData != sound.data))
        state.SkipWithError("the library alone gives other samples");
    state.counters["ms"] = ours.seconds * 1000;
    state.counters["to_library"] = ours.seconds / bare.seconds;
#ifdef VELA_HAS_SNDFILE
    if (peerData.size() != sound.data.size())
        state.SkipWithError("libsndfile gives more or fewer samples");
    state.counters["to_sndfile"] = ours.seconds / peer.seconds;
#endif
}

void encode(benchmark::State &state, int index)
{
    const Codec &codec = codecs[index];
    const Vela::SoundSample &sound = sample();
    QByteArray file;
    QByteArray bareFile;
    BestTime ours;
    BestTime bare;
    BestTime peer;
    for (auto _ : state) {
        std::srand(1);
        ours.measure([&] { file = encoded(codec.format); });
        std::srand(1);
        bare.measure([&] { bareFile = codec.encode(sound).bytes; });
#ifdef VELA_HAS_SNDFILE
        peer.measure([&] { peerEncode(sound, sndfileFormats[index]); });
#endif
    }
    if (file.isEmpty() || (index != 0 && file != bareFile))
        state.SkipWithError("the library alone writes another file");
    state.counters["ms"] = ours.seconds * 1000;
    state.counters["to_library"] = ours.seconds / bare.seconds;
#ifdef VELA_HAS_SNDFILE
    state.counters["to_sndfile"] = ours.seconds / peer.seconds;
#endif
}

void resample(benchmark::State &state, quint32 frequency, quint16 precision)
{
    const Vela::SoundSample source = music(5);
    std::vector<float> in(size_t(source.samples) * 2);
    src_short_to_float_array(reinterpret_cast<const short *>(source.data.constData()), in.data(),
                             int(in.size()));
    std::vector<float> out(size_t(source.samples) * 2 * frequency / source.frequency);
    SRC_DATA job = {};
    job.data_in = in.data();
    job.data_out = out.data();
    job.input_frames = source.samples;
    job.output_frames = long(out.size() / 2);
    job.src_ratio = double(frequency) / source.frequency;
    Vela::SoundSample sound;
    BestTime ours;
    BestTime bare;
    for (auto _ : state) {
        sound = source;
        ours.measure([&] { Vela::resampleSound(sound, {2, precision, frequency, 0}); });
        bare.measure([&] { src_simple(&job, SRC_SINC_BEST_QUALITY, 2); });
    }
    if (sound.samples != job.output_frames_gen)
        state.SkipWithError("src_simple() gives another number of frames");
    state.counters["ms"] = ours.seconds * 1000;
    state.counters["to_library"] = ours.seconds / bare.seconds;
}

BENCHMARK_CAPTURE(decode, WAV, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, OGG, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, FLAC, 2)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, MP3, 3)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, WAV, 0)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(encode, OGG, 1)->Unit(benchmark::kMillisecond)->Iterations(12);
BENCHMARK_CAPTURE(encode, FLAC, 2)->Unit(benchmark::kMillisecond)->Iterations(12);
BENCHMARK_CAPTURE(resample, down_16, 22050, 16)->Unit(benchmark::kMillisecond)->Iterations(12);
BENCHMARK_CAPTURE(resample, up_24, 48000, 24)->Unit(benchmark::kMillisecond)->Iterations(12);

} // namespace

BENCHMARK_MAIN();

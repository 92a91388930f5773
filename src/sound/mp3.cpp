// SPDX-License-Identifier: MIT
#include "image/devicebytes_p.h"
#include "sound/devicestream_p.h"
#include "sound/soundformats.h"

#include <mpg123.h>

#include <memory>

namespace Vela {

namespace {

struct HandleDeleter
{
    void operator()(mpg123_handle *handle) const
    {
        mpg123_delete(handle);
    }
};

ssize_t readCallback(void *stream, void *to, size_t size)
{
    return static_cast<DeviceStream *>(stream)->read(static_cast<char *>(to), qint64(size));
}

off_t seekCallback(void *stream, off_t offset, int whence)
{
    return static_cast<DeviceStream *>(stream)->seek(offset, whence);
}

// Finds the form of the sound, and makes it one with 16 bits.
bool setFormat(mpg123_handle *handle, SoundSample *sample)
{
    long rate = 0;
    int channels = 0;
    int encoding = 0;
    if (mpg123_getformat(handle, &rate, &channels, &encoding) != MPG123_OK)
        return false;
    sample->channels = quint16(channels);
    sample->precision = 16;
    sample->frequency = quint32(rate);
    return encoding == MPG123_ENC_SIGNED_16
        || (mpg123_format_none(handle) == MPG123_OK
            && mpg123_format(handle, rate, channels, MPG123_ENC_SIGNED_16) == MPG123_OK);
}

} // namespace

SoundSample soundFromMP3(QIODevice *device)
{
    if (!openDevice(device, QIODevice::ReadOnly) || mpg123_init() != MPG123_OK)
        return {};
    DeviceStream stream(device);
    const std::unique_ptr<mpg123_handle, HandleDeleter> handle(mpg123_new(nullptr, nullptr));
    SoundSample sample;
    if (!handle || mpg123_param(handle.get(), MPG123_ADD_FLAGS, MPG123_QUIET, 0) != MPG123_OK
        || mpg123_replace_reader_handle(handle.get(), readCallback, seekCallback, nullptr)
            != MPG123_OK
        || mpg123_open_handle(handle.get(), &stream) != MPG123_OK
        || !setFormat(handle.get(), &sample))
        return {};

    // Finds the true length, so that silence which an encoder added is left out. It fails, and does
    // nothing, on a device that cannot go back.
    mpg123_scan(handle.get());
    bool goesOn = true;
    const bool isRead = appendBlocks(
        &sample.data, int(mpg123_outblock(handle.get())), LargestData, [&](char *to, int most) {
            size_t count = 0;
            if (goesOn)
                goesOn = mpg123_read(handle.get(), to, size_t(most), &count) == MPG123_OK;
            return int(count);
        });
    if (!isRead)
        return {};
    sample.samples = quint32(sample.data.size() / frameSize(sample));
    return sample;
}

} // namespace Vela

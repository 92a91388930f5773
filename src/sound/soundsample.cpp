// SPDX-License-Identifier: MIT
#include "sound/soundsample.h"

#include "sound/samplebytes_p.h"

namespace Vela {

namespace {

// Samples of three bytes are the upper ones of 32 bits, in all of these.
qint32 loadWide(const char *from)
{
    return SampleBytes<3>::load(from) * 256;
}

void storeWide(qint32 value, char *to)
{
    SampleBytes<3>::store(value >> 8, to);
}

} // namespace

float decodeSample(const void *sample, unsigned short precision)
{
    const auto *const from = static_cast<const char *>(sample);
    switch (precision) {
    case 8:
        return float(SampleBytes<1>::load(from)) * 0.0078125F;
    case 16:
        return float(SampleBytes<2>::load(from)) * 3.0517578e-5F;
    case 20:
    case 24:
        return float(loadWide(from)) * 4.656613e-10F;
    case 32:
        return float(SampleBytes<4>::load(from) * 4.656612873077393e-10);
    default:
        return 0;
    }
}

void encodeSample(float value, void *sample, unsigned short precision)
{
    auto *const to = static_cast<char *>(sample);
    switch (precision) {
    case 8:
        *to = char(int(value * 128 + 128));
        break;
    case 16:
        SampleBytes<2>::store(qint32(value * 32768), to);
        break;
    case 20:
    case 24:
        storeWide(qint32(qint64(value * FullScale)), to);
        break;
    case 32:
        SampleBytes<4>::store(qint32(qint64(double(value) * FullScale)), to);
        break;
    default:
        break;
    }
}

void scaleSample(void *out, const void *in, float factor, unsigned short precision)
{
    const auto *const from = static_cast<const char *>(in);
    auto *const to = static_cast<char *>(out);
    switch (precision) {
    case 8:
        SampleBytes<1>::store(clipped(float(SampleBytes<1>::load(from)) * factor, -128, 127), to);
        break;
    case 16:
        SampleBytes<2>::store(clipped(float(SampleBytes<2>::load(from)) * factor, -32768, 32767),
                              to);
        break;
    case 20:
    case 24:
        storeWide(clipped(float(loadWide(from)) * factor, INT32_MIN, INT32_MAX), to);
        break;
    case 32:
        SampleBytes<4>::store(
            clipped(float(SampleBytes<4>::load(from)) * factor, INT32_MIN, INT32_MAX), to);
        break;
    default:
        break;
    }
}

} // namespace Vela

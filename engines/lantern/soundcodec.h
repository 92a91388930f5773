// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/streamcodec.h"

#include "sound/soundsample.h"

namespace Lantern {

/// The encodings of the streams in a sounds file.
enum SoundEncoding : unsigned int { RawSound = 0, Flac = 1, Ogg = 2, SoundEncodingCount };

/// Encodes sounds for the stream cache and for files.
///
/// A plain sound is a head of 12 bytes (channels and bits a sample in 16 bits, frames a second and
/// the number of frames in 32 bits, low byte first), then the frames as Vela::SoundSample::data has
/// them. An encoded one has the same head, of what it decodes to, then the codec's bytes.
class SoundCodec : public StreamCodec
{
public:
    bool decode(unsigned int encoding, void *codecData, const QByteArray &raw,
                QByteArray &data) override;
    /// Ogg has 16 bits a sample whatever \a data has.
    bool encode(unsigned int encoding, void *codecData, const QByteArray &data,
                QByteArray &raw) override;
    unsigned int preferredEncoding(const QByteArray &plain) const override;
    bool isLossy(unsigned int encoding) const override;
};

/// Returns whether there are sounds of that form and length: with frames, and not too large.
bool isSound(const Vela::SampleInfo &info);
/// Returns the plain form of a sound, with the whole frames that its data really holds; empty if it
/// has none: a sound without frames, of a form that does not exist, or too large.
QByteArray plainSound(const Vela::SampleInfo &info, const QByteArray &data);
/// Returns the sound of a plain form; an empty one if it is none.
Vela::SoundSample soundFromPlain(const QByteArray &plain);
/// Reads the head of a stream. Returns false if it is none.
bool readSoundHead(const QByteArray &stream, Vela::SampleInfo &info);
/// The word of an encoding: "raw", "flac", "ogg".
QString encodingWord(unsigned int encoding);
/// Returns false, with \a encoding as it was, for a word that is none.
bool readEncodingWord(const QString &word, SoundEncoding &encoding);

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "sound/soundsample.h"

class QIODevice;

namespace Vela {

// All functions here open a device that is closed. They hold nothing in common, so that they run on
// any thread, each on its device.

/// Returns filters for file dialogs, or null for a type that does not exist.
VELA_EXPORT const char *soundFileExtension(SoundExtensionType type);

/// Reads a sound. \a format is "WAV", "OGG", "FLAC", "MP3" or the word of a SoundLoader. Returns
/// whether \a sample got data. If not it has none, or is as it was where the device does not open.
VELA_EXPORT bool loadSound(QIODevice *device, const char *format, SoundSample &sample);
/// Writes a sound. \a format is "WAV", "OGG", "FLAC" or the word of a SoundSaver.
VELA_EXPORT bool saveSound(QIODevice *device, const char *format, const SoundSample &sample);

// The readers return an empty sound on failure, also where the frames take more than the 2 GB that
// a byte array can have. Of a file that ends early they return what is there.

/// Reads integer samples without compression. Frames that a file which ends early promises are
/// silent, if there are not unreasonably many.
VELA_EXPORT SoundSample soundFromWAV(QIODevice *device);
/// Reads Ogg Vorbis, with 16 bits.
VELA_EXPORT SoundSample soundFromOGG(QIODevice *device);
/// Reads FLAC. A precision that SoundSample does not have becomes the next one that it has.
VELA_EXPORT SoundSample soundFromFLAC(QIODevice *device);
/// The same of sounds that take up to \a most bytes: empty, and read no further, where it is more.
VELA_EXPORT SoundSample soundFromOGG(QIODevice *device, int most);
VELA_EXPORT SoundSample soundFromFLAC(QIODevice *device, int most);
/// Reads MP3, with 16 bits.
VELA_EXPORT SoundSample soundFromMP3(QIODevice *device);

// The writers return false if the device takes less than all, or if the format does not have such
// channels, frequency or precision.

VELA_EXPORT bool soundToWAV(const SoundSample &sample, QIODevice *device);
/// Writes Ogg Vorbis with a variable bit rate, of quality 0.4. The serial number of its stream is
/// a random one, from rand().
VELA_EXPORT bool soundToOGG(const SoundSample &sample, QIODevice *device);
/// The same with a serial number of the caller's, for bytes that are to be the same each time.
VELA_EXPORT bool soundToOGG(const SoundSample &sample, QIODevice *device, int serial);
VELA_EXPORT bool soundToFLAC(const SoundSample &sample, QIODevice *device);

/// Returns what soundFromWAV() returns, without the frames; of a file with samples that are not
/// integers an empty one. Reads the device to its end.
VELA_EXPORT SampleInfo soundInfoFromWAV(QIODevice *device);

} // namespace Vela

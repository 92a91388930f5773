// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/streamcodec.h"

#include "image/imageformats.h"

#include <QByteArray>
#include <QImage>

namespace Lantern {

/// The encodings of the streams in a sprites file.
enum Encoding : unsigned int { Raw = 0, Png = 1, Rle8 = 2, Rle5 = 3, Lz5 = 4, EncodingCount };

/// Encodes images for the stream cache and for files.
///
/// A plain image is a head of 8 bytes (width, height and bits a pixel, 8, 24 or 32, in 16 bits
/// each, low byte first, and two zeros), then its rows without padding: indices, or blue, green,
/// red and alpha. An encoded one has the same head, then the codec's bytes.
class SpriteCodec : public StreamCodec
{
public:
    bool decode(unsigned int encoding, void *codecData, const QByteArray &raw,
                QByteArray &data) override;
    bool encode(unsigned int encoding, void *codecData, const QByteArray &data,
                QByteArray &raw) override;
    /// PNG for colours, LZ5 for up to 32 indices, RLE8 for others.
    unsigned int preferredEncoding(const QByteArray &plain) const override;
};

/// Returns an image as one that sprites can have: indexed as it is, any other with 32 bits a pixel.
QImage spriteImage(const QImage &image);
/// Returns whether a spriteImage() has a plain form: it is not null, nor too large.
bool hasPlainForm(const QImage &image);
/// Returns the plain form of a spriteImage(); empty if it has none.
QByteArray plainImage(const QImage &image);
/// Returns the image of a plain form, without colours; null if it is none.
QImage imageFromPlain(const QByteArray &plain);
/// Reads the head of a stream. Returns false if it is none.
bool readHead(const QByteArray &stream, Vela::ImageInfo &info);

} // namespace Lantern

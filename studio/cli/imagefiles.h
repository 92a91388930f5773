// SPDX-License-Identifier: MIT
#pragma once

#include "image/rgba.h"

#include <QByteArray>
#include <QImage>
#include <QString>

namespace Studio {

/// What a call can do with files of one format.
struct ImageFormat
{
    QByteArray word; ///< as the library names it: what follows the last dot, in upper case
    bool loadsImages = false;
    bool savesImages = false;
    bool loadsPalettes = false; ///< out of images, too
    bool savesPalettes = false;

    /// Returns what is known of the format of a file, by its name alone.
    static ImageFormat ofFile(const QString &name);
    static ImageFormat ofWord(const QString &word);
};

/// Returns the first colour of a palette that cannot be seen; -1 if there is none.
int transparentColor(const QVector<QRgb> &colors);
/// Returns the image with one transparent index for all pixels whose colour cannot be seen: a GIF
/// has no more. Other images than those of Format_Indexed8 stay as they are.
QImage withOneTransparentColor(QImage image);

// The functions below name files as the user does. On failure they return false, or a null image,
// with the whole reason in \a error.

/// Reads an image as one of Format_Indexed8, Format_RGB32 or Format_ARGB32. May be called from any
/// thread.
QImage readImage(const QString &file, QString *error);
/// Makes a file's bytes. May be called from any thread.
bool encodeImage(const QImage &image, const QByteArray &format, QByteArray *bytes, QString *error);
/// Returns what to tell of the transparency that an image loses in a format; null if it loses none.
/// That of a palette's first color is no loss in a PCX: sprites have it anyway. May be called from
/// any thread.
QString lostTransparency(QImage image, const QByteArray &format);

/// A palette as files hold it.
struct ColorTable
{
    Vela::RGBA colors[256] = {};
    int count = 256; ///< what the file has; the others are black or zero

    /// Takes the colours of a file: a palette, or an image that has one.
    bool read(const QString &file, QString *error);
    /// Makes the bytes of a palette file.
    bool encode(const QByteArray &format, QByteArray *bytes, QString *error);
    /// Takes the colours of an image that has a palette.
    static ColorTable ofImage(const QImage &image);
};

} // namespace Studio

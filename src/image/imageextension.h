// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extension.h"
#include "image/rgba.h"

class QIODevice;
class QImage;

namespace Vela {

// Formats of images and palettes that extensions add. What format() returns is the format word:
// what follows the dot in file names, in upper case.

/// Reads one more format of images; of the type Extension::ImageLoader.
class VELA_EXPORT ImageLoader : public Extension
{
public:
    Type type() const override;
    virtual bool load(QIODevice *device, QImage &image) = 0;
};

/// Writes one more format of images; of the type Extension::ImageSaver.
class VELA_EXPORT ImageSaver : public Extension
{
public:
    Type type() const override;
    virtual bool save(const QImage &image, QIODevice *device) = 0;
};

/// Reads one more format of palettes; of the type Extension::PaletteLoader.
class VELA_EXPORT PaletteLoader : public Extension
{
public:
    Type type() const override;
    /// \a palette comes with all bytes 0.
    virtual bool load(QIODevice *device, RGBA (&palette)[256]) = 0;
};

/// Writes one more format of palettes; of the type Extension::PaletteSaver.
class VELA_EXPORT PaletteSaver : public Extension
{
public:
    Type type() const override;
    virtual bool save(const RGBA (&palette)[256], QIODevice *device) = 0;
};

} // namespace Vela

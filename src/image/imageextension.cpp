// SPDX-License-Identifier: MIT
#include "image/imageextension.h"

namespace Vela {

Extension::Type ImageLoader::type() const
{
    return Extension::ImageLoader;
}

Extension::Type ImageSaver::type() const
{
    return Extension::ImageSaver;
}

Extension::Type PaletteLoader::type() const
{
    return Extension::PaletteLoader;
}

Extension::Type PaletteSaver::type() const
{
    return Extension::PaletteSaver;
}

} // namespace Vela

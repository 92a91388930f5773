// SPDX-License-Identifier: MIT
#pragma once

#include "image/sprites.h"
#include "image/subitem.h"

#include <memory>

namespace Studio {

struct ReleaseFile
{
    void operator()(Vela::ProjectFile *file) const
    {
        file->release();
    }
};

/// A sprites file outside of a project.
using SpritesFilePtr = std::unique_ptr<Vela::Sprites, ReleaseFile>;

/// Makes an empty file of the engine that has files of such a name. Reports the reason and returns
/// null where there is none.
SpritesFilePtr createSprites(const QString &file);

/// Reads a file. Reports the reason and returns null on failure.
SpritesFilePtr openSprites(const QString &file);

/// Returns the name that the sprite of an identifier has in texts and as a file: "GROUP_IMAGE".
QString spriteName(Vela::SubItem identifier);
/// Reads such a name. Returns false for any other.
bool readSpriteName(const QString &name, Vela::SubItem *identifier);

} // namespace Studio

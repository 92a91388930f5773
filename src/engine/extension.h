// SPDX-License-Identifier: MIT
#pragma once

#include "frame/object.h"

#include <QString>

namespace Vela {

class Archive;

/// What an extension module registers with ExtensionManager::add(), which then owns it.
class VELA_EXPORT Extension : public Object
{
public:
    /// What kind of thing is registered. The library itself reads the named kinds; the others are
    /// free for a host and its extensions to agree on.
    enum Type {
        ArchiveFormat = 0,
        ImageLoader = 1,
        ImageSaver = 2,
        PaletteLoader = 3,
        PaletteSaver = 4,
        SoundLoader = 5,
        SoundSaver = 6,
        AnimationExporter = 9,
        EngineProvider = 10,
        Plugin = 16
    };
    /// Number of the types.
    static constexpr int TypeCount = 17;

    /// How openArchive() opens.
    enum OpenMode { WriteMode = 0, ReadMode = 1 };

    virtual Type type() const = 0;
    /// Returns the name of the format or engine, in lower case; identifies the extension among
    /// those of its type, except for Plugin.
    virtual const char *format() const = 0;
    /// Returns a second identifier, which stands for the first among extensions of type Plugin.
    virtual const char *identifier() const = 0;
    /// Opens an archive of this format; the caller gives it back with release(). \a mode is an
    /// OpenMode. The default has no archives and returns null.
    virtual Archive *openArchive(const QString &path, int mode);
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "image/sprites.h"
#include "sound/sounds.h"

#include <memory>

namespace Studio {

struct ReleaseFile
{
    void operator()(Vela::ProjectFile *file) const
    {
        file->release();
    }
};

/// A file of many sprites or sounds outside of a project: \a Collection is Vela::Sprites or
/// Vela::Sounds.
template <class Collection>
using StandaloneFile = std::unique_ptr<Collection, ReleaseFile>;

/// Makes an empty file of the engine that has files of such a name. Reports the reason and returns
/// null where there is none.
template <class Collection>
StandaloneFile<Collection> createStandalone(const QString &file);

/// Reads a file. Reports the reason and returns null on failure.
template <class Collection>
StandaloneFile<Collection> openStandalone(const QString &file);

extern template StandaloneFile<Vela::Sprites> createStandalone(const QString &file);
extern template StandaloneFile<Vela::Sprites> openStandalone(const QString &file);
extern template StandaloneFile<Vela::Sounds> createStandalone(const QString &file);
extern template StandaloneFile<Vela::Sounds> openStandalone(const QString &file);

} // namespace Studio

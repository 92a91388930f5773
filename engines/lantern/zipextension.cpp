// SPDX-License-Identifier: MIT
#include "lantern/zipextension.h"

#include "lantern/zipreader.h"
#include "lantern/zipwriter.h"

#include <memory>

namespace Lantern {

namespace {

template <typename ArchiveType>
Vela::Archive *opened(const QString &path)
{
    auto archive = std::make_unique<ArchiveType>(path);
    return archive->open() ? archive.release() : nullptr;
}

} // namespace

Vela::Extension::Type ZipExtension::type() const
{
    return ArchiveFormat;
}

const char *ZipExtension::format() const
{
    return "zip";
}

const char *ZipExtension::identifier() const
{
    return "zip";
}

Vela::Archive *ZipExtension::openArchive(const QString &path, int mode)
{
    return mode == ReadMode ? opened<ZipReader>(path) : opened<ZipWriter>(path);
}

void ZipExtension::release()
{
    delete this;
}

} // namespace Lantern

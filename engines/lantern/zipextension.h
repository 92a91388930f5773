// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extension.h"

namespace Lantern {

/// The archive format "zip", in which parent projects keep their backups.
class ZipExtension : public Vela::Extension
{
public:
    Type type() const override;
    const char *format() const override;
    const char *identifier() const override;
    /// Begins a new archive, which takes its name when it is released, or opens one to read. Null
    /// for a file that cannot be made, or that is no whole zip archive.
    Vela::Archive *openArchive(const QString &path, int mode) override;
    void release() override;
};

} // namespace Lantern

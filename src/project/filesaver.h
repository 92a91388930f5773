// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

namespace Vela {

class ProjectFile;

/// Whoever can save a file under a name that the user chooses. Editors of files implement it.
class VELA_EXPORT FileSaver
{
public:
    virtual ~FileSaver();

    /// Asks for a name and writes \a file there. Shows its own failures; does nothing if the file
    /// cannot be saved or the user gives up.
    virtual void saveFileAs(ProjectFile *file) = 0;
};

} // namespace Vela

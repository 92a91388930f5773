// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

namespace Vela {

class Archive;
class Project;

/// The data of a ProjectFile. Project sets the owner.
class ProjectFilePrivate
{
public:
    Project *project = nullptr; ///< the owner; null while the file is in no project
    Archive *archive = nullptr; ///< holds a reference; null for the disk
    QMap<QString, QVariant> options;
    int refCount = 1;
};

} // namespace Vela

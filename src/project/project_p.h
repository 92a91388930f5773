// SPDX-License-Identifier: MIT
#pragma once

#include "project/messagelist.h"
#include "project/parentproject.h"
#include "project/project.h"

#include <QPointer>

namespace Vela {

/// The data of a Project, which is also the table of its messages.
class ProjectPrivate : public MessageList
{
public:
    explicit ProjectPrivate(Project *project)
        : MessageList(project)
    {
    }

    QPointer<ParentProject> parent;
    ProjectFile *mainFile = nullptr; ///< holds a reference until the end of the project
    QMap<QString, QVariant> options;
    QMap<ProjectFile *, Project::FileTypes> files; ///< holds a reference on each
    QMap<int, unsigned int> selected;
    QMap<int, QList<ProjectFile *>> filesByType;
    int type = 0;
    Archive *archive = nullptr; ///< holds a reference; null from release() on
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/projectsession.h"

#include <QList>
#include <vector>

namespace Vela {
class CodeDocument;
}

namespace Studio {

/// A definition text of an opened project.
struct Definition
{
    QString path; ///< relative to the project's root
    Vela::CodeDocument *document = nullptr;
};

/// Returns the definition texts of the opened projects, each once, as the projects and their files
/// are ordered. They need not be read.
QList<Definition> definitions(const Vela::ParentProject &parent);

/// Reads a text if it has not been read. Reports a failure and returns false then.
bool read(Vela::CodeDocument *document);

/// Finds the texts that users name by their files, and keeps their projects open.
class DefinitionFinder
{
public:
    DefinitionFinder();
    ~DefinitionFinder();

    /// Returns the text of a file, read, and its project, which is the nearest above it that names
    /// it. Reports the reason and returns a null document where there is none or it cannot be read.
    Definition find(const QString &file, const ProjectSession **session);

private:
    Q_DISABLE_COPY(DefinitionFinder)

    Vela::ProjectFile *findFile(const QString &path, const ProjectSession **session,
                                QString *reason);

    std::vector<std::unique_ptr<ProjectSession>> m_sessions;
};

} // namespace Studio

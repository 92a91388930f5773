// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

namespace Vela {
class CodeDocument;
class ParentProject;
class ProjectFile;
} // namespace Vela

namespace Studio {

/// Returns the definition text that a file is, or is a view of; null for a file of another kind.
Vela::CodeDocument *documentOf(Vela::ProjectFile *file);

/// Returns the definition texts of the opened projects, each once.
QList<Vela::CodeDocument *> openDocuments(const Vela::ParentProject &parent);

/// Returns whether one of them is still being written. It has no name meanwhile.
bool isSaving(const Vela::ParentProject &parent);

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/session/documents.h"

#include "code/codedocument.h"
#include "code/codenodefile.h"
#include "project/parentproject.h"
#include "project/project.h"

#include <QSet>
#include <algorithm>

namespace Studio {

Vela::CodeDocument *documentOf(Vela::ProjectFile *file)
{
    if (auto *document = dynamic_cast<Vela::CodeDocument *>(file))
        return document;
    const auto *nodes = dynamic_cast<Vela::CodeNodeFile *>(file);
    return nodes ? nodes->document() : nullptr;
}

QList<Vela::CodeDocument *> openDocuments(const Vela::ParentProject &parent)
{
    QSet<Vela::CodeDocument *> documents;
    const QList<Vela::Project *> projects = parent.openedProjects();
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = project->files();
        for (Vela::ProjectFile *file : files) {
            if (Vela::CodeDocument *document = documentOf(file))
                documents.insert(document);
        }
    }
    return documents.values();
}

bool isSaving(const Vela::ParentProject &parent)
{
    const QList<Vela::CodeDocument *> documents = openDocuments(parent);
    return std::any_of(documents.begin(), documents.end(),
                       [](const Vela::CodeDocument *document) { return document->isSaving(); });
}

} // namespace Studio

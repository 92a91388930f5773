// SPDX-License-Identifier: MIT
#pragma once

#include "project/projectfile.h"

#include <QPointer>

namespace Vela {

class CodeDocument;
class CodeNode;

/// A second file of a project on the text of a document: the view of its root's children of one
/// kind, such as the animations. Content, name and undo are the document's.
class VELA_EXPORT CodeNodeFile : public ProjectFile
{
public:
    /// Leaves the document and gives its reference on it up.
    ~CodeNodeFile() override;

    /// Returns the document's archive.
    Archive &archive() const override;
    /// Returns the file's own project, else the document's.
    Project *project() const override;
    QAbstractItemModel *model() override;
    Capabilities capabilities() const override;
    /// Only the last holder of the document saves it.
    bool canSave() const override;
    bool isModified() const override;
    bool isEmpty() const override;
    void reset() override;
    bool toFile(Archive &archive, const QString &name, unsigned int flags,
                JobStats *stats) override;
    bool fromFile(Archive &archive, const QString &name, unsigned int flags,
                  JobStats *stats) override;
    QString fileName() const override;
    void beginChange() override;
    void endChange() override;
    void undo() override;
    void redo() override;
    QList<SearchResult> search(const RegExp &expression, unsigned int flags) const override;
    void replace(const QList<SearchResult> &results, const QString &text) override;
    using ProjectFile::option;
    QVariant option(const QString &key) const override;
    void setOption(const QString &key, const QVariant &value, bool inProject, bool inHost) override;

    /// The document calls these for a root child of the file's kind: behind its coming, with its
    /// index among those of the kind, and in front of its going.
    virtual void insertChild(CodeNode *node, unsigned int index) = 0;
    virtual void removeChild(CodeNode *node) = 0;
    virtual void childChanged(CodeNode *node);

    CodeDocument *document() const;

protected:
    /// Registering at \a document gives the file its reference there. A file without one may only
    /// be released once the document is gone.
    explicit CodeNodeFile(CodeDocument *document);
    /// Returns null: the messages are the document's.
    Messages *fileMessages() const override;

private:
    QPointer<CodeDocument> m_document;
};

} // namespace Vela

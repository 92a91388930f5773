// SPDX-License-Identifier: MIT
#pragma once

#include "code/rootcode.h"

namespace Vela {

class CodeDocument;

/// The root of a document's tree. While the document holds its model back it shows no rows.
class VELA_EXPORT CodeDocumentRoot : public RootCode
{
    Q_OBJECT

public:
    CodeDocumentRoot(CodeDocument *document, int fileType);
    ~CodeDocumentRoot() override;

    CodeDocument *document() const override;

    void insertChild(CodeNode *child, unsigned int row) override;
    void removeChild(CodeNode *child) override;
    void childChanged(CodeNode *child) override;
    void beginInsert(const ParentCode *parent, int row) override;
    void endInsert() override;
    void beginRemove(const ParentCode *parent, int row) override;
    void endRemove() override;
    void changed(const ParentCode *parent, int row, int role) override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    using RootCode::parent;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    friend class CodeDocumentPrivate;

    bool isOpen() const;

    CodeDocument *m_document;
};

} // namespace Vela

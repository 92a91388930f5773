// SPDX-License-Identifier: MIT
#pragma once

#include "code/childlist.h"
#include "code/codenode.h"
#include "frame/treemodel.h"

#include <QVector>

namespace Vela {

/// The head of a chain of nodes and the root of their tree, which it shows as an item model with
/// one column. The internal pointer of an index is the CodeNode.
class VELA_EXPORT RootCode : public TreeModel, public ParentCode
{
    Q_OBJECT

public:
    explicit RootCode(int fileType);
    ~RootCode() override;

    /// A root is not released: it lives in what it is the root of.
    void release() override;

    // The tree.
    unsigned int childCount() const override;
    int childIndex(CodeNode *child) const override;
    CodeNode *childAt(unsigned int row) const override;
    void insertChild(CodeNode *child, unsigned int row) override;
    void removeChild(CodeNode *child) override;
    void beginInsert(const ParentCode *parent, int row) override;
    void endInsert() override;
    void beginRemove(const ParentCode *parent, int row) override;
    void endRemove() override;
    void changed(const ParentCode *parent, int row, int role) override;

    // The model.
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex index(int row, int column,
                      const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    using CodeNode::parent;
    using QObject::parent;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    QList<CodeNode *> childs() const;
    unsigned int version() const;
    /// Does nothing for the version that it has. \a notify makes it emit versionChanged().
    void setVersion(unsigned int version, bool notify);
    int fileType() const;
    void setFileType(int fileType, bool notify);
    /// Returns whether a text changed through the tree is parsed at once.
    bool canParseCode() const;

Q_SIGNALS:
    void versionChanged();
    void typeChanged();

protected:
    /// Releases all nodes of the chain, from the last to the first.
    void destroy();
    /// Returns the index of a node of the tree; invalid for the root, and for a node without a row.
    QModelIndex parentIndex(const ParentCode *parent) const;

private:
    const ParentCode *parentAt(const QModelIndex &index) const;
    const ParentCode *parentOf(const CodeNode *node) const;
    bool isShown(const ParentCode *parent, const QModelIndex &index) const;
    bool closeBracket();
    static QString frameText(CodeNode *frame);

    ChildList<CodeNode> m_childs;
    unsigned int m_version = 0;
    int m_fileType;
    QVector<bool> m_brackets; ///< whether the open begin…() are shown to views
    // The row being removed keeps its place in the model till the end, but has no parent any more.
    const CodeNode *m_leaving = nullptr;
    const ParentCode *m_leavingFrom = nullptr;
    // The parent of the rows being removed, for views that ask when a node is gone.
    static QModelIndex s_lastParent;
};

} // namespace Vela

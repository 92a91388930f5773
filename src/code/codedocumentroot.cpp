// SPDX-License-Identifier: MIT
#include "code/codedocumentroot.h"

#include "code/codedocument.h"
#include "code/codedocument_p.h"

namespace Vela {

CodeDocumentRoot::CodeDocumentRoot(CodeDocument *document, int fileType)
    : RootCode(fileType)
    , m_document(document)
{
}

CodeDocumentRoot::~CodeDocumentRoot() = default;

CodeDocument *CodeDocumentRoot::document() const
{
    return m_document;
}

bool CodeDocumentRoot::isOpen() const
{
    return m_document->d->modelLock == 0 && m_document->d->modelEnabled;
}

void CodeDocumentRoot::insertChild(CodeNode *child, unsigned int row)
{
    RootCode::insertChild(child, row);
    m_document->insertChild(child, row);
}

void CodeDocumentRoot::removeChild(CodeNode *child)
{
    m_document->removeChild(child);
    RootCode::removeChild(child);
}

void CodeDocumentRoot::childChanged(CodeNode *child)
{
    m_document->childChanged(child);
}

void CodeDocumentRoot::beginInsert(const ParentCode *parent, int row)
{
    if (isOpen())
        RootCode::beginInsert(parent, row);
}

void CodeDocumentRoot::endInsert()
{
    if (!isOpen())
        return;
    m_document->d->visibleRootRows = int(childCount());
    RootCode::endInsert();
}

void CodeDocumentRoot::beginRemove(const ParentCode *parent, int row)
{
    if (isOpen())
        RootCode::beginRemove(parent, row);
}

void CodeDocumentRoot::endRemove()
{
    if (!isOpen())
        return;
    m_document->d->visibleRootRows = int(childCount());
    RootCode::endRemove();
}

void CodeDocumentRoot::changed(const ParentCode *parent, int row, int role)
{
    if (isOpen())
        RootCode::changed(parent, row, role);
}

int CodeDocumentRoot::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? RootCode::rowCount(parent) : m_document->d->visibleRootRows;
}

bool CodeDocumentRoot::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

QModelIndex CodeDocumentRoot::index(int row, int column, const QModelIndex &parent) const
{
    // The base asks rowCount(), so that rows of the root that are not shown have no index.
    return isOpen() ? RootCode::index(row, column, parent) : QModelIndex();
}

QModelIndex CodeDocumentRoot::parent(const QModelIndex &child) const
{
    return isOpen() ? RootCode::parent(child) : QModelIndex();
}

Qt::ItemFlags CodeDocumentRoot::flags(const QModelIndex &index) const
{
    return isOpen() ? RootCode::flags(index) : Qt::NoItemFlags;
}

QVariant CodeDocumentRoot::data(const QModelIndex &index, int role) const
{
    return isOpen() ? RootCode::data(index, role) : QVariant();
}

} // namespace Vela

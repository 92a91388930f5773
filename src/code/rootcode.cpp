// SPDX-License-Identifier: MIT
#include "code/rootcode.h"

#include "code/codedocument.h"
#include "code/namedcode.h"

namespace Vela {

QModelIndex RootCode::s_lastParent;

RootCode::RootCode(int fileType)
    : ParentCode(Root, QTextBlock(), nullptr)
    , m_fileType(fileType)
{
}

RootCode::~RootCode()
{
    if (s_lastParent.model() == this)
        s_lastParent = QModelIndex();
    // Nodes that their owner still holds go later, and must not come back to this.
    for (int row = 0; row < m_childs.size(); ++row)
        ParentCode::setParent(m_childs.at(row), nullptr);
}

void RootCode::release()
{
}

void RootCode::destroy()
{
    CodeNode *node = this;
    while (node->next())
        node = node->next();
    while (node != this) {
        CodeNode *const before = node->previous();
        node->release();
        node = before;
    }
}

unsigned int RootCode::childCount() const
{
    return unsigned(m_childs.size());
}

int RootCode::childIndex(CodeNode *child) const
{
    return m_childs.indexOf(child);
}

CodeNode *RootCode::childAt(unsigned int row) const
{
    return m_childs.value(row);
}

void RootCode::insertChild(CodeNode *child, unsigned int row)
{
    if (child->parent())
        child->parent()->removeChild(child);
    const int index = int(qMin(row, unsigned(m_childs.size())));
    beginInsert(this, index);
    m_childs.insert(index, child);
    ParentCode::setParent(child, this);
    endInsert();
}

void RootCode::removeChild(CodeNode *child)
{
    ParentCode::removeChild(child);
    const int row = m_childs.indexOf(child);
    if (row < 0)
        return;
    beginRemove(this, row);
    m_childs.removeAt(row);
    endRemove();
}

void RootCode::beginInsert(const ParentCode *parent, int row)
{
    const QModelIndex index = parentIndex(parent);
    m_brackets.append(isShown(parent, index));
    if (m_brackets.last())
        beginInsertRows(index, row, row);
}

void RootCode::endInsert()
{
    if (closeBracket())
        endInsertRows();
}

void RootCode::beginRemove(const ParentCode *parent, int row)
{
    const QModelIndex index = parentIndex(parent);
    m_brackets.append(isShown(parent, index));
    if (!m_brackets.last())
        return;
    s_lastParent = index;
    m_leaving = parent->childAt(unsigned(row));
    m_leavingFrom = parent;
    beginRemoveRows(s_lastParent, row, row);
}

void RootCode::endRemove()
{
    if (!closeBracket())
        return;
    m_leaving = nullptr;
    m_leavingFrom = nullptr;
    endRemoveRows();
}

// Returns whether views know of the change whose bracket closes.
bool RootCode::closeBracket()
{
    return !m_brackets.isEmpty() && m_brackets.takeLast();
}

void RootCode::changed(const ParentCode *parent, int row, int role)
{
    const QModelIndex above = parentIndex(parent);
    const QModelIndex changedIndex = isShown(parent, above) ? index(row, 0, above) : QModelIndex();
    if (changedIndex.isValid())
        Q_EMIT dataChanged(changedIndex, changedIndex, {role});
}

// A node that is linked to its parent without a row is not shown, nor is what is below it.
bool RootCode::isShown(const ParentCode *parent, const QModelIndex &index) const
{
    return parent == this || index.isValid();
}

QModelIndex RootCode::parentIndex(const ParentCode *parent) const
{
    if (parent == this)
        return QModelIndex();
    const ParentCode *const above = parent->parent();
    if (!above)
        return QModelIndex();
    const QModelIndex aboveIndex = parentIndex(above);
    if (!isShown(above, aboveIndex))
        return QModelIndex();
    return index(above->childIndex(const_cast<ParentCode *>(parent)), 0, aboveIndex);
}

const ParentCode *RootCode::parentAt(const QModelIndex &index) const
{
    if (!index.isValid())
        return this;
    const auto *const node = static_cast<const CodeNode *>(index.internalPointer());
    return isValid(node) ? dynamic_cast<const ParentCode *>(node) : nullptr;
}

const ParentCode *RootCode::parentOf(const CodeNode *node) const
{
    return node == m_leaving ? m_leavingFrom : node->parent();
}

int RootCode::rowCount(const QModelIndex &parent) const
{
    const ParentCode *const node = parent.column() > 0 ? nullptr : parentAt(parent);
    return node ? int(node->childCount()) : 0;
}

int RootCode::columnCount(const QModelIndex &) const
{
    return 1;
}

bool RootCode::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

QModelIndex RootCode::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return QModelIndex();
    const ParentCode *const node = parentAt(parent);
    CodeNode *const child = node ? node->childAt(unsigned(row)) : nullptr;
    return child ? createIndex(row, column, child) : QModelIndex();
}

QModelIndex RootCode::parent(const QModelIndex &child) const
{
    if (!child.isValid())
        return QModelIndex();
    const auto *const node = static_cast<const CodeNode *>(child.internalPointer());
    if (!isValid(node)) {
        const auto *const last = static_cast<const CodeNode *>(s_lastParent.internalPointer());
        return s_lastParent.model() == this && isValid(last) ? s_lastParent : QModelIndex();
    }
    const ParentCode *const parent = parentOf(node);
    if (!parent || parent->type() == Root)
        return QModelIndex();
    const ParentCode *const above = parentOf(parent);
    CodeNode *const parentNode = const_cast<ParentCode *>(parent);
    return createIndex(above ? above->childIndex(parentNode) : 0, 0, parentNode);
}

Qt::ItemFlags RootCode::flags(const QModelIndex &index) const
{
    return index.isValid() ? Qt::ItemIsSelectable | Qt::ItemIsEnabled : Qt::NoItemFlags;
}

QVariant RootCode::data(const QModelIndex &index, int role) const
{
    auto *const node = static_cast<CodeNode *>(index.internalPointer());
    // A node without a parent may be on its way out, and no more than a CodeNode.
    if (!isValid(node) || !node->parent())
        return QVariant();
    if (role == Qt::DecorationRole) {
        const CodeDocument *const text = document();
        return text ? QVariant(text->nodeIcon(node)) : QVariant();
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return QVariant();
    if (node->type() & (Group | Value | Animation)) {
        const auto *const named = dynamic_cast<const NamedCode *>(node);
        return named ? named->displayName() : QVariant();
    }
    if (node->type() == Frame)
        return frameText(node);
    return QVariant();
}

QString RootCode::frameText(CodeNode *frame)
{
    const auto *const item = dynamic_cast<const PropertyItem *>(frame);
    const QString identifier =
        item ? item->property(QStringLiteral("Identifier")).toString() : QString();
    if (!identifier.isEmpty())
        return tr("Frame - %1").arg(identifier);
    return tr("Frame %1").arg(frame->parent()->childIndex(frame) + 1);
}

QList<CodeNode *> RootCode::childs() const
{
    return m_childs.toList();
}

unsigned int RootCode::version() const
{
    return m_version;
}

void RootCode::setVersion(unsigned int version, bool notify)
{
    if (m_version == version)
        return;
    m_version = version;
    if (notify)
        Q_EMIT versionChanged();
}

int RootCode::fileType() const
{
    return m_fileType;
}

void RootCode::setFileType(int fileType, bool notify)
{
    if (m_fileType == fileType)
        return;
    m_fileType = fileType;
    if (notify)
        Q_EMIT typeChanged();
}

bool RootCode::canParseCode() const
{
    const CodeDocument *const text = document();
    return !text || text->option(QStringLiteral("parseCode")).toBool();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "code/groupcode.h"

#include "code/adoption.h"
#include "code/codedocument.h"
#include "code/valuecode.h"

namespace Vela {

namespace {

bool isInGroup(const CodeNode *node)
{
    return node->parent() && node->parent()->type() == CodeNode::Group;
}

} // namespace

GroupCode::GroupCode(const QTextBlock &block, CodeNode *previous, unsigned int subType)
    : ParentCode(Group, block, previous)
    , m_subType(subType)
{
    Adoption::begin(this, take);
}

GroupCode::~GroupCode()
{
    Adoption::finish(this);
    CodeNode *const above = nearestAbove(Group | Animation | Frame);
    if (above && above->type() == Group) {
        auto *const heir = static_cast<ParentCode *>(above);
        Adoption::finish(heir);
        for (ValueCode *value : values())
            heir->insertChild(value, heir->childCount());
    }
    while (!m_values.isEmpty())
        GroupCode::removeChild(m_values.at(m_values.size() - 1));
}

void GroupCode::take(ParentCode *group, CodeNode *node)
{
    auto *const self = static_cast<GroupCode *>(group);
    if (node->type() == Value)
        self->GroupCode::insertChild(node, self->valueCount());
    else if (node->type() == Frame && node->parent())
        node->parent()->removeChild(node);
}

int GroupCode::lastLine() const
{
    const CodeDocument *const text = document();
    if (!text)
        return -1;
    const bool nested = isInGroup(this);
    for (const CodeNode *node = next(); node; node = node->next()) {
        if (node->type() == Animation || (node->type() == Group && (nested || !isInGroup(node)))) {
            return node->firstLine() - 1;
        }
    }
    return text->lineCount();
}

unsigned int GroupCode::childCount() const
{
    return unsigned(m_values.size());
}

int GroupCode::childIndex(CodeNode *child) const
{
    return m_values.indexOf(child);
}

CodeNode *GroupCode::childAt(unsigned int row) const
{
    return m_values.value(row);
}

void GroupCode::insertChild(CodeNode *child, unsigned int row)
{
    if (child->type() != Value) {
        ParentCode::insertChild(child, row);
        return;
    }
    // Neither rows here nor the row of this group may change while the bracket is open.
    if (child->parent() == this || (child->parent() && child->parent() == parent()))
        child->parent()->removeChild(child);
    const int index = int(qMin(row, valueCount()));
    beginInsert(this, index);
    if (child->parent())
        child->parent()->removeChild(child);
    m_values.insert(index, static_cast<ValueCode *>(child));
    setParent(child, this);
    endInsert();
}

void GroupCode::removeChild(CodeNode *child)
{
    ParentCode::removeChild(child);
    const int row = m_values.indexOf(child);
    if (row < 0)
        return;
    beginRemove(this, row);
    m_values.removeAt(row);
    endRemove();
}

QList<ValueCode *> GroupCode::values() const
{
    return m_values.toList();
}

unsigned int GroupCode::valueCount() const
{
    return unsigned(m_values.size());
}

ValueCode *GroupCode::valueAt(unsigned int index) const
{
    return m_values.at(int(index));
}

ValueCode *GroupCode::valueByName(const QString &name) const
{
    for (int row = 0; row < m_values.size(); ++row) {
        if (m_values.at(row)->name() == name)
            return m_values.at(row);
    }
    return nullptr;
}

QVariant GroupCode::value(const QString &name) const
{
    const ValueCode *const node = valueByName(name);
    return node ? node->value() : QVariant();
}

void GroupCode::removeValue(unsigned int index)
{
    if (ValueCode *const node = m_values.value(index))
        node->remove(true);
}

} // namespace Vela

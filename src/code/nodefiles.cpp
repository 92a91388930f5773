// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "code/codedocument_p.h"
#include "code/codenodefile.h"
#include "code/groupcode.h"

#include <utility>

namespace Vela {

namespace {

/// Takes the nodes of a kind from a file that will not hear of them any more.
void withdraw(const CodeDocumentPrivate &document, CodeNodeFile *file, unsigned int key)
{
    for (unsigned int row = document.root.childCount(); row-- > 0;) {
        CodeNode *const node = document.root.childAt(row);
        if (document.nodeKey(node) == key)
            file->removeChild(node);
    }
}

} // namespace

unsigned int CodeDocumentPrivate::nodeKey(CodeNode::Type type, unsigned int subType)
{
    return subType << 12 | unsigned(type);
}

unsigned int CodeDocumentPrivate::nodeKey(const CodeNode *node) const
{
    return node->type() == CodeNode::Group ? groupKeys.value(node) : nodeKey(node->type(), 0);
}

QSet<CodeNodeFile *> CodeDocumentPrivate::distinctNodeFiles() const
{
    return QSet<CodeNodeFile *>(nodeFiles.begin(), nodeFiles.end());
}

void CodeDocumentPrivate::populate(CodeNodeFile *file, unsigned int key)
{
    unsigned int index = 0;
    for (unsigned int row = 0; CodeNode *const node = root.childAt(row); ++row) {
        if (nodeKey(node) == key)
            file->insertChild(node, index++);
    }
}

// Nodes come in runs, so the number is counted on from the row that was asked for last.
unsigned int CodeDocumentPrivate::indexInFile(unsigned int key, int row)
{
    FileRow &last = fileRows[key];
    const auto isOfKind = [this, key](int other) {
        return nodeKey(root.childAt(unsigned(other))) == key;
    };
    for (; last.row < row; ++last.row)
        last.count += isOfKind(last.row);
    for (; last.row > row; --last.row)
        last.count -= isOfKind(last.row - 1);
    return last.count;
}

/// Keeps what is known of rows right when a root child has come (1) or goes (-1).
void CodeDocumentPrivate::shiftFileRows(unsigned int key, int row, int delta)
{
    for (auto last = fileRows.begin(); last != fileRows.end(); ++last) {
        if (row >= last->row)
            continue;
        last->row += delta;
        if (last.key() == key)
            last->count += unsigned(delta);
    }
}

void CodeDocumentPrivate::rootChildInserted(CodeNode *node, int row)
{
    if (node->type() == CodeNode::Group) {
        const unsigned int subType = static_cast<GroupCode *>(node)->subType();
        groupKeys.insert(node, nodeKey(CodeNode::Group, subType));
    }
    const unsigned int key = nodeKey(node);
    shiftFileRows(key, row, 1);
    if (CodeNodeFile *const file = nodeFiles.value(key))
        file->insertChild(node, indexInFile(key, row));
}

// Comes from the destructor of CodeNode, too, when the group in the node is gone.
void CodeDocumentPrivate::rootChildRemoved(CodeNode *node)
{
    const unsigned int key = nodeKey(node);
    if (!fileRows.isEmpty())
        shiftFileRows(key, root.childIndex(node), -1);
    if (CodeNodeFile *const file = nodeFiles.value(key))
        file->removeChild(node);
    groupKeys.remove(node);
}

void CodeDocumentPrivate::rootChildChanged(CodeNode *node)
{
    const bool isGroup = node->type() == CodeNode::Group;
    const unsigned int subType = isGroup ? static_cast<GroupCode *>(node)->subType() : 0;
    if (nodeKey(node) != nodeKey(node->type(), subType)) {
        const int row = root.childIndex(node);
        rootChildRemoved(node);
        rootChildInserted(node, row);
    } else if (CodeNodeFile *const file = nodeFiles.value(nodeKey(node))) {
        file->childChanged(node);
    }
}

void CodeDocument::registerNodeFile(CodeNodeFile *file, CodeNode::Type type, unsigned int subType)
{
    if (!file)
        return;
    const unsigned int key = CodeDocumentPrivate::nodeKey(type, subType);
    CodeNodeFile *&entry = d->nodeFiles[key];
    if (entry == file)
        return;
    // Each entry stands for one reference on the document. A file that loses its place to another
    // leaves its nodes, and its reference to that one.
    CodeNodeFile *const replaced = std::exchange(entry, file);
    if (replaced)
        withdraw(*d, replaced, key);
    else
        addRef();
    d->populate(file, key);
}

CodeNodeFile *CodeDocument::nodeFile(CodeNode::Type type, unsigned int subType) const
{
    return d->nodeFiles.value(CodeDocumentPrivate::nodeKey(type, subType));
}

void CodeDocument::insertChild(CodeNode *node, unsigned int index)
{
    // A row past the end stands for the last one.
    const bool isInPlace = d->root.childAt(index) == node;
    d->rootChildInserted(node, isInPlace ? int(index) : d->root.childIndex(node));
}

void CodeDocument::removeChild(CodeNode *node)
{
    d->rootChildRemoved(node);
}

void CodeDocument::childChanged(CodeNode *node)
{
    d->rootChildChanged(node);
}

void CodeDocument::release()
{
    // The node files hold the document; they must not keep it alive for themselves alone.
    if (refCount() == 1 && !d->nodeFiles.isEmpty()) {
        for (int i = 0; i < d->nodeFiles.size(); ++i)
            addRef();
        const QSet<CodeNodeFile *> files = d->distinctNodeFiles();
        for (CodeNodeFile *const file : files)
            file->release();
    }
    ProjectFile::release();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "frame/object.h"

#include <QTextBlock>
#include <QTextCursor>

namespace Vela {

class CodeDocument;
class CodeDocumentPrivate;
class ParentCode;

/// What a line of a definition text stands for. Nodes are a chain in the order of the text, with
/// the root at its head, and at once a tree of parents and children.
///
/// A node is made by a parser and belongs to its line, which releases it; the tree deletes no node
/// with its parent. A concrete class has a CodeNode as its first base. Its memory is never given
/// back to the heap while the program runs, so that isValid() can tell for any stored pointer
/// whether its node still lives. Main thread only.
class VELA_EXPORT CodeNode : public Object
{
public:
    /// One bit each, so that a mask names several.
    enum Type { Root = 1, Group = 2, Value = 4, Animation = 8, Frame = 16, HitBox = 32 };

    /// Destroys the node and keeps its memory for the next one of its size. Nothing else may
    /// destroy a node.
    void release() override;
    ~CodeNode() override;

    static void *operator new(size_t size)
    {
        return allocate(size);
    }
    static void operator delete(void *memory);

    /// Returns the first line of what the node covers, from 0.
    virtual int firstLine() const;
    /// Returns its last line, from 0; -1 where a node that covers many is in no document.
    virtual int lastLine() const;
    /// Returns the document that the node's line is in, or null.
    virtual CodeDocument *document() const;
    /// Takes the node's line out of the text, or with \a withChildren all that the node covers. The
    /// parser then releases the nodes; without a document this does.
    virtual void remove(bool withChildren);
    /// A parser calls this when the line of a node that stays says something else.
    virtual void valueChanged(const QVariant &value);
    /// Passes up to the root that the child in \a row of \a parent changed in \a role.
    virtual void changed(const ParentCode *parent, int row, int role);

    Type type() const
    {
        return m_type;
    }
    /// Returns the line that the node stands on; invalid for one without a line of its own.
    const QTextBlock &block() const
    {
        return m_block;
    }
    ParentCode *parent() const
    {
        return m_parent;
    }
    CodeNode *previous() const
    {
        return m_previous;
    }
    CodeNode *next() const
    {
        return m_next;
    }

    /// Return the nearest node of \a type behind, before or above this one. A node that has another
    /// type with a bit in \a stop ends the search, with null.
    CodeNode *next(Type type, int stop) const;
    CodeNode *previous(Type type, int stop) const;
    CodeNode *parent(Type type, int stop) const;

    /// Returns the number of the node's line, from 0. A node without one gives that of the next
    /// node that has one.
    int lineNo() const;
    /// Returns a cursor over the node's own line with its end; null without a document.
    QTextCursor select() const;
    /// Returns a cursor over all lines that the node covers, with the end of the last one; null
    /// without a document.
    QTextCursor selectAll() const;
    /// Returns the text of selectAll(), with U+2029 between lines as QTextCursor gives it.
    QString code() const;

    /// Returns whether the object that the pointer was got for still lives. Takes null and pointers
    /// to released nodes. A node made later in the same memory makes an old pointer valid again.
    static bool isValid(const CodeNode *node);

protected:
    /// Links the node into the chain behind \a previous, which is null for a root only.
    CodeNode(Type type, const QTextBlock &block, CodeNode *previous);

    /// Returns memory for a node of \a size bytes.
    static void *allocate(size_t size);
    /// Returns the number of bytes that nodes have ever taken from the heap.
    static size_t heapBytes();

    /// Returns the nearest node before this one of any of \a types, or null. Fast for nodes that
    /// ask one after the other from the top to the bottom, as headers do that go.
    CodeNode *nearestAbove(int types) const;

    /// Puts \a newCode in the place of what the node's line says, with as few changed characters as
    /// it takes. The comment behind the old text stays, and with the document's option
    /// "preserve_code_formatting" the blanks between its words as well. Does nothing without a
    /// document.
    void change(const QString &newCode);

private:
    Q_DISABLE_COPY(CodeNode)
    friend class CodeDocumentPrivate;
    friend class ParentCode;

    /// Takes the node out of the chain and leaves its own links as they are; puts it behind
    /// \a previous.
    void unlink();
    void linkBehind(CodeNode *previous);
    /// To be called when nodes went while others were out of the chain.
    static void forgetSearch();

    QTextBlock m_block;
    ParentCode *m_parent = nullptr;
    CodeNode *m_previous = nullptr;
    CodeNode *m_next = nullptr;
    Type m_type;
};

/// A node that can have children. This class itself keeps no list of them: children know it as
/// their parent, and it counts none.
class VELA_EXPORT ParentCode : public CodeNode
{
public:
    /// Leaves children that it is still the parent of without one.
    ~ParentCode() override;

    virtual unsigned int childCount() const;
    /// Returns the row of a child, or -1.
    virtual int childIndex(CodeNode *child) const;
    /// Returns the child in a row; null past the end.
    virtual CodeNode *childAt(unsigned int row) const;
    /// Makes \a child a child of this node, taken from the parent that it had.
    virtual void insertChild(CodeNode *child, unsigned int row);
    /// Leaves \a child without a parent; does nothing with a child of another one.
    virtual void removeChild(CodeNode *child);
    /// Called when the value of a child has changed.
    virtual void childChanged(CodeNode *child);
    /// These four and changed() pass what happens below up to the root, which is the model.
    virtual void beginInsert(const ParentCode *parent, int row);
    virtual void endInsert();
    virtual void beginRemove(const ParentCode *parent, int row);
    virtual void endRemove();

    /// Inserts a line behind the last child, or behind this node's own line.
    void appendValue(const QString &code);

protected:
    using CodeNode::CodeNode;

    /// Makes \a node a child of the root, behind the nearest node before it that is one.
    void insertRootChild(CodeNode *node);
    static void setParent(CodeNode *child, ParentCode *parent);

private:
    unsigned int m_linkedCount = 0; ///< nodes whose parent this is, with a row or without
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "code/codenode.h"

#include "code/adoption.h"
#include "code/codedocument.h"
#include "code/coderewrite.h"

#include <QSet>

#include <algorithm>
#include <memory>
#include <vector>

namespace Vela {

namespace {

/// What lies in front of each node, and stays when the node is gone.
struct Header
{
    quint64 size : 63; ///< of the block, with this
    quint64 isFree : 1;
};

/// Blocks of memory for nodes, cut from slabs: on the heap they would lie between blocks that are
/// given back, and break up the room that those leave.
class NodePool
{
public:
    NodePool() = default;

    Header *take(size_t size)
    {
        Header *&free = firstFree(size);
        if (Header *const block = free) {
            free = *nextOf(block);
            block->isFree = false;
            return block;
        }
        m_heapBytes += size;
        return new (cut(size)) Header{size, false};
    }

    void give(Header *block)
    {
        Header *&free = firstFree(block->size);
        block->isFree = true;
        new (nextOf(block)) Header *(free);
        free = block;
    }

    /// A root is not made of a block, and has no header.
    void addRoot(const CodeNode *root)
    {
        m_roots.insert(root);
    }

    void removeRoot(const CodeNode *root)
    {
        m_roots.remove(root);
    }

    bool holds(const CodeNode *node) const
    {
        return m_roots.contains(node) || !(reinterpret_cast<const Header *>(node) - 1)->isFree;
    }

    size_t heapBytes() const
    {
        return m_heapBytes;
    }

private:
    Q_DISABLE_COPY(NodePool)

    /// Returns the first free block of a size. Sizes are multiples of that of a pointer, as each
    /// node has some.
    Header *&firstFree(size_t size)
    {
        const size_t index = size / sizeof(void *);
        if (index >= m_free.size())
            m_free.resize(index + 1);
        return m_free[index];
    }

    /// Returns where a free block, in the place of the node, has the address of the next one.
    static Header **nextOf(Header *block)
    {
        return reinterpret_cast<Header **>(block + 1);
    }

    void *cut(size_t size)
    {
        if (size > m_room) {
            m_room = std::max(slabSize, size);
            m_slabs.emplace_back(new char[m_room]);
            m_end = m_slabs.back().get() + m_room;
        }
        char *const block = m_end - m_room;
        m_room -= size;
        return block;
    }

    static constexpr size_t slabSize = 1 << 18;

    std::vector<Header *> m_free; ///< by size
    std::vector<std::unique_ptr<char[]>> m_slabs;
    char *m_end = nullptr; ///< of the last slab
    size_t m_room = 0;     ///< that is left at its end
    QSet<const CodeNode *> m_roots;
    size_t m_heapBytes = 0;
};

NodePool &pool()
{
    static NodePool pool;
    return pool;
}

/// The last search up the chain for a node of some types. The next one stops where that one began,
/// so that headers which go one after the other, from the top, do not each pass all lines above.
class UpwardSearch
{
public:
    CodeNode *run(CodeNode *node, int types)
    {
        if (m_types != types)
            forget();
        CodeNode *found = node;
        while (found && found != m_from && !(found->type() & types))
            found = found->previous();
        if (found && found == m_from)
            found = m_found;
        m_types = types;
        m_from = node;
        m_found = found;
        return found;
    }

    void nodeComes(CodeNode::Type type)
    {
        if (type & m_types)
            forget();
    }

    void nodeGoes(const CodeNode *node)
    {
        if (node == m_from || node == m_found)
            forget();
    }

    void forget()
    {
        m_from = nullptr;
    }

private:
    int m_types = 0;
    const CodeNode *m_from = nullptr; ///< null if nothing is known
    CodeNode *m_found = nullptr;
};

UpwardSearch lastSearch;

/// Returns the first node from \a node on, in the direction of \a step, that is of a type.
template <typename Node, typename Step>
Node *find(Node *node, CodeNode::Type type, int stop, Step step)
{
    while (node && node->type() != type) {
        if (node->type() & stop)
            return nullptr;
        node = step(node);
    }
    return node;
}

/// Returns the position behind a line and its end, which the last line of a text has none of.
int behind(const QTextBlock &block)
{
    const QTextBlock below = block.next();
    return below.isValid() ? below.position() : block.position() + block.length() - 1;
}

} // namespace

CodeNode::CodeNode(Type type, const QTextBlock &block, CodeNode *previous)
    : m_block(block)
    , m_type(type)
{
    if (type == Root)
        pool().addRoot(this);
    if (previous)
        linkBehind(previous);
    lastSearch.nodeComes(type);
}

CodeNode::~CodeNode()
{
    if (m_type == Root)
        pool().removeRoot(this);
    if (m_parent)
        m_parent->removeChild(this);
    unlink();
    lastSearch.nodeGoes(this);
    Adoption::nodeGoes(this);
}

void *CodeNode::allocate(size_t size)
{
    return pool().take(size + sizeof(Header)) + 1;
}

size_t CodeNode::heapBytes()
{
    return pool().heapBytes();
}

void CodeNode::operator delete(void *memory)
{
    pool().give(static_cast<Header *>(memory) - 1);
}

void CodeNode::release()
{
    delete this;
}

bool CodeNode::isValid(const CodeNode *node)
{
    return node && pool().holds(node);
}

void CodeNode::linkBehind(CodeNode *previous)
{
    m_previous = previous;
    m_next = previous->m_next;
    previous->m_next = this;
    if (m_next)
        m_next->m_previous = this;
}

void CodeNode::unlink()
{
    if (m_previous)
        m_previous->m_next = m_next;
    if (m_next)
        m_next->m_previous = m_previous;
}

CodeNode *CodeNode::next(Type type, int stop) const
{
    return find(m_next, type, stop, [](CodeNode *node) { return node->next(); });
}

CodeNode *CodeNode::previous(Type type, int stop) const
{
    return find(m_previous, type, stop, [](CodeNode *node) { return node->previous(); });
}

CodeNode *CodeNode::nearestAbove(int types) const
{
    return lastSearch.run(m_previous, types);
}

void CodeNode::forgetSearch()
{
    lastSearch.forget();
}

CodeNode *CodeNode::parent(Type type, int stop) const
{
    return find(static_cast<CodeNode *>(m_parent), type, stop,
                [](CodeNode *node) -> CodeNode * { return node->parent(); });
}

int CodeNode::lineNo() const
{
    const CodeNode *node = this;
    while (!node->m_block.isValid() && node->m_next)
        node = node->m_next;
    return node->m_block.blockNumber();
}

int CodeNode::firstLine() const
{
    return lineNo();
}

int CodeNode::lastLine() const
{
    return lineNo();
}

CodeDocument *CodeNode::document() const
{
    if (!m_block.isValid())
        return nullptr;
    return qobject_cast<CodeDocument *>(const_cast<QTextDocument *>(m_block.document()));
}

QTextCursor CodeNode::select() const
{
    if (!m_block.isValid() || !document())
        return QTextCursor();
    QTextCursor cursor(m_block);
    cursor.setPosition(behind(m_block), QTextCursor::KeepAnchor);
    return cursor;
}

QTextCursor CodeNode::selectAll() const
{
    const CodeDocument *const text = document();
    QTextBlock first = text ? text->findBlockByNumber(firstLine()) : QTextBlock();
    // A node with a line is never without a cursor: remove() would release it under its line.
    if (text && !first.isValid())
        first = m_block;
    if (!first.isValid())
        return QTextCursor();
    const QTextBlock last = text->findBlockByNumber(lastLine());
    QTextCursor cursor(first);
    cursor.setPosition(behind(last.isValid() ? last : text->lastBlock()), QTextCursor::KeepAnchor);
    return cursor;
}

QString CodeNode::code() const
{
    return selectAll().selectedText();
}

void CodeNode::remove(bool withChildren)
{
    const QTextCursor cursor = withChildren ? selectAll() : select();
    if (!cursor.isNull()) {
        document()->insertOnCursor(QString(), cursor);
        return;
    }
    if (auto *const parent = withChildren ? dynamic_cast<ParentCode *>(this) : nullptr) {
        // A child whose line is in a document that does not parse now stays.
        unsigned int before = parent->childCount() + 1;
        while (parent->childCount() > 0 && parent->childCount() < before) {
            before = parent->childCount();
            parent->childAt(0)->remove(true);
        }
    }
    release();
}

void CodeNode::valueChanged(const QVariant &)
{
    if (!m_parent)
        return;
    m_parent->childChanged(this);
    // Who hears of it may edit the text, and so take the parent away.
    if (m_parent)
        changed(m_parent, m_parent->childIndex(this), 0);
}

void CodeNode::changed(const ParentCode *parent, int row, int role)
{
    if (m_parent)
        m_parent->changed(parent, row, role);
}

void CodeNode::change(const QString &newCode)
{
    CodeDocument *const text = document();
    if (!text)
        return;
    const QString oldLine = m_block.text();
    const bool keepBlanks = text->option(QStringLiteral("preserve_code_formatting")).toBool();
    const TextDifference difference =
        textDifference(oldLine, rewrittenLine(oldLine, newCode, text->commentString(), keepBlanks));
    if (difference.isEmpty())
        return;
    const int position = m_block.position() + difference.position;
    QTextCursor cursor = text->cursor();
    cursor.setPosition(position);
    cursor.setPosition(position + difference.removed, QTextCursor::KeepAnchor);
    text->insertOnCursor(difference.inserted, cursor);
}

// The lists of the classes below have given their children away. What is left are nodes that are
// linked without a row; they stand near this one, on either side.
ParentCode::~ParentCode()
{
    CodeNode *above = previous();
    CodeNode *below = next();
    while (m_linkedCount > 0 && (above || below)) {
        if (above && above->parent() == this)
            setParent(above, nullptr);
        if (below && below->parent() == this)
            setParent(below, nullptr);
        above = above ? above->previous() : nullptr;
        below = below ? below->next() : nullptr;
    }
}

unsigned int ParentCode::childCount() const
{
    return 0;
}

int ParentCode::childIndex(CodeNode *) const
{
    return -1;
}

CodeNode *ParentCode::childAt(unsigned int) const
{
    return nullptr;
}

void ParentCode::insertChild(CodeNode *child, unsigned int)
{
    if (child->parent())
        child->parent()->removeChild(child);
    setParent(child, this);
}

void ParentCode::removeChild(CodeNode *child)
{
    if (child->parent() == this)
        setParent(child, nullptr);
}

void ParentCode::childChanged(CodeNode *)
{
}

void ParentCode::beginInsert(const ParentCode *parent, int row)
{
    if (m_parent)
        m_parent->beginInsert(parent, row);
}

void ParentCode::endInsert()
{
    if (m_parent)
        m_parent->endInsert();
}

void ParentCode::beginRemove(const ParentCode *parent, int row)
{
    if (m_parent)
        m_parent->beginRemove(parent, row);
}

void ParentCode::endRemove()
{
    if (m_parent)
        m_parent->endRemove();
}

void ParentCode::appendValue(const QString &code)
{
    CodeDocument *const text = document();
    if (!text)
        return;
    const unsigned int count = childCount();
    text->insertAfter(count > 0 ? childAt(count - 1) : this, code, true);
}

void ParentCode::insertRootChild(CodeNode *node)
{
    for (CodeNode *before = node->previous(); before; before = before->previous()) {
        if (before->type() == Root) {
            static_cast<ParentCode *>(before)->insertChild(node, 0);
            return;
        }
        ParentCode *const parent = before->parent();
        if (parent && parent->type() == Root) {
            parent->insertChild(node, unsigned(parent->childIndex(before) + 1));
            return;
        }
    }
}

void ParentCode::setParent(CodeNode *child, ParentCode *parent)
{
    if (child->m_parent)
        --child->m_parent->m_linkedCount;
    if (parent)
        ++parent->m_linkedCount;
    child->m_parent = parent;
}

} // namespace Vela

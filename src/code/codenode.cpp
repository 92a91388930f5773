// SPDX-License-Identifier: MIT
#include "code/codenode.h"

#include "code/codedocument.h"
#include "code/coderewrite.h"
#include "engine/engine.h"
#include "project/parentproject.h"
#include "project/project.h"

#include <QMap>
#include <QSet>

namespace Vela {

namespace {

/// What lies in front of each node, and stays when the node is gone.
struct Header
{
    quint64 size : 63; ///< of the block, with this
    quint64 isFree : 1;
};

class NodePool
{
public:
    NodePool() = default;

    ~NodePool()
    {
        for (const QList<Header *> &blocks : qAsConst(m_free)) {
            for (Header *block : blocks)
                ::operator delete(block);
        }
    }

    Header *take(size_t size)
    {
        const auto blocks = m_free.find(size);
        if (blocks != m_free.end() && !blocks->isEmpty()) {
            Header *const block = blocks->takeLast();
            block->isFree = false;
            return block;
        }
        m_heapBytes += size;
        return new (::operator new(size)) Header{size, false};
    }

    void give(Header *block)
    {
        block->isFree = true;
        m_free[block->size].append(block);
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

    QMap<size_t, QList<Header *>> m_free; ///< free blocks by their size
    QSet<const CodeNode *> m_roots;
    size_t m_heapBytes = 0;
};

NodePool &pool()
{
    static NodePool pool;
    return pool;
}

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

QString commentString(const CodeDocument *document)
{
    const Project *const project = document->project();
    const ParentProject *const parent = project ? project->parent() : nullptr;
    const Engine *const engine = parent ? parent->engine() : nullptr;
    return engine ? engine->queryString(Engine::CommentString, 0) : QString();
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
}

CodeNode::~CodeNode()
{
    if (m_type == Root)
        pool().removeRoot(this);
    if (m_parent)
        m_parent->removeChild(this);
    unlink();
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
    const QTextBlock first = text ? text->findBlockByNumber(firstLine()) : QTextBlock();
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
        textDifference(oldLine, rewrittenLine(oldLine, newCode, commentString(text), keepBlanks));
    if (difference.isEmpty())
        return;
    const int position = m_block.position() + difference.position;
    QTextCursor cursor = text->cursor();
    cursor.setPosition(position);
    cursor.setPosition(position + difference.removed, QTextCursor::KeepAnchor);
    text->insertOnCursor(difference.inserted, cursor);
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
    child->m_parent = parent;
}

} // namespace Vela

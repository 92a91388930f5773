// SPDX-License-Identifier: MIT
#include "code/codeblockdata.h"

#include "code/codedocument_p.h"
#include "code/codelink.h"
#include "code/codemark.h"
#include "code/codenode.h"

#include <memory>
#include <utility>
#include <vector>

namespace Vela {

namespace {

/// Places for CodeBlockData, a thousand at a time. A free place holds the address of the next one.
class Pool
{
public:
    void *take()
    {
        if (!m_free)
            grow();
        Place *const place = m_free;
        m_free = place->next;
        return place;
    }

    void give(void *memory)
    {
        auto *const place = static_cast<Place *>(memory);
        place->next = m_free;
        m_free = place;
    }

private:
    union Place {
        Place *next;
        alignas(CodeBlockData) char data[sizeof(CodeBlockData)];
    };

    void grow()
    {
        constexpr size_t count = 1000;
        m_chunks.emplace_back(new Place[count]);
        Place *const chunk = m_chunks.back().get();
        for (size_t i = count; i > 0; --i)
            give(&chunk[i - 1]);
    }

    Place *m_free = nullptr;
    std::vector<std::unique_ptr<Place[]>> m_chunks;
};

Pool &pool()
{
    static Pool pool;
    return pool;
}

} // namespace

CodeBlockData::Reports::~Reports()
{
    qDeleteAll(links);
}

CodeBlockData::CodeBlockData(CodeDocumentPrivate *document)
    : m_document(document)
{
}

CodeBlockData::~CodeBlockData()
{
    const QList<CodeMark *> lineMarks = std::exchange(m_marks, QList<CodeMark *>());
    if (!m_document->destroying) {
        for (CodeMark *const mark : lineMarks)
            mark->lineRemoved();
    }
    m_document->forgetBlock(this);
    if (CodeNode *const node = std::exchange(m_codeNode, nullptr))
        node->release();
}

void *CodeBlockData::operator new(size_t size)
{
    Q_ASSERT(size == sizeof(CodeBlockData));
    Q_UNUSED(size)
    return pool().take();
}

void CodeBlockData::operator delete(void *memory)
{
    if (memory)
        pool().give(memory);
}

CodeBlockData *CodeBlockData::blockData(const QTextBlock &block, CodeDocumentPrivate *document)
{
    CodeBlockData *data = testBlockData(block);
    if (!data && block.isValid()) {
        data = new CodeBlockData(document);
        QTextBlock(block).setUserData(data);
    }
    return data;
}

CodeBlockData *CodeBlockData::testBlockData(const QTextBlock &block)
{
    return static_cast<CodeBlockData *>(block.userData());
}

CodeBlockData::Reports &CodeBlockData::reports()
{
    if (!m_reports)
        m_reports = std::make_unique<Reports>();
    return *m_reports;
}

QList<CodeLink *> CodeBlockData::links() const
{
    return m_reports ? m_reports->links : QList<CodeLink *>();
}

QVector<CodeBlockData::Parenthesis> CodeBlockData::parenthesis() const
{
    return m_reports ? m_reports->parenthesis : QVector<Parenthesis>();
}

QVector<CodeBlockData::SyntaxMessage> CodeBlockData::syntaxMessages() const
{
    return m_reports && m_reports->messages ? m_reports->messages->messages
                                            : QVector<SyntaxMessage>();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "code/codenodefile.h"

#include "code/codedocument.h"
#include "code/codedocument_p.h"

namespace Vela {

CodeNodeFile::CodeNodeFile(CodeDocument *document)
    : m_document(document)
{
}

CodeNodeFile::~CodeNodeFile()
{
    if (!m_document)
        return;
    const QList<unsigned int> keys = m_document->d->nodeFiles.keys(this);
    for (const unsigned int key : keys)
        m_document->d->nodeFiles.remove(key);
    // The last of its references may be the document's last.
    for (int i = 0; i < keys.size(); ++i)
        m_document->release();
}

CodeDocument *CodeNodeFile::document() const
{
    return m_document;
}

Archive &CodeNodeFile::archive() const
{
    return m_document->archive();
}

Project *CodeNodeFile::project() const
{
    Project *const own = ProjectFile::project();
    return own ? own : m_document->project();
}

QAbstractItemModel *CodeNodeFile::model()
{
    return m_document->model();
}

ProjectFile::Capabilities CodeNodeFile::capabilities() const
{
    Capabilities result = m_document->capabilities() & ~Capabilities(HasText);
    result.setFlag(SharesContent, m_document->refCount() >= 2);
    return result;
}

bool CodeNodeFile::canSave() const
{
    return m_document->refCount() == 1 && m_document->canSave();
}

bool CodeNodeFile::isModified() const
{
    return m_document->isModified();
}

bool CodeNodeFile::isEmpty() const
{
    return m_document->isEmpty();
}

void CodeNodeFile::reset()
{
    m_document->reset();
}

bool CodeNodeFile::toFile(Archive &archive, const QString &name, unsigned int flags,
                          JobStats *stats)
{
    return m_document->toFile(archive, name, flags, stats);
}

bool CodeNodeFile::fromFile(Archive &archive, const QString &name, unsigned int flags,
                            JobStats *stats)
{
    return m_document->fromFile(archive, name, flags, stats);
}

QString CodeNodeFile::fileName() const
{
    return m_document->fileName();
}

void CodeNodeFile::beginChange()
{
    m_document->beginChange();
}

void CodeNodeFile::endChange()
{
    m_document->endChange();
}

void CodeNodeFile::undo()
{
    m_document->undo();
}

void CodeNodeFile::redo()
{
    m_document->redo();
}

QList<ProjectFile::SearchResult> CodeNodeFile::search(const RegExp &expression,
                                                      unsigned int flags) const
{
    return m_document->search(expression, flags);
}

void CodeNodeFile::replace(const QList<SearchResult> &results, const QString &text)
{
    m_document->replace(results, text);
}

QVariant CodeNodeFile::option(const QString &key) const
{
    return m_document->option(key);
}

void CodeNodeFile::setOption(const QString &key, const QVariant &value, bool inProject, bool inHost)
{
    m_document->setOption(key, value, inProject, inHost);
}

void CodeNodeFile::childChanged(CodeNode *)
{
}

Messages *CodeNodeFile::fileMessages() const
{
    return nullptr;
}

} // namespace Vela

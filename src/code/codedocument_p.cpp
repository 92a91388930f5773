// SPDX-License-Identifier: MIT
#include "code/codedocument_p.h"

#include "code/codedocument.h"
#include "code/codelink.h"

#include <limits>

namespace Vela {

CodeDocumentPrivate::CodeDocumentPrivate(CodeDocument *owner, int fileType)
    : document(owner)
    , root(owner, fileType)
    , cursor(owner)
{
    connect(owner, &QTextDocument::contentsChange, this, &CodeDocumentPrivate::onContentsChange);
    connect(&root, &RootCode::versionChanged, this, &CodeDocumentPrivate::rehighlight);
    connect(&root, &RootCode::typeChanged, this, &CodeDocumentPrivate::rehighlight);
}

CodeDocumentPrivate::~CodeDocumentPrivate() = default;

ProjectFile *CodeDocumentPrivate::file() const
{
    return document;
}

int CodeDocumentPrivate::count(Message::Type type) const
{
    return messageIndex.count(type);
}

Message CodeDocumentPrivate::at(unsigned int index, Message::Type type) const
{
    Message result;
    int rest = int(qMin(index, unsigned(std::numeric_limits<int>::max())));
    const SyntaxMessageLine *const line = messageIndex.lineAt(rest, type);
    if (!line)
        return result;
    for (const CodeBlockData::SyntaxMessage &message : line->messages) {
        const Message::Type listed = SyntaxMessageIndex::messageType(message.type);
        if ((type != Message::Any && type != listed) || rest-- > 0)
            continue;
        result.type = listed;
        result.line = static_cast<unsigned int>(line->block.blockNumber());
        result.column = static_cast<unsigned int>(qMax(0, message.start));
        result.text = message.message;
        break;
    }
    return result;
}

void CodeDocumentPrivate::setToken(TokenType type, int start, int end)
{
    if (!currentData)
        return;
    formatChanges.set(type, FormatRuns::NoUnderline, start, end);
    if (type != CommentToken)
        currentData->m_parsed = true;
}

void CodeDocumentPrivate::addError(TokenType type, const QString &message, int start, int end)
{
    addMessage(CodeBlockData::SyntaxMessage::Error, type, message, start, end);
}

void CodeDocumentPrivate::addDeprecation(TokenType type, const QString &message, int start, int end)
{
    addMessage(CodeBlockData::SyntaxMessage::Deprecation, type, message, start, end);
}

void CodeDocumentPrivate::addWarning(TokenType type, const QString &message, int start, int end)
{
    addMessage(CodeBlockData::SyntaxMessage::Warning, type, message, start, end);
}

void CodeDocumentPrivate::addMessage(CodeBlockData::SyntaxMessage::Kind kind, TokenType type,
                                     const QString &message, int start, int end)
{
    static constexpr FormatRuns::Underline underlines[] = {
        FormatRuns::ErrorUnderline, FormatRuns::DeprecationUnderline, FormatRuns::WarningUnderline};
    if (!currentData)
        return;
    formatChanges.set(type, underlines[kind], start, end);
    pendingMessages.append({kind, start, end, message});
    currentData->m_parsed = true;
}

void CodeDocumentPrivate::addParenthesis(bool opening, QChar character, int position)
{
    if (!currentData)
        return;
    const int type =
        opening ? CodeBlockData::Parenthesis::Opening : CodeBlockData::Parenthesis::Closing;
    currentData->reports().parenthesis.append({type, character, position});
    currentData->m_parsed = true;
}

void CodeDocumentPrivate::addLink(CodeLink *link)
{
    if (!currentData || !link) {
        delete link;
        return;
    }
    currentData->reports().links.append(link);
    currentData->m_parsed = true;
}

void CodeDocumentPrivate::removeReports(CodeBlockData *data)
{
    const std::unique_ptr<CodeBlockData::Reports> reports = std::move(data->m_reports);
    if (!reports || !reports->messages)
        return;
    SyntaxMessageLine *const line = reports->messages.get();
    const int row = SyntaxMessageIndex::row(line);
    beginRemoveRows(QModelIndex(), row, row + line->messages.size() - 1);
    messageIndex.remove(line);
    endRemoveRows();
}

void CodeDocumentPrivate::forgetBlock(CodeBlockData *data)
{
    removeReports(data);
    searchedLine = nullptr;
    linesGone = true;
    // A pass that loses lines knows nothing of its place any more; another one follows it.
    if (inReformat)
        rehighlightPending = true;
    if (currentData == data)
        currentData = nullptr;
}

void CodeDocumentPrivate::lockModel()
{
    if (modelLock > 0 || !modelEnabled || visibleRootRows == 0) {
        ++modelLock;
        return;
    }
    root.beginRemoveRows(QModelIndex(), 0, visibleRootRows - 1);
    ++modelLock;
    visibleRootRows = 0;
    root.endRemoveRows();
}

void CodeDocumentPrivate::unlockModel()
{
    const int rows = int(root.childCount());
    if (modelLock > 1 || !modelEnabled || rows == 0) {
        --modelLock;
        return;
    }
    root.beginInsertRows(QModelIndex(), 0, rows - 1);
    --modelLock;
    visibleRootRows = rows;
    root.endInsertRows();
}

void CodeDocumentPrivate::readModelOption()
{
    modelEnabled = document->option(QStringLiteral("modelCode")).toBool();
}

void CodeDocumentPrivate::lockUpdates()
{
    ++updateLock;
}

void CodeDocumentPrivate::unlockUpdates()
{
    if (--updateLock == 0)
        notifyUpdate();
}

} // namespace Vela

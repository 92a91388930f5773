// SPDX-License-Identifier: MIT
#include "code/adoption.h"
#include "code/codedocument.h"
#include "code/codedocument_p.h"
#include "code/codeparser.h"
#include "code/groupcode.h"

#include <utility>

namespace Vela {

namespace {

/// The user state of lines below the header of an animation; those below a group have its sub-type.
constexpr int AnimationState = 0x40000000;

/// A parser that asks for another pass in every one would never let the document go.
constexpr int MostPassesAskedFor = 50;

constexpr int HeaderTypes = CodeNode::Group | CodeNode::Animation;

bool isHeader(const CodeNode *node)
{
    return node && (node->type() & HeaderTypes);
}

int userState(const CodeNode *node, int stateAbove)
{
    const CodeNode *header = node;
    if (node && !isHeader(node)) {
        header = node->previous(CodeNode::Group, ~HeaderTypes);
        if (!header)
            header = node->previous(CodeNode::Animation, ~HeaderTypes);
    }
    int state = 0;
    if (header && header->type() == CodeNode::Animation)
        state = AnimationState;
    else if (header)
        state = int(static_cast<const GroupCode *>(header)->subType());
    return state != 0 ? state : stateAbove;
}

/// Returns whether a text has the end of a line, or its own, at an index.
bool isLineEnd(const QString &text, int index)
{
    if (index >= text.size())
        return index == text.size();
    switch (text.at(index).unicode()) {
    case '\n':
    case '\r':
    case QChar::ParagraphSeparator:
    case 0xfdd0: // the marks of a frame in a QTextDocument
    case 0xfdd1:
        return true;
    default:
        return false;
    }
}

/// Returns the last of the nodes behind \a node that have no line of their own, which stay with it.
CodeNode *lastOfLine(CodeNode *node)
{
    while (node->next() && !node->next()->block().isValid())
        node = node->next();
    return node;
}

} // namespace

/// What a pass carries from line to line on its way down. It asks Qt for no position, number or
/// neighbour of a block that it can know from the line before.
struct CodeDocumentPrivate::Pass
{
    /// \a source has all lines from \a first on, or is null.
    Pass(const QTextBlock &first, const QString &source)
        : block(first)
        , position(first.position())
        , length(first.length())
        , text(source)
    {
        const QTextBlock above = first.previous();
        stateAbove = above.isValid() ? above.userState() : -1;
        lineAbove = CodeBlockData::testBlockData(above);
        line.reserve(256);
    }

    /// Returns the text of the current line. To read each of many lines from the document is far
    /// slower than to walk down a text that has all of them.
    const QString &lineText()
    {
        if (!text.isNull() && !isLineEnd(text, index + length - 1))
            text = QString();
        if (text.isNull())
            line = block.text();
        else
            line.setUnicode(text.constData() + index, length - 1);
        return line;
    }

    void advance()
    {
        stateAbove = state;
        position += length;
        index += length;
        if (index < text.size() && text.at(index) == QLatin1Char('\n')
            && text.at(index - 1) == QLatin1Char('\r'))
            ++index;
        block = block.next();
        length = block.length();
    }

    QTextBlock block; ///< the current line
    int position;     ///< of its start in the text
    int length;       ///< with the line's end
    QString text;     ///< with the lines of the pass; null if they are read one by one
    int index = 0;    ///< of the line's start in it
    QString line;

    int state = -1;                          ///< the user state that the line got
    int stateAbove;                          ///< that of the line above
    const CodeBlockData *lineAbove;          ///< the line directly above; null without data
    const CodeBlockData *nodeLine = nullptr; ///< the nearest line above with a node
    CodeNode *previous = nullptr;            ///< the node that this line's goes behind

    bool headerKnown = false;
    const CodeNode *header = nullptr; ///< if known, the nearest header above with a line
    bool messagesKnown = false;
    SyntaxMessageLine *messages = nullptr; ///< if known, the nearest line above with messages

    QTextBlock indented; ///< the last line without a node whose indent those above it take
    int dirtyFrom = -1;  ///< the part of the text whose formats changed
    int dirtyEnd = -1;
};

void CodeDocumentPrivate::onContentsChange(int from, int charsRemoved, int charsAdded)
{
    if (!inRehighlight)
        reformatBlocks(from, charsRemoved, charsAdded);
}

void CodeDocumentPrivate::rehighlight()
{
    if (inReformat) {
        rehighlightPending = true;
        return;
    }
    lockModel();
    reformatDocument();
    unlockModel();
}

void CodeDocumentPrivate::reparse()
{
    if (inReformat) {
        reparsePending = true;
        return;
    }
    lockModel();
    releaseNodes();
    lockUpdates();
    reformatDocument();
    unlockUpdates();
    readModelOption();
    unlockModel();
}

void CodeDocumentPrivate::reformatDocument()
{
    const bool wasInRehighlight = std::exchange(inRehighlight, true);
    QTextCursor edit(document);
    edit.beginEditBlock();
    reformatBlocks(0, 0, document->characterCount());
    edit.endEditBlock();
    inRehighlight = wasInRehighlight;
}

// From the last line to the first, so that no header passes its children on to the one above it.
void CodeDocumentPrivate::releaseNodes()
{
    searchedLine = nullptr;
    for (QTextBlock block = document->lastBlock(); block.isValid(); block = block.previous()) {
        CodeBlockData *const data = CodeBlockData::testBlockData(block);
        if (!data)
            continue;
        if (CodeNode *const node = std::exchange(data->m_codeNode, nullptr))
            node->release();
    }
}

void CodeDocumentPrivate::reformatBlocks(int from, int charsRemoved, int charsAdded)
{
    const QTextBlock first = document->findBlock(from);
    if (!first.isValid())
        return;
    QTextBlock last = document->findBlock(from + charsAdded + (charsRemoved > 0 ? 1 : 0));
    if (!last.isValid())
        last = document->lastBlock();
    const int end = last.position() + last.length();

    lockUpdates();
    const bool wasInReformat = std::exchange(inReformat, true);
    Pass pass(first, textFrom(first.position(), end));
    reformatLines(pass, end);
    if (pass.dirtyFrom >= 0)
        document->markContentsDirty(pass.dirtyFrom, pass.dirtyEnd - pass.dirtyFrom);
    inReformat = wasInReformat;
    if (!runPassAskedFor())
        document->codeUpdated();
    unlockUpdates();
}

// Returns the text from a position on for a pass over most of the document, or else null.
QString CodeDocumentPrivate::textFrom(int position, int end)
{
    const int size = document->characterCount();
    if (end - position <= size / 2)
        return QString();
    // The text that is being set serves for the pass that follows.
    if (position == 0 && !givenText.isNull())
        return size > 1 ? std::exchange(givenText, QString()) : givenText;
    return document->toRawText().mid(position);
}

void CodeDocumentPrivate::reformatLines(Pass &pass, int end)
{
    CodeParserSyntax *const syntax = document->hasSyntaxHighlight() ? this : nullptr;
    if (parser)
        pass.nodeLine = findPrevious(pass.block, pass.previous);
    const Adoption adoption;
    formatChanges.beginPass();
    bool stateChanged = false;
    while (pass.length > 0 && (pass.position < end || stateChanged)) {
        const int state = pass.block.userState();
        formatChanges.begin(pass.length - 1);
        pass.state = state;
        if (parser && !highlightBlock(pass, syntax))
            return;
        applyFormats(pass);
        currentData = nullptr;
        if (isPassAskedFor())
            return;
        stateChanged = pass.state != state;
        pass.advance();
    }
    if (pass.indented.isValid())
        passIndentUp(pass.indented);
}

bool CodeDocumentPrivate::isPassAskedFor() const
{
    return (reparsePending || rehighlightPending) && passesAskedFor < MostPassesAskedFor;
}

bool CodeDocumentPrivate::runPassAskedFor()
{
    const bool isAskedFor = isPassAskedFor();
    const bool isReparse = std::exchange(reparsePending, false);
    rehighlightPending = false;
    if (!isAskedFor)
        return false;
    ++passesAskedFor;
    if (isReparse)
        reparse();
    else
        rehighlight();
    --passesAskedFor;
    return true;
}

// Returns false if lines went away while this one was parsed: the pass has lost its place then.
bool CodeDocumentPrivate::highlightBlock(Pass &pass, CodeParserSyntax *syntax)
{
    currentData = CodeBlockData::testBlockData(pass.block);
    if (!currentData) {
        currentData = CodeBlockData::blockData(pass.block, this);
        currentData->m_isNew = !inRehighlight;
    }
    if (currentData->m_reports)
        removeReports(currentData);
    pass.block.setUserState(0);

    pass.previous = parseBlock(pass.lineText(), pass.block, pass.previous, syntax);
    if (linesGone) {
        pendingMessages.clear();
        return false;
    }
    CodeNode *const node = currentData->m_codeNode;
    pass.state = userState(node, pass.stateAbove);
    pass.block.setUserState(pass.state);
    if (!pendingMessages.isEmpty())
        insertMessages(pass);
    indentLine(pass, node);
    return true;
}

// Takes the line's old node out of the chain while the parser runs. Returns the node that the next
// line's goes behind, unless lines went away.
CodeNode *CodeDocumentPrivate::parseBlock(const QString &line, const QTextBlock &block,
                                          CodeNode *previous, CodeParserSyntax *syntax)
{
    previous = lastOfLine(previous);
    linesGone = false;
    Adoption::reach((currentData->m_codeNode ? currentData->m_codeNode : previous)->next());
    if (linesGone)
        return &root;
    CodeNode *const old = std::exchange(currentData->m_codeNode, nullptr);
    if (old)
        old->unlink();
    if (previous == old)
        previous = &root;
    CodeNode *const node = parser->parseLine(line, block, old, previous, &root, syntax);
    if (linesGone) {
        // The node above may have gone with its line.
        previous = &root;
        if (currentData)
            findPrevious(block, previous);
        searchedLine = nullptr;
        CodeNode::forgetSearch();
    }
    if (old) {
        old->linkBehind(previous);
        if (old != node)
            old->release();
    }
    if (currentData)
        currentData->m_codeNode = node;
    else if (node)
        node->release();
    return node ? node : previous;
}

// Returns the nearest line above that has a node, or null, and the node that a new one of the block
// goes behind. The search goes up and down at once, since a node below leads back to it, and ends
// at the line of the last search. What was found for that one still holds: nodes above it come and
// go only by parsing, which begins with a search, or with their lines.
CodeBlockData *CodeDocumentPrivate::findPrevious(const QTextBlock &block, CodeNode *&previous)
{
    QTextBlock above = block.previous();
    QTextBlock below = block;
    CodeNode *node = nullptr;
    while (!node && above.isValid()) {
        const CodeBlockData *const dataAbove = CodeBlockData::testBlockData(above);
        const CodeBlockData *const dataBelow = CodeBlockData::testBlockData(below);
        if (dataAbove && dataAbove->m_codeNode)
            node = dataAbove->m_codeNode;
        else if (dataBelow && dataBelow->m_codeNode)
            node = dataBelow->m_codeNode->previous();
        else if (searchedLine && (dataAbove == searchedLine || dataBelow == searchedLine))
            node = searchedNode;
        above = above.previous();
        below = below.next();
    }
    if (!node)
        node = &root;
    while (node != &root && !node->block().isValid())
        node = node->previous();
    searchedLine = CodeBlockData::testBlockData(block);
    searchedNode = node;
    previous = lastOfLine(node);
    return CodeBlockData::testBlockData(node->block());
}

void CodeDocumentPrivate::parseInChange(const QTextBlock &first, const QTextBlock &end)
{
    if (inReformat) {
        rehighlightPending = true;
        return;
    }
    inReformat = true;
    parseLines(first, end);
    currentData = nullptr;
    inReformat = false;
    runPassAskedFor();
}

void CodeDocumentPrivate::parseLines(const QTextBlock &first, const QTextBlock &end)
{
    const Adoption adoption;
    CodeNode *previous = nullptr;
    findPrevious(first, previous);
    for (QTextBlock block = first; block.isValid() && block != end; block = block.next()) {
        currentData = CodeBlockData::blockData(block, this);
        previous = parseBlock(block.text(), block, previous, nullptr);
        if (linesGone || isPassAskedFor())
            return;
    }
}

void CodeDocumentPrivate::insertMessages(Pass &pass)
{
    if (!pass.messagesKnown)
        pass.messages = messageIndex.lastBefore(pass.position);
    pass.messagesKnown = true;
    const int row =
        pass.messages ? SyntaxMessageIndex::row(pass.messages) + pass.messages->messages.size() : 0;
    beginInsertRows(QModelIndex(), row, row + pendingMessages.size() - 1);
    SyntaxMessageLine *const line = new SyntaxMessageLine;
    currentData->reports().messages.reset(line);
    line->block = pass.block;
    line->messages.swap(pendingMessages);
    messageIndex.insertBehind(line, pass.messages);
    pass.messages = line;
    endInsertRows();
}

// A line without a node has the indent that the next node's line has. Those above take the indent
// of the last one that knows it, which is settled once at the end of their run.
void CodeDocumentPrivate::indentLine(Pass &pass, const CodeNode *node)
{
    const CodeNode *const governing = node ? node : pass.previous->next();
    currentData->m_foldingIndent = foldingIndent(pass, governing);
    if (node) {
        if (pass.lineAbove && !pass.lineAbove->m_codeNode)
            passIndentUp(pass.block);
        pass.indented = QTextBlock();
        pass.nodeLine = currentData;
        if (isHeader(node)) {
            pass.header = node;
            pass.headerKnown = true;
        }
    } else if (governing) {
        pass.indented = pass.block;
    }
    pass.lineAbove = currentData;
}

unsigned int CodeDocumentPrivate::foldingIndent(Pass &pass, const CodeNode *node) const
{
    const CodeBlockData *const above = pass.nodeLine && node ? pass.nodeLine : pass.lineAbove;
    if (!above)
        return 0;
    unsigned int indent = pass.nodeLine ? above->m_foldingIndent : 0;
    if (isHeader(above->m_codeNode))
        ++indent;
    if (isHeader(node))
        indent -= qMin(indent, closedLevels(pass, node));
    return indent;
}

// Returns how many levels a header closes: from that of the header above it up to its own.
unsigned int CodeDocumentPrivate::closedLevels(Pass &pass, const CodeNode *header) const
{
    if (!pass.headerKnown) {
        pass.header = header->previous();
        while (pass.header && !(isHeader(pass.header) && pass.header->block().isValid()))
            pass.header = pass.header->previous();
        pass.headerKnown = true;
    }
    const CodeNode *const parent = parentWithLine(header);
    if (!pass.header || pass.header == parent)
        return 0;
    unsigned int levels = 1;
    for (const CodeNode *above = parentWithLine(pass.header); above != parent && above != &root;
         above = parentWithLine(above))
        ++levels;
    return levels;
}

// Returns the nearest parent that has a line of its own, or the root.
const CodeNode *CodeDocumentPrivate::parentWithLine(const CodeNode *node) const
{
    const CodeNode *parent = node->parent();
    while (parent && !parent->block().isValid())
        parent = parent->parent();
    return parent ? parent : &root;
}

// Gives the indent of a line to the lines without a node directly above it.
void CodeDocumentPrivate::passIndentUp(const QTextBlock &line)
{
    const unsigned int indent = CodeBlockData::testBlockData(line)->m_foldingIndent;
    for (QTextBlock above = line.previous(); above.isValid(); above = above.previous()) {
        CodeBlockData *const data = CodeBlockData::testBlockData(above);
        if (data && data->m_codeNode)
            break;
        if (data)
            data->m_foldingIndent = indent;
    }
}

// A line that never had formats is left without a layout.
void CodeDocumentPrivate::applyFormats(Pass &pass)
{
    CodeBlockData *const data = parser ? currentData : CodeBlockData::testBlockData(pass.block);
    if (!data || (formatChanges.isEmpty() && !data->m_formatted))
        return;
    data->m_formatted = !formatChanges.isEmpty();
    if (!formatChanges.apply(pass.block.layout()))
        return;
    if (pass.dirtyFrom < 0)
        pass.dirtyFrom = pass.position;
    pass.dirtyEnd = pass.position + pass.length;
}

CodeNode *CodeDocument::nodeInBlock(const QTextBlock &block) const
{
    const CodeBlockData *const data = CodeBlockData::testBlockData(block);
    return data ? data->m_codeNode : nullptr;
}

void CodeDocument::setParser(CodeParser *parser)
{
    if (d->parser == parser)
        return;
    d->parser = parser;
    reparse();
}

CodeParser *CodeDocument::parser() const
{
    return d->parser;
}

bool CodeDocument::hasSyntaxHighlight() const
{
    return option(QStringLiteral("highlightCode")).toBool();
}

void CodeDocument::setSyntaxHighlight(bool highlight)
{
    if (hasSyntaxHighlight() == highlight)
        return;
    setOption(QStringLiteral("highlightCode"), highlight, true, false);
    reparse();
}

void CodeDocument::rehighlight()
{
    d->rehighlight();
}

void CodeDocument::reparse()
{
    d->reparse();
}

void CodeDocument::setSyntaxFormat(CodeParserSyntax::TokenType type, const QTextCharFormat &format)
{
    FormatRuns::setTokenFormat(type, format);
}

QTextCharFormat CodeDocument::syntaxFormat(CodeParserSyntax::TokenType type)
{
    return FormatRuns::tokenFormat(type);
}

} // namespace Vela

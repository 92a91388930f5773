// SPDX-License-Identifier: MIT
#include "code/codeblockdata.h"
#include "code/codedocument.h"
#include "editor/codeeditor_p.h"

namespace Vela {

namespace {

using Parenthesis = CodeBlockData::Parenthesis;
using Parentheses = QVector<Parenthesis>;

constexpr int Delay = 50; ///< milliseconds from a move of the cursor to the search

Parentheses parenthesesOf(const QTextBlock &block)
{
    const CodeBlockData *const data = CodeBlockData::testBlockData(block);
    return data ? data->parenthesis() : Parentheses();
}

/// Returns the position in the text of what pairs with a parenthesis of a line, or -1. Only the
/// direction counts, so that any closing character pairs with any opening one.
int partnerOf(QTextBlock block, int index)
{
    Parentheses line = parenthesesOf(block);
    const int type = line.at(index).type;
    const int step = type == Parenthesis::Opening ? 1 : -1;
    int depth = 0;
    while (block.isValid()) {
        for (; index >= 0 && index < line.size(); index += step) {
            depth += line.at(index).type == type ? 1 : -1;
            if (depth == 0)
                return block.position() + line.at(index).position;
        }
        block = step > 0 ? block.next() : block.previous();
        line = parenthesesOf(block);
        index = step > 0 ? 0 : line.size() - 1;
    }
    return -1;
}

/// Returns the pair that a parenthesis of a type at a column belongs to: start and end of the span
/// in the text, or two times -1.
QPair<int, int> pairAt(const QTextBlock &block, int column, Parenthesis::Type type)
{
    const Parentheses line = parenthesesOf(block);
    for (int i = 0; i < line.size(); ++i) {
        if (line.at(i).position != column || line.at(i).type != type)
            continue;
        const int partner = partnerOf(block, i);
        const int own = block.position() + column;
        if (partner >= 0)
            return {qMin(own, partner), qMax(own, partner) + 1};
    }
    return {-1, -1};
}

QTextEdit::ExtraSelection selection(QTextDocument *document, int start, int end,
                                    const QTextCharFormat &format)
{
    QTextCursor cursor(document);
    cursor.setPosition(start);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    return {cursor, format};
}

} // namespace

void CodeEditorPrivate::updateParen()
{
    if (formatting.parenMatching && editor->hasFocus())
        startParenTimer(m_selections[ParenSelection].isEmpty() ? Delay : 0);
}

void CodeEditorPrivate::startParenTimer(int milliseconds)
{
    parenTimer.start(milliseconds);
}

void CodeEditorPrivate::matchParens()
{
    QList<QTextEdit::ExtraSelection> found;
    if (document && formatting.parenMatching && !editor->isReadOnly()) {
        const QTextCursor cursor = editor->textCursor();
        const int column = cursor.positionInBlock();
        for (const QPair<int, int> &pair :
             {pairAt(cursor.block(), column - 1, Parenthesis::Closing),
              pairAt(cursor.block(), column, Parenthesis::Opening)}) {
            if (pair.first < 0)
                continue;
            const int start = pair.first;
            const int end = pair.second;
            found += {selection(document, start, end, formatting.rangeFormat),
                      selection(document, start, start + 1, formatting.matchFormat),
                      selection(document, end - 1, end, formatting.matchFormat)};
        }
    }
    if (!found.isEmpty() || !m_selections[ParenSelection].isEmpty())
        setSelections(ParenSelection, found);
}

} // namespace Vela

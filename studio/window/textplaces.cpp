// SPDX-License-Identifier: MIT
#include "studio/window/textplaces.h"

#include <QPlainTextEdit>
#include <QTextBlock>

namespace Studio {

namespace {

QTextCursor cursorAt(const QPlainTextEdit &view, int line, int column)
{
    const QTextDocument &text = *view.document();
    const QTextBlock block = text.findBlockByNumber(qBound(0, line, text.blockCount() - 1));
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + qBound(0, column, block.length() - 1));
    return cursor;
}

void reveal(QPlainTextEdit &view, const QTextCursor &cursor)
{
    const bool inSight =
        cursor.block().isVisible() && view.viewport()->rect().contains(view.cursorRect(cursor));
    view.setTextCursor(cursor);
    if (!inSight)
        view.centerCursor();
}

} // namespace

void goToPlace(QPlainTextEdit &view, int line, int column)
{
    view.setTextCursor(cursorAt(view, line, column));
    view.centerCursor();
}

void selectText(QPlainTextEdit &view, int line, int column, int length)
{
    QTextCursor cursor = cursorAt(view, line, column);
    cursor.setPosition(qMin(cursor.position() + length, view.document()->characterCount() - 1),
                       QTextCursor::KeepAnchor);
    reveal(view, cursor);
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "code/codeblockdata.h"
#include "code/codedocument.h"
#include "code/codelink.h"
#include "editor/codeeditor_p.h"

#include <QTextLayout>

namespace Vela {

int CodeEditorPrivate::columnAt(const QPoint &position, QTextBlock *block) const
{
    *block = editor->cursorForPosition(position).block();
    const QPointF origin =
        editor->blockBoundingGeometry(*block).translated(editor->contentOffset()).topLeft();
    const QPointF point = position - origin;
    const QTextLayout *const layout = block->layout();
    for (int i = 0; i < layout->lineCount(); ++i) {
        const QTextLine line = layout->lineAt(i);
        if (line.naturalTextRect().contains(point))
            return line.xToCursor(point.x(), QTextLine::CursorOnCharacter);
    }
    return -1;
}

CodeLink *CodeEditorPrivate::linkAt(const QPoint &position, QTextBlock *block) const
{
    const int column = document ? columnAt(position, block) : -1;
    const CodeBlockData *const data = column < 0 ? nullptr : CodeBlockData::testBlockData(*block);
    if (!data)
        return nullptr;
    for (CodeLink *const link : data->links()) {
        if (column >= link->start() && column < link->end())
            return link;
    }
    return nullptr;
}

void CodeEditorPrivate::showLink(const QPoint &position)
{
    QTextBlock block;
    const CodeLink *const link = linkAt(position, &block);
    if (!link) {
        hideLink();
        return;
    }
    editor->viewport()->setCursor(Qt::PointingHandCursor);
    // The line may be shorter than what its parser told.
    const int length = block.length() - 1;
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + qBound(0, link->start(), length));
    cursor.setPosition(block.position() + qMin(link->end(), length), QTextCursor::KeepAnchor);
    const QList<QTextEdit::ExtraSelection> &shown = m_selections[LinkSelection];
    if (!shown.isEmpty() && shown.first().cursor.selectionStart() == cursor.selectionStart()
        && shown.first().cursor.selectionEnd() == cursor.selectionEnd())
        return;
    QTextCharFormat format = formatting.linkFormat;
    format.setAnchor(true);
    format.setFontUnderline(true);
    setSelections(LinkSelection, {{cursor, format}});
}

void CodeEditorPrivate::hideLink()
{
    if (!m_selections[LinkSelection].isEmpty())
        setSelections(LinkSelection, {});
    if (editor->viewport()->cursor().shape() == Qt::PointingHandCursor)
        editor->viewport()->setCursor(Qt::IBeamCursor);
}

QString CodeEditorPrivate::messageAt(const QPoint &position) const
{
    QTextBlock block;
    const int column = document ? columnAt(position, &block) : -1;
    const CodeBlockData *const data = column < 0 ? nullptr : CodeBlockData::testBlockData(block);
    if (!data)
        return QString();
    for (const CodeBlockData::SyntaxMessage &message : data->syntaxMessages()) {
        if (column >= message.start && column < message.end)
            return message.message;
    }
    return QString();
}

} // namespace Vela

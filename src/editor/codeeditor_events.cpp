// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "code/codelink.h"
#include "editor/codeeditor.h"
#include "editor/codeeditor_p.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QToolTip>

#include <algorithm>

namespace Vela {

namespace {

constexpr int CursorWidth = 2; ///< pixels, where typing inserts

/// The keypad's Insert counts too.
bool isInsertAlone(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Insert && !(event.modifiers() & ~Qt::KeypadModifier);
}

/// The arrows and the keys of pages and ends.
bool isNavigation(const QKeyEvent &event)
{
    return event.key() >= Qt::Key_Home && event.key() <= Qt::Key_PageDown;
}

bool breaksLine(QKeyEvent *event)
{
    return event->matches(QKeySequence::InsertParagraphSeparator)
        || event->matches(QKeySequence::InsertLineSeparator);
}

} // namespace

void CodeEditorPrivate::updateCursorWidth()
{
    editor->setCursorWidth(editor->overwriteMode() ? editor->fontMetrics().averageCharWidth()
                                                   : CursorWidth);
}

// Shift makes no difference: a separator inside a line would be one line here and two in the file.
void CodeEditorPrivate::breakLine()
{
    QTextCursor cursor = editor->textCursor();
    const QTextBlock first = document->findBlock(cursor.selectionStart());
    const QString before = first.text().left(cursor.selectionStart() - first.position());
    const auto end =
        std::find_if_not(before.begin(), before.end(), [](QChar c) { return c.isSpace(); });
    cursor.beginEditBlock();
    cursor.insertBlock();
    cursor.insertText(before.left(int(end - before.begin())));
    cursor.endEditBlock();
    editor->setTextCursor(cursor);
    editor->ensureCursorVisible();
}

void CodeEditor::keyPressEvent(QKeyEvent *event)
{
    if (isInsertAlone(*event)) {
        setOverwriteMode(!overwriteMode());
        d->updateCursorWidth();
    }
    viewport()->setCursor(Qt::BlankCursor);
    d->hoverTimer.stop();
    d->pendingHoveredBlock = QTextBlock();
    if (d->completion.takesKey(event))
        return;
    if (d->document && !isReadOnly() && breaksLine(event)) {
        d->breakLine();
    } else {
        const QScopedValueRollback<bool> passes(d->passesHiddenLines, isNavigation(*event));
        QPlainTextEdit::keyPressEvent(event);
    }
    if (d->document && !isReadOnly())
        d->completion.keyTyped(*event);
    const QPoint mouse = viewport()->mapFromGlobal(QCursor::pos());
    if (event->key() == Qt::Key_Control && viewport()->rect().contains(mouse))
        d->showLink(mouse);
}

void CodeEditor::keyReleaseEvent(QKeyEvent *event)
{
    QPlainTextEdit::keyReleaseEvent(event);
    if (event->key() == Qt::Key_Control)
        d->hideLink();
}

void CodeEditor::inputMethodEvent(QInputMethodEvent *event)
{
    QPlainTextEdit::inputMethodEvent(event);
    const QString &typed = event->commitString();
    if (d->document && !isReadOnly() && !typed.isEmpty())
        d->completion.keyTyped({QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, typed});
}

void CodeEditor::mousePressEvent(QMouseEvent *event)
{
    const QTextBlock folded = d->foldedBlockAt(event->pos());
    if (event->button() == Qt::LeftButton && folded.isValid()) {
        d->hoverFolded(QTextBlock());
        toggleBlockVisible(folded);
        return;
    }
    QPlainTextEdit::mousePressEvent(event);
}

void CodeEditor::mouseMoveEvent(QMouseEvent *event)
{
    QPlainTextEdit::mouseMoveEvent(event);
    if (viewport()->cursor().shape() == Qt::BlankCursor)
        viewport()->setCursor(Qt::IBeamCursor);
    const bool isDragging = event->buttons() != Qt::NoButton;
    d->hoverFolded(isDragging ? QTextBlock() : d->foldedBlockAt(event->pos()));
    if (event->modifiers() & Qt::ControlModifier)
        d->showLink(event->pos());
    else
        d->hideLink();
}

void CodeEditor::mouseReleaseEvent(QMouseEvent *event)
{
    QPlainTextEdit::mouseReleaseEvent(event);
    // The end of a selection that happens to be on a link is no click.
    if (event->button() != Qt::LeftButton || !(event->modifiers() & Qt::ControlModifier)
        || textCursor().hasSelection())
        return;
    QTextBlock block;
    if (CodeLink *const link = d->linkAt(event->pos(), &block)) {
        d->hideLink();
        link->activate();
    }
}

bool CodeEditor::viewportEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::ToolTip: {
        auto *const help = static_cast<QHelpEvent *>(event);
        const bool isControlHeld = QGuiApplication::keyboardModifiers() & Qt::ControlModifier;
        const QString message = isControlHeld ? QString() : d->messageAt(help->pos());
        // Tool tips take for rich text what looks like it.
        QToolTip::showText(
            help->globalPos(),
            Qt::mightBeRichText(message) ? Qt::convertFromPlainText(message) : message, viewport());
        event->setAccepted(!message.isEmpty());
        return true;
    }
    case QEvent::ContextMenu: {
        const auto *const menu = static_cast<QContextMenuEvent *>(event);
        if (menu->reason() == QContextMenuEvent::Mouse && !textCursor().hasSelection())
            setTextCursor(cursorForPosition(menu->pos()));
        break;
    }
    case QEvent::Leave:
        d->hoverFolded(QTextBlock());
        d->hideLink();
        break;
    default:
        break;
    }
    return QPlainTextEdit::viewportEvent(event);
}

void CodeEditor::focusOutEvent(QFocusEvent *event)
{
    QPlainTextEdit::focusOutEvent(event);
    d->hideLink();
}

void CodeEditor::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == d->hoverTimer.timerId())
        d->showHovered();
    else
        QPlainTextEdit::timerEvent(event);
}

} // namespace Vela

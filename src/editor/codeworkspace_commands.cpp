// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "editor/codeworkspace_p.h"
#include "editor/gotodlg.h"
#include "frame/interface.h"
#include "project/messages.h"

#include <QComboBox>
#include <QMessageBox>
#include <QTextBlock>
#include <algorithm>

namespace Vela {

namespace {

using SyntaxMessage = CodeBlockData::SyntaxMessage;

QVector<SyntaxMessage> messagesOf(const QTextBlock &block)
{
    const CodeBlockData *const data = CodeBlockData::testBlockData(block);
    return data ? data->syntaxMessages() : QVector<SyntaxMessage>();
}

void placeCursor(CodeEditor &editor, const QTextBlock &block, int column)
{
    QTextCursor cursor = editor.textCursor();
    cursor.setPosition(block.position() + column);
    editor.setTextCursor(cursor);
}

} // namespace

void CodeWorkspacePrivate::goToNext(MessageKind kind)
{
    if (!target())
        return;
    const QTextCursor cursor = editor->textCursor();
    int from = cursor.positionInBlock() + 1;
    for (QTextBlock block = cursor.block(); block.isValid(); block = block.next(), from = 0) {
        const QVector<SyntaxMessage> found = messagesOf(block);
        const auto message =
            std::find_if(found.begin(), found.end(), [=](const SyntaxMessage &candidate) {
                return candidate.type == kind && candidate.start >= from;
            });
        if (message != found.end()) {
            placeCursor(*editor, block, message->start);
            return;
        }
    }
}

void CodeWorkspacePrivate::goToPrevious(MessageKind kind)
{
    if (!target())
        return;
    const QTextCursor cursor = editor->textCursor();
    int before = cursor.positionInBlock();
    for (QTextBlock block = cursor.block(); block.isValid();) {
        const QVector<SyntaxMessage> found = messagesOf(block);
        const auto message =
            std::find_if(found.rbegin(), found.rend(), [=](const SyntaxMessage &candidate) {
                return candidate.type == kind && candidate.end < before;
            });
        if (message != found.rend()) {
            placeCursor(*editor, block, message->start);
            return;
        }
        block = block.previous();
        before = block.length();
    }
}

void CodeWorkspacePrivate::format(bool indentOnly)
{
    CodeDocument *const document = target();
    if (!document)
        return;
    QTextCursor cursor = editor->textCursor();
    document->formatLines(document->findBlock(cursor.selectionStart()).blockNumber(),
                          document->findBlock(cursor.selectionEnd()).blockNumber(), indentOnly);
    cursor.clearSelection();
    editor->setTextCursor(cursor);
}

void CodeWorkspace::errorActivated(int row)
{
    const auto *const messages = qobject_cast<const Messages *>(d->messages->model());
    if (!messages || row < 0 || row >= messages->rowCount())
        return;
    const Message message = messages->at(unsigned(row), Message::Any);
    goTo(message.line, message.column);
    d->editor->setFocus();
}

void CodeWorkspace::goToLine()
{
    const QPointer<CodeDocument> document = d->target();
    if (!document)
        return;
    QWidget *const window = d->host.mainWindow();
    GoToDlg dialog(d->editor->currentLine().line + 1, window);
    if (dialog.exec() != QDialog::Accepted || !document || document != d->target())
        return;
    int line = dialog.line();
    if (line > document->blockCount()) {
        if (QMessageBox::question(window, dialog.windowTitle(),
                                  tr("Invalid line! Do you want go to the last line?"),
                                  QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes)
                != QMessageBox::Yes
            || !document || document != d->target())
            return;
        line = document->blockCount();
    }
    d->editor->setCurrentLine(unsigned(line - 1), CodeEditor::TopPlace);
}

void CodeWorkspace::prevError()
{
    d->goToPrevious(SyntaxMessage::Error);
}

void CodeWorkspace::nextError()
{
    d->goToNext(SyntaxMessage::Error);
}

void CodeWorkspace::prevDepr()
{
    d->goToPrevious(SyntaxMessage::Deprecation);
}

void CodeWorkspace::nextDepr()
{
    d->goToNext(SyntaxMessage::Deprecation);
}

void CodeWorkspace::comment()
{
    CodeDocument *const document = d->target();
    const QString mark = document ? document->commentString() : QString();
    if (mark.isEmpty())
        return;
    const QTextCursor selection = d->editor->textCursor();
    int end = selection.selectionEnd();
    QTextBlock block = document->findBlock(selection.selectionStart());
    const bool isComment = block.text().startsWith(mark);

    QTextCursor cursor(document);
    cursor.beginEditBlock();
    for (; block.isValid() && block.position() < end; block = block.next()) {
        cursor.setPosition(block.position());
        if (!isComment) {
            cursor.insertText(mark);
            end += mark.size();
        } else if (block.text().startsWith(mark)) {
            cursor.setPosition(block.position() + mark.size(), QTextCursor::KeepAnchor);
            cursor.removeSelectedText();
            end -= mark.size();
        }
    }
    cursor.endEditBlock();
}

void CodeWorkspace::foldAll()
{
    if (d->target())
        d->editor->foldAll();
}

void CodeWorkspace::unfoldAll()
{
    if (d->target())
        d->editor->unfoldAll();
}

void CodeWorkspace::autoIndent()
{
    d->format(true);
}

void CodeWorkspace::autoFormat()
{
    d->format(false);
}

} // namespace Vela

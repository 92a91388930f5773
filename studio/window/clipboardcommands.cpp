// SPDX-License-Identifier: MIT
#include "studio/window/clipboardcommands.h"

#include "studio/window/soundwaveform.h"

#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>

namespace Studio {

ClipboardCommands::ClipboardCommands(QObject *parent)
    : QObject(parent)
{
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { follow(now); });
}

void ClipboardCommands::follow(QWidget *focused)
{
    if (!focused || qobject_cast<QMenu *>(focused) || qobject_cast<QMenuBar *>(focused))
        return;
    if (m_target)
        m_target->disconnect(this);
    m_target = nullptr;
    if (auto *line = qobject_cast<QLineEdit *>(focused)) {
        m_target = line;
        connect(line, &QLineEdit::selectionChanged, this, &ClipboardCommands::changed);
    } else if (auto *text = qobject_cast<QPlainTextEdit *>(focused)) {
        m_target = text;
        connect(text, &QPlainTextEdit::selectionChanged, this, &ClipboardCommands::changed);
    } else if (auto *sound = qobject_cast<SoundWaveform *>(focused)) {
        m_target = sound;
    }
    Q_EMIT changed();
}

bool ClipboardCommands::hasSelection() const
{
    if (const auto *line = qobject_cast<QLineEdit *>(m_target))
        return line->hasSelectedText() && line->echoMode() == QLineEdit::Normal;
    const auto *text = qobject_cast<QPlainTextEdit *>(m_target);
    return text && text->textCursor().hasSelection();
}

bool ClipboardCommands::isEditable() const
{
    if (const auto *line = qobject_cast<QLineEdit *>(m_target))
        return !line->isReadOnly();
    const auto *text = qobject_cast<QPlainTextEdit *>(m_target);
    return text && !text->isReadOnly();
}

bool ClipboardCommands::canCut() const
{
    return hasSelection() && isEditable();
}

bool ClipboardCommands::canCopy() const
{
    return hasSelection();
}

bool ClipboardCommands::canPaste() const
{
    return isEditable();
}

bool ClipboardCommands::canSelectAll() const
{
    return m_target;
}

void ClipboardCommands::cut()
{
    run("cut");
}

void ClipboardCommands::copy()
{
    run("copy");
}

void ClipboardCommands::paste()
{
    run("paste");
}

void ClipboardCommands::selectAll()
{
    run("selectAll");
}

// The kinds of widget that can do these have slots of these names.
void ClipboardCommands::run(const char *slot)
{
    if (m_target)
        QMetaObject::invokeMethod(m_target, slot);
}

} // namespace Studio

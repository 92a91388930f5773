// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

class QWidget;

namespace Studio {

/// What the menu does with the selected text, in the line or the text that has the focus; a menu
/// that is open takes none away.
class ClipboardCommands : public QObject
{
    Q_OBJECT

public:
    explicit ClipboardCommands(QObject *parent = nullptr);

    bool canCut() const;
    bool canCopy() const;
    bool canPaste() const;
    bool canSelectAll() const;
    void cut();
    void copy();
    void paste();
    void selectAll();

Q_SIGNALS:
    /// What can be done has changed.
    void changed();

private:
    void follow(QWidget *focused);
    bool hasSelection() const;
    bool isEditable() const;
    void run(const char *slot);

    QPointer<QWidget> m_target; ///< a QLineEdit or a QPlainTextEdit
};

} // namespace Studio

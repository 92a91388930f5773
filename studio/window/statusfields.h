// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class QStatusBar;
class QToolButton;

namespace Studio {

/// The three fields at the right of the status bar. A click, or Space on the focused field, acts.
class StatusFields : public QObject
{
    Q_OBJECT

public:
    /// What the fields say is the current editor's: for a text its position, the number of its
    /// errors, and its encoding.
    enum Field { PositionField, SecondField, LastField, FieldCount };

    explicit StatusFields(QStatusBar *bar);

    /// Ignores a field that does not exist.
    void setText(int field, const QString &text);
    QToolButton *button(Field field) const;

Q_SIGNALS:
    void activated(int field);

private:
    QToolButton *m_buttons[FieldCount];
};

} // namespace Studio

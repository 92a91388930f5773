// SPDX-License-Identifier: MIT
#pragma once

#include <QAction>
#include <QDialog>
#include <QList>
#include <QPointer>

class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace Studio {

/// Finds an action by a few letters of its text and runs it. Only enabled actions are offered.
class CommandPalette : public QDialog
{
    Q_OBJECT

public:
    struct Command
    {
        QString group; ///< shown before the action's own text
        QPointer<QAction> action;
    };

    CommandPalette(const QList<Command> &commands, QWidget *parent);

    /// Returns how well \a text fits what was typed: less is better, negative is not at all. The
    /// letters typed must come in \a text in their order; whole words and early places are better.
    static int rank(const QString &text, const QString &typed);

    /// Returns the action that the user chose, or null.
    QAction *chosen() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void list();
    void choose(QListWidgetItem *item);

    QList<Command> m_commands;
    QLineEdit *m_typed;
    QListWidget *m_list;
    QPointer<QAction> m_chosen;
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QKeySequenceEdit;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace Studio {

class ActionRegistry;

/// The table of actions with their shortcuts, to search by text or by keys and to change.
class ShortcutsPage : public QWidget
{
    Q_OBJECT

public:
    explicit ShortcutsPage(ActionRegistry &actions, QWidget *parent = nullptr);

private:
    QLayout *makeEditRow();
    void fill();
    void filter();
    void showCurrent();
    void storeCurrent();
    void resetCurrent();
    void showConflicts();
    void updateRow(QTreeWidgetItem *item);
    QString currentKey() const;

    ActionRegistry &m_actions;
    QLineEdit *m_search;
    QTreeWidget *m_list;
    QKeySequenceEdit *m_keys;
    QPushButton *m_clear;
    QPushButton *m_reset;
    QLabel *m_conflict;
};

} // namespace Studio

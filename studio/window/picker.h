// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <QIcon>
#include <QVector>

class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace Studio {

/// Finds one of many things, such as commands, files or places, by a few letters of its text.
class Picker : public QDialog
{
    Q_OBJECT

public:
    struct Entry
    {
        QString text;
        QString detail; ///< at the right end of the row; it is not searched
        QIcon icon;
    };

    /// \a hint says what to type. The dialog places itself over the upper part of \a parent.
    Picker(const QString &title, const QString &hint, const QVector<Entry> &entries,
           QWidget *parent);

    /// Returns how well \a text fits what was typed: less is better, negative is not at all. The
    /// letters typed must come in \a text in their order; whole words and early places are better.
    static int rank(const QString &text, const QString &typed);

    /// Asks and returns the index of the entry that the user chose, or -1.
    int pick();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void list();
    void choose(QListWidgetItem *item);

    const QVector<Entry> m_entries;
    QLineEdit *m_typed;
    QListWidget *m_list;
    int m_chosen = -1;
};

} // namespace Studio

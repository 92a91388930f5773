// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QDialog>
#include <QList>
#include <functional>
#include <memory>

class QTreeWidgetItem;

namespace Ui {
class RecoveryDialog;
}

namespace Studio {

/// Something of a file that was left behind, and what can be done with it.
struct RecoveryItem
{
    enum Kind { Text, Save };
    /// What the user compares.
    struct Preview
    {
        QString present; ///< what the file holds now
        QString left;
        QString note; ///< why there is nothing to compare; empty otherwise
    };
    /// Does something with the item. Returns false, with the reason in \a error, on failure.
    using Act = std::function<bool(QString *error)>;

    Kind kind;
    QString file;        ///< as the user knows it
    QString place;       ///< where it was left
    QDateTime time;      ///< when it was left
    QString presentFile; ///< what is to be said of the file as it is now
    std::function<Preview()> preview;
    Act recover;
    Act discard;
};

/// Offers to recover, or to discard, what was left behind. Each of the two acts on what is ticked,
/// of which there is one for each file at most; closing the dialog leaves the rest for the next
/// time.
class RecoveryDialog : public QDialog
{
    Q_OBJECT

public:
    RecoveryDialog(const QList<RecoveryItem> &items, QWidget *parent);
    ~RecoveryDialog() override;

private:
    void makeButtons();
    void addRow(int index);
    const RecoveryItem &itemOf(const QTreeWidgetItem &row) const;
    void untickOthers(const QTreeWidgetItem *row);
    void discardTicked();
    /// Takes the ticked rows away for which \a act succeeds and reports the others.
    void forTicked(RecoveryItem::Act RecoveryItem::*act);
    void showPreview();

    const QList<RecoveryItem> m_items;
    std::unique_ptr<Ui::RecoveryDialog> m_ui;
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/recovery.h"

#include <QDialog>
#include <memory>

namespace Ui {
class RecoveryDialog;
}

namespace Studio {

/// Offers to recover, or to clear away, what interrupted saves left behind. Each of the two acts on
/// the files that are ticked; closing the dialog leaves the rest for the next time.
class RecoveryDialog : public QDialog
{
    Q_OBJECT

public:
    RecoveryDialog(const QList<InterruptedSave> &saves, QWidget *parent);
    ~RecoveryDialog() override;

Q_SIGNALS:
    /// \a file, an absolute name, was given its interrupted content.
    void recovered(const QString &file);

private:
    void addRow(int index);
    void recoverTicked();
    void discardTicked();
    /// Takes the ticked rows away for which \a act succeeds and reports the others.
    template <typename Act>
    void forTicked(Act act);
    void showPreview();

    QList<InterruptedSave> m_saves;
    std::unique_ptr<Ui::RecoveryDialog> m_ui;
};

} // namespace Studio

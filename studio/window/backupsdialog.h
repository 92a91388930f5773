// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/backups.h"

#include <QDialog>
#include <memory>

namespace Ui {
class BackupsDialog;
}

namespace Studio {

/// Lets the user choose a backup to restore.
class BackupsDialog : public QDialog
{
    Q_OBJECT

public:
    BackupsDialog(const QList<Backup> &backups, const QString &folder, QWidget *parent);
    ~BackupsDialog() override;

    /// Returns the chosen backup; one without a name if none is.
    Backup chosen() const;

private:
    QList<Backup> m_backups;
    std::unique_ptr<Ui::BackupsDialog> m_ui;
};

} // namespace Studio

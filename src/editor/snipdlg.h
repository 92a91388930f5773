// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QDialog>
#include <memory>

namespace Vela {

class Interface;
class SnipDlgPrivate;

/// The editor of one code snippet.
class VELA_EXPORT SnipDlg : public QDialog
{
    Q_OBJECT

public:
    /// \a pathOrText is the absolute path of an existing snippet file, or else the first text of a
    /// new one.
    SnipDlg(Interface &host, const QString &pathOrText);
    ~SnipDlg() override;

private Q_SLOTS:
    void on_saveBut_clicked();
    void on_previewBut_clicked();
    void on_saveTSBut_clicked();
    void on_insertBut_clicked();
    void on_add_clicked();
    void on_del_clicked();
    void on_up_clicked();
    void on_down_clicked();

private:
    std::unique_ptr<SnipDlgPrivate> d;
};

} // namespace Vela

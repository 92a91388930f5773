// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class SnipFieldDlg;
}

namespace Vela {

class SnipField;

/// Asks what a new field of a snippet shall be.
class SnipFieldDlg : public QDialog
{
    Q_OBJECT

public:
    explicit SnipFieldDlg(QWidget *parent);
    ~SnipFieldDlg() override;

    /// Returns a new field of what was entered, which is the caller's.
    SnipField *createField() const;

private Q_SLOTS:
    void on_type_currentIndexChanged(int index);

private:
    std::unique_ptr<Ui::SnipFieldDlg> m_form;
};

} // namespace Vela

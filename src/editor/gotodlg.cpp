// SPDX-License-Identifier: MIT
#include "editor/gotodlg.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QSpinBox>
#include <limits>

namespace Vela {

GoToDlg::GoToDlg(int line, QWidget *parent)
    : QDialog(parent)
    , m_line(new QSpinBox)
{
    setWindowTitle(tr("Go to line"));
    m_line->setRange(1, std::numeric_limits<int>::max());
    m_line->setValue(line);
    m_line->selectAll();
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *const rows = new QFormLayout(this);
    rows->addRow(tr("Line:"), m_line);
    rows->addRow(buttons);
}

int GoToDlg::line() const
{
    return m_line->value();
}

} // namespace Vela

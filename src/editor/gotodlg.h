// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QSpinBox;

namespace Vela {

/// Asks for the number of a line, from 1. It does not know how many there are.
class GoToDlg : public QDialog
{
    Q_OBJECT

public:
    GoToDlg(int line, QWidget *parent);

    int line() const;

private:
    QSpinBox *m_line;
};

} // namespace Vela

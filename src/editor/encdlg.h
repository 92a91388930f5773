// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QTreeWidget;

namespace Vela {

/// Asks for an encoding, by its index in TextCodecs.
class EncDlg : public QDialog
{
    Q_OBJECT

public:
    EncDlg(int codec, QWidget *parent);

    int codec() const;

private:
    QTreeWidget *m_encodings;
};

} // namespace Vela

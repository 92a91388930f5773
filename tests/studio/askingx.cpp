// SPDX-License-Identifier: MIT
#include <QDialog>
#include <QMessageBox>

#include <cstdio>

namespace Vela {
class ExtensionManager;
}

/// A module that opens dialogs when it is loaded and prints how they ended.
extern "C" Q_DECL_EXPORT void registerExtension(Vela::ExtensionManager *)
{
    const auto answer = QMessageBox::question(nullptr, QStringLiteral("Lost?"),
                                              QStringLiteral("Shall the file\nbe written over?"));
    std::puts(answer == QMessageBox::No ? "no" : "yes");

    QDialog dialog;
    dialog.setWindowTitle(QStringLiteral("Pick a colour"));
    std::puts(dialog.exec() == QDialog::Rejected ? "closed" : "taken");
}

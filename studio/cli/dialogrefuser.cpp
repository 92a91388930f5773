// SPDX-License-Identifier: MIT
#include "studio/cli/dialogrefuser.h"

#include "studio/cli/console.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEvent>
#include <QMessageBox>

namespace Studio {

namespace {

void refuse(QDialog *dialog)
{
    const auto *box = qobject_cast<QMessageBox *>(dialog);
    QAbstractButton *no = box ? box->button(QMessageBox::No) : nullptr;
    if (no)
        no->click();
    else
        dialog->reject();
}

} // namespace

DialogRefuser::DialogRefuser(QObject *parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool DialogRefuser::hasRefused() const
{
    return m_refused;
}

bool DialogRefuser::eventFilter(QObject *watched, QEvent *event)
{
    auto *dialog = qobject_cast<QDialog *>(watched);
    if (dialog && event->type() == QEvent::Show) {
        m_refused = true;
        const auto *box = qobject_cast<QMessageBox *>(dialog);
        Console::report(box ? box->windowTitle() + QLatin1Char(' ') + box->text().simplified()
                            : dialog->windowTitle());
        // The dialog's own event loop begins behind this event.
        QMetaObject::invokeMethod(
            dialog, [dialog] { refuse(dialog); }, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "support/dialoganswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QTest>

namespace {

QString withoutMnemonic(QString text)
{
    return text.remove(QLatin1Char('&'));
}

DialogAnswerer::Dialog describe(const QDialog *dialog)
{
    DialogAnswerer::Dialog record;
    record.className = dialog->metaObject()->className();
    record.title = dialog->windowTitle();
    const auto *box = qobject_cast<const QMessageBox *>(dialog);
    if (!box)
        return record;
    record.text = box->text();
    record.icon = box->icon();
    const auto buttons = box->buttons();
    for (const QAbstractButton *button : buttons)
        record.buttons.append(withoutMnemonic(button->text()));
    if (box->defaultButton())
        record.defaultButton = box->standardButton(box->defaultButton());
    if (const QCheckBox *check = box->checkBox()) {
        record.checkBox = check->text();
        record.checked = check->isChecked();
    }
    return record;
}

/// Returns the button with which a file dialog accepts.
QAbstractButton *acceptButton(const QFileDialog *dialog)
{
    const auto *box = dialog->findChild<QDialogButtonBox *>();
    if (!box)
        return nullptr;
    const auto buttons = box->buttons();
    for (QAbstractButton *button : buttons) {
        if (box->buttonRole(button) == QDialogButtonBox::AcceptRole)
            return button;
    }
    return nullptr;
}

} // namespace

DialogAnswerer::DialogAnswerer()
{
    qApp->installEventFilter(this);
}

DialogAnswerer::~DialogAnswerer()
{
    if (!m_answers.empty() && !QTest::currentTestFailed())
        fail(QStringLiteral("%1 answers were not asked for").arg(m_answers.size()));
}

void DialogAnswerer::answer(QMessageBox::StandardButton button, CheckBox checkBox)
{
    handle([=](QDialog *dialog) { clickButton(dialog, button, checkBox); });
}

void DialogAnswerer::chooseFiles(const QStringList &names)
{
    handle([=](QDialog *dialog) { choose(dialog, names); });
}

void DialogAnswerer::cancel()
{
    handle([](QDialog *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
}

void DialogAnswerer::handle(std::function<void(QDialog *)> act)
{
    m_answers.push(std::move(act));
}

bool DialogAnswerer::isDone() const
{
    return m_answers.empty() && unexpected.isEmpty();
}

bool DialogAnswerer::eventFilter(QObject *watched, QEvent *event)
{
    auto *dialog = qobject_cast<QDialog *>(watched);
    if (event->type() == QEvent::Show && !event->spontaneous() && dialog && dialog->isModal()) {
        // The dialog is on its way up: it is met in its own event loop.
        QMetaObject::invokeMethod(
            this,
            [this, guard = QPointer<QDialog>(dialog)] {
                if (guard && guard->isVisible())
                    meet(guard);
            },
            Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void DialogAnswerer::meet(QDialog *dialog)
{
    dialogs.append(describe(dialog));
    const QPointer<QDialog> guard(dialog);
    const QString met = QStringLiteral("%1 \"%2\": %3")
                            .arg(QString::fromUtf8(dialogs.last().className), dialogs.last().title,
                                 dialogs.last().text);
    if (m_answers.empty()) {
        fail(QStringLiteral("no answer for ") + met);
    } else {
        const auto act = std::move(m_answers.front());
        m_answers.pop();
        act(dialog);
        if (guard && guard->isVisible())
            fail(QStringLiteral("left open: ") + met);
    }
    if (guard && guard->isVisible())
        guard->reject();
}

void DialogAnswerer::clickButton(QDialog *dialog, QMessageBox::StandardButton button,
                                 CheckBox checkBox)
{
    auto *box = qobject_cast<QMessageBox *>(dialog);
    QAbstractButton *target = box ? box->button(button) : nullptr;
    if (!target) {
        fail(QStringLiteral("no such button to click"));
        return;
    }
    if (checkBox == CheckBox::Tick) {
        if (!box->checkBox()) {
            fail(QStringLiteral("no check box to tick"));
            return;
        }
        // The middle of a wide check box is not part of what can be clicked.
        QTest::mouseClick(box->checkBox(), Qt::LeftButton, {},
                          QPoint(8, box->checkBox()->height() / 2));
    }
    QTest::mouseClick(target, Qt::LeftButton);
}

void DialogAnswerer::choose(QDialog *dialog, const QStringList &names)
{
    const auto *fileDialog = qobject_cast<QFileDialog *>(dialog);
    auto *edit =
        fileDialog ? fileDialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")) : nullptr;
    QAbstractButton *accept = fileDialog ? acceptButton(fileDialog) : nullptr;
    if (!edit || !accept) {
        fail(QStringLiteral("not a file dialog"));
        return;
    }
    // Several names stand in the field in quotes.
    edit->setText(names.size() == 1
                      ? names.first()
                      : QStringLiteral("\"%1\"").arg(names.join(QStringLiteral("\" \""))));
    QTest::mouseClick(accept, Qt::LeftButton);
}

void DialogAnswerer::fail(const QString &what)
{
    unexpected.append(what);
    QTest::qFail(qPrintable(what), __FILE__, __LINE__);
}

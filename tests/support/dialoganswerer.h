// SPDX-License-Identifier: MIT
#pragma once

#include <QMessageBox>
#include <QObject>
#include <QStringList>
#include <QVector>
#include <functional>
#include <queue>

class QDialog;

/// Answers the modal dialogs of this process as a user would, while it lives.
///
/// A test queues the answers in the order in which the dialogs will come, then runs what asks.
/// Each dialog that comes up is written down and takes the next answer. A dialog that nothing is
/// queued for, that cannot take its answer or that stays open after it fails the running test and
/// is rejected, so that the test goes on; an answer that nobody took fails the test at the end.
class DialogAnswerer : public QObject
{
    Q_OBJECT

public:
    /// A dialog as it stood before it was answered.
    struct Dialog
    {
        QByteArray className;
        QString title;
        QString text;        ///< of a message box
        QStringList buttons; ///< of a message box, without mnemonics, as Qt orders them
        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QString checkBox;     ///< its text; empty without one
        bool checked = false; ///< whether the check box was ticked
    };
    /// Whether the check box of a message box is ticked before the button is clicked.
    enum class CheckBox { Leave, Tick };

    DialogAnswerer();
    ~DialogAnswerer() override;

    /// Clicks a button of a message box.
    void answer(QMessageBox::StandardButton button, CheckBox checkBox = CheckBox::Leave);
    /// Chooses files or a folder in a file dialog, as absolute names.
    void chooseFiles(const QStringList &names);
    /// Closes a dialog of any kind without an answer, as Escape does.
    void cancel();
    /// Hands any dialog to \a act, which must close it.
    void handle(std::function<void(QDialog *)> act);

    /// Returns whether every answer was taken and every dialog had one.
    bool isDone() const;

    QVector<Dialog> dialogs; ///< in the order of their appearance
    QStringList unexpected;  ///< what went wrong, in words

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void meet(QDialog *dialog);
    void clickButton(QDialog *dialog, QMessageBox::StandardButton button, CheckBox checkBox);
    void choose(QDialog *dialog, const QStringList &names);
    void fail(const QString &what);

    std::queue<std::function<void(QDialog *)>> m_answers;
};

// SPDX-License-Identifier: MIT
#include "frame/interface.h"

#include "frame/controldescriptor.h"
#include "frame/itemsdlg.h"
#include "frame/menu.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QMessageBox>
#include <QPointer>

namespace Vela {

namespace {

Interface *globalInterface = nullptr;

/// What yesNoOption() keeps in its setting.
enum StoredAnswer { Ask = 0, AlwaysYes = 1, AlwaysNo = 2 };

enum class Answer { No, Yes, NoAndRemember, YesAndRemember };

QMessageBox *newQuestionBox()
{
    auto *box = new QMessageBox;
    box->setIcon(QMessageBox::Question);
    box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box->setCheckBox(new QCheckBox);
    return box;
}

/// Returns the one box of all questions. No widget may outlive the application, so a routine of
/// its end deletes the box; a later application in the same process gets a new one.
QMessageBox &sharedQuestionBox()
{
    static QPointer<QMessageBox> box;
    if (!box) {
        box = newQuestionBox();
        qAddPostRoutine([] { delete box; });
    }
    return *box;
}

Answer askWith(QMessageBox &box, const QString &title, const QString &text,
               Interface::YNButton button)
{
    box.setDefaultButton(button == Interface::YesButton ? QMessageBox::Yes : QMessageBox::No);
    box.setWindowTitle(title);
    box.setText(text);
    box.checkBox()->setText(
        QCoreApplication::translate("Vela::Interface", "Don't show this again"));
    box.checkBox()->setChecked(false);
    const bool yes = box.exec() == QMessageBox::Yes;
    if (box.checkBox()->isChecked())
        return yes ? Answer::YesAndRemember : Answer::NoAndRemember;
    return yes ? Answer::Yes : Answer::No;
}

Answer ask(const QString &title, const QString &text, Interface::YNButton button)
{
    QMessageBox &shared = sharedQuestionBox();
    if (!shared.isVisible())
        return askWith(shared, title, text, button);
    // Something in the event loop of a first question asks a second one, such as a file that
    // changes on disk: the first must stay as the user sees it.
    const std::unique_ptr<QMessageBox> own(newQuestionBox());
    return askWith(*own, title, text, button);
}

bool isYes(Answer answer)
{
    return answer == Answer::Yes || answer == Answer::YesAndRemember;
}

} // namespace

Interface *Interface::instance()
{
    return globalInterface;
}

bool Interface::yesNoBool(const QString &title, const QString &text, const QString &option,
                          bool defaultValue, YNButton button)
{
    Interface *host = instance();
    if (!host || !host->option(option, defaultValue).toBool())
        return true;
    const Answer answer = ask(title, text, button);
    // Not to be asked means Yes from then on, so a No is never what is kept.
    if (answer == Answer::YesAndRemember)
        host->setOption(option, false);
    return isYes(answer);
}

bool Interface::yesNoOption(const QString &title, const QString &text, const QString &option,
                            int defaultValue, YNButton button)
{
    Interface *host = instance();
    if (!host)
        return defaultValue < AlwaysNo;
    const int stored = host->option(option, defaultValue).toInt();
    if (stored != Ask)
        return stored == AlwaysYes;
    const Answer answer = ask(title, text, button);
    if (answer == Answer::YesAndRemember)
        host->setOption(option, int(AlwaysYes));
    else if (answer == Answer::NoAndRemember)
        host->setOption(option, int(AlwaysNo));
    return isYes(answer);
}

QPoint Interface::scaleToDPI(const QPoint &point) const
{
    return QPoint(scaleToDPI(point.x()), scaleToDPI(point.y()));
}

QRect Interface::scaleToDPI(const QRect &rect) const
{
    return QRect(scaleToDPI(rect.left()), scaleToDPI(rect.top()), scaleToDPI(rect.width()),
                 scaleToDPI(rect.height()));
}

Interface::~Interface() = default;

QString Interface::toolTip(int id) const
{
    return translate(id);
}

QString Interface::statusTip(int) const
{
    return QString();
}

QWidget *Interface::actionControl(const QString &name, QAction *action, Menu *menu)
{
    if (menu)
        menu->addAction(action);
    const ActionControl control(action);
    return createControl(name, &control);
}

ItemsDialog *Interface::itemsDialog(QWidget *parent, const char *iconName, const QString &title,
                                    QAbstractItemModel *model, int row)
{
    auto *dialog = new ItemsDlg(parent, title, model, row);
    dialog->setWindowIcon(icon(QString::fromUtf8(iconName)));
    return dialog;
}

} // namespace Vela

void setGlobalInterface(Vela::Interface *interface)
{
    Vela::globalInterface = interface;
}

// SPDX-License-Identifier: MIT
#include "frame/controldescriptor.h"
#include "frame/menu.h"
#include "studio/host.h"
#include "studio/progress.h"
#include "studio/toolbararea.h"
#include "support/dialoganswerer.h"
#include "support/memoryarchive.h"
#include "support/testfile.h"
#include "support/testproject.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QListView>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <climits>
#include <memory>

using namespace Studio;

namespace {

class Texts : public Vela::Translator
{
public:
    QString translate(int id) const override
    {
        return QStringLiteral("%1 %2").arg(language).arg(id);
    }
    QString toolTip(int id) const override
    {
        return id < 100 ? QStringLiteral("tip %1").arg(id) : QString();
    }

    QString language = QStringLiteral("Text");
};

class Receiver : public QObject
{
    Q_OBJECT

public:
    QVariantList calls;

public Q_SLOTS:
    void add()
    {
        calls.append(QStringLiteral("add"));
    }
    void show(bool on)
    {
        calls.append(on);
    }

Q_SIGNALS:
    void enabled(bool on);
};

// Stands for an object of a class that the host only passes on.
template <typename Class>
Class *someone(int number)
{
    static char places[8];
    return reinterpret_cast<Class *>(&places[number]);
}

} // namespace

class TestHost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QFile::remove(Folders().settingsFile());
        host = std::make_unique<Host>(Folders());
        window = std::make_unique<QWidget>();
        host->setMainWindow(window.get());
    }

    void cleanup()
    {
        window.reset();
        host.reset();
        QVERIFY(!Vela::Interface::instance());
    }

    void itIsTheHostWhileItLives()
    {
        QCOMPARE(Vela::Interface::instance(), host.get());
        const QString text = host->translate(1);
        QVERIFY(text.contains(QLatin1String("%1")) && text.contains(QLatin1String("%2"))
                && text.contains(QLatin1String("%3")));
        QVERIFY(!host->translate(0).isEmpty());
        QVERIFY(host->translate(99).isEmpty());
    }

    void lengthsScaleWithTheWindowsScreen()
    {
        const double factor = window->logicalDpiX() / 96.0;
        QCOMPARE(host->scaleToDPI(100), qRound(100 * factor));
        QCOMPARE(host->scaleToDPI(QPoint(10, -20)),
                 QPoint(qRound(10 * factor), qRound(-20 * factor)));
        host->setMainWindow(nullptr);
        QVERIFY(host->scaleToDPI(100) > 0);
    }

    void iconsOfTheProgramAreFoundByName()
    {
        QVERIFY(!host->icon(QStringLiteral("icon_sprite")).isNull());
        QVERIFY(!host->icon(QStringLiteral("save")).pixmap(16).isNull());
        QVERIFY(host->icon(QStringLiteral("there is no such icon")).isNull());
    }

    // "Don't show this again" on a No is no permission for the next time, and every question can
    // be brought back.
    void silencedQuestionsKeepTheirAnswer()
    {
        {
            DialogAnswerer user;
            user.answer(QMessageBox::No, DialogAnswerer::CheckBox::Tick);
            QVERIFY(!ask());
            QVERIFY(!ask());
        }
        QCOMPARE(host->settings().silencedQuestions().size(), 1);
        QCOMPARE(host->settings().silencedQuestions().first().answer, false);
        host->settings().unsilence(QStringLiteral("showmsg_reload_file"));
        DialogAnswerer user;
        user.answer(QMessageBox::Yes);
        QVERIFY(ask());
    }

    void actionsCallTheirSlotAndFollowTheirSignal()
    {
        Vela::Menu *menu = host->menu("sprites");
        QCOMPARE(host->menu("sprites"), menu);
        QAction *add = host->createAction("spr_add", "spr_add", &texts, 7, false, &receiver,
                                          SLOT(add()), SIGNAL(enabled(bool)), menu);
        QAction *show = host->createAction("all", "show_rulers", &texts, 108, true, &receiver,
                                           SLOT(show(bool)), nullptr, nullptr);
        QCOMPARE(host->action("spr_add"), add);
        QCOMPARE(add->objectName(), QStringLiteral("spr_add"));
        QCOMPARE(add->text(), QStringLiteral("Text 7"));
        QCOMPARE(add->toolTip(), QStringLiteral("tip 7"));
        QCOMPARE(menu->actions(), QList<QAction *>({add}));
        add->trigger();
        show->trigger();
        show->setChecked(false);
        QCOMPARE(receiver.calls, QVariantList({QStringLiteral("add"), true, false}));
        Q_EMIT receiver.enabled(false);
        QVERIFY(!add->isEnabled() && show->isEnabled());
        QVERIFY(!host->action("none"));

        const QVector<ActionRegistry::Entry> table = host->actions().actions();
        QCOMPARE(table.size(), 2);
        QCOMPARE(table.at(0).spec.place, QStringLiteral("sprites"));
        QCOMPARE(table.at(0).spec.enabledBy, QStringLiteral("enabled(bool)"));
        QCOMPARE(table.at(1).spec.scope, QStringLiteral("all"));
    }

    void anActionWithABrokenSlotDoesNothing()
    {
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^spr_add: .*none")));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^spr_add: .*null")));
        QAction *action = host->createAction("spr_add", "spr_add", nullptr, 7, false, &receiver,
                                             SLOT(none()), nullptr, nullptr);
        action->trigger();
        host->createAction("spr_add", "spr_add", nullptr, 7, false, nullptr, nullptr,
                           SIGNAL(enabled(bool)), nullptr)
            ->trigger();
    }

    void oneEditorActionIsCheckedAtATime()
    {
        QAction *sprites = host->editorAction("editor_spr", &texts, 1);
        QAction *sounds = host->editorAction("editor_snd", &texts, 2);
        sprites->trigger();
        sounds->trigger();
        QVERIFY(!sprites->isChecked() && sounds->isChecked());
        QCOMPARE(sprites->shortcut(), QKeySequence(Qt::CTRL + Qt::Key_3));
        QVERIFY(!sprites->icon().isNull());
    }

    void shortcutsAreTheUsersToChange()
    {
        QAction save(QStringLiteral("Save"));
        QAction other(QStringLiteral("Other"));
        ActionSpec spec;
        spec.key = QStringLiteral("save");
        spec.shortcut = QKeySequence(Qt::CTRL + Qt::Key_S);
        ActionRegistry &actions = host->actions();
        actions.add(&save, spec);
        actions.add(&other, ActionSpec{QStringLiteral("other"), {}, {}, {}, {}, {}, {}});
        QCOMPARE(save.shortcut(), spec.shortcut);
        QVERIFY(!save.icon().isNull());

        QCOMPARE(
            actions.conflicts(QStringLiteral("other"), QKeySequence(QStringLiteral("Ctrl+S, A"))),
            QStringList(QStringLiteral("save")));
        QCOMPARE(actions.conflicts(QStringLiteral("save"), spec.shortcut), QStringList());
        QCOMPARE(actions.conflicts(QStringLiteral("other"), QKeySequence()), QStringList());
        actions.setShortcut(QStringLiteral("save"), QKeySequence(Qt::Key_F2));
        QCOMPARE(save.shortcut(), QKeySequence(Qt::Key_F2));
        actions.setShortcut(QStringLiteral("save"), QKeySequence());
        QVERIFY(save.shortcut().isEmpty());
        QCOMPARE(actions.conflicts(QStringLiteral("other"), spec.shortcut), QStringList());
        actions.resetShortcut(QStringLiteral("save"));
        QCOMPARE(save.shortcut(), spec.shortcut);

        actions.setShortcut(QStringLiteral("made_later"), QKeySequence(Qt::Key_F3));
        QCOMPARE(host->createAction("made_later", "made_later", &texts, 1, false, nullptr, nullptr,
                                    nullptr, nullptr)
                     ->shortcut(),
                 QKeySequence(Qt::Key_F3));
    }

    void deletedActionsLeaveTheTable()
    {
        auto *action = new QAction(QStringLiteral("Gone"));
        host->actions().add(action, ActionSpec{QStringLiteral("gone"), {}, {}, {}, {}, {}, {}});
        delete action;
        QVERIFY(!host->action("gone"));
        QVERIFY(host->actions().actions().isEmpty());
        host->actions().setShortcut(QStringLiteral("gone"), QKeySequence(Qt::Key_F2));
    }

    void textsFollowTheLanguage()
    {
        QSignalSpy retranslated(host.get(), &Host::retranslated);
        QAction *action =
            host->createAction("a", "a", &texts, 7, false, nullptr, nullptr, nullptr, nullptr);
        const Vela::TextControl control(Vela::ControlDescriptor::CheckBox, nullptr, nullptr,
                                        nullptr, nullptr, &texts, 8);
        auto *box =
            qobject_cast<QAbstractButton *>(host->createControl(QStringLiteral("box"), &control));
        texts.language = QStringLiteral("Texte");
        QEvent change(QEvent::LanguageChange);
        QApplication::sendEvent(qApp, &change);
        texts.language = QStringLiteral("Text");
        QCOMPARE(action->text(), QStringLiteral("Texte 7"));
        QCOMPARE(box->text(), QStringLiteral("Texte 8"));
        QCOMPARE(host->actions().actions().first().spec.text, QStringLiteral("Texte 7"));
        QCOMPARE(retranslated.size(), 1);
    }

    void controlsStandOnTheCurrentToolBarInTheirOrder()
    {
        QAction action(QStringLiteral("Add"));
        Vela::Menu menu;
        host->setCurrentToolBarArea(QStringLiteral("sprites"));
        QWidget *button = host->actionControl(QStringLiteral("spr_add"), &action, &menu);
        const Vela::BoundControl slider(Vela::ControlDescriptor::Slider, nullptr, nullptr, nullptr,
                                        nullptr);
        QWidget *made = host->createControl(QStringLiteral("spr_sel"), &slider);
        auto *swatch = new QPushButton;
        host->addWidget(QStringLiteral("spr_foreground"), swatch);
        const Vela::ListViewControl list(nullptr, nullptr, nullptr, nullptr);
        QWidget *view = host->createControl(QStringLiteral("spr_layers_list"), &list);
        host->setCurrentToolBarArea(QStringLiteral("sounds"));
        host->createControl(QStringLiteral("snd_sel"), &slider);

        QVERIFY(menu.actions().contains(&action));
        QVERIFY(qobject_cast<QSlider *>(host->controlWidget(QStringLiteral("spr_sel"))));
        QCOMPARE(host->controlWidget(QStringLiteral("spr_foreground")), swatch);
        QVERIFY(view && !view->parent());
        QVERIFY(!host->controlWidget(QStringLiteral("none")));
        ToolBarArea *area = host->toolBarArea(QStringLiteral("sprites"));
        const QList<QAction *> places = area->actions();
        QCOMPARE(places.size(), 3);
        QVERIFY(area->widgetForAction(places.at(0))->isAncestorOf(button));
        QVERIFY(area->widgetForAction(places.at(1))->isAncestorOf(made));
        QVERIFY(area->widgetForAction(places.at(2))->isAncestorOf(swatch));
        QCOMPARE(host->toolBarArea(QStringLiteral("sounds"))->actions().size(), 1);
    }

    void editorsAreKnownByNameAndSwitchOnce()
    {
        auto *sprites = someone<Vela::Editor>(0);
        auto *sounds = someone<Vela::Editor>(1);
        QList<QPair<Vela::Editor *, Vela::Editor *>> switches;
        connect(host.get(), &Host::editorSwitched, [&](Vela::Editor *to, Vela::Editor *from) {
            switches.append(qMakePair(to, from));
        });
        host->registerEditor("sprites", sprites);
        host->registerEditor("sounds", sounds);
        QCOMPARE(host->editor("sounds"), sounds);
        QVERIFY(!host->editor("code"));
        host->switchEditor(sprites);
        host->switchEditor(sprites);
        host->switchEditor(sounds);
        QCOMPARE(switches.size(), 2);
        QCOMPARE(switches.last(), qMakePair(sounds, sprites));
        host->unregisterEditor(sounds);
        QVERIFY(!host->currentEditor());
        QVERIFY(!host->editor("sounds"));
        QCOMPARE(host->editor("sprites"), sprites);
    }

    void fileSaversAreFoundByType()
    {
        auto *sprites = someone<Vela::FileSaver>(0);
        auto *any = someone<Vela::FileSaver>(1);
        QVERIFY(!host->editorForFile(nullptr, 1));
        host->registerFileSaver(1, sprites);
        QVERIFY(!host->editorForFile(nullptr, -1));
        host->registerFileSaver(-1, any);
        QCOMPARE(host->editorForFile(nullptr, 1), sprites);
        QCOMPARE(host->editorForFile(nullptr, 2), any);
        host->registerFileSaver(1, nullptr);
        QCOMPARE(host->editorForFile(nullptr, 1), any);
    }

    void withoutProjectsNothingIsCurrent()
    {
        QCOMPARE(host->parentProjectCount(), 0u);
        QVERIFY(!host->parentProject(0));
        QVERIFY(!host->currentParentProject());
        QVERIFY(!host->currentProject());
        QVERIFY(!host->engine());
        host->setEngine(someone<Vela::Engine>(0));
        QCOMPARE(host->engine(), someone<Vela::Engine>(0));
    }

    void theCurrentProjectIsOneThatIsOpen()
    {
        MemoryArchive store;
        TestEngine engine;
        auto first = std::make_unique<TestParentProject>(QStringLiteral("/one"), store);
        auto second = std::make_unique<TestParentProject>(QStringLiteral("/two"), store);
        first->activeEngine = &engine;
        TestProject inFirst(first.get(), 0, new TestFile);
        TestProject inSecond(second.get(), 0, new TestFile);
        inFirst.addToParent();
        inSecond.addToParent();
        QSignalSpy changed(host.get(), &Host::currentProjectChanged);

        host->addParentProject(first.get());
        host->addParentProject(second.get());
        host->addParentProject(second.get());
        QCOMPARE(host->parentProjectCount(), 2u);
        QCOMPARE(host->parentProject(1), second.get());
        QVERIFY(!host->parentProject(2));
        QCOMPARE(host->currentParentProject(), first.get());
        QCOMPARE(host->currentProject(), &inFirst);
        QCOMPARE(host->engine(), &engine);
        host->setCurrentProject(&inSecond);
        QCOMPARE(host->currentParentProject(), second.get());
        QCOMPARE(changed.size(), 2);

        // Closing the current one goes back to one that is left, also when it just goes away.
        inSecond.release();
        second.reset();
        QCOMPARE(host->currentParentProject(), first.get());
        QCOMPARE(host->currentProject(), &inFirst);
        host->removeParentProject(first.get());
        QVERIFY(!host->currentParentProject() && !host->currentProject());
        QCOMPARE(host->parentProjectCount(), 0u);
        inFirst.release();
    }

    void shortJobsShowNothing()
    {
        const std::unique_ptr<Vela::ProgressJob> job(host->progress()->createJob(title, 0));
        job->setMaximum(3);
        for (int i = 0; i < 3; ++i)
            job->incrementValue();
        QVERIFY(!dialog());
        QVERIFY(!job->wasCancelled());
    }

    void longJobsShowHowFarTheyAre()
    {
        window->show();
        std::unique_ptr<Vela::ProgressJob> job(host->progress()->createJob(title, 0));
        job->setMaximum(UINT_MAX);
        QElapsedTimer time;
        time.start();
        while (!dialog() && time.elapsed() < 5000)
            job->setValue(UINT_MAX / 4);
        QVERIFY(time.elapsed() >= 350);
        QVERIFY(dialog());
        QCOMPARE(dialog()->labelText(), title);
        QCOMPARE(dialog()->parentWidget(), window.get());
        QCOMPARE(dialog()->windowModality(), Qt::WindowModal);
        QCOMPARE(qRound(100.0 * dialog()->value() / dialog()->maximum()), 25);
        job.reset();
        QVERIFY(!dialog());
    }

    void lengthyJobsShowAtOnceAndCanBeCancelled()
    {
        const std::unique_ptr<Vela::ProgressJob> job(host->progress()->createJob(title, 0));
        job->setLengthy(1);
        job->setMaximum(0);
        QVERIFY(dialog() && dialog()->isVisible());
        QCOMPARE(dialog()->maximum(), 0);
        QTest::mouseClick(dialog()->findChild<QPushButton *>(), Qt::LeftButton);
        QVERIFY(job->wasCancelled());
        for (int i = 0; i < 100; ++i)
            job->setValue(unsigned(i));
        QVERIFY(!dialog() || !dialog()->isVisible());
    }

    // What a job lets happen must not let another one's events through in its midst.
    void aJobKeepsTheWindowAliveButIsNotEntered()
    {
        const std::unique_ptr<Vela::ProgressJob> outer(host->progress()->createJob(title, 0));
        int rounds = 0;
        int depth = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&] {
            ++rounds;
            QCOMPARE(++depth, 1);
            const std::unique_ptr<Vela::ProgressJob> inner(host->progress()->createJob(title, 0));
            inner->setLengthy(1);
            inner->setMaximum(10);
            QVERIFY(!dialog());
            --depth;
        });
        timer.start(0);
        QElapsedTimer time;
        time.start();
        while (time.elapsed() < 150)
            outer->incrementValue();
        QVERIFY2(rounds >= 2 && rounds <= 10, qPrintable(QString::number(rounds)));
    }

    void errorsAreShownTogetherAtTheEnd()
    {
        {
            const std::unique_ptr<Vela::ProgressJob> job(host->progress()->createJob(title, 0));
            for (int i = 0; i < 7; ++i)
                job->error(QStringLiteral("<b>file %1</b>").arg(i));
            QVERIFY(!window->findChild<QMessageBox *>());
        }
        auto *box = window->findChild<QMessageBox *>();
        QVERIFY(box);
        QCOMPARE(box->textFormat(), Qt::PlainText);
        QCOMPARE(box->text().split(QLatin1Char('\n')).size(), 5);
        QVERIFY(box->detailedText().endsWith(QLatin1String("file 6</b>")));
        box->close();
    }

    void theConsoleTellsTenthsAndErrors()
    {
        QBuffer buffer;
        QVERIFY(buffer.open(QIODevice::WriteOnly));
        auto console = std::make_unique<ConsoleProgress>(buffer, ConsoleProgress::Progress);
        const ConsoleProgress &provider = *console;
        host->setProgressProvider(std::move(console));
        std::unique_ptr<Vela::ProgressJob> job(host->progress()->createJob(title, 0));
        job->setMaximum(4);
        job->incrementValue();
        job->incrementValue();
        job->setValue(2);
        job->error(QStringLiteral("no room"));
        job->setValue(9);
        job.reset();
        QCOMPARE(buffer.data(),
                 QByteArray("\rSaving: 20 %\rSaving: 50 %\r\x1b[KSaving: no room\n"
                            "\rSaving: 100 %\r\x1b[K"));
        QCOMPARE(provider.errors(), QStringList(QStringLiteral("Saving: no room")));
    }

private:
    bool ask() const
    {
        return Vela::Interface::yesNoOption(QStringLiteral("Title"), QStringLiteral("Reload?"),
                                            QStringLiteral("showmsg_reload_file"), 1,
                                            Vela::Interface::YesButton);
    }

    QProgressDialog *dialog() const
    {
        return window->findChild<QProgressDialog *>();
    }

    const QString title = QStringLiteral("Saving");
    Texts texts;
    Receiver receiver;
    std::unique_ptr<QWidget> window;
    std::unique_ptr<Host> host;
};

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path()));
    QApplication application(argc, argv);
    TestHost test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_host.moc"

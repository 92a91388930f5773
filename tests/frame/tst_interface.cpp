// SPDX-License-Identifier: MIT
#include "frame/interface.h"

#include "frame/menu.h"
#include "support/dialoganswerer.h"
#include "support/recordinghost.h"

#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>

Q_DECLARE_METATYPE(QMessageBox::StandardButton)

using Vela::Interface;

namespace {

const QString key = QStringLiteral("showmsg_test");

bool askBool(bool defaultValue = true, Interface::YNButton button = Interface::YesButton)
{
    return Interface::yesNoBool(QStringLiteral("Title"), QStringLiteral("Really?"), key,
                                defaultValue, button);
}

bool askOption(int defaultValue = 0, Interface::YNButton button = Interface::YesButton)
{
    return Interface::yesNoOption(QStringLiteral("Title"), QStringLiteral("Really?"), key,
                                  defaultValue, button);
}

} // namespace

class TestInterface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutHostNothingIsAsked();
    void lastInstalledHostIsTheInstance();
    void silencedQuestionsAnswerThemselves_data();
    void silencedQuestionsAnswerThemselves();
    void answersAreKeptAsTicked_data();
    void answersAreKeptAsTicked();
    void questionShowsWhatItWasGiven_data();
    void questionShowsWhatItWasGiven();
    void boxIsUntickedAgainForTheNextQuestion();
    void questionInsideAQuestionLeavesTheFirstAlone();
    void lengthsAreScaledEachAlone();
    void actionControlAddsToMenuAndMakesButton();
    void textsOfTheHostServeAsToolTips();
    void jobsRecordWhatTheyAreTold();
};

void TestInterface::withoutHostNothingIsAsked()
{
    DialogAnswerer answerer;
    QVERIFY(!Interface::instance());
    QVERIFY(askBool(true));
    QVERIFY(askBool(false));
    QVERIFY(askOption(0));
    QVERIFY(askOption(1));
    QVERIFY(!askOption(2));
    QVERIFY(answerer.dialogs.isEmpty());
}

void TestInterface::lastInstalledHostIsTheInstance()
{
    {
        RecordingHost host;
        QCOMPARE(Interface::instance(), static_cast<Interface *>(&host));
    }
    QVERIFY(!Interface::instance());
}

void TestInterface::silencedQuestionsAnswerThemselves_data()
{
    QTest::addColumn<bool>("isSwitch");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<int>("defaultValue");
    QTest::addColumn<bool>("result");
    QTest::newRow("switch stored false") << true << QVariant(false) << 1 << true;
    QTest::newRow("switch default false") << true << QVariant() << 0 << true;
    QTest::newRow("stored always yes") << false << QVariant(1) << 0 << true;
    QTest::newRow("stored always no") << false << QVariant(2) << 0 << false;
    QTest::newRow("default always yes") << false << QVariant() << 1 << true;
    QTest::newRow("default always no") << false << QVariant() << 2 << false;
    QTest::newRow("stored beyond the values") << false << QVariant(7) << 1 << false;
    QTest::newRow("stored below the values") << false << QVariant(-1) << 0 << false;
}

void TestInterface::silencedQuestionsAnswerThemselves()
{
    QFETCH(bool, isSwitch);
    QFETCH(QVariant, stored);
    QFETCH(int, defaultValue);
    RecordingHost host;
    DialogAnswerer answerer;
    if (stored.isValid())
        host.options.insert(key, stored);
    QTEST(isSwitch ? askBool(defaultValue != 0) : askOption(defaultValue), "result");
    QVERIFY(answerer.dialogs.isEmpty());
    QVERIFY(host.optionsSet.isEmpty());
}

void TestInterface::answersAreKeptAsTicked_data()
{
    const auto yes = QMessageBox::Yes;
    const auto no = QMessageBox::No;
    QTest::addColumn<bool>("isSwitch");
    QTest::addColumn<QMessageBox::StandardButton>("button");
    QTest::addColumn<bool>("tick");
    QTest::addColumn<QVariant>("kept");
    QTest::newRow("switch, yes") << true << yes << false << QVariant();
    QTest::newRow("switch, no") << true << no << false << QVariant();
    QTest::newRow("switch, yes ticked") << true << yes << true << QVariant(false);
    // Not to be asked means yes: a ticked No must never become one.
    QTest::newRow("switch, no ticked") << true << no << true << QVariant();
    QTest::newRow("option, yes") << false << yes << false << QVariant();
    QTest::newRow("option, no") << false << no << false << QVariant();
    QTest::newRow("option, yes ticked") << false << yes << true << QVariant(1);
    QTest::newRow("option, no ticked") << false << no << true << QVariant(2);
}

void TestInterface::answersAreKeptAsTicked()
{
    QFETCH(bool, isSwitch);
    QFETCH(QMessageBox::StandardButton, button);
    QFETCH(bool, tick);
    QFETCH(QVariant, kept);
    RecordingHost host;
    DialogAnswerer answerer;
    const auto box = tick ? DialogAnswerer::CheckBox::Tick : DialogAnswerer::CheckBox::Leave;
    answerer.answer(button, box);

    QCOMPARE(isSwitch ? askBool() : askOption(), button == QMessageBox::Yes);
    QVERIFY(answerer.isDone());
    QCOMPARE(host.options.value(key), kept);

    // Where nothing was kept, the question comes again.
    if (!kept.isValid())
        answerer.answer(QMessageBox::No);
    QCOMPARE(isSwitch ? askBool() : askOption(), kept == QVariant(false) || kept == QVariant(1));
    QVERIFY(answerer.isDone());
}

void TestInterface::questionShowsWhatItWasGiven_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<QMessageBox::StandardButton>("defaultButton");
    QTest::newRow("yes") << 0 << QMessageBox::Yes;
    QTest::newRow("no") << 1 << QMessageBox::No;
    QTest::newRow("any other value is no") << 5 << QMessageBox::No;
    QTest::newRow("yes after no") << 0 << QMessageBox::Yes;
}

void TestInterface::questionShowsWhatItWasGiven()
{
    QFETCH(int, button);
    RecordingHost host;
    DialogAnswerer answerer;
    // Enter presses the default button.
    answerer.handle([](QDialog *dialog) { QTest::keyClick(dialog, Qt::Key_Return); });
    const bool yes = askOption(0, Interface::YNButton(button));
    QCOMPARE(yes, button == 0);

    const DialogAnswerer::Dialog &dialog = answerer.dialogs.first();
    QCOMPARE(dialog.title, QStringLiteral("Title"));
    QCOMPARE(dialog.text, QStringLiteral("Really?"));
    QCOMPARE(dialog.icon, QMessageBox::Question);
    QCOMPARE(dialog.buttons.size(), 2);
    QVERIFY(dialog.buttons.contains(QStringLiteral("Yes")));
    QVERIFY(dialog.buttons.contains(QStringLiteral("No")));
    QTEST(dialog.defaultButton, "defaultButton");
    QCOMPARE(dialog.checkBox, QStringLiteral("Don't show this again"));
}

void TestInterface::boxIsUntickedAgainForTheNextQuestion()
{
    RecordingHost host;
    DialogAnswerer answerer;
    answerer.answer(QMessageBox::Yes, DialogAnswerer::CheckBox::Tick);
    QVERIFY(askOption());
    host.options.clear();
    answerer.cancel();
    QVERIFY(!askOption());
    QCOMPARE(answerer.dialogs.size(), 2);
    QVERIFY(!answerer.dialogs.at(1).checked);
    QVERIFY(host.options.isEmpty());
}

// The user is asked whether to delete something, and while the box is open a file changes on disk
// and its question comes on top. Each answer must go to its own question.
void TestInterface::questionInsideAQuestionLeavesTheFirstAlone()
{
    RecordingHost host;
    DialogAnswerer answerer;
    bool inner = true;
    answerer.handle([&](QDialog *first) {
        answerer.answer(QMessageBox::No, DialogAnswerer::CheckBox::Tick);
        inner = Interface::yesNoOption(QStringLiteral("Inner"), QStringLiteral("Reload?"),
                                       QStringLiteral("inner"), 0, Interface::YesButton);
        QCOMPARE(first->windowTitle(), QStringLiteral("Title"));
        QTest::mouseClick(qobject_cast<QMessageBox *>(first)->button(QMessageBox::Yes),
                          Qt::LeftButton);
    });
    QVERIFY(askOption());
    QVERIFY(!inner);
    QVERIFY(answerer.isDone());
    QCOMPARE(host.optionsSet, QStringList{QStringLiteral("inner")});
}

void TestInterface::lengthsAreScaledEachAlone()
{
    RecordingHost host;
    host.dpiFactor = 2;
    const Interface &interface = host;
    QCOMPARE(interface.scaleToDPI(QPoint(3, -4)), QPoint(6, -8));
    // A rectangle's far edges follow from its scaled size: right is 10 + 6 - 1.
    const QRect scaled = interface.scaleToDPI(QRect(5, 7, 3, 11));
    QCOMPARE(scaled, QRect(10, 14, 6, 22));
    QCOMPARE(scaled.right(), 15);
}

void TestInterface::actionControlAddsToMenuAndMakesButton()
{
    RecordingHost host;
    Vela::Menu menu;
    QAction action(QStringLiteral("Go"));
    QWidget *control = host.actionControl(QStringLiteral("go"), &action, &menu);
    QCOMPARE(menu.actions(), QList<QAction *>{&action});
    auto *button = qobject_cast<QToolButton *>(control);
    QVERIFY(button);
    QCOMPARE(button->defaultAction(), &action);
    QCOMPARE(host.controls.size(), 1);
    QCOMPARE(host.controls.first().key, QStringLiteral("go"));
    QCOMPARE(host.controls.first().kind, 0);
    QCOMPARE(host.controls.first().size, 16);

    QVERIFY(host.actionControl(QStringLiteral("again"), &action, nullptr));
    QCOMPARE(menu.actions().size(), 1);
}

void TestInterface::textsOfTheHostServeAsToolTips()
{
    RecordingHost host;
    host.texts.insert(3, QStringLiteral("Three"));
    QCOMPARE(host.toolTip(3), QStringLiteral("Three"));
    QVERIFY(host.statusTip(3).isNull());
}

void TestInterface::jobsRecordWhatTheyAreTold()
{
    RecordingHost host;
    host.progressProvider.cancelAfter = 1;
    std::unique_ptr<Vela::ProgressJob> job(host.progress()->createJob(QStringLiteral("Saving"), 0));
    job->setMaximum(3);
    job->incrementValue();
    job->error(QStringLiteral("disk full"));
    QVERIFY(!job->wasCancelled());
    QVERIFY(job->wasCancelled());
    const auto record = host.progressProvider.jobs.front();
    QVERIFY(!record->ended);
    job.reset();
    QVERIFY(record->ended);
    QCOMPARE(record->maximum, 3u);
    QCOMPARE(record->value, 1u);
    QCOMPARE(record->errors, QStringList{QStringLiteral("disk full")});
    QCOMPARE(record->lengthy, -1);
}

QTEST_MAIN(TestInterface)

#include "tst_interface.moc"

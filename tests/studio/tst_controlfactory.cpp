// SPDX-License-Identifier: MIT
#include "frame/controldescriptor.h"
#include "frame/menu.h"
#include "frame/translator.h"
#include "studio/controlfactory.h"
#include "studio/controls.h"
#include "studio/toolbararea.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStringListModel>
#include <QStyleOptionSpinBox>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <functional>
#include <limits>
#include <memory>

using namespace Studio;
using namespace Vela;

namespace {

class Texts : public Translator
{
public:
    QString translate(int id) const override
    {
        return QStringLiteral("%1 %2").arg(language).arg(id);
    }
    QString toolTip(int id) const override
    {
        return QStringLiteral("tip %1").arg(id);
    }

    QString language = QStringLiteral("Text");
};

// An editor as the library writes them: slots that take what the user changed, signals that push
// values back.
class Editor : public QObject
{
    Q_OBJECT

public:
    QVariantList calls;
    std::function<void()> inSlot;

public Q_SLOTS:
    void intChanged(int value)
    {
        note(value);
    }
    void doubleChanged(double value)
    {
        note(value);
    }
    void boolChanged(bool value)
    {
        note(value);
    }
    void textChanged(const QString &value)
    {
        note(value);
    }
    void itemChosen(const QModelIndex &index)
    {
        note(index.row());
    }
    void anythingChanged()
    {
        note(QStringLiteral("called"));
    }

Q_SIGNALS:
    void setInt(int value);
    void setDouble(double value);
    void setBool(bool value);
    void setText(const QString &value);
    void setTexts(const QStringList &values);
    void setModel(QAbstractItemModel *model);
    void enabled(bool enabled);

private:
    void note(const QVariant &value)
    {
        calls.append(value);
        if (inSlot)
            inSlot();
    }
};

const int flips[] = {20, 22, 21, -1};

} // namespace

class TestControlFactory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        editor = std::make_unique<Editor>();
        factory = std::make_unique<ControlFactory>();
        window = std::make_unique<QWidget>();
        new QVBoxLayout(window.get());
        texts.language = QStringLiteral("Text");
    }

    void cleanup()
    {
        window.reset();
        factory.reset();
        editor.reset();
    }

    void whatIsNoControlGivesNone_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("size");
        QTest::newRow("unknown kind") << 2 << 48;
        QTest::newRow("negative kind") << -1 << 16;
        QTest::newRow("action, too small") << 0 << 8;
        QTest::newRow("action, too big") << 0 << 24;
        QTest::newRow("menu with an action's size") << 1 << 16;
        QTest::newRow("label") << 3 << 56;
        QTest::newRow("slider with a text's size") << 4 << 64;
        QTest::newRow("spin box without its range") << 7 << 48;
        QTest::newRow("double spin box with integers") << 8 << 56;
        QTest::newRow("check box without text") << 9 << 48;
        QTest::newRow("combo box as list view") << 10 << 56;
        QTest::newRow("list view") << 11 << 48;
        QTest::newRow("zero") << 14 << 0;
    }

    void whatIsNoControlGivesNone()
    {
        QFETCH(int, kind);
        QFETCH(int, size);
        const ControlDescriptor descriptor{kind, size};
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^wrong: ")));
        QVERIFY(!factory->create(QStringLiteral("wrong"), &descriptor));
        QVERIFY(!factory->widget(QStringLiteral("wrong")));
    }

    void anActionsButtonTriggersItAndFollowsIt()
    {
        QAction action(QStringLiteral("Add"));
        QSignalSpy triggered(&action, &QAction::triggered);
        const ActionControl control(&action);
        auto *button = make<QToolButton>(control);
        QTest::mouseClick(button, Qt::LeftButton);
        QTest::keyClick(button, Qt::Key_Space);
        QCOMPARE(triggered.size(), 2);
        action.setEnabled(false);
        QVERIFY(!button->isEnabled());
    }

    void aMenusButtonDropsItDown()
    {
        QAction action(QStringLiteral("Layers"));
        Menu menu;
        menu.addAction(QStringLiteral("Entry"));
        const MenuControl control(&action, &menu);
        auto *button = make<QToolButton>(control);
        QCOMPARE(button->popupMode(), QToolButton::MenuButtonPopup);
        QSignalSpy triggered(&action, &QAction::triggered);
        QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(4, 4));
        QCOMPARE(triggered.size(), 1);
        QSignalSpy shown(&menu, &QMenu::aboutToShow);
        QTimer::singleShot(0, &menu, [&menu] { menu.close(); });
        button->showMenu();
        QCOMPARE(shown.size(), 1);
    }

    void sliderReportsKeysDragsAndClicks()
    {
        const BoundControl control(ControlDescriptor::Slider, editor.get(), SLOT(intChanged(int)),
                                   SIGNAL(setInt(int)), SIGNAL(enabled(bool)));
        auto *slider = make<QSlider>(control);
        slider->setRange(0, 9);
        QTest::keyClick(slider, Qt::Key_Right);
        QTest::keyClick(slider, Qt::Key_End);
        QCOMPARE(editor->calls, QVariantList({1, 9}));
        QTest::keyClick(slider, Qt::Key_End);
        QCOMPARE(editor->calls.size(), 2);
        Q_EMIT editor->enabled(false);
        QTest::keyClick(slider, Qt::Key_Home);
        QCOMPARE(editor->calls.size(), 2);
        Q_EMIT editor->enabled(true);
        QTest::keyClick(slider, Qt::Key_Home);
        QCOMPARE(editor->calls.last(), QVariant(0));
    }

    void volumeShowsPerCent()
    {
        const BoundControl control(ControlDescriptor::VolumeSlider, editor.get(),
                                   SLOT(intChanged(int)), SIGNAL(setInt(int)), nullptr);
        auto *volume = make<VolumeSlider>(control);
        QCOMPARE(volume->value(), 100);
        Q_EMIT editor->setInt(40);
        QCOMPARE(volume->value(), 40);
        const QList<QLabel *> labels = volume->findChildren<QLabel *>();
        QVERIFY(std::any_of(labels.begin(), labels.end(), [](const QLabel *label) {
            return label->text() == QLatin1String("40 %");
        }));
        QTest::keyClick(volume->slider(), Qt::Key_Left);
        QCOMPARE(editor->calls, QVariantList({40, 39}));
        Q_EMIT editor->setInt(4000);
        QCOMPARE(volume->value(), 100);
    }

    void typedNumbersCountWhenConfirmed()
    {
        auto *box = make<QSpinBox>(integer());
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(box, QStringLiteral("-1234"));
        QCOMPARE(editor->calls, QVariantList());
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(editor->calls, QVariantList({-1234}));
    }

    // One turn is one step of undo, however many numbers pass by.
    void oneTurnIsOneChange()
    {
        auto *box = make<QSpinBox>(integer());
        QTest::keyPress(box, Qt::Key_Up);
        for (int i = 0; i < 4; ++i) {
            QKeyEvent again(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier, QString(), true);
            QApplication::sendEvent(box, &again);
        }
        QVERIFY(box->value() >= 5);
        QCOMPARE(editor->calls, QVariantList());
        QTest::keyRelease(box, Qt::Key_Up);
        const int reached = box->value();
        QCOMPARE(editor->calls, QVariantList({reached}));

        turnWheel(box, 120);
        turnWheel(box, 120);
        QCOMPARE(box->value(), reached + 2);
        QCOMPARE(editor->calls.size(), 1);
        QTRY_COMPARE(editor->calls, QVariantList({reached, reached + 2}));
    }

    void anArrowHeldDownIsOneChange()
    {
        auto *box = make<QSpinBox>(integer());
        QStyleOptionSpinBox option;
        option.initFrom(box);
        option.subControls = QStyle::SC_All;
        const QPoint up =
            box->style()
                ->subControlRect(QStyle::CC_SpinBox, &option, QStyle::SC_SpinBoxUp, box)
                .center();
        QTest::mousePress(box, Qt::LeftButton, Qt::NoModifier, up);
        QTRY_VERIFY(box->value() >= 3);
        QCOMPARE(editor->calls, QVariantList());
        QTest::mouseRelease(box, Qt::LeftButton, Qt::NoModifier, up);
        QCOMPARE(editor->calls, QVariantList({box->value()}));
    }

    // The user turns the wheel over a field and at once does something else: the change still
    // goes where it was meant to go, and before what follows.
    void aTurnEndsBeforeAnythingElseHappens()
    {
        auto *box = make<QSpinBox>(integer());
        auto *other = new QPushButton(window.get());
        other->setFocusPolicy(Qt::NoFocus);
        window->layout()->addWidget(other);
        QVariantList order;
        editor->inSlot = [&] { order.append(editor->calls.last()); };
        connect(other, &QPushButton::pressed, [&] { order.append(QStringLiteral("pressed")); });
        turnWheel(box, -120);
        QTest::mouseClick(other, Qt::LeftButton);
        QCOMPARE(order, QVariantList({-1, QStringLiteral("pressed")}));
        turnWheel(box, -120);
        QKeyEvent undo(QEvent::ShortcutOverride, Qt::Key_Z, Qt::ControlModifier);
        QApplication::sendEvent(box, &undo);
        QCOMPARE(order.last(), QVariant(-2));
    }

    // A value that the editor sets while a turn still runs is the newer one.
    void aPushedValueEndsTheTurnUnreported()
    {
        auto *box = make<QSpinBox>(integer());
        turnWheel(box, 120);
        Q_EMIT editor->setInt(30);
        QCOMPARE(editor->calls, QVariantList({30}));
        box->clearFocus();
        QCOMPARE(box->value(), 30);
        QCOMPARE(editor->calls.size(), 1);
    }

    void doubleSpinBoxStepsAndShowsNoIdleZeros()
    {
        const DoubleSpinBoxControl control(editor.get(), SLOT(doubleChanged(double)),
                                           SIGNAL(setDouble(double)), nullptr, 0, 100, 0.1);
        auto *box = make<QDoubleSpinBox>(control);
        box->setLocale(QLocale::c());
        QTest::keyClick(box, Qt::Key_Up);
        QCOMPARE(editor->calls, QVariantList({0.1}));
        QCOMPARE(box->text(), QStringLiteral("0.1"));
        Q_EMIT editor->setDouble(1.0 / 3);
        QCOMPARE(box->text(), QStringLiteral("0.333333"));
        Q_EMIT editor->setDouble(50);
        QCOMPARE(box->text(), QStringLiteral("50"));
        Q_EMIT editor->setDouble(1e9);
        QCOMPARE(box->value(), 100.0);
    }

    void checkBoxReportsTicks()
    {
        const TextControl control(ControlDescriptor::CheckBox, editor.get(),
                                  SLOT(boolChanged(bool)), SIGNAL(setBool(bool)),
                                  SIGNAL(enabled(bool)), &texts, 7);
        auto *box = make<QCheckBox>(control);
        QCOMPARE(box->text(), QStringLiteral("Text 7"));
        QCOMPARE(box->toolTip(), QStringLiteral("tip 7"));
        QTest::keyClick(box, Qt::Key_Space);
        Q_EMIT editor->setBool(false);
        QVERIFY(!box->isChecked());
        Q_EMIT editor->setBool(false);
        QCOMPARE(editor->calls, QVariantList({true, false}));
    }

    void comboBoxHasTheTextsInTheirOrder()
    {
        const ComboBoxControl control(editor.get(), SLOT(intChanged(int)), SIGNAL(setInt(int)),
                                      nullptr, &texts, flips, 1);
        auto *box = make<QComboBox>(control);
        QCOMPARE(box->count(), 3);
        QCOMPARE(box->itemText(1), QStringLiteral("Text 22"));
        QCOMPARE(box->currentIndex(), 1);
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(editor->calls, QVariantList({2}));
        Q_EMIT editor->setInt(0);
        QCOMPARE(box->currentText(), QStringLiteral("Text 20"));
    }

    void comboBoxTakesTextsAndModels()
    {
        ComboBoxControl control(editor.get(), SLOT(textChanged(QString)),
                                SIGNAL(setTexts(QStringList)), nullptr, nullptr, nullptr);
        auto *box = make<QComboBox>(control);
        Q_EMIT editor->setTexts({QStringLiteral("a"), QStringLiteral("b")});
        QCOMPARE(box->count(), 2);
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(editor->calls, QVariantList({QStringLiteral("b")}));
        Q_EMIT editor->setTexts({QStringLiteral("x")});
        QCOMPARE(box->currentIndex(), 0);
        QCOMPARE(editor->calls.size(), 1);

        QStringListModel model({QStringLiteral("m"), QStringLiteral("n")});
        control.model = &model;
        QCOMPARE(make<QComboBox>(control)->itemText(1), QStringLiteral("n"));
    }

    void listViewReportsWhatIsChosen()
    {
        QStringListModel model({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
        model.setParent(window.get());
        const ListViewControl control(editor.get(), SLOT(itemChosen(QModelIndex)),
                                      SIGNAL(setInt(int)), nullptr, &model);
        auto *view = make<QListView>(control);
        view->setEditTriggers(QAbstractItemView::NoEditTriggers);
        Q_EMIT editor->setInt(1);
        QCOMPARE(view->currentIndex().row(), 1);
        QTest::keyClick(view, Qt::Key_Return);
        QCOMPARE(editor->calls, QVariantList({1}));
        const QPoint third = view->visualRect(model.index(2, 0)).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, third);
        QCOMPARE(editor->calls.size(), 1);
        QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, third);
        QCOMPARE(editor->calls, QVariantList({1, 2}));
        model.setParent(nullptr);
    }

    void labelsTakePlainText()
    {
        const BoundControl control(ControlDescriptor::Label, editor.get(), nullptr,
                                   SIGNAL(setText(QString)), nullptr);
        auto *label = make<QLabel>(control);
        Q_EMIT editor->setText(QStringLiteral("<h1>1 / 2</h1>"));
        QCOMPARE(label->text(), QStringLiteral("<h1>1 / 2</h1>"));
        QCOMPARE(label->textFormat(), Qt::PlainText);

        const TextControl header(ControlDescriptor::GroupHeader, nullptr, nullptr, nullptr, nullptr,
                                 &texts, 3);
        auto *group = make<QLabel>(header);
        QCOMPARE(group->text(), QStringLiteral("Text 3"));
        QVERIFY(group->font().bold());
    }

    // Editors step a value by pushing the next one: their slot does the work.
    void aPushedValueReachesTheSlotOnce()
    {
        make<QSpinBox>(integer());
        Q_EMIT editor->setInt(12);
        Q_EMIT editor->setInt(12);
        QCOMPARE(editor->calls, QVariantList({12}));
    }

    // An editor that corrects what it is told would otherwise be told of its own correction, and
    // correct that.
    void whatASlotPushesDoesNotComeBack_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("slider") << int(ControlDescriptor::Slider);
        QTest::newRow("volume") << int(ControlDescriptor::VolumeSlider);
        QTest::newRow("spin box") << int(ControlDescriptor::SpinBox);
    }

    void whatASlotPushesDoesNotComeBack()
    {
        QFETCH(int, kind);
        const BoundControl bound(ControlDescriptor::Kind(kind), editor.get(), SLOT(intChanged(int)),
                                 SIGNAL(setInt(int)), nullptr);
        QWidget *widget =
            kind == ControlDescriptor::SpinBox ? make<QWidget>(integer()) : make<QWidget>(bound);
        editor->inSlot = [this] { Q_EMIT editor->setInt(editor->calls.last().toInt() + 10); };
        Q_EMIT editor->setInt(3);
        QCOMPARE(editor->calls, QVariantList({3}));
        auto *target = widget->focusProxy() ? widget->focusProxy() : widget;
        QTest::keyClick(target, Qt::Key_Up);
        QCOMPARE(editor->calls, QVariantList({3, 14}));
    }

    void aControlMayBeDeletedByItsSlot()
    {
        auto *box = make<QSpinBox>(integer());
        QPointer<QWidget> alive(box);
        editor->inSlot = [&alive] { delete alive.data(); };
        Q_EMIT editor->setInt(4);
        QVERIFY(!alive);
        QVERIFY(!factory->widget(QStringLiteral("key")));
    }

    void aSlotNeedsNoArguments()
    {
        const BoundControl control(ControlDescriptor::Slider, editor.get(), SLOT(anythingChanged()),
                                   nullptr, nullptr);
        QTest::keyClick(make<QSlider>(control), Qt::Key_Right);
        QCOMPARE(editor->calls, QVariantList({QStringLiteral("called")}));
    }

    void signaturesThatFitNothingLeaveTheControlUnbound_data()
    {
        QTest::addColumn<QByteArray>("slot");
        QTest::addColumn<QByteArray>("setter");
        QTest::addColumn<QByteArray>("enabler");
        QTest::newRow("no such slot")
            << QByteArray(SLOT(nothing(int))) << QByteArray() << QByteArray();
        QTest::newRow("no code") << QByteArray("intChanged(int)") << QByteArray() << QByteArray();
        QTest::newRow("no brackets") << QByteArray("1intChanged") << QByteArray() << QByteArray();
        QTest::newRow("arguments of the slot")
            << QByteArray(SLOT(itemChosen(QModelIndex))) << QByteArray() << QByteArray();
        QTest::newRow("no such setter")
            << QByteArray() << QByteArray(SIGNAL(none(int))) << QByteArray();
        QTest::newRow("setter is a slot")
            << QByteArray() << QByteArray(SLOT(intChanged(int))) << QByteArray();
        QTest::newRow("arguments of the setter")
            << QByteArray() << QByteArray(SIGNAL(setModel(QAbstractItemModel *))) << QByteArray();
        QTest::newRow("enabler without bool")
            << QByteArray() << QByteArray() << QByteArray(SIGNAL(setText(QString)));
    }

    void signaturesThatFitNothingLeaveTheControlUnbound()
    {
        QFETCH(QByteArray, slot);
        QFETCH(QByteArray, setter);
        QFETCH(QByteArray, enabler);
        const BoundControl control(ControlDescriptor::Slider, editor.get(), slot.constData(),
                                   setter.constData(), enabler.constData());
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^key: ")));
        auto *slider = make<QSlider>(control);
        QVERIFY(slider);
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(slider->value(), 1);
        QCOMPARE(editor->calls, QVariantList());
    }

    void aHiddenControlStaysHidden()
    {
        BoundControl control(ControlDescriptor::Slider, editor.get(), nullptr, nullptr, nullptr);
        control.hidden = true;
        QMainWindow main;
        auto *area = new ToolBarArea(QStringLiteral("area"));
        main.addToolBar(area);
        QWidget *hidden = factory->create(QStringLiteral("hidden"), &control);
        control.hidden = false;
        QWidget *shown = factory->create(QStringLiteral("shown"), &control);
        area->addControl(hidden);
        area->addControl(shown);
        main.show();
        QVERIFY(QTest::qWaitForWindowExposed(&main));
        QVERIFY(!hidden->isVisible());
        QVERIFY(shown->isVisible());
        shown->hide();
        hidden->show();
        QTRY_VERIFY(hidden->isVisible());
        QVERIFY(!shown->isVisible());
        // No gap is left where it stood.
        QVERIFY(area->actions().at(0)->isVisible());
        QVERIFY(!area->actions().at(1)->isVisible());
    }

    void aNarrowBarKeepsItsControlsBehindTheExtension()
    {
        QMainWindow main;
        auto *area = new ToolBarArea(QStringLiteral("area"));
        main.addToolBar(area);
        QVector<QWidget *> sliders;
        for (int i = 0; i < 12; ++i) {
            const BoundControl control(ControlDescriptor::Slider, editor.get(), nullptr, nullptr,
                                       nullptr);
            sliders.append(factory->create(QString::number(i), &control));
            sliders.last()->setMinimumWidth(60);
            area->addControl(sliders.last());
        }
        main.resize(300, 200);
        main.show();
        QVERIFY(QTest::qWaitForWindowExposed(&main));
        QVERIFY(sliders.first()->isVisible());
        QVERIFY(!sliders.last()->isVisible());
        auto *extension = area->findChild<QToolButton *>(QStringLiteral("qt_toolbar_ext_button"));
        QVERIFY(extension && extension->isVisible() && extension->isEnabled());
        QTest::mouseClick(extension, Qt::LeftButton);
        QTRY_VERIFY(sliders.last()->isVisible());
    }

    void aControlThatMovesAwayLeavesTheBar()
    {
        auto area = std::make_unique<ToolBarArea>(QStringLiteral("area"));
        const BoundControl control(ControlDescriptor::Slider, nullptr, nullptr, nullptr, nullptr);
        QWidget *slider = factory->create(QStringLiteral("key"), &control);
        area->addControl(slider);
        QCOMPARE(area->actions().size(), 1);
        window->layout()->addWidget(slider);
        QCOMPARE(area->actions().size(), 0);
        area.reset();
        QVERIFY(factory->widget(QStringLiteral("key")));
        delete slider;
        QVERIFY(!factory->widget(QStringLiteral("key")));
    }

    void theWheelPassesOverWhatHasNoFocus_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("slider") << int(ControlDescriptor::Slider);
        QTest::newRow("volume") << int(ControlDescriptor::VolumeSlider);
        QTest::newRow("spin box") << int(ControlDescriptor::SpinBox);
        QTest::newRow("double spin box") << int(ControlDescriptor::DoubleSpinBox);
        QTest::newRow("combo box") << int(ControlDescriptor::ComboBox);
    }

    void theWheelPassesOverWhatHasNoFocus()
    {
        QFETCH(int, kind);
        QWidget *widget = makeKind(kind);
        auto *elsewhere = new QLineEdit(window.get());
        window->layout()->addWidget(elsewhere);
        elsewhere->setFocus();
        QTRY_VERIFY(elsewhere->hasFocus());
        QWidget *target = widget->focusProxy() ? widget->focusProxy() : widget;
        QVERIFY(!(target->focusPolicy() & Qt::WheelFocus & ~Qt::StrongFocus));
        QVERIFY(!turnWheel(target, -120, false));
        QVERIFY(editor->calls.isEmpty());
        turnWheel(target, -120);
        QTRY_COMPARE(editor->calls.size(), 1);
    }

    void textsFollowTheLanguage()
    {
        const TextControl check(ControlDescriptor::CheckBox, editor.get(), nullptr, nullptr,
                                nullptr, &texts, 7);
        const ComboBoxControl combo(editor.get(), SLOT(intChanged(int)), nullptr, nullptr, &texts,
                                    flips, 2);
        auto *box = make<QCheckBox>(check);
        auto *list = make<QComboBox>(combo);
        texts.language = QStringLiteral("Texto");
        factory->retranslate();
        QCOMPARE(box->text(), QStringLiteral("Texto 7"));
        QCOMPARE(list->currentText(), QStringLiteral("Texto 21"));
        QCOMPARE(editor->calls, QVariantList());
        // An extension's translator may go with the editor that brought it.
        editor.reset();
        texts.language = QStringLiteral("Gone");
        factory->retranslate();
        QCOMPARE(box->text(), QStringLiteral("Texto 7"));
    }

    void aLabelNamesItsControl()
    {
        texts.language = QStringLiteral("X axis:");
        const TextControl label(ControlDescriptor::Label, nullptr, nullptr, nullptr, nullptr,
                                &texts, 1);
        QWidget *name = factory->create(QStringLiteral("anim_x_lb"), &label);
        static_cast<QLabel *>(name)->setText(QStringLiteral("X axis:"));
        const SpinBoxControl box = integer();
        QWidget *named = factory->create(QStringLiteral("anim_x"), &box);
        QWidget *unnamed = factory->create(QStringLiteral("anim_y"), &box);
        QCOMPARE(named->accessibleName(), QStringLiteral("X axis"));
        QCOMPARE(unnamed->accessibleName(), QStringLiteral("anim_y"));
        factory->add(QStringLiteral("name"), name);
    }

private:
    SpinBoxControl integer() const
    {
        return SpinBoxControl(editor.get(), SLOT(intChanged(int)), SIGNAL(setInt(int)),
                              SIGNAL(enabled(bool)), std::numeric_limits<int>::min(),
                              std::numeric_limits<int>::max());
    }

    template <typename Widget>
    Widget *make(const ControlDescriptor &descriptor)
    {
        auto *widget = qobject_cast<Widget *>(factory->create(QStringLiteral("key"), &descriptor));
        if (!widget)
            return nullptr;
        window->layout()->addWidget(widget);
        window->show();
        window->activateWindow();
        if (!QTest::qWaitForWindowActive(window.get()))
            return nullptr;
        widget->setFocus();
        return widget;
    }

    QWidget *makeKind(int kind)
    {
        switch (kind) {
        case ControlDescriptor::SpinBox:
            return make<QWidget>(integer());
        case ControlDescriptor::DoubleSpinBox:
            return make<QWidget>(DoubleSpinBoxControl(editor.get(), SLOT(doubleChanged(double)),
                                                      nullptr, nullptr, -5, 5, 1));
        case ControlDescriptor::ComboBox:
            return make<QWidget>(ComboBoxControl(editor.get(), SLOT(intChanged(int)), nullptr,
                                                 nullptr, &texts, flips));
        default: {
            auto *widget = make<QWidget>(BoundControl(ControlDescriptor::Kind(kind), editor.get(),
                                                      SLOT(intChanged(int)), nullptr, nullptr));
            auto *slider = qobject_cast<QSlider *>(widget);
            if (slider)
                slider->setValue(50);
            editor->calls.clear();
            return widget;
        }
        }
    }

    // Returns whether the widget took the event.
    bool turnWheel(QWidget *widget, int angle, bool focused = true)
    {
        if (focused)
            widget->setFocus();
        const QPointF at = widget->rect().center();
        QWheelEvent event(at, widget->mapToGlobal(at.toPoint()), QPoint(), QPoint(0, angle),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(widget, &event);
        return event.isAccepted();
    }

    Texts texts;
    std::unique_ptr<Editor> editor;
    std::unique_ptr<ControlFactory> factory;
    std::unique_ptr<QWidget> window;
};

QTEST_MAIN(TestControlFactory)
#include "tst_controlfactory.moc"

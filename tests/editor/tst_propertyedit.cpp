// SPDX-License-Identifier: MIT
#include "editor/propertyedit.h"

#include "editor/multivaluewidget.h"
#include "editor/propertyprovider.h"
#include "editor/section.h"
#include "editor/valueedits.h"
#include "support/dialoganswerer.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"

#include <QtTest>
#include <QtWidgets>
#include <functional>

using Vela::MultiValueWidget;
using Vela::PropertyEdit;
using Vela::Section;

namespace {

QString operator""_s(const char *text, size_t size)
{
    return QString::fromUtf8(text, int(size));
}

struct Property
{
    QString kind;
    QVariant value;
    QVariantMap attributes = {};
    QString section = {};
};

/// Properties that are named after their kinds.
class Properties : public Vela::PropertyProvider
{
public:
    unsigned int count() const override
    {
        return unsigned(list.size());
    }
    QString kind(unsigned int index) const override
    {
        return list.at(int(index)).kind;
    }
    QString label(unsigned int index) const override
    {
        return prefix + list.at(int(index)).kind;
    }
    QString section(unsigned int index) const override
    {
        return prefix + list.at(int(index)).section;
    }
    QVariant value(unsigned int index) const override
    {
        return list.at(int(index)).value;
    }
    void setValue(unsigned int index, const QVariant &value) override
    {
        list[int(index)].value = value;
        ++sets;
        if (onSet)
            onSet(index);
    }
    QVariantMap attributes(unsigned int index) const override
    {
        return list.at(int(index)).attributes;
    }
    QString sectionKey(unsigned int index) const override
    {
        return "section_"_s + list.at(int(index)).section;
    }

    QVector<Property> list;
    QString prefix;
    int sets = 0;
    std::function<void(unsigned int)> onSet;
};

/// A kind of an engine: a number in a line edit, which it also reports when it is disabled.
class EngineEdit : public Vela::PropertyValueEdit
{
public:
    void setEnabled(QWidget *widget, bool enabled) override
    {
        widget->setEnabled(enabled);
        if (!enabled)
            Q_EMIT valueChanged(widget, 0);
    }
    void setValue(QWidget *widget, const QVariant &value) override
    {
        const QSignalBlocker blocker(widget);
        qobject_cast<QLineEdit *>(widget)->setText(value.toString());
    }
    QWidget *createWidget(QWidget *parent, const QVariantMap &) override
    {
        auto *edit = new QLineEdit(parent);
        connect(edit, &QLineEdit::textChanged, this,
                [this, edit](const QString &text) { Q_EMIT valueChanged(edit, text.toInt()); });
        return edit;
    }
};

class Names : public Vela::PropertyValueEditTranslator
{
public:
    QString itemText(unsigned int item, bool folded) const override
    {
        return folded ? QString::number(item) : "component %1"_s.arg(item);
    }
};

/// Ends what deleteLater() was called for, as the next round of events would.
void endDeleted()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void selectAll(QWidget *field)
{
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
}

QVariant shownBy(const QWidget *field)
{
    return field->metaObject()->userProperty().read(field);
}

/// Turns the wheel as the windowing system does: only such an event goes on to the parents.
void turnWheel(QWidget *widget)
{
    const QPoint place = widget->rect().center();
    QWheelEvent event(place, widget->mapToGlobal(place), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(widget, &event);
}

} // namespace

class TestPropertyEdit : public QObject
{
    Q_OBJECT

    std::unique_ptr<RecordingHost> m_host;
    std::unique_ptr<Properties> m_provider;
    std::unique_ptr<QScrollArea> m_window;
    PropertyEdit *m_form = nullptr;

    void show(const QVector<Property> &list)
    {
        m_provider->list = list;
        m_form->setProvider(nullptr);
        m_form->setProvider(m_provider.get());
        endDeleted();
        QCoreApplication::processEvents();
        m_provider->sets = 0;
    }

    QLabel *label(const QString &name) const
    {
        for (QLabel *found : m_form->findChildren<QLabel *>()) {
            if (found->toolTip() == name)
                return found;
        }
        return nullptr;
    }
    QToolButton *foldButton(const QString &name) const
    {
        for (QToolButton *found : m_form->findChildren<QToolButton *>()) {
            if (found->accessibleName().endsWith(QLatin1Char(' ') + name))
                return found;
        }
        return nullptr;
    }
    /// Returns the editor of a row by its label; null if it is of another class.
    template <typename Widget>
    Widget *field(const QString &name) const
    {
        const QLabel *ofRow = label(name);
        return ofRow ? qobject_cast<Widget *>(ofRow->buddy()) : nullptr;
    }
    QVariant written(int row = 0) const
    {
        return m_provider->list.at(row).value;
    }

private Q_SLOTS:
    void init()
    {
        m_host = std::make_unique<RecordingHost>();
        m_provider = std::make_unique<Properties>();
        m_window = std::make_unique<QScrollArea>();
        m_form = new PropertyEdit;
        m_window->setWidget(m_form);
        m_window->setWidgetResizable(true);
        m_window->resize(420, 500);
        m_window->show();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void cleanup()
    {
        m_window.reset();
        m_provider.reset();
        m_host.reset();
    }

    void kindsReadAndWrite_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariantMap>("attributes");
        QTest::addColumn<QByteArray>("className");
        QTest::addColumn<QString>("keys");
        QTest::addColumn<QVariant>("written");
        const auto row = [](const char *kind, const QVariant &value, const QVariantMap &attributes,
                            const char *className, const char *keys, const QVariant &written) {
            QTest::newRow(kind) << value << attributes << QByteArray(className)
                                << QString::fromLatin1(keys) << written;
        };
        const QVariantMap items = {{"items"_s, QStringList{"red"_s, "green"_s}}};
        row("bool", false, {}, "QCheckBox", " ", true);
        row("int", -7, {}, "QSpinBox", "-2147483648", std::numeric_limits<int>::min());
        row("float", 1.25, {}, "QDoubleSpinBox", "-0.000125", -0.000125);
        row("file", "a/b.png"_s, {}, "Vela::FileBrowseEdit", "c/d.*e", "c/d.e"_s);
        row("text", "one\ntwo"_s, {}, "QPlainTextEdit", "a\rb", "a\nb"_s);
        row("string", "one"_s, {}, "QLineEdit", "2 b", "2 b"_s);
        row("option", 1, items, "QComboBox", "r", 0);
        row("stroption", "blue"_s, items, "QComboBox", "Red", "Red"_s);
    }

    void kindsReadAndWrite()
    {
        QFETCH(QVariant, value);
        QFETCH(QVariantMap, attributes);
        QFETCH(QString, keys);
        const QString kind = QString::fromLatin1(QTest::currentDataTag());
        const QVariant shown = kind == "option"_s ? QVariant("green"_s) : value;
        show({{kind, value, attributes}});
        auto *widget = field<QWidget>(kind);
        QVERIFY(widget);
        const QByteArray className = widget->metaObject()->className();
        QTEST(className, "className");
        QCOMPARE(shownBy(widget), shown);

        widget->setFocus();
        if (className != "QCheckBox" && kind != "option"_s)
            selectAll(QApplication::focusWidget());
        QTest::keyClicks(QApplication::focusWidget(), keys);
        QTEST(written(), "written");
        // Leaving the field is no change, and a value from outside is not written back.
        const int sets = m_provider->sets;
        QApplication::focusWidget()->clearFocus();
        m_provider->list.first().value = value;
        m_form->propertyChanged(0);
        QCOMPARE(shownBy(widget), shown);
        m_form->setProvider(m_provider.get());
        QCOMPARE(field<QWidget>(kind), widget);
        QCOMPARE(m_provider->sets, sets);

        m_form->setPropertyEnabled(0, false);
        QVERIFY(!widget->isEnabled() && !label(kind)->isEnabled());
    }

    void attributesLimitNumbers()
    {
        const QVariantMap limits = {{"minimum"_s, -5}, {"maximum"_s, 5}};
        const QVariantMap own = {{"minimum"_s, -5}, {"minimim1"_s, 1},   {"maximum"_s, 5},
                                 {"step"_s, 2},     {"maximim2"_s, 9.5}, {"step0"_s, 0.5}};
        show({{"int"_s, 0, limits}, {"int3"_s, 0, own}, {"float3"_s, 0, own}, {"float2"_s, 0}});
        QCOMPARE(field<QSpinBox>("int"_s)->minimum(), -5);
        QCOMPARE(field<QSpinBox>("int"_s)->maximum(), 5);
        const auto numbers = [this](const char *row, const char *property) {
            QVariantList result;
            const auto *multi = field<MultiValueWidget>(QLatin1String(row));
            for (unsigned int i = 0; i < multi->count(); ++i)
                result.append(multi->itemWidget(i)->property(property));
            return result;
        };
        QCOMPARE(numbers("int3", "minimum"), (QVariantList{-5, 1, -5}));
        QCOMPARE(numbers("int3", "maximum"), (QVariantList{5, 5, 9}));
        QCOMPARE(numbers("float3", "minimum"), (QVariantList{-5.0, 1.0, -5.0}));
        QCOMPARE(numbers("float3", "maximum"), (QVariantList{5.0, 5.0, 9.5}));
        QCOMPARE(numbers("float3", "singleStep"), (QVariantList{0.5, 2.0, 2.0}));
        QCOMPARE(numbers("float2", "minimum"), (QVariantList{-3.4028235e38, -3.4028235e38}));
        QCOMPARE(numbers("float2", "singleStep"), (QVariantList{0.1, 0.1}));
    }

    void vectorKeepsTheOtherComponents()
    {
        const QVariantList before = {0.123456789, 2.5, 300.0};
        show({{"float3"_s, before, {{"maximum"_s, 10}}}, {"int2"_s, QVariantList{4}}});
        auto *second =
            qobject_cast<QDoubleSpinBox *>(field<MultiValueWidget>("float3"_s)->itemWidget(1));
        QCOMPARE(second->text(), "2.5"_s);
        QTest::keyClick(second, Qt::Key_Up);
        // Neither the places that the first does not show are lost, nor is the third cut down.
        QCOMPARE(written().toList(), (QVariantList{0.123456789, 2.6, 300.0}));
        QTest::keyClick(second, Qt::Key_Down);
        QCOMPARE(written().toList(), before);
        QTest::keyClick(field<MultiValueWidget>("int2"_s)->itemWidget(0), Qt::Key_Up);
        QCOMPARE(written(1).toList(), (QVariantList{5, 0}));
    }

    void editorsFold()
    {
        Names names;
        const QVariant translator =
            QVariant::fromValue<Vela::PropertyValueEditTranslator *>(&names);
        show({{"int3"_s, 0, {{"translator"_s, translator}}},
              {"float2"_s, 0},
              {"text"_s, "one\ntwo"_s},
              {"int"_s, 1}});
        const auto *multi = field<MultiValueWidget>("int3"_s);
        const auto place = [multi](unsigned int item) { return multi->itemParent(item)->pos(); };
        QVERIFY(multi->isFolded());
        QCOMPARE(multi->itemLabel(1)->text(), "1"_s);
        QCOMPARE(field<MultiValueWidget>("float2"_s)->itemLabel(1)->text(), "Y"_s);
        QTRY_VERIFY(place(2).x() > place(1).x() && place(1).x() > place(0).x());
        QCOMPARE(place(2).y(), place(0).y());
        const QString badge = multi->itemLabel(2)->parentWidget()->styleSheet();
        QVERIFY2(badge.contains("background: #00F;"_s), qPrintable(badge));

        const auto *section = m_form->findChild<Section *>();
        const int height = section->height();
        QTest::mouseClick(foldButton("int3"_s), Qt::LeftButton);
        QVERIFY(!multi->isFolded());
        QCOMPARE(multi->itemLabel(1)->text(), "component 1"_s);
        QCOMPARE(multi->itemWidget(1)->accessibleName(), "int3 component 1"_s);
        QTRY_VERIFY(place(2).y() > place(1).y() && place(1).y() > place(0).y());
        QCOMPARE(place(2).x(), place(0).x());
        QTRY_VERIFY(section->height() >= height + 2 * multi->itemWidget(0)->height());
        QTest::mouseClick(foldButton("int3"_s), Qt::LeftButton);
        QCOMPARE(multi->itemLabel(1)->text(), "1"_s);
        QTRY_COMPARE(section->height(), height);

        const auto *text = field<QPlainTextEdit>("text"_s);
        QToolButton *fold = foldButton("text"_s);
        QCOMPARE(fold->size(), QSize(12, 12));
        QVERIFY(!foldButton("int"_s)->isEnabled());
        for (const int unfolded : {0, 1, 0}) {
            QTRY_COMPARE(text->height(), unfolded ? 222 : 22);
            QCOMPARE(fold->arrowType(), unfolded ? Qt::DownArrow : Qt::RightArrow);
            const auto bars = unfolded ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff;
            QCOMPARE(text->verticalScrollBarPolicy(), bars);
            QCOMPARE(text->horizontalScrollBarPolicy(), bars);
            fold->setFocus(Qt::TabFocusReason);
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        }
    }

    void unfinishedTextIsNotWritten()
    {
        const QRegularExpression three("[A-Z]{3}"_s);
        show({{"string"_s, "ABC"_s, {{"validator"_s, three.pattern()}}},
              {"stroption"_s, "ABC"_s, {{"validator"_s, three}}}});
        for (const int row : {0, 1}) {
            auto *widget = field<QWidget>(m_provider->list.at(row).kind);
            m_provider->sets = 0;
            widget->setFocus();
            selectAll(widget);
            QTest::keyClicks(widget, "Q1R"_s);
            const auto *box = qobject_cast<QComboBox *>(widget);
            const QLineEdit *edit = box ? box->lineEdit() : qobject_cast<QLineEdit *>(widget);
            QCOMPARE(edit->text(), "QR"_s);
            widget->clearFocus();
            QTRY_COMPARE(edit->text(), "ABC"_s);
            QCOMPARE(m_provider->sets, 0);
            widget->setFocus();
            selectAll(widget);
            QTest::keyClicks(widget, "QRS"_s);
            QCOMPARE(m_provider->sets, 1);
            QCOMPARE(written(row), QVariant("QRS"_s));
        }

        show({{"string"_s, "12:34"_s, {{"mask"_s, "00:00"_s}}}});
        QTest::keyClick(field<QLineEdit>("string"_s), Qt::Key_Home);
        QTest::keyClicks(field<QLineEdit>("string"_s), "x5"_s);
        QCOMPARE(written(), QVariant("52:34"_s));
    }

    // A provider may tell the form of each write, and may keep a number as a float.
    void typingSurvivesAnEcho()
    {
        show({{"float"_s, 7.0}, {"string"_s, "ad"_s}, {"text"_s, "ad"_s}, {"stroption"_s, "ad"_s}});
        m_provider->onSet = [this](unsigned int index) {
            QVariant &value = m_provider->list[int(index)].value;
            if (index == 0)
                value = double(float(value.toDouble()));
            m_form->propertyChanged(index);
        };
        auto *box = field<QDoubleSpinBox>("float"_s);
        selectAll(box);
        QTest::keyClicks(box, ".56"_s);
        QCOMPARE(box->text(), ".56"_s);
        QCOMPARE(box->value(), 0.56);
        for (const QString &kind : {"string"_s, "text"_s, "stroption"_s}) {
            auto *widget = field<QWidget>(kind);
            QTest::keyClick(widget, Qt::Key_End);
            QTest::keyClick(widget, Qt::Key_Left);
            QTest::keyClicks(widget, "bc"_s);
            QCOMPARE(shownBy(widget).toString(), "abcd"_s);
        }
        // The same letter over a selected one changes nothing.
        m_provider->sets = 0;
        auto *text = field<QPlainTextEdit>("text"_s);
        QTest::keyClick(text, Qt::Key_Home);
        QTest::keyClick(text, Qt::Key_Right, Qt::ShiftModifier);
        QTest::keyClicks(text, "a"_s);
        QCOMPARE(m_provider->sets, 0);
        // Nothing of a text is lost that the user does not touch: neither a space that does not
        // break, nor what stands far behind.
        const QString given = "a\u00a0b"_s.repeated(20000);
        for (const int row : {1, 2, 3}) {
            auto *widget = field<QWidget>(m_provider->list.at(row).kind);
            m_provider->list[row].value = given;
            m_form->propertyChanged(unsigned(row));
            QTest::keyClick(widget, Qt::Key_Home);
            QTest::keyClicks(widget, "c"_s);
            QVERIFY(written(row) == QVariant(QChar::fromLatin1('c') + given));
        }
    }

    void badValuesAndAttributesAreHarmless()
    {
        const QVariantMap bad = {
            {"minimum"_s, "-"_s}, {"maximum"_s, 1e300}, {"validator"_s, "["_s}};
        const QString kinds =
            "unknown string bool int float int2 float4 file text option stroption"_s;
        for (const QVariant &value : {QVariant(), QVariant("none"_s), QVariant(qQNaN()),
                                      QVariant(qInf()), QVariant(QVariantList{"none"_s})}) {
            QVector<Property> list;
            for (const QString &kind : kinds.split(QLatin1Char(' ')))
                list.append({kind, value, bad});
            show(list);
            QCOMPARE(field<QSpinBox>("int"_s)->minimum(), std::numeric_limits<int>::min());
            QCOMPARE(field<QSpinBox>("int"_s)->maximum(), std::numeric_limits<int>::max());
            QVERIFY(std::isfinite(field<QDoubleSpinBox>("float"_s)->value()));
            QCOMPARE(field<QComboBox>("option"_s)->currentIndex(), -1);
        }
        // The row behind one without an editor keeps its number.
        QVERIFY(label("unknown"_s) && !field<QWidget>("unknown"_s));
        QTest::keyClicks(field<QLineEdit>("string"_s), "a"_s);
        QCOMPARE(written(1), QVariant("a"_s));
        m_provider->list[1].value = "b"_s;
        for (const unsigned int row : {0u, 1u, 99u}) {
            m_form->propertyChanged(row);
            m_form->setPropertyEnabled(row, false);
        }
        QCOMPARE(field<QLineEdit>("string"_s)->text(), "b"_s);
        QVERIFY(!label("unknown"_s)->isEnabled());
        m_provider->list.clear();
        m_form->propertyChanged(1);
        m_form->setProvider(m_provider.get());
    }

    void sectionsFollowTheSettings()
    {
        m_host->options = {{"section_A"_s, false}, {"section_C"_s, false}};
        // A lone section is open, whatever was kept.
        show({{"int"_s, 1, {}, "A"_s}});
        QVERIFY(m_form->findChild<Section *>()->isExpanded());
        QVERIFY(field<QSpinBox>("int"_s)->isVisible());
        const QVector<Property> list = {{"int"_s, 1, {}, "B"_s},
                                        {"bool"_s, true, {}, "B"_s},
                                        {"string"_s, QString(), {}, "C"_s}};
        show(list);
        const QList<Section *> sections = m_form->findChildren<Section *>();
        QCOMPARE(sections.size(), 2);
        QCOMPARE(sections.at(1)->objectName(), "section_C"_s);
        QVERIFY(sections.at(0)->isExpanded() && !sections.at(1)->isExpanded());
        QVERIFY(sections.at(0)->isAncestorOf(field<QCheckBox>("bool"_s)));
        QVERIFY(!field<QLineEdit>("string"_s)->isVisible());
        // Only what the user does is kept.
        QVERIFY(m_host->optionsSet.isEmpty());

        auto *title =
            sections.at(1)->findChild<QToolButton *>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(title->text(), "C"_s);
        QCOMPARE(title->arrowType(), Qt::RightArrow);
        QTest::mouseClick(title, Qt::LeftButton);
        QCOMPARE(title->arrowType(), Qt::DownArrow);
        QTRY_VERIFY(!field<QLineEdit>("string"_s)->visibleRegion().isEmpty());
        QCOMPARE(m_host->options.value("section_C"_s), QVariant(true));
        title->setFocus();
        QTest::keyClick(title, Qt::Key_Space);
        QCOMPARE(m_host->options.value("section_C"_s), QVariant(false));
        QCOMPARE(m_host->optionsSet.size(), 2);

        // Without a host the sections work and keep nothing.
        m_host.reset();
        show(list);
        QVERIFY(m_form->findChildren<Section *>().at(1)->isExpanded());
    }

    void sectionsTakeTheHeightOfTheirContent()
    {
        const auto newContent = [](int height) {
            auto *layout = new QVBoxLayout;
            layout->setContentsMargins(0, 0, 0, 0);
            layout->addWidget(new QLabel);
            layout->itemAt(0)->widget()->setFixedHeight(height);
            return layout;
        };
        for (const int duration : {Section::DEFAULT_DURATION + 0, 40}) {
            QWidget window;
            auto *column = new QVBoxLayout(&window);
            auto *section = new Section("A"_s, duration);
            auto *open = new Section("B"_s, duration, true);
            column->addWidget(section);
            column->addWidget(open);
            column->addStretch();
            const auto *title = section->findChild<QToolButton *>();
            QVERIFY(title->isCheckable() && !title->isChecked());
            QCOMPARE(title->arrowType(), Qt::RightArrow);
            QCOMPARE(section->findChild<QScrollArea *>()->maximumHeight(), 0);
            window.show();
            QSignalSpy toggled(section, &Section::toggled);
            section->setContentLayout(newContent(100));
            open->setContentLayout(newContent(30));
            QTRY_COMPARE(open->height(), title->height() + 30);
            QTRY_COMPARE(section->height(), title->height());
            section->toggle(true);
            QVERIFY(section->isExpanded() && title->isChecked());
            QTRY_COMPARE(section->height(), title->height() + 100);
            section->setContentLayout(newContent(50));
            QTRY_COMPARE(section->height(), title->height() + 50);
            endDeleted();
            section->findChild<QLabel *>()->setFixedHeight(80);
            QTRY_COMPARE(section->height(), title->height() + 80);
            section->toggle(false);
            QTRY_COMPARE(section->height(), title->height());
            QTRY_VERIFY(!section->findChild<QLabel *>()->isVisible());
            QCOMPARE(toggled, (QList<QVariantList>{{true}, {false}}));
        }
    }

    // Qt draws arrow and text over each other where the text reads from right to left.
    void titlesReadInBothDirections()
    {
        Section section("Title"_s);
        auto *title = section.findChild<QToolButton *>();
        title->resize(200, title->sizeHint().height());
        const QSize arrow(title->iconSize().width() + 2, title->height());
        const QImage left = title->grab().toImage();
        section.setLayoutDirection(Qt::RightToLeft);
        const QImage right = title->grab().toImage();
        QCOMPARE(right.copy(QRect(QPoint(200 - arrow.width(), 0), arrow)),
                 left.copy(QRect(QPoint(), arrow)).mirrored(true, false));
        // What was free behind the text is free before it.
        QCOMPARE(right.copy(0, 0, 100, arrow.height()), left.copy(100, 0, 100, arrow.height()));
        QVERIFY(right.copy(100, 0, 80, arrow.height()) != left.copy(100, 0, 80, arrow.height()));
    }

    void engineKindsComeReplaceAndGo()
    {
        const QString kind = "ticks"_s;
        using Vela::VectorValueEdit;
        const QVector<VectorValueEdit::ComponentType> mixed = {VectorValueEdit::Integer,
                                                               VectorValueEdit::Floating};
        PropertyEdit::registerValueEdit(kind, new VectorValueEdit(mixed));
        show({{kind, QVariantList{1, 2.5}}});
        auto *multi = field<MultiValueWidget>(kind);
        QVERIFY(multi);

        // Rows that stand keep the editor that made them, whatever comes after it.
        auto *edit = new EngineEdit;
        PropertyEdit::registerValueEdit(kind, edit);
        PropertyEdit::registerValueEdit(kind, edit);
        m_form->propertyChanged(0);
        QTest::keyClick(multi->itemWidget(0), Qt::Key_Up);
        QCOMPARE(written().toList(), (QVariantList{2, 2.5}));

        show({{kind, 3}});
        QTest::keyClicks(field<QLineEdit>(kind), "4"_s);
        QCOMPARE(written(), QVariant(34));
        QCOMPARE(m_provider->sets, 1);
        // What a field reports while it is disabled may take its row away.
        m_provider->onSet = [this](unsigned int) { m_form->setProvider(nullptr); };
        m_form->setPropertyEnabled(0, false);
        QCOMPARE(m_provider->sets, 2);
        m_provider->onSet = nullptr;

        show({{kind, 3}});
        delete edit;
        m_form->propertyChanged(0);
        m_form->setPropertyEnabled(0, false);
        m_form->updateNameStrings();
        show({{kind, 3}});
        QVERIFY(!field<QWidget>(kind));
    }

    void labelsNameTheirFields()
    {
        m_provider->prefix = "a&b "_s;
        show({{"int"_s, 1, {}, "S&T"_s}, {"float2"_s, 0, {}, "S&T"_s}});
        const auto *title = m_form->findChild<Section *>()->findChild<QToolButton *>();
        // The "&" is shown: it marks no key.
        QCOMPARE(title->text(), "a&&b S&&T"_s);
        QCOMPARE(label("a&b int"_s)->text(), "a&&b int"_s);
        QCOMPARE(label("a&b int"_s)->width(), 100);
        m_provider->prefix = "neu "_s;
        m_form->updateNameStrings();
        QVERIFY(field<QSpinBox>("neu int"_s));
        QCOMPARE(field<QSpinBox>("neu int"_s)->accessibleName(), "neu int"_s);
        QVERIFY(foldButton("neu float2"_s));
        QCOMPARE(title->text(), "neu S&&T"_s);
    }

    void tabGoesThroughTheRows()
    {
        QWidget window;
        QVBoxLayout column(&window);
        QLineEdit before;
        PropertyEdit form;
        QLineEdit after;
        for (QWidget *widget : {static_cast<QWidget *>(&before), static_cast<QWidget *>(&form),
                                static_cast<QWidget *>(&after)})
            column.addWidget(widget);
        m_host->options.insert("section_C"_s, false);
        m_provider->list = {{"int"_s, 1, {}, "A"_s},
                            {"text"_s, QString(), {}, "A"_s},
                            {"float2"_s, 0, {}, "B"_s},
                            {"bool"_s, true, {}, "C"_s},
                            {"file"_s, true, {}, "D"_s}};
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        form.setProvider(m_provider.get());
        QCoreApplication::processEvents();
        before.setFocus();
        // Titles of sections, buttons that fold and fields; nothing of the closed section.
        for (const QString &stop :
             {"A"_s, "int"_s, "Unfold text"_s, "text"_s, "B"_s, "Unfold float2"_s, "float2 X"_s,
              "float2 Y"_s, "C"_s, "D"_s, "file"_s, "Browse"_s}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            const auto *face = QAccessible::queryAccessibleInterface(QApplication::focusWidget());
            QCOMPARE(face->text(QAccessible::Name), stop);
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QVERIFY(after.hasFocus());
    }

    void wheelTurnsOnlyTheFocusedField()
    {
        const QVariantMap items = {{"items"_s, QStringList{"a"_s, "b"_s}}};
        QVector<Property> list = {{"int"_s, 1},
                                  {"float"_s, 1},
                                  {"option"_s, 0, items},
                                  {"stroption"_s, "a"_s, items},
                                  {"int2"_s, 0}};
        list.insert(list.size(), 20, {"string"_s, QString()});
        show(list);
        QTRY_VERIFY(m_window->verticalScrollBar()->maximum() > 0);
        QWidgetList fields = {field<MultiValueWidget>("int2"_s)->itemWidget(1)};
        for (int row = 0; row < 4; ++row)
            fields.append(field<QWidget>(list.at(row).kind));
        for (QWidget *field : qAsConst(fields)) {
            m_window->setFocus();
            m_window->verticalScrollBar()->setValue(0);
            m_provider->sets = 0;
            turnWheel(field);
            QCOMPARE(m_provider->sets, 0);
            QVERIFY(m_window->verticalScrollBar()->value() > 0);
            field->setFocus();
            turnWheel(field);
            QCOMPARE(m_provider->sets, 1);
        }
    }

    void formCanChangeInsideAWrite()
    {
        const QVector<Property> list = {{"int"_s, 1}, {"stroption"_s, QString()}};
        Properties other;
        other.list = list;
        const QVector<std::function<void(unsigned int)>> acts = {
            [this, &other](unsigned int) { m_form->setProvider(&other); },
            [this](unsigned int) {
                m_form->setProvider(nullptr);
                m_form->setProvider(m_provider.get());
            }};
        for (const auto &act : acts) {
            for (const QString &kind : {"int"_s, "stroption"_s}) {
                m_provider->onSet = nullptr;
                show(list);
                QPointer<QWidget> widget = field<QWidget>(kind);
                m_provider->onSet = act;
                QTest::keyClicks(widget, "5"_s);
                const int sets = m_provider->sets;
                QVERIFY(sets > 0);
                // What was taken away writes nothing any more, until it ends.
                QVERIFY(widget);
                QTest::keyClicks(widget, "6"_s);
                QCOMPARE(m_provider->sets, sets);
                QCOMPARE(other.sets, 0);
                endDeleted();
                QVERIFY(!widget);
            }
        }

        // A provider that ends leaves an empty form.
        m_provider->onSet = nullptr;
        show(list);
        QPointer<QSpinBox> box = field<QSpinBox>("int"_s);
        m_provider.reset();
        QTest::keyClick(box, Qt::Key_Up);
        m_form->propertyChanged(0);
        m_form->updateNameStrings();
        endDeleted();
        QVERIFY(m_form->findChildren<Section *>().isEmpty());
    }

    void fileKindUsesItsStore()
    {
        MemoryArchive archive;
        archive.put("/game/a.png"_s, QByteArray());
        archive.put("/game/a.wav"_s, QByteArray());
        const QVariantMap store = {
            {"filter"_s, "*.wav"_s},
            {"basePath"_s, "/game"_s},
            {"baseArchive"_s, QVariant::fromValue<Vela::Archive *>(&archive)}};
        show({{"file"_s, QString(), store}});
        const QPointer<QWidget> edit = field<QWidget>("file"_s);
        const auto *names = edit->findChild<QLineEdit *>()->completer()->model();
        QCOMPARE(names->rowCount(), 1);
        QCOMPARE(names->index(0, 0).data().toString(), "a.wav"_s);
        // The form may change while a file is chosen.
        DialogAnswerer answerer;
        answerer.handle([this](QDialog *dialog) {
            m_form->setProvider(nullptr);
            endDeleted();
            dialog->done(QDialog::Accepted);
        });
        QTest::mouseClick(edit->findChild<QToolButton *>(), Qt::LeftButton);
        QCOMPARE(m_provider->sets, 0);
        QTRY_VERIFY(!edit);
    }
};

QTEST_MAIN(TestPropertyEdit)

#include "tst_propertyedit.moc"

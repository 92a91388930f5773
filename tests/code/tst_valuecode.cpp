// SPDX-License-Identifier: MIT
#include "support/testgrammar.h"

#include <QtTest>
#include <array>

using namespace Vela;

using Ints = QVector<int>;
using Reals = QVector<qreal>;

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

/// The head of a chain of values without a document.
class Root : public RootCode
{
public:
    Root()
        : RootCode(0)
    {
    }
    ~Root() override
    {
        destroy();
    }
};

class PlainName : public NamedCode
{
public:
    void setName(const QString &name) override
    {
        names.append(name);
    }
    QStringList names;
};

struct Readings
{
    Ints ints;
    Reals reals;
    int items;
    QPoint point;
    QPointF pointF;
    std::array<int, 4> edges; ///< left, top, right and bottom
};

} // namespace

Q_DECLARE_METATYPE(Readings)

class tst_ValueCode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rawValueAndText_data();
    void rawValueAndText();
    void textOfAVariantThatIsNoRawValue();
    void readers_data();
    void readers();
    void scalarReaders();
    void properties();
};

void tst_ValueCode::rawValueAndText_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<QVariant>("raw");
    QTest::addColumn<QString>("withComma");
    QTest::addColumn<QString>("withBlank");

    const auto row = [](const char *name, int type, const QVariant &given, const QVariant &raw,
                        const char *withComma, const char *withBlank = nullptr) {
        QTest::newRow(name) << type << given << raw << text(withComma)
                            << text(withBlank ? withBlank : withComma);
    };
    using V = ValueCode;
    const QVariantList mixed = {1.5, 2, 0.25};
    row("unknown", V::Unknown, 5, 5, "5");
    row("unused number", 1, 5, 5, "5");
    row("number past the end", 19, true, true, "true");
    row("string", V::String, 12, text("12"), "12");
    row("file", V::File, text("a/b.png"), text("a/b.png"), "a/b.png");
    row("bool", V::Bool, 3, 3, "1");
    row("bool off", V::Bool, 0.0, 0.0, "0");
    row("date", V::Date, QDate(2026, 1, 2), QDate(2026, 1, 2), "2026-01-02");
    row("keyword", V::Keyword, text("4"), 4u, "word4");
    row("keyword of no number", V::Keyword, text("x"), 0u, "word0");
    row("keywords", V::KeywordVector, 2, QVariantList{2u}, "");
    row("keyword list", V::KeywordVector, QVariantList{2u, 3u}, QVariantList{2u, 3u}, "");
    row("float", V::Float, 2.5, 2.5, "2.5");
    row("vec2", V::FloatVec2, QVariantList{1.5, 2}, QPointF(1.5, 2), "1.5, 2", "1.5 2");
    row("vec2 rounds", V::FloatVec2, QPointF(1234567, 1 / 3.0), QPointF(1234567, 1 / 3.0),
        "1.23457e+06, 0.333333", "1.23457e+06 0.333333");
    row("vec2 lacks one", V::FloatVec2, QVariantList{7}, QPointF(7, 0), "7, 0", "7 0");
    row("vec2 of a point", V::FloatVec2, QPoint(3, -4), QPointF(3, -4), "3, -4", "3 -4");
    row("vec2 of a text", V::FloatVec2, text("3"), QPointF(), "0, 0", "0 0");
    row("vec3", V::FloatVec3, mixed, mixed, "1.5, 2, 0.25", "1.5 2 0.25");
    row("vec4 of a number", V::FloatVec4, 2.5f, QVariantList{2.5}, "2.5");
    row("floats, none", V::FloatVector, QVariantList(), QVariantList(), "");
    row("int", V::Int, text("-7"), -7, "-7");
    row("ivec2", V::IntVec2, QVariantList{1, 2, 3}, QPoint(1, 2), "1, 2", "1 2");
    row("ivec2 stays", V::IntVec2, QPoint(5, 6), QPoint(5, 6), "5, 6", "5 6");
    row("ivec2 of nothing", V::IntVec2, QVariantList(), QPoint(), "0, 0", "0 0");
    row("ivec3", V::IntVec3, QVariantList{1, 2, 3}, QVariantList{1, 2, 3}, "1, 2, 3", "1 2 3");
    row("ivec4 of a text", V::IntVec4, text("9"), QVariantList{9}, "9");
    row("ints", V::IntVector, QVariantList{-1, 2}, QVariantList{-1, 2}, "-1, 2", "-1 2");
}

void tst_ValueCode::rawValueAndText()
{
    QFETCH(int, type);
    QFETCH(QVariant, given);
    QFETCH(QVariant, raw);
    Root root;
    const auto valueType = ValueCode::Type(type);
    TestValue &value = *new TestValue(valueType, QTextBlock(), &root, text("v"), given);
    QCOMPARE(value.rawValue(), raw);
    QCOMPARE(value.rawValue().userType(), raw.userType());
    value.ValueCode::setValue(QVariant());
    value.ValueCode::setValue(given);
    QCOMPARE(value.rawValue(), raw);
    QTEST(ValueCode::asString(&value, valueType, raw, QLatin1Char(',')), "withComma");
    QTEST(ValueCode::asString(&value, valueType, raw, QChar()), "withBlank");
}

void tst_ValueCode::textOfAVariantThatIsNoRawValue()
{
    const auto asString = [](ValueCode::Type type, const QVariant &value) {
        return ValueCode::asString(nullptr, type, value, QLatin1Char(';'));
    };
    QCOMPARE(asString(ValueCode::Keyword, 4u), text("4"));
    for (int type = ValueCode::Unknown; type <= ValueCode::IntVector; ++type)
        QCOMPARE(asString(ValueCode::Type(type), text(" yes ")), text(" yes "));
    QCOMPARE(asString(ValueCode::IntVec2, QVariantList{1, 2}), text("1; 2"));
    QCOMPARE(asString(ValueCode::Date, 5), QString());
}

void tst_ValueCode::readers_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("raw");
    QTest::addColumn<Readings>("expected");

    const auto row = [](const char *name, int type, const QVariant &raw, const Readings &expected) {
        QTest::newRow(name) << type << raw << expected;
    };
    // A null rectangle has its right and bottom edges at -1.
    const std::array<int, 4> null = {0, 0, -1, -1};
    using V = ValueCode;
    row("bool", V::Bool, true, {{}, {}, 0, {}, {}, null});
    row("unknown number", V::Unknown, 5, {{}, {}, 0, {}, {}, null});
    row("int", V::Int, 7, {{7}, {7}, 1, {7, 0}, {7, 0}, {7, 0, -1, -1}});
    row("float", V::Float, 2.75, {{3}, {2.75}, 1, {3, 0}, {2.75, 0}, {3, 0, -1, -1}});
    row("string", V::String, text("12"), {{12}, {12}, 1, {12, 0}, {12, 0}, {12, 0, -1, -1}});
    row("keywords", V::KeywordVector, QVariantList{3u, 4u}, {{0}, {0}, 1, {}, {}, null});
    row("ivec2", V::IntVec2, QVariantList{3, 4}, {{}, {}, 0, {3, 4}, {3, 4}, null});
    row("vec2", V::FloatVec2, QVariantList{1.5, 2}, {{}, {}, 0, {}, {1.5, 2}, null});
    row("vec3", V::FloatVec3, QVariantList{1.25, 2, 3.75},
        {{1, 2, 4}, {1.25, 2, 3.75}, 3, {1, 2}, {1.25, 2}, {1, 2, 4, -1}});
    row("two ints", V::IntVector, QVariantList{5, 6},
        {{5, 6}, {5, 6}, 2, {5, 6}, {5, 6}, {5, 6, -1, -1}});
    row("five ints", V::IntVector, QVariantList{1, 2, 3, 4, 5},
        {{1, 2, 3, 4, 5}, {1, 2, 3, 4, 5}, 5, {1, 2}, {1, 2}, {1, 2, 3, 4}});
    row("point of no type", V::Unknown, QPoint(8, 9), {{}, {}, 0, {8, 9}, {8, 9}, null});
    row("rectangle of no type", V::Unknown, QRect(1, 2, 3, 4), {{}, {}, 0, {}, {}, {1, 2, 3, 5}});
    row("nothing", V::IntVec4, QVariantList(), {{}, {}, 0, {}, {}, null});
}

void tst_ValueCode::readers()
{
    QFETCH(int, type);
    QFETCH(QVariant, raw);
    QFETCH(Readings, expected);
    Root root;
    const TestValue &value =
        *new TestValue(ValueCode::Type(type), QTextBlock(), &root, text("v"), raw);
    QCOMPARE(value.asIntVector(), expected.ints);
    QCOMPARE(value.asRealVector(), expected.reals);
    QCOMPARE(value.asVector().size(), expected.items);
    QCOMPARE(value.asPoint(), expected.point);
    QCOMPARE(value.asPointF(), expected.pointF);
    QCOMPARE(value.asSize(), QSize(expected.point.x(), expected.point.y()));
    const QRect rect = value.asRect();
    QCOMPARE((std::array<int, 4>{rect.left(), rect.top(), rect.right(), rect.bottom()}),
             expected.edges);
}

void tst_ValueCode::scalarReaders()
{
    Root root;
    TestValue &number = *new TestValue(ValueCode::Float, QTextBlock(), &root, text("v"), 2.75);
    QCOMPARE(number.asBool(), true);
    QCOMPARE(number.asInt(), 3);
    QCOMPARE(number.asUInt(), 3u);
    QCOMPARE(number.asReal(), 2.75);
    QCOMPARE(number.asVector(), QVariantList{2.75});
    QCOMPARE(number.value(), QVariant(2.75));
    const TestValue &word = *new TestValue(ValueCode::Keyword, QTextBlock(), &number, text("w"), 4);
    QCOMPARE(word.value(), QVariant(text("word4")));
    QCOMPARE(word.rawValue(), QVariant(4u));
    QCOMPARE(word.asVector(), QVariantList{4u});
}

void tst_ValueCode::properties()
{
    PlainName item;
    QCOMPARE(item.propertyNames(), QStringList({text("DisplayName"), text("Name")}));
    QCOMPARE(item.property(text("Name")), QVariant(QString()));
    item.setProperty(text("DisplayName"), text("x"));
    item.setProperty(text("name"), text("x"));
    item.setProperty(text("Name"), 7);
    QCOMPARE(item.names, QStringList{text("7")});

    Root root;
    const TestValue &value = *new TestValue(ValueCode::Int, QTextBlock(), &root, text("a"), 0);
    QCOMPARE(value.property(text("Name")), QVariant(text("a")));
    QCOMPARE(value.property(text("DisplayName")), QVariant(text("a")));
    QVERIFY(!value.property(text("Value")).isValid());
}

QTEST_APPLESS_MAIN(tst_ValueCode)
#include "tst_valuecode.moc"

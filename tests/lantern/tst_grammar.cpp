// SPDX-License-Identifier: MIT
#include "grammartext.h"
#include "lantern/completion.h"
#include "lantern/motionbox.h"
#include "lantern/motioncode.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"

#include "code/codelink.h"
#include "code/rootcode.h"

#include <QCompleter>
#include <QDate>
#include <QStringListModel>
#include <QTest>
#include <QTextLayout>

#include <random>

using Lantern::MotionBox;
using Lantern::MotionCode;
using Lantern::SectionCode;
using Lantern::SettingCode;
using Vela::ContactBoxCode;
using Vela::ValueCode;

namespace {

const char motionStart[] = "[animation a]\n";
const char projectStart[] = "[project]\n";

} // namespace

Q_DECLARE_METATYPE(Lantern::Scope)

class tst_Grammar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messages_data();
    void messages();
    void longTokensAreClipped();
    void spansOfTokens_data();
    void spansOfTokens();
    void settingsOfEachType_data();
    void settingsOfEachType();
    void framesAreWritten_data();
    void framesAreWritten();
    void blanksGoWithoutTheOption();
    void aWholeFrame();
    void boxesBelongToTheFrameBelow();
    void boxesAreWritten();
    void boxesThroughTheClipboard();
    void nodesStayWhereTheirKindStays();
    void headersGovernTheLinesBelow();
    void editsGiveWhatAFreshParseGives();
    void sectionsTakeValues();
    void animationsTakeFrames();
    void animationsThroughTheirList();
    void links();
    void format_data();
    void format();
    void formatOfPartOfAText();
    void optimize();
    void completionByPlace_data();
    void completionByPlace();
    void completionIsInserted();
};

void tst_Grammar::messages_data()
{
    QTest::addColumn<Scope>("scope");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected"); // "PLACE|piece of the message"

    const auto row = [](Scope scope, const char *start, const QString &line,
                        const QStringList &expected) {
        QTest::newRow(qPrintable(utf8(start) + line)) << scope << utf8(start) + line << expected;
    };
    const auto text = [&row](const char *line, const QStringList &expected = {}) {
        row(Scope::Project, "", utf8(line), expected);
    };
    const auto project = [&row](const char *line, const QStringList &expected = {}) {
        row(Scope::Project, projectStart, utf8(line), expected);
    };
    const auto motion = [&row](const char *line, const QStringList &expected = {}) {
        row(Scope::Motion, motionStart, utf8(line), expected);
    };
    const auto one = [](const char *message) { return QStringList{utf8(message)}; };

    text("name = A", one("E 0:0-4|a section in brackets, but found 'name'"));
    text("[project", one("E 0:1-8|']', but the line ends"));
    text("[]", one("E 0:1-2|the name of a section, but found ']'"));
    text("[project] x # y", one("E 0:10-11|nothing but a comment, but found 'x'"));
    text("[project Rowan]", one("W 0:9-14|'project' takes no name"));
    text("[projet]\nany = thing", one("W 0:1-7|'projet' is unknown. Did you mean 'project'?"));
    text("[sprite idle]\nanything, = [ at all\n= {");
    text("[motion]\nground = 1", one("W 0:1-7|does not belong"));
    text("[animation]", one("E 0:10-11|an identifier of letters"));
    text("[animation a b]", one("E 0:13-14|']', but found 'b'"));
    text("[animation a] b", one("E 0:14-15|a title in quotes, or nothing, but found 'b'"));
    text("[animation a] \"B", one("E 0:14-16|a closing quote"));
    text("[animation a \"B\"]", one("D 0:13-16|write '[animation a] \"B\"'"));
    text("[stage]\nsize = 640", one("E 1:7-10|a size such as 320 x 180, but found '640'"));
    text("[stage]\nsize = 320x180\nscale = 65", one("E 2:8-10|a scale such as 2"));
    text("[files]\nsprites = a\\..\\..\\x.png", one("E 1:10-23|inside the folder"));
    row(Scope::Game, "[projects]\n", QStringLiteral("open = a.lantern"),
        one("E 1:7-16|a folder of its own"));
    row(Scope::Motion, "[motion]\n", QStringLiteral("tint = 1, 2, 0"),
        one("E 1:10-11|a number from 0 to 1, but found '2'"));
    row(Scope::Motion, "[motion]\n", QStringLiteral("bounds = 1, 2, 3"),
        one("E 1:9-16|4 numbers with commas between"));
    row(Scope::Motion, "[motion]\n", QStringLiteral("ground = 1.5"),
        one("E 1:9-12|a whole number, but found '1.5'"));
    row(Scope::Motion, "[motion]\n", QStringLiteral("ground = 1234567890"), one("E 1:9-19|whole"));
    row(Scope::Motion, "[motion]\n", QStringLiteral("made = 2026-02-30"), one("E 1:7-17|a date"));
    row(Scope::Motion, "[motion]\n", QStringLiteral("model = b.png"),
        one("W 1:8-13|no file 'b.png'"));
    row(Scope::Motion, "[motion]\n", QStringLiteral("mirrored = true"),
        one("D 1:11-15|'true' is outdated: write 'yes'"));
    row(Scope::Motion, "[motion]\n", QStringLiteral("flipped = maybe"),
        {QStringLiteral("D 1:0-7|write 'mirrored'"),
         QStringLiteral("E 1:10-15|'yes' or 'no', but found 'maybe'")});

    project("  # nothing but a comment");
    project("Name = a#b = \"c\" # d");
    project("name", one("E 1:0-4|'=' and a value, but the line ends"));
    project("name =", one("E 1:5-6|a value, but the line ends"));
    project("name = # x", one("E 1:5-6|a value, but the line ends"));
    project("name = \"a", one("E 1:7-9|a closing quote"));
    project("name = \"a\"\"\" b", one("E 1:13-14|nothing but a comment, but found 'b'"));
    project("n!me = a", one("E 1:0-4|found 'n!me'"));
    project("\tkind = castle",
            one("E 1:8-14|'character', 'stage', 'screen' or 'shared', but found"));
    project("requires = 1.x", one("E 1:11-14|a version such as 1.0, but found '1.x'"));
    project("nmae = A", one("W 1:0-4|no setting 'nmae'. Did you mean 'name'?"));
    project("colour = red", one("W 1:0-6|no setting 'colour'."));
    project("title = A", one("D 1:0-5|'title' is outdated: write 'name'"));
    project("= a", one("E 1:0-1|a setting such as 'key = value', but found '='"));
    project("frame a : 1", one("E 1:0-5|no animation begins above, but found 'frame'"));
    project("{ x }  ", one("W 1:0-5|begins with '{' is reserved"));
    project("@plugin a", one("W 1:0-9|'@plugin' is reserved"));
    project("@include", one("E 1:0-8|the path of a motion text, but the line ends"));
    project("@include more.motion");
    project("@include less.motion # x", one("W 1:9-20|no file 'less.motion'"));
    project("@include ../a", one("E 1:9-13|a path inside the folder"));
    row(Scope::Project, projectStart, QStringLiteral("na") + QChar(0) + QStringLiteral("me = a"),
        one("E 1:2-3|text without NUL characters"));

    motion("frame", one("E 1:0-5|the name of a sprite, or 'none', but the line ends"));
    motion("frame idle", one("E 1:6-10|':' and a number of ticks, but the line ends"));
    motion("frame idle : soon", one("E 1:13-17|a number of ticks or 'forever', but found 'soon'"));
    motion("frame idle : -1", one("E 1:13-15|a number of ticks"));
    motion("frame idle : 0", one("W 1:13-14|0 ticks"));
    motion("frame \"walk 1\":forever,play step");
    motion("frame none : 1");
    motion("frame ghost : 1, play bang",
           {QStringLiteral("W 1:6-11|no sprite 'ghost'"),
            QStringLiteral("W 1:22-26|no sound 'bang'")});
    motion("frame idle wait 4", one("D 1:11-15|'wait' is outdated: write ':'"));
    motion("frame idle : 4 x = 1", one("E 1:15-16|',' and an option, but found 'x'"));
    motion("frame idle : 4,", one("E 1:14-15|an option such as 'x = 4', but the line ends"));
    motion("frame idle : 4, x", one("E 1:16-17|'=', but the line ends"));
    motion("frame idle : 4, x = far", one("E 1:20-23|a whole number of pixels, but found 'far'"));
    motion("frame idle : 4, flip = up", one("E 1:23-25|'h', 'v' or 'hv'"));
    motion("frame idle : 4, scale = 1 x", one("E 1:24-27|a scale such as 2 or 1.5 x 2"));
    motion("frame idle : 4, angle = steep", one("E 1:24-29|a number of degrees"));
    motion("frame idle : 4, blend = glow", one("E 1:24-28|a way to blend"));
    motion("frame idle : 4, blend = dodge 1 0 3", one("E 1:34-35|',' or the end of the line"));
    motion("frame idle : 4, loop now", one("E 1:21-24|',' or the end of the line"));
    motion("frame idle : 4, anlge = 4", one("W 1:16-21|'anlge' is unknown. Did you mean 'angle'?"));
    motion("frame idle : 4, mirror", one("D 1:16-22|write 'flip = h'"));
    motion("frame idle : 4, rotate = 9", one("D 1:16-22|write 'angle'"));
    motion("frame idle : 4, x = 1, x = 2", one("W 1:23-24|'x' stands twice"));
    motion("attack 1 2 3",
           one("E 1:11-12|four whole numbers: x, y, width and height, but the line"));
    motion("attack 1 2 3 4 deep",
           one("E 1:15-19|'depth' or the end of the line, but found 'deep'"));
    motion("attack 1 2 3 4 depth 5", one("E 1:21-22|two whole numbers"));
    motion("attack 1 2 3 4 depth 5 4", one("E 1:23-24|5 or more, but found '4'"));
    motion("attack 1 2 0 4", one("W 1:11-14|without an area"));
    motion("hit 1 2 3 4", one("D 1:0-3|'hit' is outdated: write 'attack'"));
    motion("hurt 1 2 3 4", one("D 1:0-4|'hurt' is outdated: write 'body'"));
    motion("fram idle : 4", one("E 1:0-4|'frame', 'attack' or 'body', but found 'fram'"));
    motion("x = 3", one("E 1:0-1|'frame', 'attack' or 'body', but found 'x'"));
}

void tst_Grammar::messages()
{
    QFETCH(Scope, scope);
    QFETCH(QString, text);
    QFETCH(QStringList, expected);

    compareMessages(Text(scope, text), expected);
}

void tst_Grammar::longTokensAreClipped()
{
    const QString forty(40, QLatin1Char('z'));
    const Text text(Scope::Motion,
                    utf8(motionStart) + QStringLiteral("frame idle : ") + forty + forty);
    const QVector<Found> found = messagesOf(text);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().place, QStringLiteral("E 1:13-93"));
    QVERIFY(found.first().message.contains(QLatin1Char('\'') + forty + QChar(0x2026)));
}

void tst_Grammar::spansOfTokens_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("expected"); // "KIND:START-END"; "!" for one that is underlined

    const auto row = [](const char *line, const char *expected) {
        QTest::newRow(line) << utf8(line) << utf8(expected);
    };
    row("[animation a] \"A\" # b", "7:1-10 9:11-12 3:14-17 1:18-21");
    row("Body -1 2  3 4 depth 0 1 # c", "5:0-4 2:5-14 6:15-24 1:25-28");
    row("frame idle : 4, x = 1 , y = -2, flip = h, play step",
        "5:0-5 9:6-10 2:13-14 6:16-36 8:39-40 6:42-46 9:47-51");
    row("frame none : forever, glow 1, blend = dodge 1 2, loop #",
        "5:0-5 8:6-10 8:13-20 !:22-26 0:26-28 6:30-35 8:38-43 2:44-47 6:49-53 1:54-55");
    row("frame idle : 4, x = 1, y = wide", "5:0-5 9:6-10 2:13-14 6:16-24 !:27-31");
}

void tst_Grammar::spansOfTokens()
{
    QFETCH(QString, line);
    QFETCH(QString, expected);

    const Text text(Scope::Motion, utf8(motionStart) + line);
    QStringList found;
    const auto ranges = text.line(1).layout()->formats();
    for (const QTextLayout::FormatRange &range : ranges) {
        QString kind = QStringLiteral("!");
        for (int type = 0; type < Vela::CodeParserSyntax::TokenTypeCount; ++type) {
            if (range.format == Vela::CodeDocument::syntaxFormat(type))
                kind = QString::number(type);
        }
        found.append(
            QStringLiteral("%1:%2-%3").arg(kind).arg(range.start).arg(range.start + range.length));
    }
    QCOMPARE(found.join(QLatin1Char(' ')), expected);
}

void tst_Grammar::settingsOfEachType_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("type");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("newValue");
    QTest::addColumn<QString>("newLine");

    const auto row = [](const char *line, ValueCode::Type type, const QVariant &value,
                        const QVariant &newValue, const char *newLine) {
        QTest::newRow(line) << utf8(line) << int(type) << value << newValue << utf8(newLine);
    };
    row("author = a  b  # c", ValueCode::String, utf8("a  b"), utf8("A # \"b\""),
        "author = \"A # \"\"b\"\"\"  # c");
    row("author=\"a  b\"", ValueCode::String, utf8("a  b"), utf8("c\nd e"), "author = c d e");
    row("author = \"a b\"#c", ValueCode::String, utf8("a b"), utf8("d e"), "author = d e #c");
    row("made = 2026-05-31", ValueCode::Date, QDate(2026, 5, 31), QDate(2026, 6, 1),
        "made = 2026-06-01");
    row("model = \"a b.png\"", ValueCode::File, utf8("a b.png"), utf8("c/d.png"),
        "model = c/d.png");
    row("Surface = Water", ValueCode::Keyword, 1u, 2u, "Surface = air");
    row("surface = air # x", ValueCode::Keyword, 2u, utf8("ground"), "surface = ground # x");
    row("tags = move,  jump   # t", ValueCode::KeywordVector, QVariantList{1u, 2u},
        QVariantList{3u}, "tags = fight   # t");
    row("mirrored =  YES", ValueCode::Bool, true, false, "mirrored =  no");
    row("ground = -12", ValueCode::Int, -12, 5, "ground = 5");
    row("gravity = 0.50", ValueCode::Float, 0.5, -0.0000001, "gravity = 0");
    row("origin = 3,-4", ValueCode::IntVec2, QPoint(3, -4), QPoint(1, 2), "origin = 1, 2");
    row("drift = 1.5, 2", ValueCode::FloatVec2, QPointF(1.5, 2), QPointF(0.125, -2),
        "drift = 0.125, -2");
    row("grid = 1, 2, 3", ValueCode::IntVec3, QVariantList{1, 2, 3}, QVariantList{4, 5, 6},
        "grid = 4, 5, 6");
    row("tint = 1, 0.5, 0", ValueCode::FloatVec3, QVariantList{1.0, 0.5, 0.0},
        QVariantList{0.0, 0.25, 1.0}, "tint = 0, 0.25, 1");
    row("bounds = -8, -16, 8, 0", ValueCode::IntVec4, QVariantList{-8, -16, 8, 0},
        QVariantList{-1, -1, 1, 1}, "bounds = -1, -1, 1, 1");
    row("shadow = 0, 0, 0, 0.5", ValueCode::FloatVec4, QVariantList{0.0, 0.0, 0.0, 0.5},
        QVariantList{1.0, 1.0, 1.0, 1.0}, "shadow = 1, 1, 1, 1");
    row("layers = 1, 2, 3, 4, 5", ValueCode::IntVector, QVariantList{1, 2, 3, 4, 5},
        QVariantList{7}, "layers = 7");
    row("layers = 1", ValueCode::IntVector, QVariantList{1}, QVariantList(), "layers = 1");
    row("easing = 0.1, 0.9", ValueCode::FloatVector, QVariantList{0.1, 0.9}, QVariantList{0.000001},
        "easing = 0.000001");
    row("flavour = sweet", ValueCode::Unknown, utf8("sweet"), utf8(""), "flavour = \"\"");
}

void tst_Grammar::settingsOfEachType()
{
    QFETCH(QString, line);
    QFETCH(int, type);
    QFETCH(QVariant, value);
    QFETCH(QVariant, newValue);
    QFETCH(QString, newLine);

    Text text(Scope::Motion, QStringLiteral("[motion]\n") + line);
    auto *const setting = text.node<SettingCode>(1);
    QVERIFY(setting);
    QCOMPARE(int(setting->valueType()), type);
    QCOMPARE(setting->rawValue(), value);
    setting->setValue(newValue);
    QCOMPARE(text.line(1).text(), newLine);
    QCOMPARE(text.node<SettingCode>(1), setting);
    if (line == newLine)
        return;
    text.undo();
    QCOMPARE(text.line(1).text(), line);
    QCOMPARE(setting->rawValue(), value);
}

void tst_Grammar::framesAreWritten_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("newLine");

    const auto row = [](const char *line, const char *property, const QVariant &value,
                        const char *newLine) {
        QTest::newRow(qPrintable(utf8(property) + QLatin1Char(' ') + utf8(newLine)))
            << utf8(line) << utf8(property) << value << utf8(newLine);
    };
    const char commented[] = "  frame idle   : 40, y = 1   # c";
    row(commented, "Delay", 8, "  frame idle   : 8, y = 1   # c");
    row(commented, "Delay", -7, "  frame idle   : forever, y = 1   # c");
    row(commented, "Offset", QPoint(4, 0), "  frame idle   : 40, x = 4   # c");
    row(commented, "Offset", QPoint(4, 2), "  frame idle   : 40, y = 2, x = 4   # c");
    row(commented, "Offset", QPoint(0, 0), "  frame idle   : 40   # c");
    row(commented, "Identifier", utf8("walk 1"), "  frame \"walk 1\"   : 40, y = 1   # c");
    row(commented, "Identifier", utf8("None"), "  frame \"None\"   : 40, y = 1   # c");
    row(commented, "Identifier", QString(), "  frame none   : 40, y = 1   # c");
    row("frame idle : 4, glow = 3 4, x = 2,  loop", "Offset", QPoint(0, 0),
        "frame idle : 4, glow = 3 4, loop");
    row("frame idle:4,x=1", "Offset", QPoint(3, 0), "frame idle : 4, x = 3");
    row("frame idle : 4", "Scale", QPointF(2, 2), "frame idle : 4, scale = 2");
    row("frame idle : 4, scale = 3", "Scale", QPointF(1.5, 2), "frame idle : 4, scale = 1.5 x 2");
    row("frame idle : 4, scale = 3", "Scale", QPointF(1, 1), "frame idle : 4");
    row("frame idle : 4, rotate = 9", "Angle", 22.50, "frame idle : 4, angle = 22.5");
    row("frame idle : 4, angle = 9, loop", "Angle", 0, "frame idle : 4, loop");
    row("frame idle : 4", "Flip", 3u, "frame idle : 4, flip = hv");
    row("frame idle : 4, mirror, play step", "Flip", 2u, "frame idle : 4, flip = v, play step");
    row("frame idle : 4, x = 1, x = 2", "Offset", QPoint(5, 0), "frame idle : 4, x = 5");
    row("frame idle wait 4", "Delay", 5, "frame idle : 5");
}

void tst_Grammar::framesAreWritten()
{
    QFETCH(QString, line);
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QFETCH(QString, newLine);

    Text text(Scope::Motion, utf8(motionStart) + line);
    MotionFrame *const frame = text.frame(1);
    QVERIFY(frame);
    frame->setProperty(property, value);
    QCOMPARE(text.line(1).text(), newLine);
    QCOMPARE(text.frame(1), frame);
    if (property != QLatin1String("Delay") || value.toInt() >= 0)
        QCOMPARE(frame->property(property), value);
    else
        QCOMPARE(frame->delay(), -1);
}

void tst_Grammar::blanksGoWithoutTheOption()
{
    Text text(Scope::Motion,
              utf8(motionStart)
                  + utf8("  frame idle   : 4   # c\n  frame idle   :4\nframe idle : 4"));
    text.keepsBlanks = false;
    for (int i = 1; i <= 2; ++i)
        text.frame(i)->setDelay(5);
    QCOMPARE(text.line(1).text(), QStringLiteral("  frame idle : 5   # c"));
    QCOMPARE(text.line(2).text(), QStringLiteral("  frame idle : 5"));
    text.frame(3)->setOffsetX(5);
    QCOMPARE(text.line(3).text(), QStringLiteral("frame idle : 4, x = 5"));
}

void tst_Grammar::aWholeFrame()
{
    Text text(Scope::Motion,
              utf8(motionStart)
                  + utf8("FRAME idle : 12, X = -3, y = 4, flip = VH, scale = 2 x 0.5\n"
                         "frame idle : forever, FLIP = HV, angle = -45.5, blend = hardlight 0.5 2, "
                         "loop, play \"step\", glow\n"
                         "frame none : 1"));
    // A flip of "vh" is none, so this frame is no node.
    QVERIFY(!text.frame(1));
    MotionFrame *const frame = text.frame(2);
    QVERIFY(frame);
    QCOMPARE(frame->spriteName(), QStringLiteral("idle"));
    QCOMPARE(frame->soundName(), QStringLiteral("step"));
    QCOMPARE(frame->delay(), -1);
    QCOMPARE(int(frame->flipFlags()), 3);
    QCOMPARE(frame->angle(), -45.5);
    QVERIFY(frame->hasTransform());
    QVERIFY(!frame->hasOffset());
    QCOMPARE(int(frame->blendMode()), int(MotionFrame::Blend::HardLight));
    QCOMPARE(frame->blendSource(), 0.5);
    QCOMPARE(frame->blendDestination(), 2.0);
    QVERIFY(frame->isLoopPoint());
    QCOMPARE(frame->scale(), QPointF(1, 1));

    frame->setBlend(MotionFrame::Blend(MotionFrame::Blend::Dodge, 1, 0));
    QVERIFY(text.line(2).text().contains(QLatin1String(", blend = dodge, loop,")));
    frame->setBlendDestination(0.25);
    QVERIFY(text.line(2).text().contains(QLatin1String(", blend = dodge 1 0.25, loop,")));
    frame->setBlend(MotionFrame::Blend());
    QVERIFY(!text.line(2).text().contains(QLatin1String("blend")));
    QVERIFY(text.line(2).text().endsWith(QLatin1String(", loop, play \"step\", glow")));
    QCOMPARE(text.frame(3)->spriteName(), QString());

    // An animation has one loop point.
    text.frame(3)->setProperty(QStringLiteral("LoopPoint"), true);
    QVERIFY(!frame->isLoopPoint());
    QCOMPARE(text.line(3).text(), QStringLiteral("frame none : 1, loop"));
    QCOMPARE(text.node<MotionCode>(0)->loopPoint(), 1u);
    text.undo();
    QVERIFY(frame->isLoopPoint());
}

void tst_Grammar::boxesBelongToTheFrameBelow()
{
    const Text text(Scope::Motion,
                    utf8(motionStart)
                        + utf8("  attack -1 2 3 4 depth -5 6  # reach\n" // 1
                               "# between\n"
                               "  body 0 0 8 8\n" // 3
                               "frame idle : 4\n" // 4
                               "frame idle : 4\n"
                               "  hurt 9 9 9 9")); // 6
    MotionFrame *const frame = text.frame(4);
    QCOMPARE(frame->firstLine(), 1);
    QCOMPARE(frame->attackBoxes()->count(), 1u);
    QCOMPARE(frame->collisionBoxes()->count(), 1u);
    const ContactBoxCode *const attack = frame->attackBoxes()->at(0);
    QCOMPARE(attack->rect(), QRect(-1, 2, 3, 4));
    QCOMPARE(attack->depth(), ContactBoxCode::Depth(-5, 6));
    QVERIFY(!attack->parent());
    QCOMPARE(text.frame(5)->collisionBoxes()->count(), 0u);
    QVERIFY(!text.frame(5)->collisionBoxes()->at(0));
    QCOMPARE(text.node<MotionBox>(6)->boxType(), ContactBoxCode::Collision);
    const QVector<Vela::Message> lost = text.motions()->boxesWithoutFrame();
    QCOMPARE(lost.size(), 1);
    QCOMPARE(lost.first().line, 6u);
    QCOMPARE(lost.first().type, Vela::Message::Warning);
}

void tst_Grammar::boxesAreWritten()
{
    Text text(Scope::Motion,
              utf8(motionStart) + utf8("  attack 1  2 3 4 # a\nframe idle : 4\nframe idle : 4"));
    Vela::ContactBoxCode *const attack = text.frame(2)->attackBoxes()->at(0);
    attack->setRect(QRect(5, 6, 7, 8));
    QCOMPARE(text.line(1).text(), QStringLiteral("  attack 5  6 7 8 # a"));
    QVERIFY(attack->setDepth({-2, 2}));
    QCOMPARE(text.line(1).text(), QStringLiteral("  attack 5  6 7 8 depth -2 2 # a"));
    QVERIFY(!attack->setDepth({2, 1}));
    QVERIFY(attack->setDepth({0, 0}));
    QCOMPARE(text.line(1).text(), QStringLiteral("  attack 5  6 7 8 # a"));

    Vela::ContactBoxesCode *const bodies = text.frame(3)->collisionBoxes();
    QVERIFY(bodies->add(QRect(1, 1, 2, 2)));
    Vela::ContactBoxCode *const second = bodies->add(QRect(0, 0, 1, 1));
    QCOMPARE(bodies->at(1), second);
    QCOMPARE(text.line(3).text(), QStringLiteral("  body 1 1 2 2"));
    QCOMPARE(text.line(4).text(), QStringLiteral("  body 0 0 1 1"));
    bodies->remove(0);
    QCOMPARE(bodies->at(0)->rect(), QRect(0, 0, 1, 1));
    text.undo();
    QCOMPARE(bodies->count(), 2u);
    bodies->clear();
    QCOMPARE(text.blockCount(), 4);
    text.undo();
    QCOMPARE(bodies->count(), 2u);
}

void tst_Grammar::boxesThroughTheClipboard()
{
    Text text(Scope::Motion,
              utf8(motionStart)
                  + utf8("  attack 1 2 3 4 depth -5 6 # a\n  hurt 0 0 8 8\nframe idle : 4\n"
                         "frame idle : 5"));
    MotionFrame *const from = text.frame(3);
    const QString copied =
        from->contactBoxesText({from->collisionBoxes()->at(0), from->attackBoxes()->at(0)});
    QCOMPARE(copied, QStringLiteral("body 0 0 8 8\nattack 1 2 3 4 depth -5 6\n"));

    MotionFrame *const to = text.frame(4);
    const QString before = text.toString();
    QCOMPARE(
        to->pasteContactBoxes(QStringLiteral("rubbish\r\nframe idle : 3\r\nbody 1 2\r\n") + copied),
        2);
    QCOMPARE(to->attackBoxes()->count(), 1u);
    QCOMPARE(to->attackBoxes()->at(0)->depth(), ContactBoxCode::Depth(-5, 6));
    QCOMPARE(to->collisionBoxes()->at(0)->rect(), QRect(0, 0, 8, 8));
    QCOMPARE(from->attackBoxes()->count(), 1u);
    text.undo();
    QCOMPARE(text.toString(), before);
    QCOMPARE(to->pasteContactBoxes(QStringLiteral("nothing of ours")), 0);
    QCOMPARE(text.toString(), before);
}

void tst_Grammar::nodesStayWhereTheirKindStays()
{
    Text text(Scope::Project,
              utf8("[stage]\nsize = 1 x 2\n[animation a]\nbody 1 2 3 4\nframe idle : 4"));
    QVector<CodeNode *> before;
    for (int i = 0; i < text.blockCount(); ++i)
        before.append(text.nodeInBlock(text.line(i)));
    text.insertAt(1, 12, QStringLiteral("0"));
    text.insertAt(2, 12, QStringLiteral("b"));
    text.insertAt(3, 0, QStringLiteral("  "));
    text.insertAt(4, 14, QStringLiteral(", x = 3"));
    for (int i = 0; i < text.blockCount(); ++i)
        QCOMPARE(text.nodeInBlock(text.line(i)), before.at(i));
    QCOMPARE(text.node<SettingCode>(1)->asSize(), QSize(1, 20));
    QCOMPARE(text.node<MotionCode>(2)->identifier(), QStringLiteral("ab"));
    QCOMPARE(text.frame(4)->offset(), QPoint(3, 0));

    // Of another type, and in error, they do not.
    text.insertAt(1, 0, QStringLiteral("un"));
    QCOMPARE(text.node<SettingCode>(1)->valueType(), ValueCode::Unknown);
    QCOMPARE(text.node<SettingCode>(1)->name(), QStringLiteral("unsize"));
    text.insertAt(4, 0, QStringLiteral("= "));
    QVERIFY(!text.nodeInBlock(text.line(4)));
}

void tst_Grammar::headersGovernTheLinesBelow()
{
    Text text(Scope::Project,
              utf8("[stage]\nscale = 2\n\nsize = 1 x 2\n[animation a]\nframe idle : 4"));
    auto *const section = text.node<SectionCode>(0);
    QCOMPARE(section->subType(), unsigned(Lantern::StageSection));
    QCOMPARE(section->valueCount(), 2u);

    section->setName(QStringLiteral("project"));
    QCOMPARE(text.node<SectionCode>(0), section);
    QCOMPARE(section->subType(), unsigned(Lantern::ProjectSection));
    QCOMPARE(messagesOf(text).size(), 2);
    QCOMPARE(text.node<SettingCode>(3)->valueType(), ValueCode::Unknown);

    text.undo();
    QVERIFY(messagesOf(text).isEmpty());
    text.insertAt(0, 0, QStringLiteral("#"));
    QCOMPARE(messagesOf(text).size(), 2);
    QVERIFY(!text.nodeInBlock(text.line(1)));
    text.insertAt(4, 0, QStringLiteral("#"));
    QVERIFY(!text.nodeInBlock(text.line(5)));
    text.undo();
    text.undo();
    QVERIFY(messagesOf(text).isEmpty());
    QCOMPARE(text.node<SectionCode>(0)->valueCount(), 2u);
    QCOMPARE(text.node<MotionCode>(4)->frameCount(), 1u);
}

// Lines come, go and change places at random; what the parser then knows must not depend on the
// way.
void tst_Grammar::editsGiveWhatAFreshParseGives()
{
    const QStringList pool = {QStringLiteral("[project]"),
                              QStringLiteral("[stage]"),
                              QStringLiteral("[animation a]"),
                              QStringLiteral("[animation b] \"B\""),
                              QStringLiteral("[sprite x]"),
                              QStringLiteral("[odd]"),
                              QStringLiteral("[stage"),
                              QStringLiteral("name = A"),
                              QStringLiteral("size = 1 x 2"),
                              QStringLiteral("scale = 3"),
                              QStringLiteral("scale = x"),
                              QStringLiteral("# c"),
                              QString(),
                              QStringLiteral("frame idle : 4"),
                              QStringLiteral("frame ghost : 0, mirror"),
                              QStringLiteral("body 1 2 3 4"),
                              QStringLiteral("hit 1 2 3 4"),
                              QStringLiteral("@include a"),
                              QStringLiteral("{")};
    const auto dump = [](const Text &text) {
        QStringList lines;
        for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
            const CodeNode *const node = text.nodeInBlock(block);
            QString line = block.text() + QStringLiteral(" | %1").arg(block.userState());
            if (node) {
                line += QStringLiteral(" %1 %2")
                            .arg(node->type())
                            .arg(node->parent() ? node->parent()->lineNo() : -2);
            }
            if (const auto *const value = text.node<SettingCode>(block.blockNumber()))
                line += QStringLiteral(" %1 ").arg(value->valueType()) + value->name();
            lines.append(line);
        }
        for (const Found &found : messagesOf(text))
            lines.append(found.place + found.message);
        return lines;
    };
    constexpr unsigned int seed = 20260531;
    std::mt19937 random(seed);
    const auto upTo = [&random](int most) { return int(random() % unsigned(most + 1)); };
    Text text(Scope::Project, QString());
    for (int step = 0; step < 1500; ++step) {
        QStringList lines;
        for (int i = upTo(3); i > 0; --i)
            lines.append(pool.at(upTo(pool.size() - 1)));
        const bool isBracketed = upTo(3) == 0;
        if (isBracketed)
            text.beginChange();
        for (int i = isBracketed ? 2 : 1; i > 0; --i) {
            QTextCursor cursor(text.line(upTo(text.blockCount() - 1)));
            if (text.blockCount() > 30 || upTo(2) == 0)
                cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, 1 + upTo(4));
            text.insertOnCursor(lines.join(QLatin1Char('\n')), cursor);
        }
        if (isBracketed)
            text.endChange();
        if (upTo(4) == 0)
            text.undo();
        text.rehighlight();
        const Text fresh(Scope::Project, text.toString());
        const QStringList expected = dump(fresh);
        const QStringList found = dump(text);
        QVERIFY2(found == expected,
                 qPrintable(QStringLiteral("seed %1, step %2:\n").arg(seed).arg(step)
                            + found.join(QLatin1Char('\n')) + QStringLiteral("\n--\n")
                            + expected.join(QLatin1Char('\n'))));
    }
}

void tst_Grammar::sectionsTakeValues()
{
    Text text(Scope::Project, utf8("[files]\nsprites = a.png\n\n[stage]"));
    auto *const files = text.node<SectionCode>(0);
    Vela::ValueCode *const added =
        files->addValue(QStringLiteral("sounds"), QStringLiteral("b # c.wav"), false);
    QVERIFY(added);
    QCOMPARE(text.line(2).text(), QStringLiteral("sounds = \"b # c.wav\""));
    QCOMPARE(added->value().toString(), QStringLiteral("b # c.wav"));
    const Vela::ValueCode *const inserted =
        files->insertValue(1, QStringLiteral("scripts"), QStringLiteral("d"), false);
    QVERIFY(inserted);
    QCOMPARE(files->valueAt(1), inserted);
    QVERIFY(!files->addValue(QStringLiteral("sounds"), QStringLiteral("e"), true));
    QVERIFY(!files->addValue(QStringLiteral("no name"), QStringLiteral("e"), false));
    QCOMPARE(text.toString(),
             QStringLiteral("[files]\nsprites = a.png\nscripts = d\nsounds = \"b # c.wav\"\n"
                            "# sounds = e\n\n[stage]"));
    QCOMPARE(files->valueByName(QStringLiteral("scripts"))->value().toString(),
             QStringLiteral("d"));
}

void tst_Grammar::animationsTakeFrames()
{
    Text text(Scope::Motion, utf8("[animation a] # one\n# below\n  body 1 2 3 4\nframe idle : 4"));
    auto *const animation = text.node<MotionCode>(0);
    Vela::FrameCode *const first = animation->insertFrame(0, 9);
    QCOMPARE(animation->frameAt(0), first);
    QCOMPARE(first->delay(), 9);
    QCOMPARE(text.line(1).text(), QStringLiteral("frame none : 9"));
    // The boxes and the comment stay with the frame that they stood above.
    QCOMPARE(animation->frameAt(1)->collisionBoxes()->count(), 1u);
    QCOMPARE(animation->addFrame(-1)->delay(), -1);
    QCOMPARE(text.line(5).text(), QStringLiteral("frame none : forever"));

    animation->setName(QStringLiteral("Say \"hi\""));
    QCOMPARE(text.line(0).text(), QStringLiteral("[animation a] \"Say \"\"hi\"\"\" # one"));
    QCOMPARE(animation->displayName(), QStringLiteral("Say \"hi\""));
    animation->setProperty(QStringLiteral("Identifier"), QStringLiteral("b2"));
    QCOMPARE(text.line(0).text(), QStringLiteral("[animation b2] \"Say \"\"hi\"\"\" # one"));
    animation->setProperty(QStringLiteral("Identifier"), QStringLiteral("b 2"));
    QCOMPARE(animation->identifier(), QStringLiteral("b2"));
    animation->setName(QString());
    QCOMPARE(text.line(0).text(), QStringLiteral("[animation b2] # one"));
    QCOMPARE(animation->displayName(), QStringLiteral("b2"));
}

void tst_Grammar::animationsThroughTheirList()
{
    Text text(Scope::Motion, utf8("[animation a] \"A\"\nframe idle : 4"));
    Lantern::Motions *const motions = text.motions();
    QCOMPARE(motions->count(), 1u);
    const Vela::AnimationCode *const added = motions->add(QStringLiteral("7"));
    QVERIFY(added);
    QCOMPARE(motions->at(1), added);
    QCOMPARE(motions->find(0, 7), 1);
    motions->duplicate(0, QStringLiteral("copy"));
    QCOMPARE(motions->count(), 3u);
    QCOMPARE(motions->at(1)->property(QStringLiteral("Identifier")).toString(),
             QStringLiteral("copy"));
    QCOMPARE(motions->at(1)->name(), QStringLiteral("A"));
    QVERIFY(messagesOf(text).isEmpty());
}

void tst_Grammar::links()
{
    Text text(Scope::Project, utf8("[files]\nsprites = \"a b.png\" # x\n@include ./more.motion"));
    const auto linksOf = [&text](int line) {
        return Vela::CodeBlockData::testBlockData(text.line(line))->links();
    };
    QCOMPARE(linksOf(1).size(), 1);
    QCOMPARE(linksOf(1).first()->start(), 10);
    QCOMPARE(linksOf(1).first()->end(), 19);
    linksOf(1).first()->activate();
    QCOMPARE(text.opened, QStringLiteral("a b.png"));
    linksOf(2).first()->activate();
    QCOMPARE(text.opened, QStringLiteral("more.motion"));
}

void tst_Grammar::format_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("indented");
    QTest::addColumn<QString>("full");

    const auto row = [](const char *name, const char *text, const char *indented,
                        const char *full) {
        QTest::newRow(name) << utf8(text) << utf8(indented) << utf8(full);
    };
    row("settings", " [STAGE]\n\tSize=320X180   \n scale  =  2 x2\n  Unknown= A  b ",
        "[STAGE]\nSize=320X180   \nscale  =  2 x2\nUnknown= A  b ",
        "[stage]\nsize = 320 x 180\nscale = 2 x 2\nunknown = A  b");
    row("values of each kind",
        "[project]\nKIND=Stage\nname  = The  = Brook\nauthor=\" a \"\n[motion]\ntags= A,b",
        "[project]\nKIND=Stage\nname  = The  = Brook\nauthor=\" a \"\n[motion]\ntags= A,b",
        "[project]\nkind = stage\nname = The  = Brook\nauthor = \" a \"\n[motion]\ntags = A,b");
    row("an animation",
        "[ Animation  Walk ]\"A  b\"\nBody 1\t2 3 4  DEPTH 0 1\n"
        " Frame \"Idle 1\":Forever,X=1 ,  play Step , Glow=2\n",
        "[ Animation  Walk ]\"A  b\"\n  Body 1\t2 3 4  DEPTH 0 1\n"
        "Frame \"Idle 1\":Forever,X=1 ,  play Step , Glow=2\n",
        "[animation Walk] \"A  b\"\n  body 1 2 3 4 depth 0 1\n"
        "frame \"Idle 1\" : forever, x = 1, play Step, Glow = 2\n");
    row("comments",
        "[files]   # files\nsprites=a.png    # in a column\nsounds=b.wav # c\n   # of its own  \n",
        "[files]   # files\nsprites=a.png    # in a column\nsounds=b.wav # c\n# of its own  \n",
        "[files]   # files\nsprites = a.png  # in a column\nsounds = b.wav # c\n# of its own\n");
    row("comments go with the line below", "[animation a]\n# one\n\n#two\nbody 1 2 3 4\n  # three",
        "[animation a]\n  # one\n\n  #two\n  body 1 2 3 4\n# three",
        "[animation a]\n  # one\n\n  #two\n  body 1 2 3 4\n# three");
    row("what nobody knows",
        "[sprite  X]\n  a=b  \n\n  [project ]\n { x  \n  kind  =  castle  \n   \n@Include  a b",
        "[sprite  X]\n  a=b  \n\n[project ]\n { x  \nkind  =  castle  \n\n@Include  a b",
        "[sprite X]\n  a=b  \n\n[project]\n { x  \nkind  =  castle\n\n@include a b");
}

void tst_Grammar::format()
{
    QFETCH(QString, text);
    QFETCH(QString, indented);
    QFETCH(QString, full);

    for (const bool indentOnly : {true, false}) {
        Text document(Scope::Project, text);
        const int messages = messagesOf(document).size();
        document.formatLines(0, document.blockCount() - 1, indentOnly);
        QCOMPARE(document.toString(), indentOnly ? indented : full);
        QCOMPARE(messagesOf(document).size(), messages);
        const int steps = document.availableUndoSteps();
        document.formatLines(0, document.blockCount() - 1, indentOnly);
        QCOMPARE(document.toString(), indentOnly ? indented : full);
        QCOMPARE(document.availableUndoSteps(), steps);
        document.undo();
        QCOMPARE(document.toString(), text);
    }
}

void tst_Grammar::formatOfPartOfAText()
{
    Text text(Scope::Motion,
              utf8("[animation a]\n#x\n#y\n body 1 2 3 4\n frame idle:4\n frame idle:4"));
    text.formatLines(2, 2, true);
    text.formatLines(5, 900, false);
    QCOMPARE(text.toString(),
             utf8("[animation a]\n#x\n  #y\n body 1 2 3 4\n frame idle:4\nframe idle : 4"));
}

void tst_Grammar::optimize()
{
    const QString before = utf8("\n"
                                "\n" // behind a blank line
                                "[motion]\n"
                                "ground = 3\n"            // overridden
                                "gravity = 1 # moon\n"    // has a comment
                                "Gravity = 0\n"           // says the default, but counts
                                "mirrored = no\n"         // says the default
                                "surface = ground # so\n" // has a comment
                                "ground = 4\n"
                                "\n"
                                "[motion]\n" // has no line
                                "# alone\n"
                                "\n"
                                "[motion] # why\n"
                                "origin = 0, 0\n" // says the default
                                "\n"
                                "\n"
                                "[animation a]\n"
                                "  body 1 2 3 4\n"
                                "  attack 1 2 3 4\n"
                                "  hurt 1 2 3 4\n"     // stands twice
                                "  body 1 2 3 4 # x\n" // has a comment
                                "frame idle : 4\n"
                                "  body 1 2 3 4\n"
                                "frame idle : 0\n"
                                "[sprite a]\n"
                                "\n"
                                "\n"
                                "[animation b]\n"
                                "\n"
                                "\n");
    Text text(Scope::Motion, before);
    QCOMPARE(text.motions()->optimize(), 8u);
    QCOMPARE(text.toString(),
             utf8("\n"
                  "[motion]\n"
                  "gravity = 1 # moon\n"
                  "Gravity = 0\n"
                  "surface = ground # so\n"
                  "ground = 4\n"
                  "\n"
                  "# alone\n"
                  "\n"
                  "[motion] # why\n"
                  "\n"
                  "[animation a]\n"
                  "  body 1 2 3 4\n"
                  "  attack 1 2 3 4\n"
                  "  body 1 2 3 4 # x\n"
                  "frame idle : 4\n"
                  "  body 1 2 3 4\n"
                  "frame idle : 0\n"
                  "[sprite a]\n"
                  "\n"
                  "\n"
                  "[animation b]\n"
                  "\n"));
    text.undo();
    QCOMPARE(text.toString(), before);

    // Main sections and what the game may set stay.
    const QString main = utf8("[project]\n[stage]\nscale = 1\n[files]\n[mystery]\n[animation c]");
    Text project(Scope::Project, main);
    QCOMPARE(project.motions()->optimize(), 1u);
    QCOMPARE(project.toString(), utf8("[project]\n[stage]\nscale = 1\n[mystery]\n[animation c]"));
    QCOMPARE(project.motions()->optimize(), 0u);
}

void tst_Grammar::completionByPlace_data()
{
    QTest::addColumn<Scope>("scope");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("words");

    const auto row = [](Scope scope, const char *start, const char *line, const char *prefix,
                        const char *words) {
        QTest::newRow(qPrintable(utf8(start) + utf8(line)))
            << scope << utf8(start) + utf8(line) << utf8(prefix) << utf8(words);
    };
    row(Scope::Game, "", "[", "", "animation files game projects stage");
    row(Scope::Motion, "", "[m", "m", "motion");
    row(Scope::Project, projectStart, "", "", "");
    row(Scope::Project, projectStart, "  N", "N", "name");
    row(Scope::Project, projectStart, "kind = ", "", "character screen shared stage");
    row(Scope::Project, projectStart, "kind = S", "S", "screen shared stage");
    row(Scope::Project, projectStart, "kind = stage", "stage", "");
    row(Scope::Project, projectStart, "name = s", "s", "");
    row(Scope::Project, projectStart, "kind = # s", "", "");
    row(Scope::Motion, "[motion]\n", "mirrored =", "", "no yes");
    row(Scope::Motion, "[motion]\n", "tags = idle, f", "f", "fight");
    row(Scope::Project, projectStart, "@in", "@in", "@include");
    row(Scope::Motion, motionStart, "f", "f", "frame");
    row(Scope::Motion, motionStart, "frame ", "", "\"walk 1\" idle none");
    row(Scope::Motion, motionStart, "frame idle : ", "", "forever");
    row(Scope::Motion, motionStart, "frame idle : 4, x = 1, ", "",
        "angle blend flip loop play scale y");
    row(Scope::Motion, motionStart, "frame idle : 4, x = 1, bl", "bl", "blend");
    row(Scope::Motion, motionStart, "frame idle : 4, flip = ", "", "h hv v");
    row(Scope::Motion, motionStart, "frame idle : 4, blend = o", "o", "opacity overlay");
    row(Scope::Motion, motionStart, "frame idle : 4, play ", "", "step");
    row(Scope::Motion, motionStart, "frame \"i", "", "");
    row(Scope::Motion, motionStart, "body 1 2 3 4 ", "", "depth");
}

void tst_Grammar::completionByPlace()
{
    QFETCH(Scope, scope);
    QFETCH(QString, line);
    QFETCH(QString, prefix);
    QFETCH(QString, words);

    Text text(scope, line);
    QTextCursor cursor(&text);
    cursor.movePosition(QTextCursor::End);
    const Lantern::Completion completion = Lantern::completionAt(cursor, text);
    QCOMPARE(completion.words.join(QLatin1Char(' ')), words);
    if (words.isEmpty())
        return;
    QCOMPARE(completion.prefix, prefix);

    QCompleter completer;
    QString filled;
    QVERIFY(Lantern::complete(cursor, completer, filled, text));
    QCOMPARE(filled, prefix);
    QCOMPARE(completer.model()->rowCount(), completion.words.size());
}

void tst_Grammar::completionIsInserted()
{
    Text text(Scope::Motion, utf8(motionStart) + utf8("frame id-x : 4"));
    QTextCursor cursor(text.line(1));
    cursor.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, 8);
    QVERIFY(Lantern::insertCompletion(cursor, QStringLiteral("\"walk 1\""), text));
    QCOMPARE(text.line(1).text(), QStringLiteral("frame \"walk 1\" : 4"));
    QCOMPARE(text.frame(1)->spriteName(), QStringLiteral("walk 1"));
    QVERIFY(!Lantern::insertCompletion(QTextCursor(), QStringLiteral("x"), text));
}

QTEST_MAIN(tst_Grammar)
#include "tst_grammar.moc"

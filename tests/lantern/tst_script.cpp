// SPDX-License-Identifier: MIT
#include "grammartext.h"
#include "lantern/completion.h"
#include "lantern/options.h"
#include "lantern/scriptcode.h"
#include "lantern/sectioncode.h"

#include "code/codelink.h"
#include "code/rootcode.h"

#include <QTextLayout>

using Lantern::ScriptCode;
using Lantern::SectionCode;

namespace {

const char scriptStart[] = "[script a]\n";

QString inScript(const char *line)
{
    return utf8(scriptStart) + utf8(line);
}

} // namespace

class tst_Script : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messages_data();
    void messages();
    void linesBecomeNodes();
    void nodesWriteTheirLines();
    void nodesStayWhereTheirKindStays();
    void namesAreLinks();
    void highlightAndFolding();
    void format_data();
    void format();
    void formatByOptions();
    void completionByPlace_data();
    void completionByPlace();
};

void tst_Script::messages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const QString &text, const char *expected = "") {
        const QString all = utf8(expected);
        QTest::newRow(qPrintable(text))
            << text << (all.isEmpty() ? QStringList() : all.split(QLatin1Char('\n')));
    };
    const auto line = [&row](const char *text, const char *expected = "") {
        row(inScript(text), expected);
    };
    row(QStringLiteral("at 1 walk"), "E 0:0-2|'[script NAME]', but found 'at'");
    row(QStringLiteral("# only\n\n  # comments"));
    row(QStringLiteral("[animation a]"), "E 0:1-10|'script', but found 'animation'");
    row(QStringLiteral("[script]"), "E 0:7-8|the name of the script, but found ']'");
    row(QStringLiteral("[script a"), "E 0:8-9|']', but the line ends");
    row(QStringLiteral("[script a b]"), "E 0:10-11|']', but found 'b'");
    row(QStringLiteral("[Script \"a b\"] # c"));
    row(QStringLiteral("[script a] x"), "E 0:11-12|nothing but a comment, but found 'x'");

    line("at 0 light = 0.85");
    line("AT 1800  light = 0.60, START fireflies # c");
    line("when held left walk, turn left");
    line("when near \"old door\" show \"The door, # is stuck.\"");
    line("otherwise \"lift\", wait 30, play step");
    line("later walk", "E 1:0-5|'at', 'when' or 'otherwise', but found 'later'");
    line("light = 1", "E 1:0-5|'at', 'when' or 'otherwise', but found 'light'");
    line("@include a", "E 1:0-8|'at', 'when' or 'otherwise', but found '@include'");
    line("{ }", "E 1:0-3|'at', 'when' or 'otherwise', but found '{ }'");
    line("at", "E 1:0-2|a number of ticks, but the line ends");
    line("at -1 walk", "E 1:3-5|a number of ticks, but found '-1'");
    line("at 1.5 walk", "E 1:3-6|a number of ticks, but found '1.5'");
    line("at = 5", "E 1:3-4|a number of ticks, but found '='");
    line("at 5", "E 1:3-4|an action such as 'walk' or 'turn left', but the line ends");
    line("at 5 walk,", "E 1:9-10|an action such as 'walk' or 'turn left', but the line ends");
    line("at 5 walk: run", "E 1:9-10|',' or the end of the line, but found ':'");
    line("when", "E 1:0-4|'held', 'pressed', 'released', 'near' or 'hit', but the line ends");
    line("when seen door walk", "E 1:5-9|'near' or 'hit', but found 'seen'");
    line("when held", "E 1:5-9|the name of a key, but the line ends");
    line("when near , walk", "E 1:10-11|the name of a thing, but found ','");
    line("when held lfet walk", "W 1:10-14|'lfet' is unknown. Did you mean 'left'?");
    line("otherwise turn", "E 1:10-14|'left', 'right' or 'around', but the line ends");
    line("otherwise turn back", "E 1:15-19|'left', 'right' or 'around', but found 'back'");
    line("otherwise turn left right", "E 1:20-25|',' or the end of the line, but found 'right'");
    line("otherwise show door", "E 1:15-19|a text in quotes, but found 'door'");
    line("otherwise show \"door", "E 1:15-20|a closing quote");
    line("otherwise wait long", "E 1:15-19|a number of ticks, but found 'long'");
    line("otherwise start", "E 1:10-15|the name of a thing, but the line ends");
    line("otherwise play", "E 1:10-14|the name of a sound, but the line ends");
    line("otherwise play bang", "W 1:15-19|no sound 'bang'");
    line("otherwise trun left, walk", "W 1:10-14|'trun' is unknown. Did you mean 'turn'?");
    line("otherwise light = 2", "E 1:18-19|a number from 0 to 1, but found '2'");
    line("otherwise speed = 17", "E 1:18-20|a number from 0 to 16, but found '17'");
    line("otherwise light =", "E 1:16-17|a number, but the line ends");
    line("otherwise lihgt = 1", "W 1:10-15|'lihgt' is unknown. Did you mean 'light'?");
    line("otherwise lihgt = x",
         "W 1:10-15|Did you mean 'light'?\nE 1:18-19|a number, but found 'x'");
    row(inScript("at 5 wa") + QChar(0), "E 1:7-8|text without NUL characters");
}

void tst_Script::messages()
{
    QFETCH(QString, text);
    QFETCH(QStringList, expected);
    compareMessages(Text(Scope::Script, text), expected);
}

void tst_Script::linesBecomeNodes()
{
    const Text text(Scope::Script,
                    utf8("# x\n[script a]\nWhen  held left   walk, turn left # y\nwhat\n"
                         "[script \"b c\"]\n\nat 5  show \"a  b\""));
    QCOMPARE(text.root()->childs().size(), 2);
    auto *const section = text.node<SectionCode>(1);
    QVERIFY(section && text.node<SectionCode>(4));
    QCOMPARE(section->displayName(), QStringLiteral("script a"));
    QCOMPARE(text.node<SectionCode>(4)->displayName(), QStringLiteral("script \"b c\""));
    QCOMPARE(section->valueCount(), 1u);
    auto *const line = text.node<ScriptCode>(2);
    QCOMPARE(section->valueAt(0), static_cast<Vela::ValueCode *>(line));
    QCOMPARE(line->name(), QStringLiteral("When held left"));
    QCOMPARE(line->value().toString(), QStringLiteral("walk, turn left"));
    QVERIFY(!text.nodeInBlock(text.line(3)));
    QCOMPARE(text.node<ScriptCode>(6)->value().toString(), QStringLiteral("show \"a  b\""));
}

void tst_Script::nodesWriteTheirLines()
{
    Text text(Scope::Script, inScript("  at 5   walk # c\notherwise show \"a\"# d"));
    text.node<ScriptCode>(1)->setName(QStringLiteral("when held up"));
    QCOMPARE(text.line(1).text(), QStringLiteral("  when held up   walk # c"));
    text.node<ScriptCode>(1)->setValue(QStringLiteral("turn left, idle"));
    QCOMPARE(text.line(1).text(), QStringLiteral("  when held up   turn left, idle # c"));
    text.undo();
    QCOMPARE(text.line(1).text(), QStringLiteral("  when held up   walk # c"));
    // What stood behind a quote needs a blank now.
    text.node<ScriptCode>(2)->setValue(QStringLiteral("a\nb"));
    QCOMPARE(text.line(2).text(), QStringLiteral("otherwise a b # d"));

    text.insertAt(1, 0, QStringLiteral("when near \"a b\"idle\n"));
    text.node<ScriptCode>(1)->setName(QStringLiteral("at 7"));
    QCOMPARE(text.line(1).text(), QStringLiteral("at 7 idle"));
    text.undo();
    text.undo();

    auto *const section = text.node<SectionCode>(0);
    QVERIFY(section->addValue(QStringLiteral("at 9"), QStringLiteral("play step"), false));
    QCOMPARE(text.line(3).text(), QStringLiteral("at 9   play step"));
    QVERIFY(!section->addValue(QStringLiteral("at 9"), QStringLiteral("idle"), true));
    QCOMPARE(text.line(4).text(), QStringLiteral("# at 9   idle"));
}

void tst_Script::nodesStayWhereTheirKindStays()
{
    Text text(Scope::Script, inScript("at 5 walk\nat 6 walk"));
    const CodeNode *const first = text.nodeInBlock(text.line(1));
    text.insertAt(1, 9, QStringLiteral(", idle"));
    QCOMPARE(text.nodeInBlock(text.line(1)), first);
    QCOMPARE(text.node<ScriptCode>(1)->value().toString(), QStringLiteral("walk, idle"));
    // The second line goes over to the new section.
    text.insertAt(1, 15, QStringLiteral("\n[script b]"));
    QCOMPARE(text.node<SectionCode>(0)->valueCount(), 1u);
    QCOMPARE(text.node<SectionCode>(2)->valueCount(), 1u);
}

void tst_Script::namesAreLinks()
{
    Text text(Scope::Script, inScript("at 5 Walk, play \"step\", turn left"));
    const auto links = Vela::CodeBlockData::testBlockData(text.line(1))->links();
    QCOMPARE(links.size(), 2);
    const std::tuple<int, int, const char *> expected[] = {{5, 9, "animation Walk"},
                                                           {16, 22, "sound step"}};
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(links.at(i)->start(), std::get<0>(expected[i]));
        QCOMPARE(links.at(i)->end(), std::get<1>(expected[i]));
        links.at(i)->activate();
        QCOMPARE(text.opened, utf8(std::get<2>(expected[i])));
    }
}

void tst_Script::highlightAndFolding()
{
    const Text text(Scope::Script, inScript("when held left turn left # c\n[script b]\nat 5 walk"));
    QStringList spans;
    const auto ranges = text.line(1).layout()->formats();
    for (const QTextLayout::FormatRange &range : ranges)
        spans.append(QStringLiteral("%1-%2").arg(range.start).arg(range.start + range.length));
    // Command, trigger, key, action, direction, comment.
    QCOMPARE(spans.join(QLatin1Char(' ')), QStringLiteral("0-4 5-9 10-14 15-19 20-24 25-28"));
    QString levels;
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next())
        levels += QString::number(Vela::CodeBlockData::testBlockData(block)->foldingIndent());
    QCOMPARE(levels, QStringLiteral("0101"));
}

void tst_Script::format_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("indented");
    QTest::addColumn<QString>("full");

    const auto row = [](const char *name, const char *text, const char *indented,
                        const char *full) {
        QTest::newRow(name) << utf8(text) << utf8(indented) << utf8(full);
    };
    row("actions in a column",
        " [ SCRIPT  A ]\nWHEN  held  left walk ,Turn  LEFT\n\tat 7\tlight=0.5   # c\n"
        "[script b]\nat 7 Play Step",
        "[ SCRIPT  A ]\nWHEN  held  left walk ,Turn  LEFT\nat 7\tlight=0.5   # c\n"
        "[script b]\nat 7 Play Step",
        "[script A]\nwhen held left   walk, turn left\nat 7             light = 0.5 # c\n"
        "[script b]\nat 7   play Step");
    row("errors stay", "[script a]\n  at  x  walk\n AT  5 walk  ",
        "[script a]\nat  x  walk\nAT  5 walk  ", "[script a]\nat  x  walk\nat 5   walk");
    row("comments and blank lines", "  # a\n  \n[script a]# b", "# a\n\n[script a]# b",
        "# a\n\n[script a]# b");
    row("texts keep their blanks", "[script a]\nat 1 show  \"a  ,  b\"",
        "[script a]\nat 1 show  \"a  ,  b\"", "[script a]\nat 1   show \"a  ,  b\"");
}

void tst_Script::format()
{
    QFETCH(QString, text);
    QFETCH(QString, indented);
    QFETCH(QString, full);

    for (const bool indentOnly : {true, false}) {
        Text document(Scope::Script, text);
        const QString &expected = indentOnly ? indented : full;
        const int messages = messagesOf(document).size();
        document.formatLines(0, document.blockCount() - 1, indentOnly);
        QCOMPARE(document.toString(), expected);
        QCOMPARE(messagesOf(document).size(), messages);
        document.formatLines(0, document.blockCount() - 1, indentOnly);
        QCOMPARE(document.toString(), expected);
        document.undo();
        QCOMPARE(document.toString(), text);
    }
}

void tst_Script::formatByOptions()
{
    Text script(Scope::Script, inScript("AT 5  Walk\nwhen held left  Turn LEFT"));
    script.options = {{Lantern::OptionKey::aligns, false},
                      {Lantern::OptionKey::words, int(Lantern::WordsAsTyped)}};
    script.formatLines(0, 2, false);
    QCOMPARE(script.toString(), inScript("AT 5  Walk\nwhen held left  Turn LEFT"));
    // As the configuration file gives it back.
    script.options = {{Lantern::OptionKey::aligns, QStringLiteral("true")},
                      {Lantern::OptionKey::words, QStringLiteral("0")}};
    script.formatLines(0, 2, false);
    QCOMPARE(script.toString(), inScript("at 5             Walk\nwhen held left   turn left"));

    Text motion(Scope::Motion, utf8("[animation a]\nBODY 1 2 3 4\nframe idle : 4"));
    motion.options = {{Lantern::OptionKey::boxIndent, 4},
                      {Lantern::OptionKey::words, int(Lantern::WordsAsTyped)}};
    motion.formatLines(0, 2, false);
    QCOMPARE(motion.line(1).text(), QStringLiteral("    BODY 1 2 3 4"));
    QVERIFY(motion.frame(2)->attackBoxes()->add(QRect(5, 6, 7, 8)));
    QCOMPARE(motion.line(2).text(), QStringLiteral("    attack 5 6 7 8"));
    motion.options = {{Lantern::OptionKey::boxIndent, QStringLiteral("many")}};
    motion.formatLines(0, 3, true);
    QCOMPARE(motion.line(1).text(), QStringLiteral("  BODY 1 2 3 4"));
}

void tst_Script::completionByPlace_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("words");

    const auto row = [](const char *line, const char *words) {
        QTest::newRow(line) << utf8(line) << utf8(words);
    };
    row("[s", "script");
    row("[script ", "");
    row("o", "otherwise");
    row("", "");
    row("when ", "held hit near pressed released");
    row("when held s", "start");
    row("when near ", "");
    row("at ", "");
    row("at 5 l", "lift light");
    row("at 5 walk, wa", "wait walk");
    row("when near door sh", "show");
    row("otherwise turn ", "around left right");
    row("otherwise play ", "step");
    row("otherwise show \"t", "");
    row("# o", "");
}

void tst_Script::completionByPlace()
{
    QFETCH(QString, line);
    QFETCH(QString, words);
    const Text text(Scope::Script, utf8(scriptStart) + line);
    QTextCursor cursor(text.line(1));
    cursor.movePosition(QTextCursor::EndOfBlock);
    QCOMPARE(Lantern::completionAt(cursor, text).words.join(QLatin1Char(' ')), words);
}

QTEST_MAIN(tst_Script)
#include "tst_script.moc"

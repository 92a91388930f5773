// SPDX-License-Identifier: MIT
#include "lantern/definition.h"
#include "lantern/settings.h"

#include "project/project.h"

#include <QTest>

using Lantern::Definition;
using Lantern::Scope;
using Lantern::Settings;
using Vela::Message;

class tst_Definition : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settingsAreRead_data();
    void settingsAreRead();
    void placesOfValues();
    void messages_data();
    void messages();
    void messagesOfGames_data();
    void messagesOfGames();
    void valuesOfAProject();
    void quotingComesBack_data();
    void quotingComesBack();
    void largeAndBrokenTexts_data();
    void largeAndBrokenTexts();
};

namespace {

// "E 3:5" for an error on line 3, column 5, both counted from 1 as a user sees them.
QString place(const Message &message)
{
    return QStringLiteral("%1 %2:%3")
        .arg(QStringLiteral("EWI").at(message.type))
        .arg(message.line + 1)
        .arg(message.column + 1);
}

QStringList places(const QVector<Message> &messages)
{
    QStringList result;
    for (const Message &message : messages)
        result.append(place(message));
    return result;
}

QStringList allPlaces(const QString &text, Scope scope)
{
    const Definition definition(text);
    return places(definition.messages) + places(Settings(definition, scope).messages);
}

QString written(const Lantern::Setting &setting)
{
    return setting.section + QLatin1Char('.') + setting.key + QLatin1Char('=') + setting.value;
}

} // namespace

void tst_Definition::settingsAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("settings");
    QTest::addColumn<int>("lines");

    const auto row = [](const char *name, const char *text, const QStringList &settings,
                        int lines) {
        QTest::newRow(name) << QString::fromUtf8(text) << settings << lines;
    };
    row("nothing", "", {}, 0);
    row("only comments", "# one\n   # two\n\n", {}, 3);
    row("plain", "[a]\nb = c\n", {QStringLiteral("a.b=c")}, 2);
    row("no blanks, no last line end", "[a]\nb=c", {QStringLiteral("a.b=c")}, 2);
    row("tabs and blanks around", "\t[ a ]\t# x\n \tb\t=\tc d \t\n", {QStringLiteral("a.b=c d")},
        2);
    row("any case of names", "[A]\nBoth = Kept\n", {QStringLiteral("a.both=Kept")}, 2);
    row("each kind of line end", "[a]\r\nb=1\rc=2\nd=3\r\n",
        {QStringLiteral("a.b=1"), QStringLiteral("a.c=2"), QStringLiteral("a.d=3")}, 4);
    row("a comment needs a blank", "[a]\nb = c#d # e\n", {QStringLiteral("a.b=c#d")}, 2);
    row("quotes", "[a]\nb = \" c # \"\"d\"\" \" # e\n", {QStringLiteral("a.b= c # \"d\" ")}, 2);
    row("an empty value in quotes", "[a]\nb = \"\"\n", {QStringLiteral("a.b=")}, 2);
    row("a second '='", "[a]\nb = c = d\n", {QStringLiteral("a.b=c = d")}, 2);
    row("letters of all kinds",
        "[a]\ngr\xc3\xb6\xc3\x9f"
        "e = \xe8\x9b\x8d\n",
        {QString::fromUtf8("a.gr\xc3\xb6\xc3\x9f"
                           "e=\xe8\x9b\x8d")},
        2);
    row("reserved sections keep their lines to themselves",
        "[sprite x]\nframe 3 : 4\nb = c\n[a]\nb = d\n", {QStringLiteral("a.b=d")}, 5);
}

void tst_Definition::settingsAreRead()
{
    QFETCH(QString, text);
    QFETCH(QStringList, settings);
    QFETCH(int, lines);

    const Definition definition(text);
    QStringList read;
    for (const Lantern::Setting &setting : definition.settings)
        read.append(written(setting));
    QCOMPARE(read, settings);
    QCOMPARE(definition.lineCount, lines);
    QCOMPARE(definition.messages.size(), 0);
}

void tst_Definition::placesOfValues()
{
    const QString text = QStringLiteral("[a]\r\n  b = \"c\"\"\" # d\r\ne=f");
    const Definition definition(text);
    QCOMPARE(definition.settings.size(), 2);
    const Lantern::Setting &quoted = definition.settings.at(0);
    QCOMPARE(quoted.line, 1);
    QCOMPARE(quoted.column, 2);
    QCOMPARE(quoted.valueColumn, 6);
    QCOMPARE(text.mid(quoted.valueOffset, quoted.valueLength), QStringLiteral("\"c\"\"\""));
    const Lantern::Setting &plain = definition.settings.at(1);
    QCOMPARE(plain.line, 2);
    QCOMPARE(plain.column, 0);
    QCOMPARE(text.mid(plain.valueOffset, plain.valueLength), QStringLiteral("f"));
}

void tst_Definition::messages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char *name, const char *text, const QStringList &expected) {
        QTest::newRow(name) << QString::fromUtf8(text) << expected;
    };
    row("a good project",
        "[project]\nname = A\nkind = stage\nrequires = 1.0\n[stage]\nsize = 640x 480\nscale = 1.5\n"
        "[files]\nsprites = a/b.png\nsprites = a/c.png\n",
        {});
    row("no section for the project", "[files]\n", {QStringLiteral("E 1:1")});
    row("unknown section", "[project]\n [sounds]\nx = y\n", {QStringLiteral("W 2:2")});
    row("unknown setting", "[project]\nname = A\n  colour = red\n", {QStringLiteral("W 3:3")});
    row("the game's settings are not a project's", "[project]\n[projects]\nopen = a/b.lantern\n",
        {QStringLiteral("W 2:1")});
    row("a name where none goes", "[project Rowan]\n", {QStringLiteral("W 1:1")});
    row("no value", "[project]\nname =\n", {QStringLiteral("E 2:7")});
    row("a comment for a value", "[project]\nname = # what?\n", {QStringLiteral("E 2:8")});
    row("no '='", "[project]\n  name Rowan\n", {QStringLiteral("E 2:3")});
    row("'=' only in the comment", "[project]\nname # = Rowan\n", {QStringLiteral("E 2:1")});
    row("no key", "[project]\n= Rowan\n", {QStringLiteral("E 2:1")});
    row("two words for a key", "[project]\nmy name = Rowan\n", {QStringLiteral("E 2:1")});
    row("before the first section", "name = A\n[project]\n", {QStringLiteral("E 1:1")});
    row("section not closed", "[project]\n [files\nsounds = a\n", {QStringLiteral("E 2:2")});
    row("section without a kind", "[project]\n[]\n", {QStringLiteral("E 2:1")});
    row("text behind a section", "[project] x\n", {QStringLiteral("E 1:11")});
    row("quote not closed", "[project]\nname = \"A\n", {QStringLiteral("E 2:8")});
    row("text behind a quote", "[project]\nname = \"A\" B\n", {QStringLiteral("E 2:12")});
    row("set twice", "[project]\nname = A\nname = B\n", {QStringLiteral("W 3:1")});
    row("reserved sections", "[project]\n[animation walk]\n[Palette]\n",
        {QStringLiteral("I 2:1"), QStringLiteral("I 3:1")});
    row("reserved lines", "[project]\n@include x\n {\n}\n",
        {QStringLiteral("I 2:1"), QStringLiteral("I 3:2"), QStringLiteral("I 4:1")});
    row("wrong kind", "[project]\nkind = dragon\n", {QStringLiteral("E 2:8")});
    row("a project cannot be a game", "[project]\nkind = game\n", {QStringLiteral("E 2:8")});
    for (const char *size :
         {"320", "320 x", "320 x 180 x 2", "0 x 5", "-3 x 5", "99999 x 5", "a x b"})
        row(size,
            qPrintable(QStringLiteral("[project]\n[stage]\nsize = %1\n").arg(QLatin1String(size))),
            {QStringLiteral("E 3:8")});
    for (const char *scale : {"x", "0", "-1", "65", "1,5", "1 x", "1e1"})
        row(scale,
            qPrintable(
                QStringLiteral("[project]\n[stage]\nscale = %1\n").arg(QLatin1String(scale))),
            {QStringLiteral("E 3:9")});
    row("no version", "[project]\nrequires = new\n", {QStringLiteral("E 2:12")});
    row("a later version", "[project]\nrequires = 1.1\n", {QStringLiteral("W 2:12")});
    row("an earlier version", "[project]\nrequires = 0.9\n", {});
    for (const char *path :
         {"../a.png", "/etc/passwd", "C:/a.png", "C:\\a.png", "a/../../b", "..", "."})
        row(path,
            qPrintable(
                QStringLiteral("[project]\n[files]\nsprites = %1\n").arg(QLatin1String(path))),
            {QStringLiteral("E 3:11")});
}

void tst_Definition::messages()
{
    QFETCH(QString, text);
    QFETCH(QStringList, expected);
    QCOMPARE(allPlaces(text, Scope::Project), expected);
}

void tst_Definition::messagesOfGames_data()
{
    QTest::addColumn<QString>("projects");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("in folders") << QStringLiteral("open = a/a.lantern\nclosed = b/c/b.lantern\n")
                                << QStringList();
    QTest::newRow("no folder of its own")
        << QStringLiteral("open = a.lantern\n") << QStringList{QStringLiteral("E 3:8")};
    QTest::newRow("one folder for two")
        << QStringLiteral("open = a/a.lantern\nclosed = A/b.lantern\n")
        << QStringList{QStringLiteral("E 4:10")};
    QTest::newRow("a project's setting")
        << QStringLiteral("kind = stage\n") << QStringList{QStringLiteral("W 3:1")};
}

void tst_Definition::messagesOfGames()
{
    QFETCH(QString, projects);
    QFETCH(QStringList, expected);
    QCOMPARE(allPlaces(QStringLiteral("[game]\n[projects]\n") + projects, Scope::Game), expected);
}

void tst_Definition::valuesOfAProject()
{
    const Definition definition(QStringLiteral(
        "[project]\nname = old\nname = \"Rowan # 1\"\nkind = Stage\nrequires = 1\nauthor = Z\n"
        "[stage]\nsize = 640 x 200\nscale = 1.5 x 2\n"
        "[files]\nscripts = a\\b.script\nsounds = ./c//d.wav\n"));
    const Settings settings(definition, Scope::Project);
    QCOMPARE(settings.name, QStringLiteral("Rowan # 1"));
    QCOMPARE(settings.author, QStringLiteral("Z"));
    QCOMPARE(settings.version, QStringLiteral("1"));
    QCOMPARE(settings.projectType, int(Lantern::StageProject));
    QCOMPARE(settings.stageSize, QSize(640, 200));
    QCOMPARE(settings.stageScale, QPointF(1.5, 2));
    QCOMPARE(settings.files.size(), 2);
    QCOMPARE(settings.files.at(0).type, int(Vela::Project::Scripts));
    QCOMPARE(settings.files.at(0).path, QStringLiteral("a/b.script"));
    QCOMPARE(settings.files.at(1).path, QStringLiteral("c/d.wav"));
    QCOMPARE(settings.files.at(1).line, 11);
    QCOMPARE(settings.files.at(1).column, 9);
}

void tst_Definition::quotingComesBack_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("inText");

    const auto row = [](const char *value, const char *inText) {
        QTest::newRow(value) << QString::fromLatin1(value) << QString::fromLatin1(inText);
    };
    row("Rowan", "Rowan");
    row("a#b", "a#b");
    row("a \"b\"", "a \"b\"");
    row("", "\"\"");
    row(" a", "\" a\"");
    row("a\t", "\"a\t\"");
    row("a # b", "\"a # b\"");
    row("#a", "\"#a\"");
    row("\"a\"", "\"\"\"a\"\"\"");
}

void tst_Definition::quotingComesBack()
{
    QFETCH(QString, value);
    QFETCH(QString, inText);
    QCOMPARE(Lantern::quotedIfNeeded(value), inText);
    const Definition definition(QStringLiteral("[a]\nb = ") + inText);
    QCOMPARE(definition.settings.value(0).value, value);
}

void tst_Definition::largeAndBrokenTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("last");
    QTest::addColumn<int>("count");

    const QString head = QStringLiteral("[project]\n");
    const QString nul(1, QChar(0));
    QTest::newRow("NUL characters on many lines") << QString(
        head + QString(QStringLiteral("a") + nul + QStringLiteral("=b\n")).repeated(5000))
                                                  << QStringLiteral("E 2:2") << 1;
    QTest::newRow("a line of 100 MB without '='")
        << QString(head + QString(100 * 1024 * 1024, QLatin1Char('x'))) << QStringLiteral("E 2:1")
        << 1;
    QTest::newRow("a value of 100 MB") << QString(head + QStringLiteral("requires = ")
                                                  + QString(100 * 1024 * 1024, QLatin1Char('1')))
                                       << QStringLiteral("E 2:12") << 1;
    // A thousand messages are kept, and one says that there were more.
    QTest::newRow("everything wrong") << QString(head + QStringLiteral("?\n").repeated(300000))
                                      << QStringLiteral("I 1001:1") << 1001;
    QTest::newRow("every setting unknown")
        << QString(head + QStringLiteral("x=y\n").repeated(300000)) << QStringLiteral("I 1001:1")
        << 1001;
    QTest::newRow("more settings than anybody has")
        << QString(QStringLiteral("[project]\n[x]\n") + QStringLiteral("x=y\n").repeated(1200000))
        << QStringLiteral("W 2:1") << 2;
}

void tst_Definition::largeAndBrokenTexts()
{
    QFETCH(QString, text);
    QFETCH(QString, last);
    QFETCH(int, count);
    const QStringList found = allPlaces(text, Scope::Project);
    QCOMPARE(found.size(), count);
    QCOMPARE(found.last(), last);
}

QTEST_GUILESS_MAIN(tst_Definition)
#include "tst_definition.moc"

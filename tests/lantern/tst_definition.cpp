// SPDX-License-Identifier: MIT
#include "lantern/definitionfile.h"

#include "project/messages.h"
#include "project/project.h"

#include <QTest>

#include <memory>

using Lantern::DefinitionFile;
using Lantern::Scope;
using Vela::Message;

Q_DECLARE_METATYPE(Lantern::Scope)

// What a main file says as a whole; the grammar of its lines has a test of its own.
class tst_Definition : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messages_data();
    void messages();
    void valuesOfAProject();
    void valuesFollowTheText();
    void quotingComesBack_data();
    void quotingComesBack();
    void manyMessagesAreCut();
};

namespace {

struct Release
{
    void operator()(Vela::ProjectFile *file) const
    {
        file->release();
    }
};

using Held = std::unique_ptr<DefinitionFile, Release>;

Held fileOf(const QString &text, Scope scope)
{
    Held file(new DefinitionFile(scope));
    file->fromString(text);
    return file;
}

// "E 3:5" for an error on line 3, column 5, both counted from 1 as a user sees them.
QString place(const Message &message)
{
    return QStringLiteral("%1 %2:%3")
        .arg(QStringLiteral("EWI").at(message.type))
        .arg(message.line + 1)
        .arg(message.column + 1);
}

} // namespace

void tst_Definition::messages_data()
{
    QTest::addColumn<Scope>("scope");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("expected");

    const auto row = [](const char *name, Scope scope, const char *text,
                        const QStringList &expected) {
        QTest::newRow(name) << scope << QString::fromUtf8(text) << expected;
    };
    const auto project = [row](const char *name, const char *text, const QStringList &expected) {
        row(name, Scope::Project, text, expected);
    };
    project("a good project",
            "[project]\nname = A\nkind = stage\nrequires = 1.0\n[stage]\nsize = 640x 480\n"
            "scale = 1.5\n[files]\nsprites = a/b.png\nsprites = a/c.png\n",
            {});
    project("nothing", "", {QStringLiteral("E 1:1")});
    project("no section for the project", "[files]\n", {QStringLiteral("E 1:1")});
    project("a section opened again", "[project]\n[files]\n[project]\nname = A\n", {});
    project("set twice", "[project]\nname = A\nname = B\n", {QStringLiteral("W 3:1")});
    project("set in two sections", "[project]\nname = A\n[stage]\n[project]\nNAME = B\n",
            {QStringLiteral("W 5:1")});
    project("reserved sections", "[project]\n[Palette]\nwhat ever\n[font x]\n",
            {QStringLiteral("I 2:1"), QStringLiteral("I 4:1")});
    project("a later version", "[project]\nrequires = 1.1\n", {QStringLiteral("W 2:12")});
    project("a much later version", "[project]\nrequires = 2\n", {QStringLiteral("W 2:12")});
    project("an earlier version", "[project]\nrequires = 0.9\n", {});
    project("a line of the parser", "[project]\nname Rowan\nname = A\nname = B\n",
            {QStringLiteral("W 4:1"), QStringLiteral("E 2:6")});

    const auto game = [row](const char *name, const char *text, const QStringList &expected) {
        row(name, Scope::Game, text, expected);
    };
    game("in folders", "[game]\n[projects]\nopen = a/a.lantern\nclosed = b/c/b.lantern\n", {});
    game("no folder of its own", "[game]\n[projects]\nopen = a.lantern\n",
         {QStringLiteral("E 3:8")});
    game("one folder for two", "[game]\n[projects]\nopen = a/a.lantern\nclosed = A/b.lantern\n",
         {QStringLiteral("E 4:10")});
    game("a project's section alone", "[stage]\n", {QStringLiteral("E 1:1")});
}

void tst_Definition::messages()
{
    QFETCH(Scope, scope);
    QFETCH(QString, text);
    QFETCH(QStringList, expected);
    const Held file = fileOf(text, scope);
    QStringList places;
    for (int i = 0; i < file->messages()->rowCount(); ++i)
        places.append(place(file->messages()->at(unsigned(i), Message::Any)));
    QCOMPARE(places, expected);
}

void tst_Definition::valuesOfAProject()
{
    const Held file = fileOf(
        QStringLiteral(
            "[project]\nname = old\nname = \"Rowan # 1\"\nkind = Stage\nrequires = 1\nauthor = Z\n"
            "[stage]\nsize = 640 x 200\nscale = 1.5 x 2\n"
            "[files]\nscripts = a\\b.script\nsounds = ./c//d.wav\n"),
        Scope::Project);
    const Lantern::Settings &settings = file->settings();
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

    const Held bare =
        fileOf(QStringLiteral("[project]\n[stage]\nscale = 2\nsize = 0 x 5\n"), Scope::Project);
    QCOMPARE(bare->settings().projectType, int(Lantern::SharedProject));
    QCOMPARE(bare->settings().stageScale, QPointF(2, 2));
    QVERIFY(!bare->settings().stageSize.isValid());
    QCOMPARE(fileOf(QStringLiteral("[game]\n"), Scope::Game)->settings().projectType,
             int(Lantern::GameProject));
}

void tst_Definition::valuesFollowTheText()
{
    const Held file = fileOf(QStringLiteral("[project]\nname = A\n"), Scope::Project);
    int changes = 0;
    file->setListener([&changes] { ++changes; });
    QTextCursor cursor(file.get());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(QStringLiteral("author = B"));
    QCOMPARE(changes, 1);
    QCOMPARE(file->settings().author, QStringLiteral("B"));
    QVERIFY(file->propertyNames().contains(QStringLiteral("project.author")));
    file->beginChange();
    file->setProperty(QStringLiteral("project.author"), QStringLiteral("C"));
    file->setProperty(QStringLiteral("project.name"), QStringLiteral("D"));
    file->endChange();
    QCOMPARE(changes, 2);
    QCOMPARE(file->settings().author + file->settings().name, QStringLiteral("CD"));
    file->undo();
    QCOMPARE(file->settings().author + file->settings().name, QStringLiteral("BA"));
}

void tst_Definition::quotingComesBack_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("inText");

    const auto row = [](const char *value, const char *inText) {
        QTest::newRow(value) << QString::fromLatin1(value) << QString::fromLatin1(inText);
    };
    row("Rowan", "Rowan");
    row("a  b", "a  b");
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
    const Held file = fileOf(QStringLiteral("[project]\nname = x y  # z\n"), Scope::Project);
    file->setProperty(QStringLiteral("project.name"), value);
    QCOMPARE(file->toString(), QStringLiteral("[project]\nname = %1  # z\n").arg(inText));
    QCOMPARE(file->settings().name, value);
}

void tst_Definition::manyMessagesAreCut()
{
    const Held file =
        fileOf(QStringLiteral("[project]\n") + QStringLiteral("name = x\n").repeated(3000),
               Scope::Project);
    QCOMPARE(file->messages()->count(Message::Any), 1001);
    // The first of the settings is no second one.
    QCOMPARE(place(file->messages()->at(0, Message::Any)), QStringLiteral("W 3:1"));
    QCOMPARE(place(file->messages()->at(1000, Message::Any)), QStringLiteral("I 1002:1"));
}

QTEST_MAIN(tst_Definition)
#include "tst_definition.moc"

// SPDX-License-Identifier: MIT
#include "support/dialoganswerer.h"
#include "support/recordinghost.h"
#include "support/testproject.h"

#include <QAbstractItemModelTester>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

using namespace Vela;

namespace {

QStringList namesOf(const EngineInstances &instances)
{
    QStringList names;
    for (int row = 0; row < instances.count(); ++row)
        names.append(instances.at(unsigned(row)).name);
    return names;
}

bool loadText(Engine &engine, const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    return static_cast<EnginePrivate &>(engine).load(&reader);
}

} // namespace

class TestEngineConfig : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsFollowEveryChange();
    void moveStopsAtWhatTheModelRefuses_data();
    void moveStopsAtWhatTheModelRefuses();
    void fileHasTheDocumentedForm();
    void optionValuesAreReadByTheirForm_data();
    void optionValuesAreReadByTheirForm();
    void brokenFileKeepsWhatWasRead_data();
    void brokenFileKeepsWhatWasRead();
    void missingFileIsNoFailure();
    void fileThatCannotBeWrittenIsTold();
    void textThatXmlCannotHoldKeepsTheOldFile();
    void optionFallsBackToTheHost();
    void withoutHostNothingIsRead();
};

void TestEngineConfig::rowsFollowEveryChange()
{
    RecordingHost host;
    TestEngine engine;
    QAbstractItemModelTester tester(&engine,
                                    QAbstractItemModelTester::FailureReportingMode::QtTest);
    QSignalSpy changed(&engine, &QAbstractItemModel::dataChanged);
    engine.add(QStringLiteral("a"), QStringLiteral("/bin/a"), QStringLiteral("-x"), QString());
    engine.add(QStringLiteral("b"), QString(), QString(), QString());
    engine.edit(1, QStringLiteral("c"), QString(), QString(), QString());
    engine.edit(2, QStringLiteral("none"), QString(), QString(), QString());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(namesOf(engine), QStringList({QStringLiteral("a"), QStringLiteral("c")}));
    QCOMPARE(engine.data(engine.index(0)).toString(), QStringLiteral("a"));
    QVERIFY(!engine.data(engine.index(0), Qt::EditRole).isValid());
    engine.remove(5);
    engine.remove(0);
    QCOMPARE(namesOf(engine), QStringList(QStringLiteral("c")));
    QCOMPARE(engine.at(9).name, QString());
    engine.clear();
    QCOMPARE(engine.count(), 0);
}

void TestEngineConfig::moveStopsAtWhatTheModelRefuses_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("order");
    QTest::newRow("to the front") << 2 << 0 << "cabd";
    QTest::newRow("in front of a later row") << 0 << 2 << "bacd";
    QTest::newRow("to the end") << 1 << 4 << "acdb";
    QTest::newRow("onto itself") << 1 << 1 << "abcd";
    QTest::newRow("behind itself") << 1 << 2 << "abcd";
    QTest::newRow("past the end") << 0 << 5 << "abcd";
    QTest::newRow("no such row") << 4 << 0 << "abcd";
}

void TestEngineConfig::moveStopsAtWhatTheModelRefuses()
{
    QFETCH(int, from);
    QFETCH(int, to);
    RecordingHost host;
    TestEngine engine;
    QAbstractItemModelTester tester(&engine,
                                    QAbstractItemModelTester::FailureReportingMode::QtTest);
    for (const char *name : {"a", "b", "c", "d"})
        engine.add(QLatin1String(name), QString(), QString(), QString());
    engine.move(unsigned(from), unsigned(to));
    QTEST(namesOf(engine).join(QString()), "order");
}

void TestEngineConfig::fileHasTheDocumentedForm()
{
    RecordingHost host;
    const QString path = host.dataFolder() + QStringLiteral("/test_config.xml");
    {
        TestEngine engine;
        engine.add(QStringLiteral("Toy <1>"), QStringLiteral("/opt/toy"), QStringLiteral("-w"),
                   QStringLiteral("/opt/toy.png"));
        engine.setOption(QStringLiteral("zone"), QRect(1, 2, 3, 4));
        engine.setOption(QStringLiteral("back"), QColor(10, 20, 30, 40));
        engine.setOption(QStringLiteral("fps"), 60);
        QVERIFY(engine.save());
    }
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray expected = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<configuration>\n"
                                "    <engine name=\"Toy &lt;1&gt;\">\n"
                                "        <param name=\"exe\" value=\"/opt/toy\"/>\n"
                                "        <param name=\"icon\" value=\"/opt/toy.png\"/>\n"
                                "        <param name=\"params\" value=\"-w\"/>\n"
                                "    </engine>\n"
                                "    <config name=\"back\" value=\"10,20,30\"/>\n"
                                "    <config name=\"fps\" value=\"60\"/>\n"
                                "    <config name=\"zone\" value=\"1,2,3,4\"/>\n"
                                "</configuration>\n";
    QCOMPARE(file.readAll(), expected);

    TestEngine again;
    QVERIFY(again.load());
    QCOMPARE(again.count(), 1);
    QCOMPARE(again.at(0).exe, QStringLiteral("/opt/toy"));
    QCOMPARE(again.at(0).params, QStringLiteral("-w"));
    QCOMPARE(again.at(0).icon, QStringLiteral("/opt/toy.png"));
    QCOMPARE(again.option(QStringLiteral("zone"), QVariant()).toRect(), QRect(1, 2, 3, 4));
    QCOMPARE(again.option(QStringLiteral("back"), QVariant()).value<QColor>(), QColor(10, 20, 30));
}

void TestEngineConfig::optionValuesAreReadByTheirForm_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("rectangle") << QByteArray("1,2,3,4") << QVariant(QRect(1, 2, 3, 4));
    QTest::newRow("colour") << QByteArray("1,2,3") << QVariant(QColor(1, 2, 3));
    QTest::newRow("two numbers") << QByteArray("1,2") << QVariant(QStringLiteral("1,2"));
    QTest::newRow("five numbers") << QByteArray("1,2,3,4,5")
                                  << QVariant(QStringLiteral("1,2,3,4,5"));
    QTest::newRow("negative") << QByteArray("-1,2,3,4") << QVariant(QStringLiteral("-1,2,3,4"));
    QTest::newRow("no colour") << QByteArray("256,0,0") << QVariant(QStringLiteral("256,0,0"));
    QTest::newRow("too large") << QByteArray("4294967297,2,3,4")
                               << QVariant(QStringLiteral("4294967297,2,3,4"));
    QTest::newRow("empty") << QByteArray() << QVariant(QString());
}

void TestEngineConfig::optionValuesAreReadByTheirForm()
{
    QFETCH(QByteArray, text);
    RecordingHost host;
    TestEngine engine;
    QVERIFY(loadText(
        engine, "<configuration><config name=\"key\" value=\"" + text + "\"/></configuration>"));
    QTEST(engine.option(QStringLiteral("key"), QStringLiteral("unset")), "value");
}

void TestEngineConfig::brokenFileKeepsWhatWasRead_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("good");
    const QStringList one{QStringLiteral("a")};
    QTest::newRow("unknown param and element")
        << QByteArray("<configuration><x/><engine name='a'><param name='speed' value='9'/>"
                      "</engine></configuration>")
        << one << true;
    QTest::newRow("cut short behind an engine")
        << QByteArray("<configuration><engine name='a'/><eng") << one << false;
    QTest::newRow("wrong end tag")
        << QByteArray("<configuration><engine name='a'></engine></x>") << one << false;
    QTest::newRow("no XML") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0", 11) << QStringList() << false;
    QTest::newRow("empty") << QByteArray() << QStringList() << false;
    QTest::newRow("growing entities")
        << QByteArray("<!DOCTYPE c [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;'>"
                      "<!ENTITY c '&b;&b;&b;&b;&b;&b;&b;&b;&b;'><!ENTITY d '&c;&c;&c;&c;&c;&c;&c;'>"
                      "<!ENTITY e '&d;&d;&d;&d;&d;&d;&d;&d;'>]><configuration>"
                      "<engine name='&e;'/></configuration>")
        << QStringList() << false;
}

void TestEngineConfig::brokenFileKeepsWhatWasRead()
{
    QFETCH(QByteArray, xml);
    QFETCH(QStringList, names);
    QFETCH(bool, good);
    RecordingHost host;
    QDir().mkpath(host.dataFolder());
    QFile file(host.dataFolder() + QStringLiteral("/test_config.xml"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(xml);
    file.close();
    TestEngine engine;
    DialogAnswerer answers;
    if (!good)
        answers.answer(QMessageBox::Ok);
    QCOMPARE(engine.load(), good);
    QCOMPARE(answers.dialogs.size(), good ? 0 : 1);
    QCOMPARE(namesOf(engine).mid(0, names.size()), names);
}

void TestEngineConfig::missingFileIsNoFailure()
{
    RecordingHost host;
    TestEngine engine;
    QVERIFY(engine.load());
    QCOMPARE(engine.count(), 0);
}

void TestEngineConfig::fileThatCannotBeWrittenIsTold()
{
    RecordingHost host;
    // A folder stands where the file should go.
    const QString path = host.dataFolder() + QStringLiteral("/test_config.xml");
    QVERIFY(QDir().mkpath(path));
    TestEngine engine;
    DialogAnswerer answers;
    answers.answer(QMessageBox::Ok);
    QVERIFY(!engine.save());
    QCOMPARE(answers.dialogs.size(), 1);
    QCOMPARE(answers.dialogs.first().title, QStringLiteral("Configuration error!"));
    QCOMPARE(answers.dialogs.first().text,
             QStringLiteral("Can't save engine configuration to '%1'!").arg(path));
}

// Pasted parameters hold a control character: what was saved before must still be there.
void TestEngineConfig::textThatXmlCannotHoldKeepsTheOldFile()
{
    RecordingHost host;
    TestEngine engine;
    engine.add(QStringLiteral("a"), QString(), QStringLiteral("-x"), QString());
    QVERIFY(engine.save());
    engine.edit(0, QStringLiteral("a"), QString(), QStringLiteral("-x\x1b"), QString());
    DialogAnswerer answers;
    answers.answer(QMessageBox::Ok);
    QVERIFY(!engine.save());
    QVERIFY(answers.isDone());

    TestEngine again;
    QVERIFY(again.load());
    QCOMPARE(again.at(0).params, QStringLiteral("-x"));
}

void TestEngineConfig::optionFallsBackToTheHost()
{
    RecordingHost host;
    host.options.insert(QStringLiteral("shared"), 7);
    TestEngine engine;
    QCOMPARE(engine.option(QStringLiteral("shared"), 1).toInt(), 7);
    QCOMPARE(engine.option(QStringLiteral("unset"), 1).toInt(), 1);
    engine.setOption(QStringLiteral("shared"), 8);
    QCOMPARE(engine.option(QStringLiteral("shared"), 1).toInt(), 8);
    QCOMPARE(host.options.value(QStringLiteral("shared")).toInt(), 7);
}

void TestEngineConfig::withoutHostNothingIsRead()
{
    TestEngine engine;
    QVERIFY(engine.load());
    QVERIFY(engine.save());
    QCOMPARE(engine.option(QStringLiteral("any"), 3).toInt(), 3);
    QCOMPARE(engine.path(), QStringLiteral("/engines/test"));
}

QTEST_MAIN(TestEngineConfig)
#include "tst_engineconfig.moc"

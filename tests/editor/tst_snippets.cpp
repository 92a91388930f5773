// SPDX-License-Identifier: MIT
#include "editor/snippetmanager.h"

#include "editor/snippetfixture.h"

#include <QAbstractItemModelTester>

using namespace Vela;

namespace {

/// Puts "T:" in front of every text of the snippets and keeps what it was asked.
class SnippetTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *source, const char *comment,
                      int) const override
    {
        if (qstrcmp(context, "Vela::SnippetManager") != 0)
            return QString();
        asked.append(QString::fromUtf8(comment) + QLatin1Char('/') + QString::fromUtf8(source));
        return "T:"_s + QString::fromUtf8(source);
    }
    bool isEmpty() const override
    {
        return false;
    }

    mutable QStringList asked;
};

} // namespace

class TestSnippets : public QObject, private SnippetFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setUp();
    }
    void cleanup()
    {
        tearDown();
    }

    void listHoldsTheFilesOfTheFolder();
    void codeLosesIndentationAndBlankEnds_data();
    void codeLosesIndentationAndBlankEnds();
    void filesThatCannotBeReadGiveNothing();
    void dialogIsBuiltFromTheFields();
    void placeholdersTakeTheValues_data();
    void placeholdersTakeTheValues();
    void cancelledDialogGivesNothing();
    void brokenFilesKeepWhatWasRead_data();
    void brokenFilesKeepWhatWasRead();
    void displayTextsAreTranslated();
    void translationSourceListsTheTexts();

private:
    /// Makes a snippet the only one of the list and asks for its text.
    QString textOf(const QByteArray &xml);

    SnippetManager &m_manager = *SnippetManager::instance();
};

QString TestSnippets::textOf(const QByteArray &xml)
{
    writeWalk(xml);
    m_manager.load(m_folder->path());
    return m_manager.text(*m_host, 0);
}

void TestSnippets::listHoldsTheFilesOfTheFolder()
{
    const QAbstractItemModelTester tester(&m_manager,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    for (const char *name : {"walk.xml", "jump.high.xml", "notes.txt"})
        write(path(QString::fromUtf8(name)), "<snippet/>");
    QVERIFY(QDir(m_folder->path()).mkdir("folder.xml"_s));
    QVERIFY(QFile::link(path("walk.xml"_s), path("link.xml"_s)));

    m_manager.load(path("missing"_s));
    QCOMPARE(m_manager.rowCount(), 0);
    QSignalSpy inserted(&m_manager, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&m_manager, &QAbstractItemModel::rowsRemoved);
    m_manager.load(m_folder->path());
    const QStringList names{"jump.high"_s, "notes"_s, "walk"_s};
    QCOMPARE(m_manager.rowCount(), 3);
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(m_manager.name(unsigned(row)), names.at(row));
        QCOMPARE(m_manager.index(row).data().toString(), names.at(row));
        QVERIFY(!m_manager.data(m_manager.index(row), Qt::EditRole).isValid());
    }
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(removed.count(), 0);
    QVERIFY(!m_manager.data(m_manager.index(3), Qt::DisplayRole).isValid());
    for (unsigned index : {3u, 0x80000000u, 0xffffffffu}) {
        QCOMPARE(m_manager.name(index), QString());
        QCOMPARE(m_manager.text(*m_host, index), QString());
    }

    m_manager.load(path("folder.xml"_s));
    QCOMPARE(m_manager.rowCount(), 0);
    // Without a name there is no folder, not the current one.
    const QString current = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    m_manager.load(QString());
    QVERIFY(QDir::setCurrent(current));
    QCOMPARE(m_manager.rowCount(), 0);
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(removed.count(), 1);
}

void TestSnippets::codeLosesIndentationAndBlankEnds_data()
{
    QTest::addColumn<QByteArray>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("one line") << QByteArray("a = 1") << "a = 1\n";
    QTest::newRow("blank ends") << QByteArray("\n\t\ta = 1\r\n\t\t\tb\n\t") << "a = 1\nb\n";
    QTest::newRow("blank middle") << QByteArray("\n a\n \n\n b \n") << "a\n\n\nb\n";
    QTest::newRow("only one blank line goes at each end") << QByteArray("\n\na\n\n") << "\na\n\n";
    QTest::newRow("only blanks") << QByteArray(" \t") << "";
    QTest::newRow("one line feed") << QByteArray("\n") << "";
    QTest::newRow("two line feeds") << QByteArray("\n\n") << "\n";
    QTest::newRow("empty") << QByteArray() << "";
    QTest::newRow("escaped") << QByteArray("a &lt; b &amp;&amp; &#233;")
                             << QString::fromUtf8("a < b && \xc3\xa9\n");
    QTest::newRow("section") << QByteArray("<![CDATA[a < b]]>") << "a < b\n";
    QTest::newRow("no field, no value") << QByteArray("@a") << "@a\n";
}

void TestSnippets::codeLosesIndentationAndBlankEnds()
{
    QFETCH(QByteArray, code);
    QTEST(textOf(withCode("", code)), "text");
    QVERIFY(m_answerer->dialogs.isEmpty());
}

void TestSnippets::filesThatCannotBeReadGiveNothing()
{
    // The list names a file by its base name, and an ".xml" file of that name is what is read.
    write(path("notes.txt"_s), withCode("", "a"));
    write(path("huge.xml"_s), withCode("", QByteArray(1 << 20, 'a')));
    write(path("gone.xml"_s), withCode("", "a"));
    QVERIFY(QDir(m_folder->path()).mkdir("notes.xml"_s));
    m_manager.load(m_folder->path());
    QVERIFY(QFile::remove(path("gone.xml"_s)));
    QCOMPARE(m_manager.rowCount(), 3);
    for (unsigned index = 0; index < 3; ++index)
        QCOMPARE(m_manager.text(*m_host, index), QString());
    QVERIFY(m_answerer->dialogs.isEmpty());
}

void TestSnippets::dialogIsBuiltFromTheFields()
{
    m_host->window = new QWidget;
    const std::unique_ptr<QWidget> window(m_host->window);
    QStringList cells;
    m_answerer->handle([&](QDialog *dialog) {
        cells = gridOf(dialog);
        QCOMPARE(dialog->windowTitle(), "walk"_s);
        QCOMPARE(dialog->parentWidget(), window.get());
        const auto *const whole = dialog->findChild<QSpinBox *>();
        QCOMPARE(whole->minimum(), -99999999);
        QCOMPARE(whole->maximum(), 99999999);
        const auto *const real = dialog->findChild<QDoubleSpinBox *>();
        QCOMPARE(real->minimum(), -99999999.0);
        QCOMPARE(real->maximum(), 99999999.0);
        const auto *const items = dialog->findChild<QComboBox *>();
        QCOMPARE(items->count(), 2);
        QCOMPARE(items->itemText(1), "Right"_s);
        QCOMPARE(items->itemData(1).toString(), "r"_s);
        press(dialog, QDialogButtonBox::Ok);
    });
    textOf(withCode("<field name='a' title='&lt;b&gt;'/>"
                    "<field name='b' title='B' type='int' column='9'/>"
                    "<field name='c' title='C' type='float' column='0'/>"
                    "<field name='d' title='D' type='items' value='l,r' value_title='Left,Right'"
                    " column='99999999999'/>"
                    "<field name='e' title='E' type='items' value='1,2,3' value_title='x,y'/>"
                    "<field name='f' title='F' type='date'/>"
                    "<field name='g' title='G' type='' column='-3'/>"
                    "<field name='h' title='H' column='two'/>"
                    "<field name='i' title='I' column='3'/>",
                    "x"));
    const QStringList expected{
        "QLabel <b> 0,0"_s, "QLineEdit a 1,0"_s,      "QLabel B 0,9"_s, "QSpinBox b 1,9"_s,
        "QLabel C 2,0"_s,   "QDoubleSpinBox c 3,0"_s, "QLabel D 2,9"_s, "QComboBox d 3,9"_s,
        "QLabel G 4,0"_s,   "QLineEdit g 5,0"_s,      "QLabel H 6,0"_s, "QLineEdit h 7,0"_s,
        "QLabel I 0,3"_s,   "QLineEdit i 1,3"_s,
    };
    QCOMPARE(cells, expected);
}

void TestSnippets::placeholdersTakeTheValues_data()
{
    QTest::addColumn<QByteArray>("fields");
    QTest::addColumn<QString>("typed"); ///< into the field x
    QTest::addColumn<QByteArray>("code");
    QTest::addColumn<QString>("text");
    const QByteArray text = "<field name='x' title='X'/>";
    const QByteArray whole = "<field name='x' title='X' type='int'/>";
    const QByteArray real = "<field name='x' title='X' type='float'/>";
    const QByteArray items =
        "<field name='x' title='X' type='items' value='l,r' value_title='Left,Right'/>";
    QTest::newRow("every occurrence") << text << "7" << QByteArray("@x@x x @X") << "77 x @X\n";
    QTest::newRow("nothing typed") << text << "" << QByteArray("[@x]") << "[]\n";
    QTest::newRow("markup stays text") << text << "<%1>" << QByteArray("@x") << "<%1>\n";
    QTest::newRow("blanks stay") << text << " 7 " << QByteArray("@x") << " 7 \n";
    QTest::newRow("int") << whole << "-12345678" << QByteArray("@x") << "-12345678\n";
    QTest::newRow("int untouched") << whole << "" << QByteArray("@x") << "0\n";
    QTest::newRow("float") << real << "-2.5" << QByteArray("@x") << "-2.5\n";
    QTest::newRow("float without exponent")
        << real << "12345678.25" << QByteArray("@x") << "12345678.25\n";
    QTest::newRow("items by value") << items << "R" << QByteArray("@x") << "r\n";
    QTest::newRow("first item") << items << "" << QByteArray("@x") << "l\n";
    QTest::newRow("shorter name first") << text + "<field name='xy' title='XY'/>"
                                        << "7" << QByteArray("@xy @x") << "7y 7\n";
    QTest::newRow("longer name first")
        << "<field name='xy' title='XY'/>" + text << "7" << QByteArray("@xy @x") << " 7\n";
    QTest::newRow("value names a later field") << text + "<field name='n' title='N' type='int'/>"
                                               << "@n" << QByteArray("@x") << "0\n";
    QTest::newRow("field without a widget keeps its place")
        << text + "<field name='e' title='E' type='items' value='1,2,3' value_title='x,y'/>"
        << "7" << QByteArray("@x @e") << "7 @e\n";
}

void TestSnippets::placeholdersTakeTheValues()
{
    QFETCH(QByteArray, fields);
    QFETCH(QString, typed);
    QFETCH(QByteArray, code);
    m_answerer->handle([&](QDialog *dialog) {
        type(dialog, "x", typed);
        press(dialog, QDialogButtonBox::Ok);
    });
    QTEST(textOf(withCode(fields, code)), "text");
}

void TestSnippets::cancelledDialogGivesNothing()
{
    m_host->window = new QWidget;
    m_answerer->handle([](QDialog *dialog) { press(dialog, QDialogButtonBox::Cancel); });
    m_answerer->cancel();
    m_answerer->handle([](QDialog *dialog) { dialog->close(); });
    // The main window may go, and take the dialog along.
    m_answerer->handle([this](QDialog *) {
        delete m_host->window;
        m_host->window = nullptr;
    });
    for (int i = 0; i < 4; ++i)
        QCOMPARE(textOf(withCode("<field name='x' title='X'/>", "a @x")), QString());
    QVERIFY(m_answerer->isDone());
}

void TestSnippets::brokenFilesKeepWhatWasRead_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QString>("message"); ///< its end, behind Qt's words for the error
    QTest::addColumn<QString>("text");
    const QStringList field{"QLabel X 0,0"_s, "QLineEdit x 1,0"_s};
    const QByteArray start = "<snippet>\n<field name='x' title='X'/>";

    const auto row = [](const char *name, const QByteArray &xml, const QStringList &cells,
                        const char *message, const char *text) {
        QTest::newRow(name) << xml << cells << QString::fromUtf8(message)
                            << QString::fromUtf8(text);
    };
    row("cut in the code", start + "<code>a @x\nb", field, "|3|1", "");
    row("unescaped in the code", "<snippet><code>a\nb < c</code></snippet>", {}, "|2|", "a\nb\n");
    row("cut behind the fields", start, field, "|2|27", "");
    row("unescaped in a field", start + "<code>a</code><field title='a & b'/></snippet>", field,
        "|2|", "a\n");
    row("no XML", "a = 1", {}, "|1|", "");
    row("nothing", "", {}, "|1|0", "");
    row("element in the code", "<snippet><code>a<b/>c</code></snippet>", {}, "|1|", "a\n");
    // Each level tenfold: a billion letters, were it followed.
    QByteArray bomb = "<!DOCTYPE snippet [<!ENTITY a0 'aaaaaaaaaa'>";
    for (int i = 1; i < 9; ++i) {
        const QByteArray inner = "&a" + QByteArray::number(i - 1) + ';';
        bomb += "<!ENTITY a" + QByteArray::number(i) + " '" + inner.repeated(10) + "'>";
    }
    row("entity in the code", bomb + "]><snippet><code>&a8;</code></snippet>", {}, "|1|", "");
    row("entity in a field", bomb + "]><snippet><field name='&a8;'/></snippet>", {}, "|1|", "");
}

void TestSnippets::brokenFilesKeepWhatWasRead()
{
    QFETCH(QByteArray, xml);
    QFETCH(QStringList, cells);
    QFETCH(QString, message);
    QStringList shown;
    m_answerer->answer(QMessageBox::Ok);
    if (!cells.isEmpty()) {
        m_answerer->handle([&](QDialog *dialog) {
            shown = gridOf(dialog);
            press(dialog, QDialogButtonBox::Ok);
        });
    }
    QTEST(textOf(xml), "text");
    QCOMPARE(shown, cells);
    const DialogAnswerer::Dialog box = m_answerer->dialogs.first();
    QCOMPARE(box.title, "Broken"_s);
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QStringList{"OK"_s});
    QVERIFY2(box.text.indexOf(message) > 0, qPrintable(box.text));
}

void TestSnippets::displayTextsAreTranslated()
{
    SnippetTranslator translator;
    QVERIFY(qApp->installTranslator(&translator));
    write(path("l\u00e4uft.xml"_s),
          withCode("<field name='a' title='\xc3\x9c&amp;'/><field name='b' title='B' type='items'"
                   " value='l,r' value_title='Left,Right'/>",
                   "@a@b"));
    m_manager.load(m_folder->path());
    QCOMPARE(m_manager.index(0).data().toString(), "T:l\u00e4uft"_s);
    QCOMPARE(m_manager.name(0), "l\u00e4uft"_s);
    translator.asked.removeDuplicates();
    QCOMPARE(translator.asked, QStringList{"l\u00e4uft/l\u00e4uft"_s});
    translator.asked.clear();

    m_answerer->handle([](QDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), "l\u00e4uft"_s);
        QCOMPARE(gridOf(dialog).first(), "QLabel T:\u00dc& 0,0"_s);
        auto *const items = dialog->findChild<QComboBox *>();
        QCOMPARE(items->itemText(0), "T:Left"_s);
        QCOMPARE(items->itemData(0).toString(), "l"_s);
        press(dialog, QDialogButtonBox::Ok);
    });
    QCOMPARE(m_manager.text(*m_host, 0), "l\n"_s);
    translator.asked.sort();
    QCOMPARE(translator.asked,
             (QStringList{"l\u00e4uft/B"_s, "l\u00e4uft/Left"_s, "l\u00e4uft/Right"_s,
                          "l\u00e4uft/\u00dc&"_s}));
}

void TestSnippets::translationSourceListsTheTexts()
{
    const auto message = [](const char *text) {
        return QStringLiteral("\t<message>\n\t\t<source>%1</source>\n\t\t<comment>walk</comment>\n"
                              "\t\t<translation type=\"unfinished\"></translation>\n"
                              "\t</message>\n")
            .arg(QLatin1String(text));
    };
    const QString head = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!DOCTYPE TS>\n<TS version=\"2.0\">\n"
        "<context>\n\t<name>Vela::SnippetManager</name>\n");
    const QString tail = "</context>\n</TS>"_s;
    const QString name = "walk"_s;
    const QString fields = QStringLiteral(
        "<snippet><field name='a' title='A &lt; B'/><field name='b' title='Side' type='items'"
        " value='l' value_title='Left,Right'/>");

    QCOMPARE(SnippetManager::translationSource(*m_host, fields + QLatin1String("</snippet>"), name),
             head + message("walk") + message("A &lt; B") + message("Left") + message("Right")
                 + message("Side") + tail);
    m_answerer->answer(QMessageBox::Ok);
    QCOMPARE(SnippetManager::translationSource(*m_host, fields + QLatin1String("<<"), name),
             head + message("walk") + message("A &lt; B") + message("Left") + message("Right")
                 + message("Side") + tail);
    QCOMPARE(m_answerer->dialogs.first().title, "Broken"_s);

    // More fields than any dialog could show.
    const QString many = "<snippet>%1</snippet>"_s.arg("<field title='A'/>"_s.repeated(1001));
    m_answerer->answer(QMessageBox::Ok);
    QCOMPARE(SnippetManager::translationSource(*m_host, many, name).count(message("A")), 1000);
    QVERIFY(m_answerer->isDone());
}

QTEST_MAIN(TestSnippets)

#include "tst_snippets.moc"

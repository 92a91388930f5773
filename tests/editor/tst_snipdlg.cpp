// SPDX-License-Identifier: MIT
#include "editor/snipdlg.h"

#include "editor/snippetfixture.h"
#include "editor/snippetmanager.h"
#include "support/testfile.h"
#include "support/testgrammar.h"
#include "support/testproject.h"

#include <QAbstractItemModelTester>

using namespace Vela;

namespace {

/// Hands out what the test made.
class ScratchEngine : public TestEngine
{
public:
    ProjectFile *createFile(int type, Project *project) override
    {
        asked = type;
        askedProject = project;
        return file;
    }

    int asked = -1;
    Project *askedProject = nullptr;
    ProjectFile *file = nullptr;
};

} // namespace

class TestSnipDlg : public QObject, private SnippetFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setUp();
    }
    void cleanup()
    {
        m_editor.reset();
        tearDown();
    }

    void editorShowsItsSnippet();
    void savingWritesTheFormat();
    void newSnippetAsksWhereTo();
    void fieldsAreAddedMovedAndRemoved();
    void fieldDialogMakesEachType_data();
    void fieldDialogMakesEachType();
    void previewAsksForTheValues();
    void translationIsSaved();
    void textIsADocumentOfTheEngine();

private:
    void openEditor(const QString &pathOrText);
    void click(const char *button);
    QStringList titles() const;
    void select(int row);
    QPlainTextEdit *edit() const
    {
        return m_editor->findChild<QPlainTextEdit *>("snipEdit"_s);
    }
    QListView *list() const
    {
        return m_editor->findChild<QListView *>("snipFields"_s);
    }

    std::unique_ptr<SnipDlg> m_editor;
};

void TestSnipDlg::openEditor(const QString &pathOrText)
{
    m_editor = std::make_unique<SnipDlg>(*m_host, pathOrText);
    m_editor->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_editor.get()));
}

void TestSnipDlg::click(const char *button)
{
    auto *const target = m_editor->findChild<QAbstractButton *>(QString::fromUtf8(button));
    QVERIFY2(target, button);
    QTest::mouseClick(target, Qt::LeftButton);
}

QStringList TestSnipDlg::titles() const
{
    QStringList result;
    for (int row = 0; row < list()->model()->rowCount(); ++row)
        result.append(list()->model()->index(row, 0).data().toString());
    return result;
}

void TestSnipDlg::select(int row)
{
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {},
                      list()->visualRect(list()->model()->index(row, 0)).center());
}

void TestSnipDlg::editorShowsItsSnippet()
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::red);
    m_host->icons.insert("code_snippet_insert"_s, QIcon(pixmap));
    openEditor(
        writeWalk(withCode("<field name='a' title='A'/><field name='b' title='B' type='date'/>",
                           "\n  one\n\n  two\n")));
    QCOMPARE(m_editor->windowTitle(), "Code snippet editor"_s);
    QVERIFY(!m_editor->windowIcon().isNull());
    QCOMPARE(edit()->toPlainText(), "one\n\ntwo\n"_s);
    QCOMPARE(edit()->lineWrapMode(), QPlainTextEdit::NoWrap);
    QCOMPARE(titles(), (QStringList{"A"_s, "B"_s}));
    QCOMPARE(list()->maximumWidth(), 128);

    openEditor("one\u2029two"_s);
    QCOMPARE(edit()->toPlainText(), "one\ntwo"_s);
    QVERIFY(titles().isEmpty());

    // A text that is the name of a file here is a text.
    writeWalk("<snippet/>");
    const QString current = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    openEditor("walk.xml"_s);
    QVERIFY(QDir::setCurrent(current));
    QCOMPARE(edit()->toPlainText(), "walk.xml"_s);

    write(path("cut.xml"_s), "<snippet><field title='A'/><code>a<");
    m_answerer->answer(QMessageBox::Ok);
    openEditor(path("cut.xml"_s));
    QCOMPARE(m_answerer->dialogs.first().title, "Broken"_s);
    QCOMPARE(titles(), QStringList{"A"_s});
    QCOMPARE(edit()->toPlainText(), "a\n"_s);
}

void TestSnipDlg::savingWritesTheFormat()
{
    const QString file =
        writeWalk(withCode("<field name='n' title='T\xc3\xa9' type='int' column='4'/>"
                           "<field name='i' title='I' type='items' value='1,2' value_title='x,y'/>"
                           "<field name='d' type='date'/>",
                           "\n  one\n\n    two\n"));
    openEditor(file);
    edit()->moveCursor(QTextCursor::End);
    QTest::keyClicks(edit(), "  a <\u00a0b"_s);
    QTest::keyClick(edit(), Qt::Key_Return);
    QTest::keyClicks(edit(), " "_s);
    click("saveBut");
    QCOMPARE(contents(file),
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<snippet>\r\n\r\n"
                        "\t<field name=\"n\" title=\"T\xc3\xa9\" type=\"int\" />\r\n"
                        "\t<field name=\"i\" title=\"I\" type=\"items\" value=\"1,2\""
                        " value_title=\"x,y\"/>\r\n"
                        "\t<field name=\"d\" title=\"\" type=\"date\" />\r\n"
                        "\r\n\t<code>\r\n"
                        "\t\tone\r\n\t\ttwo\r\n\t\t  a <\xc2\xa0"
                        "b\r\n\t\t \r\n"
                        "\t</code>\r\n\r\n</snippet>"));
    QVERIFY(m_editor->isVisible());
    QVERIFY(m_answerer->dialogs.isEmpty());
}

void TestSnipDlg::newSnippetAsksWhereTo()
{
    SnippetManager::instance()->load(m_folder->path());
    openEditor("a = 1"_s);
    m_answerer->cancel();
    click("saveBut");
    const QByteArray expected = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<snippet>\r\n\r\n"
                                "\r\n\t<code>\r\n\t\ta = 1\r\n\t</code>\r\n\r\n</snippet>";
    // The path is asked for each time.
    for (const QString &name : {"new.xml"_s, "newer.xml"_s}) {
        m_answerer->handle([&, this](QDialog *dialog) {
            QCOMPARE(dialog->windowTitle(), "Save code snippet"_s);
            auto *const files = qobject_cast<QFileDialog *>(dialog);
            QCOMPARE(files->nameFilters(), QStringList{"Extensible Markup Language (*.xml)"_s});
            QCOMPARE(files->directory(), QDir(m_folder->path()));
            dialog->reject();
        });
        click("saveBut");
        m_answerer->chooseFiles({path(name)});
        click("saveBut");
        QCOMPARE(contents(path(name)), expected);
    }
    QVERIFY(m_editor->isVisible());
    // A place where no file can be is passed over.
    write(path("plain"_s), "");
    m_answerer->chooseFiles({path("plain/new.xml"_s)});
    click("saveBut");
    // A file that could not be read keeps what it holds.
    const QByteArray huge = withCode("", QByteArray(1 << 20, 'a'));
    write(path("huge.xml"_s), huge);
    openEditor(path("huge.xml"_s));
    m_answerer->cancel();
    click("saveBut");
    QVERIFY(contents(path("huge.xml"_s)) == huge);
    QVERIFY(m_answerer->isDone());
}

void TestSnipDlg::fieldsAreAddedMovedAndRemoved()
{
    openEditor(writeWalk(withCode("<field name='a' title='A'/><field name='b' title='B'/>"
                                  "<field name='c' title='C'/>",
                                  "x")));
    const QAbstractItemModelTester tester(list()->model(),
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    const auto order = [this] { return titles().join(QString()); };
    for (const char *button : {"del", "up", "down", "insertBut"}) {
        click(button);
        QCOMPARE(order(), "ABC"_s);
    }
    QCOMPARE(edit()->toPlainText(), "x\n"_s);

    select(0);
    QSignalSpy moved(list()->model(), &QAbstractItemModel::rowsMoved);
    click("up");
    QCOMPARE(moved.count(), 0);
    // The selection goes with the field.
    click("down");
    QCOMPARE(order(), "BAC"_s);
    click("down");
    QCOMPARE(order(), "BCA"_s);
    click("down");
    QCOMPARE(order(), "BCA"_s);
    QCOMPARE(moved.count(), 2);
    click("up");
    QCOMPARE(order(), "BAC"_s);
    click("insertBut");
    QCOMPARE(edit()->toPlainText(), "@ax\n"_s);
    click("del");
    QCOMPARE(order(), "BC"_s);

    m_answerer->cancel();
    click("add");
    QCOMPARE(order(), "BC"_s);
    m_answerer->handle([](QDialog *dialog) {
        type(dialog, "title", "D"_s);
        press(dialog, QDialogButtonBox::Ok);
    });
    click("add");
    QCOMPARE(order(), "BCD"_s);
    QVERIFY(m_host->iconsAsked.contains("code_snippet_edit"_s));
}

void TestSnipDlg::fieldDialogMakesEachType_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("String") << 0 << QByteArray("type=\"string\" />");
    QTest::newRow("Integer") << 1 << QByteArray("type=\"int\" />");
    QTest::newRow("Float") << 2 << QByteArray("type=\"float\" />");
    QTest::newRow("Items") << 3 << QByteArray("type=\"items\" value=\"1,2\" value_title=\"x,y\"/>");
}

void TestSnipDlg::fieldDialogMakesEachType()
{
    QFETCH(int, row);
    QFETCH(QByteArray, line);
    openEditor("x"_s);
    m_answerer->handle([row](QDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), "Add field"_s);
        type(dialog, "name", "n"_s);
        type(dialog, "title", "T"_s);
        auto *const types = dialog->findChild<QComboBox *>("type"_s);
        QCOMPARE(types->count(), 4);
        for (int step = 0; step < row; ++step)
            QTest::keyClick(types, Qt::Key_Down);
        QCOMPARE(types->currentText(), QString::fromUtf8(QTest::currentDataTag()));
        for (const char *name : {"valuesLb", "values", "titlesLb", "titles"}) {
            const auto *const widget = dialog->findChild<QWidget *>(QString::fromUtf8(name));
            QCOMPARE(widget->isVisible(), row == 3);
        }
        if (row == 3) {
            type(dialog, "values", "1"_s);
            QTest::keyClick(dialog->focusWidget(), Qt::Key_Return);
            type(dialog, "values", "2"_s);
            type(dialog, "titles", "x,y"_s);
        }
        press(dialog, QDialogButtonBox::Ok);
    });
    click("add");
    m_answerer->chooseFiles({path("new.xml"_s)});
    click("saveBut");
    QVERIFY(
        contents(path("new.xml"_s)).contains("\t<field name=\"n\" title=\"T\" " + line + "\r\n"));
}

void TestSnipDlg::previewAsksForTheValues()
{
    openEditor(writeWalk(withCode("<field name='a' title='A'/>", "@a")));
    QStringList cells;
    m_answerer->handle([&](QDialog *dialog) {
        cells = gridOf(dialog);
        QCOMPARE(dialog->windowTitle(), "walk"_s);
        press(dialog, QDialogButtonBox::Ok);
    });
    click("previewBut");
    QCOMPARE(cells, (QStringList{"QLabel A 0,0"_s, "QLineEdit a 1,0"_s}));
    QCOMPARE(edit()->toPlainText(), "@a\n"_s);
    // The preview tells what a saved file could not be read back.
    QTest::keyClicks(edit(), "<"_s);
    m_answerer->answer(QMessageBox::Ok);
    m_answerer->cancel();
    click("previewBut");
    QVERIFY(m_answerer->isDone());
}

void TestSnipDlg::translationIsSaved()
{
    openEditor(writeWalk(withCode("<field name='a' title='\xc3\xa9'/>", "@a")));
    m_answerer->handle([](QDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), "Save for translation"_s);
        QCOMPARE(qobject_cast<QFileDialog *>(dialog)->nameFilters(),
                 QStringList{"Qt translation sources (*.ts)"_s});
        dialog->reject();
    });
    click("saveTSBut");
    const QString file = path("walk.ts"_s);
    m_answerer->chooseFiles({file});
    click("saveTSBut");
    const QByteArray source = contents(file);
    QVERIFY(source.contains("\t\t<source>walk</source>\n\t\t<comment>walk</comment>\n"));
    QVERIFY(source.contains("\t\t<source>\xc3\xa9</source>\n\t\t<comment>walk</comment>\n"));
    QVERIFY(source.endsWith("</context>\n</TS>"));
}

void TestSnipDlg::textIsADocumentOfTheEngine()
{
    ScratchEngine engine;
    m_host->activeEngine = &engine;
    const QPointer<TestDocument> document(new TestDocument);
    engine.file = document;
    openEditor(writeWalk(withCode("", "[walk]\n???")));
    QCOMPARE(engine.asked, 4);
    QCOMPARE(engine.askedProject, static_cast<Project *>(nullptr));
    QCOMPARE(edit()->document(), static_cast<QTextDocument *>(document));
    QCOMPARE(document->toString(), "[walk]\n???\n"_s);
    // The parser shows what it found, and follows what is typed.
    QVERIFY(document->nodeInBlock(document->firstBlock()));
    QVERIFY(!document->findBlockByNumber(1).layout()->formats().isEmpty());
    edit()->moveCursor(QTextCursor::End);
    QTest::keyClicks(edit(), "jump = int 4"_s);
    QVERIFY(document->nodeInBlock(document->lastBlock()));
    m_editor.reset();
    QVERIFY(!document);

    // A file of another kind goes back.
    const int before = TestFile::alive();
    engine.file = new TestFile;
    openEditor("a"_s);
    QCOMPARE(TestFile::alive(), before);
    QCOMPARE(edit()->toPlainText(), "a"_s);
}

QTEST_MAIN(TestSnipDlg)

#include "tst_snipdlg.moc"

// SPDX-License-Identifier: MIT
#include "editor/codeeditor.h"
#include "editor/codeworkspace.h"
#include "editor/snippetmanager.h"
#include "frame/filesystemarchive.h"
#include "frame/menu.h"
#include "frame/textcodecs.h"
#include "support/dialoganswerer.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"
#include "support/testgrammar.h"
#include "support/testproject.h"

#include <QtTest>

Q_DECLARE_METATYPE(QMessageBox::StandardButton)

using namespace Vela;

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

class CommentEngine : public TestEngine
{
public:
    QString queryString(StringType what, unsigned int argument) const override
    {
        return what == CommentString ? text("//") : TestEngine::queryString(what, argument);
    }
};

/// Writes down what it was asked to format instead.
class FormattedDocument : public TestDocument
{
public:
    using TestDocument::TestDocument;
    void formatLines(int firstLine, int lastLine, bool indentOnly) override
    {
        asked.append(text("%1-%2 %3")
                         .arg(firstLine)
                         .arg(lastLine)
                         .arg(text(indentOnly ? "indent" : "format")));
    }

    QStringList asked;
};

/// An active workspace in a window, and a project whose engine begins comments with "//".
struct Fixture
{
    explicit Fixture(const QString &content = QString())
    {
        host.options.insert(text("highlightCode"), true); // or the parser reports nothing
        host.activeEngine = &engine;
        parent.activeEngine = &engine;
        workspace = std::make_unique<CodeWorkspace>(host);
        editor = workspace->editor();
        layout.addWidget(workspace->widget());
        window.resize(640, 480);
        window.show();
        host.window = &window;
        host.setWorkspace(workspace.get());
        if (!content.isNull())
            show(content);
    }

    ~Fixture()
    {
        SnippetManager::instance()->load(text("/no/such/folder"));
        workspace->setDocument(nullptr);
    }

    void show(const QString &content)
    {
        document = new FormattedDocument(content);
        project = std::make_unique<TestProject>(&parent, 0, document);
        workspace->setDocument(document);
    }

    void trigger(const char *key)
    {
        host.action(key)->trigger();
    }

    void select(int start, int end)
    {
        QTextCursor cursor = editor->textCursor();
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        editor->setTextCursor(cursor);
    }

    /// Makes a file the engine's only snippet, called "loop".
    void writeSnippet(const char *xml)
    {
        const QString folder = host.libraryFolder() + text("/engines/test/snippets");
        QDir().mkpath(folder);
        QFile file(folder + text("/loop.xml"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(xml);
        file.close();
        workspace->engineSwitched(true);
        QCOMPARE(combo(0)->currentText(), text("loop"));
    }

    QAction *encoding(const char *name)
    {
        return host.menu("edit")->actions().at(2)->menu()->actions().value(TextCodecs::index(name));
    }

    /// Returns the cursor's line and column.
    QString place() const
    {
        const CodeEditor::LinePos position = editor->currentLine();
        return text("%1,%2").arg(position.line).arg(position.column);
    }

    template <typename Widget>
    Widget *child(const char *name = "") const
    {
        return workspace->widget()->findChild<Widget *>(text(name));
    }

    QComboBox *combo(int index) const
    {
        return child<QToolBar>()->findChildren<QComboBox *>().at(index);
    }

    RecordingHost host;
    CommentEngine engine;
    MemoryArchive store;
    TestParentProject parent{text("/game"), store};
    QWidget window;
    QVBoxLayout layout{&window};
    std::unique_ptr<CodeWorkspace> workspace;
    CodeEditor *editor = nullptr;
    FormattedDocument *document = nullptr;
    std::unique_ptr<TestProject> project;
};

/// Groups of ten lines; every second one is nested in the one above.
QString manyGroups(int lines)
{
    QString content;
    for (int i = 0; i < lines; ++i)
        content += text(i % 20 == 0 ? "[outer]\n" : i % 20 == 10 ? "[[inner]]\n" : "k = int 1\n");
    return content;
}

QString numbered(int lines)
{
    QStringList content;
    for (int i = 0; i < lines; ++i)
        content.append(text("k%1 = int 1").arg(i));
    return content.join(QLatin1Char('\n'));
}

/// Returns a letter for each line: v for visible and h for hidden.
QByteArray shownLines(const QTextDocument *document)
{
    QByteArray result;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next())
        result += block.isVisible() ? 'v' : 'h';
    return result;
}

/// Returns the classes of the controls that a screen reader has no name for.
QString namelessControls(const QWidget &window)
{
    QStringList result;
    const QList<QWidget *> widgets = window.findChildren<QWidget *>();
    for (QWidget *const widget : widgets) {
        const auto *const face = QAccessible::queryAccessibleInterface(widget);
        if (widget->window() == window.window() && (widget->focusPolicy() & Qt::TabFocus)
            && !widget->focusProxy() && face && face->text(QAccessible::Name).isEmpty())
            result.append(text(widget->metaObject()->className()));
    }
    return result.join(QLatin1Char(' '));
}

QStringList texts(const QMenu *menu)
{
    QStringList result;
    const QList<QAction *> actions = menu->actions();
    for (const QAction *const action : actions)
        result.append(action->isSeparator() ? text("-") : action->text());
    return result;
}

} // namespace

class tst_CodeWorkspace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fillsTheHostsMenusAndControls();
    void activationShowsTheBar();
    void commandsNeedADocumentThatCanBeEdited();
    void takesTheSettings();
    void zoomsInStepsOfTwo();
    void showsWordsWithoutADocument();
    void goesBackToTheOldPlace();
    void documentMayGoWhileItIsShown();
    void messagesLeadToTheirPlaces();
    void navigatesBetweenMessages_data();
    void navigatesBetweenMessages();
    void goesToALine_data();
    void goesToALine();
    void turnsComments_data();
    void turnsComments();
    void foldsLongTextsFast();
    void formatsTheSelectedLines();
    void encodingIsForTheNextSaveOrForNow_data();
    void encodingIsForTheNextSaveOrForNow();
    void statusFieldAsksForTheEncoding();
    void contextMenuHoldsTheCommands();
    void snippetIsInsertedAtItsMark();
    void snippetsAreEdited();
};

void tst_CodeWorkspace::initTestCase()
{
    TextCodecs::initialize();
}

void tst_CodeWorkspace::fillsTheHostsMenusAndControls()
{
    Fixture f;
    QCOMPARE(texts(f.host.menu("edit")), (QStringList{text("-"), text("Code"), text("Encoding")}));
    QCOMPARE(texts(f.host.menu("view")), (QStringList{text("-"), text("Code toolbar")}));
    const QMenu *const code = f.host.menu("edit")->actions().at(1)->menu();
    QCOMPARE(texts(code),
             (QStringList{text("Go to line..."), text("Previous syntax error"),
                          text("Next syntax error"), text("Previous deprecation"),
                          text("Next deprecation"), text("-"), text("Comment/Uncomment selection"),
                          text("Fold all code blocks"), text("Unfold all coded blocks"), text("-"),
                          text("Auto-indent selection"), text("Auto-format selection")}));
    const QAction *const encodings = f.host.menu("edit")->actions().at(2);
    QCOMPARE(encodings->toolTip(), text("Selects the file encoding"));
    QCOMPARE(encodings->menu()->actions().size(), TextCodecs::count());
    const QAction *const utf8 = f.encoding("UTF-8");
    QVERIFY(utf8->text().startsWith(text("Unicode\tUTF-8")));
    QCOMPARE(utf8->toolTip(), text("Any language"));
    QStringList keys;
    for (const RecordingHost::ControlRequest &request : qAsConst(f.host.controls)) {
        QCOMPARE(request.kind, 0);
        QCOMPARE(request.size, 16);
        keys.append(request.key);
    }
    QCOMPARE(keys.join(QLatin1Char(' ')),
             text("view_code_bar code_goto code_next_error code_prev_error code_next_deprecation "
                  "code_prev_deprecation code_comment"));
    QCOMPARE(f.combo(0)->toolTip(), text("Code snippets"));
    QVERIFY(f.combo(0)->width() >= 200);
    QCOMPARE(namelessControls(*f.workspace->widget()), QString());
}

void tst_CodeWorkspace::activationShowsTheBar()
{
    Fixture f;
    QAction *const view = f.host.action("view_code_bar");
    const auto *const bar = f.child<QToolBar>();
    const QMenu *const code = f.host.menu("edit")->actions().at(1)->menu();
    QVERIFY(bar->isVisible() && view->isChecked() && view->isEnabled() && code->isEnabled());
    view->trigger();
    QVERIFY(!bar->isVisible());
    QCOMPARE(f.host.options.value(text("show_code_bar")), QVariant(false));
    f.host.setWorkspace(nullptr);
    QVERIFY(!view->isEnabled() && !code->isEnabled() && !f.workspace->isActive());
    f.host.setWorkspace(f.workspace.get());
    QVERIFY(!bar->isVisible() && !view->isChecked());
    f.host.options.insert(text("show_code_bar"), true);
    f.workspace->activate();
    QVERIFY(bar->isVisible() && view->isChecked());
}

void tst_CodeWorkspace::commandsNeedADocumentThatCanBeEdited()
{
    const auto callAll = [](CodeWorkspace &workspace) {
        workspace.snipInsert();
        workspace.snipActivated(0);
        workspace.goToLine();
        workspace.prevError();
        workspace.nextError();
        workspace.prevDepr();
        workspace.nextDepr();
        workspace.comment();
        workspace.foldAll();
        workspace.unfoldAll();
        workspace.autoIndent();
        workspace.autoFormat();
        workspace.statusClicked();
        workspace.zoomIn();
    };
    DialogAnswerer dialogs;
    Fixture f;
    QVERIFY(!f.host.action("code_comment")->isEnabled());
    callAll(*f.workspace);
    f.workspace->errorActivated(0);
    f.workspace->goTo(1, 1);
    QActionGroup *const group = f.encoding("KOI8-R")->actionGroup();
    f.encoding("KOI8-R")->trigger();
    QVERIFY(!group->checkedAction());

    f.show(text("[g]\nbad\nold = int 1\nk = int 1\n"));
    QVERIFY(f.host.action("code_comment")->isEnabled());
    f.select(0, 3);
    f.editor->setReadOnly(true);
    callAll(*f.workspace);
    f.encoding("KOI8-R")->trigger();
    QVERIFY(group->checkedAction() == f.encoding("UTF-8"));
    QCOMPARE(f.document->toPlainText(), text("[g]\nbad\nold = int 1\nk = int 1\n"));
    QCOMPARE(shownLines(f.document), QByteArray("vvvvv"));
    QVERIFY(f.document->asked.isEmpty());
    QCOMPARE(f.place(), text("0,3"));
    QVERIFY(dialogs.dialogs.isEmpty());
}

void tst_CodeWorkspace::takesTheSettings()
{
    Fixture f(text("x"));
    f.workspace->reconfig();
    QVERIFY(f.editor->syntaxFormatting().lineNumbers);
    for (const char *const key :
         {"code_line_numbers", "code_highlight_line", "code_highlight_blocks",
          "code_folding_markers", "code_paren_matching"})
        f.host.options.insert(text(key), false);
    f.host.options.insert(text("font_name"), text("DejaVu Sans Mono"));
    f.host.options.insert(text("font_size"), 17);
    f.host.colors = {{text("line"), Qt::red},
                     {text("block_range"), Qt::green},
                     {text("paren_range"), Qt::blue},
                     {text("background"), QColor(1, 2, 3)},
                     {text("foreground"), QColor(254, 253, 252)}};
    f.host.formats[text("paren")].setFontUnderline(true);
    f.host.formats[text("foreground")].setFontWeight(QFont::Bold);
    f.host.formats[text("foreground")].setFontItalic(true);
    f.workspace->reconfig();
    const CodeEditor::SyntaxFormatting &formatting = f.editor->syntaxFormatting();
    QVERIFY(!formatting.lineNumbers && !formatting.highlightLine && !formatting.highlightBlocks
            && !formatting.foldingMarkers && !formatting.parenMatching && formatting.marks);
    QCOMPARE(formatting.lineColor, QColor(Qt::red));
    QCOMPARE(formatting.blockColor, QColor(Qt::green));
    QCOMPARE(formatting.rangeFormat.background().color(), QColor(Qt::blue));
    QVERIFY(formatting.matchFormat.fontUnderline());
    QCOMPARE(f.editor->styleSheet(),
             text("QPlainTextEdit { background-color: #010203; color: #fefdfc; }"));
    for (const QFont &font : {f.editor->font(), f.document->defaultFont()}) {
        QCOMPARE(font.family(), text("DejaVu Sans Mono"));
        QCOMPARE(font.pointSize(), 17);
        QCOMPARE(font.weight(), int(QFont::Bold));
        QVERIFY(font.italic() && font.fixedPitch());
    }
}

void tst_CodeWorkspace::zoomsInStepsOfTwo()
{
    Fixture f(text("x"));
    f.host.options.insert(text("font_size"), 4);
    f.workspace->zoomFit();
    f.workspace->zoomIn();
    QCOMPARE(f.editor->font().pointSize(), 6);
    QCOMPARE(f.document->defaultFont().pointSize(), 6);
    for (int i = 0; i < 5; ++i)
        f.workspace->zoomOut();
    QCOMPARE(f.editor->font().pointSize(), 1);
    QCOMPARE(f.document->defaultFont().pointSize(), 1);
    f.workspace->zoomActual();
    // A document that comes later has the same font.
    TestDocument other(text("y"));
    f.workspace->setDocument(&other);
    QCOMPARE(other.defaultFont().pointSize(), 4);
    f.workspace->setDocument(f.document);
}

void tst_CodeWorkspace::showsWordsWithoutADocument()
{
    Fixture f;
    QLabel *label = nullptr;
    const QList<QLabel *> labels = f.workspace->widget()->findChildren<QLabel *>();
    for (QLabel *const candidate : labels) {
        if (candidate->text() == text("No document."))
            label = candidate;
    }
    QVERIFY(label && label->isVisible() && !f.editor->isVisible());
    QCOMPARE(label->font().pointSize(), 12);
    auto *const beside = new QWidget;
    beside->setFixedWidth(50);
    f.workspace->addWidget(beside);
    f.show(text("x"));
    QVERIFY(!label->isVisible() && f.editor->isVisible());
    QTRY_COMPARE(beside->x(),
                 f.window.width() - f.layout.contentsMargins().right() - 50
                     - f.workspace->widget()->x());
}

void tst_CodeWorkspace::goesBackToTheOldPlace()
{
    Fixture f(numbered(300));
    f.workspace->goTo(150, 3);
    const CodeEditor::LinePos left = f.editor->currentLine();
    QVERIFY(left.scroll > 0);
    TestDocument other(numbered(300));
    f.workspace->setDocument(&other);
    QCOMPARE(f.place(), text("0,0"));
    QCOMPARE(f.document->objectName(), text("150,3,%1").arg(left.scroll));
    f.workspace->setDocument(nullptr);
    f.workspace->setDocument(f.document);
    QCOMPARE(f.place(), text("150,3"));
    QCOMPARE(f.editor->currentLine().scroll, left.scroll);
    // What has another form is no place.
    for (const char *const name : {"7", "7,1", "7,1,0,0", "7,1,0"}) {
        TestDocument third(numbered(30));
        third.setObjectName(text(name));
        f.workspace->setDocument(&third);
        QCOMPARE(f.place(), text(qstrlen(name) == 5 ? "7,1" : "0,0"));
        f.workspace->setDocument(f.document);
    }
}

void tst_CodeWorkspace::documentMayGoWhileItIsShown()
{
    Fixture f(text("x"));
    {
        TestDocument other(text("[g]\nbad\n"));
        f.workspace->setDocument(&other);
        QCOMPARE(f.combo(1)->count(), 1);
    }
    QVERIFY(!f.workspace->document() && !f.editor->isVisible());
    QCOMPARE(f.combo(1)->count(), 0);
    f.workspace->comment();
    f.window.grab();
    f.workspace->setDocument(f.document);
    QCOMPARE(f.editor->toPlainText(), text("x"));
}

void tst_CodeWorkspace::messagesLeadToTheirPlaces()
{
    Fixture f(text("k = int 1\n  bad\nk = int 1\nold = int 1\n"));
    QComboBox *const messages = f.combo(1);
    QCOMPARE(messages->count(), 2);
    QCOMPARE(messages->sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    messages->setFocus();
    QTest::keyClick(messages, Qt::Key_Down);
    QCOMPARE(f.place(), text("3,0"));
    QVERIFY(f.window.focusWidget() == f.editor);
    QTest::keyClick(messages, Qt::Key_Up);
    QCOMPARE(f.place(), text("1,2"));
}

void tst_CodeWorkspace::navigatesBetweenMessages_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("place");
    const auto row = [](const char *key, int line, int column, const char *place) {
        QTest::addRow("%s from %d,%d", key, line, column)
            << text(key) << line << column << text(place);
    };
    row("code_next_error", 0, 0, "1,2");
    row("code_next_error", 1, 0, "1,2");
    row("code_next_error", 1, 2, "3,0"); // on the start of one: to the next
    row("code_next_error", 3, 0, "3,0"); // no other one
    row("code_prev_error", 4, 0, "3,0");
    row("code_prev_error", 3, 5, "3,0"); // behind its end
    row("code_prev_error", 3, 4, "1,2"); // at its end
    row("code_prev_error", 3, 0, "1,2");
    row("code_prev_error", 1, 5, "1,5"); // at its end, and no other one
    row("code_next_deprecation", 0, 0, "2,0");
    row("code_next_deprecation", 2, 0, "2,0");
    row("code_prev_deprecation", 4, 3, "2,0");
    row("code_prev_deprecation", 0, 0, "0,0");
}

void tst_CodeWorkspace::navigatesBetweenMessages()
{
    QFETCH(QString, key);
    QFETCH(int, line);
    QFETCH(int, column);
    // The second error is in columns 0 to 4 and followed by a warning there.
    Fixture f(text("k = int 1\n  bad\nold = int 1\nboth = int 1\nk = int 1"));
    f.workspace->goTo(unsigned(line), unsigned(column));
    f.trigger(qPrintable(key));
    QTEST(f.place(), "place");
}

void tst_CodeWorkspace::goesToALine_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("place");
    QTest::newRow("in the text") << 7 << 0 << text("6,0");
    QTest::newRow("the last line") << 30 << 0 << text("29,0");
    QTest::newRow("behind it, yes") << 31 << int(QMessageBox::Yes) << text("29,0");
    QTest::newRow("behind it, no") << 100000 << int(QMessageBox::No) << text("4,2");
    QTest::newRow("given up") << 0 << 0 << text("4,2");
}

void tst_CodeWorkspace::goesToALine()
{
    QFETCH(int, value);
    QFETCH(int, answer);
    Fixture f(numbered(30));
    f.workspace->goTo(4, 2);
    DialogAnswerer dialogs;
    dialogs.handle([=](QDialog *dialog) {
        QCOMPARE(namelessControls(*dialog), QString());
        auto *const spin = dialog->findChild<QSpinBox *>();
        QCOMPARE(spin->value(), 5);
        if (value > 0) {
            spin->selectAll();
            QTest::keyClicks(spin, QString::number(value));
        }
        QTest::keyClick(spin, value > 0 ? Qt::Key_Return : Qt::Key_Escape);
    });
    if (answer)
        dialogs.answer(QMessageBox::StandardButton(answer));
    f.trigger("code_goto");
    QTEST(f.place(), "place");
    QCOMPARE(dialogs.dialogs.size(), answer ? 2 : 1);
    if (answer) {
        QCOMPARE(dialogs.dialogs.last().text,
                 text("Invalid line! Do you want go to the last line?"));
        QCOMPARE(dialogs.dialogs.last().defaultButton, QMessageBox::Yes);
    }
}

void tst_CodeWorkspace::turnsComments_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<QString>("after");
    const auto row = [](const char *name, const char *before, int start, int end,
                        const char *after) {
        QTest::newRow(name) << text(before) << start << end << text(after);
    };
    row("all lines", "a\nb\nc", 0, 5, "//a\n//b\n//c");
    row("from inside a line", "ab\ncd", 1, 4, "//ab\n//cd");
    row("first is a comment", "//a\nb\n//c", 0, 9, "a\nb\nc");
    row("first is none", "a\n//b", 0, 5, "//a\n////b");
    row("ends at a line's start", "a\nb\nc", 0, 2, "//a\nb\nc");
    row("ends at a comment's start", "//a\n//b", 0, 4, "a\n//b");
    row("no selection", "a\nb", 1, 1, "//a\nb");
    row("no selection at a line's start", "a\nb", 2, 2, "a\nb");
    row("empty lines", "a\n\nb", 0, 4, "//a\n//\n//b");
    row("a cut comment", "//a\n/b", 0, 6, "a\n/b");
}

void tst_CodeWorkspace::turnsComments()
{
    QFETCH(QString, before);
    QFETCH(int, start);
    QFETCH(int, end);
    Fixture f(before);
    f.select(start, end);
    f.trigger("code_comment");
    QTEST(f.document->toPlainText(), "after");
    f.document->undo(); // one step for all lines
    QCOMPARE(f.document->toPlainText(), before);
}

void tst_CodeWorkspace::foldsLongTextsFast()
{
    Fixture f(manyGroups(100000));
    for (const char *const key : {"code_fold_all", "code_unfold_all"}) {
        QElapsedTimer timer;
        timer.start();
        f.trigger(key);
        QVERIFY(timer.elapsed() < 1000);
        QCOMPARE(f.document->findBlockByNumber(50001).isVisible(), key[5] == 'u');
    }
}

void tst_CodeWorkspace::formatsTheSelectedLines()
{
    Fixture f(text("aa\nbb\ncc\ndd"));
    f.select(10, 4); // backwards, from line 3 to line 1
    f.trigger("code_auto_indent");
    QCOMPARE(f.document->asked, QStringList{text("1-3 indent")});
    QVERIFY(!f.editor->textCursor().hasSelection());
    QCOMPARE(f.place(), text("1,1"));
    f.trigger("code_auto_format");
    QCOMPARE(f.document->asked.last(), text("1-1 format"));
}

void tst_CodeWorkspace::encodingIsForTheNextSaveOrForNow_data()
{
    QTest::addColumn<QMessageBox::StandardButton>("answer");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QByteArray>("saved");
    // E9 is the Cyrillic short i in Windows 1251.
    QTest::newRow("reload") << QMessageBox::Yes << text("caf\u0439") << QByteArray("caf\xE9");
    QTest::newRow("keep") << QMessageBox::No << text("caf\u0431") << QByteArray("caf\xE1");
}

void tst_CodeWorkspace::encodingIsForTheNextSaveOrForNow()
{
    QFETCH(QMessageBox::StandardButton, answer);
    QFETCH(QString, shown);
    QTemporaryDir folder;
    const QString path = folder.filePath(text("a.def"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("caf\xE9");
    file.close();
    Fixture f(text("x"));
    QVERIFY(f.document->fromFile(FileSystemArchive::instance(), path, 0, nullptr));
    // The Cyrillic be is E1 in Windows 1251.
    f.document->setPlainText(text("caf\u0431"));
    f.document->setModified(false);

    QAction *const action = f.encoding("windows-1251");
    DialogAnswerer dialogs;
    dialogs.answer(answer);
    action->trigger();
    QCOMPARE(dialogs.dialogs.first().title, text("Reload"));
    QVERIFY(dialogs.dialogs.first().text.startsWith(
        text("Do you want to reload the file using the specified encoding?\n")));
    QCOMPARE(f.editor->toPlainText(), shown);
    QVERIFY(action->isChecked());
    QCOMPARE(f.host.statusTexts.value(2), text("Encoding: windows-1251"));
    QCOMPARE(f.document->isModified(), answer == QMessageBox::No);
    QVERIFY(f.document->toFile(FileSystemArchive::instance(), path, 0, nullptr));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QTEST(file.readAll(), "saved");
    // Another document has its own.
    TestDocument other(text("y"));
    f.workspace->setDocument(&other);
    QVERIFY(!action->isChecked());
    QCOMPARE(f.host.statusTexts.value(2), text("Encoding: UTF-8"));
    f.workspace->setDocument(f.document);
    QVERIFY(action->isChecked());
}

void tst_CodeWorkspace::statusFieldAsksForTheEncoding()
{
    Fixture f(text("x")); // which is in no file, so nothing asks for a reload
    DialogAnswerer dialogs;
    const int koi = TextCodecs::index("KOI8-R");
    dialogs.handle([=](QDialog *dialog) {
        QCOMPARE(namelessControls(*dialog), QString());
        auto *const list = dialog->findChild<QTreeWidget *>();
        QCOMPARE(list->topLevelItemCount(), TextCodecs::count());
        QCOMPARE(list->indexOfTopLevelItem(list->currentItem()), TextCodecs::index("UTF-8"));
        list->scrollToItem(list->topLevelItem(koi));
        const QRect row = list->visualItemRect(list->topLevelItem(koi));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
        QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok),
                          Qt::LeftButton);
    });
    f.workspace->statusClicked();
    QCOMPARE(f.document->codecId(), koi);
    QCOMPARE(f.host.statusTexts.value(2), text("Encoding: KOI8-R"));
    dialogs.cancel();
    f.workspace->statusClicked();
    QCOMPARE(f.document->codecId(), koi);
}

void tst_CodeWorkspace::contextMenuHoldsTheCommands()
{
    Fixture f(text("x"));
    const QPoint place(20, 5);
    QWidget *const viewport = f.editor->viewport();
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, viewport->mapToGlobal(place));
    QApplication::sendEvent(viewport, &event);
    QPointer<QMenu> menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    const QList<QAction *> actions = menu->actions();
    QCOMPARE(actions.last()->text(), text("Code"));
    QVERIFY(actions.at(actions.size() - 2)->isSeparator());
    QVERIFY(actions.size() > 6); // those of every text field in front
    menu->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!menu);
    QCOMPARE(texts(f.host.menu("edit")).at(1), text("Code")); // which is still there
}

void tst_CodeWorkspace::snippetIsInsertedAtItsMark()
{
    Fixture f(text("ab"));
    f.workspace->engineSwitched(false);
    QCOMPARE(f.combo(0)->count(), 0);
    f.writeSnippet("<snippet><code>\nfor CURSOR\nend CURSOR.\n</code></snippet>");
    f.select(1, 1);
    f.trigger("code_snippet_insert");
    QCOMPARE(f.document->toPlainText(), text("afor \nend .\nb"));
    QCOMPARE(f.editor->textCursor().position(), 5);
    QVERIFY(f.window.focusWidget() == f.editor);
}

void tst_CodeWorkspace::snippetsAreEdited()
{
    Fixture f(text("ab\ncd"));
    f.writeSnippet("<snippet><code>for</code></snippet>");
    DialogAnswerer dialogs;
    QStringList codes;
    for (int i = 0; i < 2; ++i)
        dialogs.handle([&](QDialog *dialog) {
            codes.append(dialog->findChild<QPlainTextEdit *>()->toPlainText().trimmed());
            dialog->reject();
        });
    f.trigger("code_snippet_edit");
    f.editor->selectAll();
    f.trigger("code_snippet_new");
    QCOMPARE(codes, (QStringList{text("for"), text("ab\ncd")}));
    SnippetManager::instance()->load(text("/no/such/folder"));
    f.trigger("code_snippet_edit"); // with none to edit
}

QTEST_MAIN(tst_CodeWorkspace)
#include "tst_codeworkspace.moc"

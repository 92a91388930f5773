// SPDX-License-Identifier: MIT
#include "editor/codeeditor.h"
#include "editor/codefileeditor.h"
#include "editor/codeworkspace.h"
#include "frame/filesystemarchive.h"
#include "frame/regexp.h"
#include "frame/textcodecs.h"
#include "support/dialoganswerer.h"
#include "support/recordinghost.h"
#include "support/testfile.h"
#include "support/testgrammar.h"
#include "support/testproject.h"

#include <QtTest>

using namespace Vela;

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

class ScriptEditor : public CodeFileEditor
{
public:
    using CodeFileEditor::CodeFileEditor;
    using CodeFileEditor::deleteNode;
    using CodeFileEditor::pasteAfter;
    QAction *action() const override
    {
        return &m_action;
    }
    int canEditFileType() const override
    {
        return Project::Scripts;
    }

private:
    mutable QAction m_action{text("Script"), nullptr};
};

/// A document in two groups, the second with a nested one; line 6 has an error.
const char *const twoGroups = "[a]\n"
                              "k = int 1\n"
                              "l = int 2\n"
                              "[b]\n"
                              "[[n]]\n"
                              "m = int 3\n"
                              "bad\n"
                              "[c]";

/// An active editor with a tree beside the text.
struct Fixture
{
    explicit Fixture(const QString &content = text(twoGroups))
    {
        for (const char *const option : {"parseCode", "highlightCode", "modelCode"})
            host.options.insert(text(option), true);
        document = std::make_unique<TestDocument>(content);
        workspace = std::make_unique<CodeWorkspace>(host);
        code = workspace->editor();
        editor = std::make_unique<ScriptEditor>(workspace.get(), "scripts");
        modified = std::make_unique<QSignalSpy>(editor.get(), &FileEditor::modified);
        layout.addWidget(workspace->widget());
        layout.addWidget(&tree);
        tree.setMinimumWidth(200);
        window.resize(700, 400);
        window.show();
        editor->setTreeView(&tree);
        editor->setCurrentFile(document.get());
        host.switchEditor(editor.get());
        QGuiApplication::clipboard()->clear();
    }

    ~Fixture()
    {
        editor->setCurrentFile(nullptr);
    }

    QModelIndex row(int outer, int inner = -1) const
    {
        const QModelIndex index = tree.model()->index(outer, 0);
        return inner < 0 ? index : tree.model()->index(inner, 0, index);
    }

    void click(const QModelIndex &index, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, modifiers,
                          tree.visualRect(index).center());
    }

    /// Asks for the menu at a place of the tree and returns it, or null if none opens.
    QMenu *menuAt(const QPoint &place)
    {
        QWidget *const viewport = tree.viewport();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, viewport->mapToGlobal(place));
        QApplication::sendEvent(viewport, &event);
        return qobject_cast<QMenu *>(QApplication::activePopupWidget());
    }

    /// Selects a row, and an action of its menu by its text.
    void choose(const QModelIndex &index, const char *action)
    {
        QMenu *const menu = menuAt(tree.visualRect(index).center());
        QVERIFY(menu);
        const QList<QAction *> actions = menu->actions();
        for (QAction *const candidate : actions) {
            if (candidate->text() == text(action))
                QTest::mouseClick(menu, Qt::LeftButton, {},
                                  menu->actionGeometry(candidate).center());
        }
        QVERIFY(!menu->isVisible());
    }

    QString place() const
    {
        const CodeEditor::LinePos position = code->currentLine();
        return text("%1,%2").arg(position.line).arg(position.column);
    }

    /// Returns whether the line of the cursor is, within three lines.
    bool isInTheMiddle() const
    {
        const int middle = code->viewport()->height() / 2;
        return qAbs(code->cursorRect().center().y() - middle) <= 3 * code->fontMetrics().height();
    }

    RecordingHost host;
    std::unique_ptr<TestDocument> document;
    QWidget window;
    QHBoxLayout layout{&window};
    QTreeView tree;
    std::unique_ptr<CodeWorkspace> workspace;
    CodeEditor *code = nullptr;
    std::unique_ptr<ScriptEditor> editor;
    std::unique_ptr<QSignalSpy> modified;
};

QString numbered(int lines)
{
    QStringList content;
    for (int i = 0; i < lines; ++i)
        content.append(text("k%1 = int 1").arg(i));
    return content.join(QLatin1Char('\n'));
}

/// Returns the places that are highlighted as matches of a search.
QStringList highlighted(const CodeEditor *editor)
{
    QStringList result;
    const QList<QTextEdit::ExtraSelection> selections = editor->extraSelections();
    for (const QTextEdit::ExtraSelection &selection : selections) {
        if (selection.format.background() == QBrush(Qt::yellow)
            && selection.format.foreground() == QBrush(Qt::black))
            result.append(text("%1-%2")
                              .arg(selection.cursor.selectionStart())
                              .arg(selection.cursor.selectionEnd()));
    }
    return result;
}

} // namespace

class tst_CodeFileEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void takesTextsAndNodeFiles();
    void editorsShareTheWorkspace();
    void currentDocumentMayGo();
    void statusTellsPlaceAndErrors();
    void treeFollowsTheText();
    void clickInTheTreeGoesToTheLine();
    void menuNeedsASelectedRow();
    void removesSelectedNodes();
    void cutsAndPastesNodes();
    void readOnlyTextKeepsItsNodes();
    void findShowsTheFirstMatch_data();
    void findShowsTheFirstMatch();
    void findUnfoldsNothingOnTheWay();
    void findHighlightsAllMatches();
    void replaceLeavesTheCursor();
    void navigatesToAPlace();
    void savesAsUtf8();
    void savesTwiceInARow();
};

void tst_CodeFileEditor::initTestCase()
{
    TextCodecs::initialize();
}

void tst_CodeFileEditor::takesTextsAndNodeFiles()
{
    Fixture f;
    QCOMPARE(f.editor->areas(), 5u);
    QSignalSpy visible(f.editor.get(), &Editor::visible);
    QVERIFY(f.workspace->document() == f.document.get());
    QVERIFY(f.tree.model() == f.document->model());

    TestFile other;
    f.editor->setCurrentFile(&other);
    QVERIFY(!f.editor->document() && !f.workspace->document() && !f.tree.model());
    QTest::keyClicks(f.code, text("x"));
    QCOMPARE(f.modified->size(), 0);

    // The node file holds the document from then on, and goes before it.
    TestDocument *const shared = new TestDocument(text("anim 1 walk\n"));
    auto *const animations = new TestAnimations(shared);
    shared->registerNodeFile(animations, CodeNode::Animation, 0);
    shared->setModified(false);
    f.editor->setCurrentFile(animations);
    QVERIFY(f.editor->document() == shared && f.workspace->document() == shared);
    QVERIFY(f.tree.model() == shared->model());
    QTest::keyClicks(f.code, text("x"));
    QCOMPARE(f.modified->size(), 1);
    QVERIFY(f.editor->isModified());
    f.editor->undo();
    QVERIFY(!f.editor->isModified());
    QCOMPARE(f.modified->size(), 2);
    f.editor->setCurrentFile(f.document.get());
    shared->setModified(true);
    QCOMPARE(f.modified->size(), 2);
    QCOMPARE(visible.size(), 3);
    QCOMPARE(visible.takeFirst().first(), QVariant(false));
    QCOMPARE(visible.last().first(), QVariant(true));
    animations->release();
    shared->release();
}

void tst_CodeFileEditor::editorsShareTheWorkspace()
{
    Fixture f;
    QVERIFY(f.host.workspace == f.workspace.get());
    f.editor->navigateTo(2, 4);
    TestDocument second(text("x"));
    ScriptEditor other(f.workspace.get(), "others");
    other.setCurrentFile(&second);
    f.host.switchEditor(&other);
    QVERIFY(f.workspace->document() == &second);
    QCOMPARE(f.host.statusTexts.value(0), text("Line: 1, Column: 1, Line count: 1"));
    f.host.switchEditor(f.editor.get());
    QVERIFY(f.workspace->document() == f.document.get());
    QCOMPARE(f.place(), text("2,4"));
    QCOMPARE(f.host.statusTexts.value(0), text("Line: 3, Column: 5, Line count: 8"));
    // What is not shown is not searched.
    QVERIFY(other.find(RegExp(text("x")), 0).isEmpty());
    QCOMPARE(f.place(), text("2,4"));
    // Nor does it take away what is.
    other.setCurrentFile(nullptr);
    QVERIFY(f.workspace->document() == f.document.get());
    QVERIFY(!other.document());
}

void tst_CodeFileEditor::currentDocumentMayGo()
{
    Fixture f;
    QSignalSpy visible(f.editor.get(), &Editor::visible);
    QSignalSpy writable(f.editor.get(), &Editor::writable);
    f.document.reset();
    QCOMPARE(visible.value(0), QVariantList{false});
    QCOMPARE(writable.value(0), QVariantList{false});
    QVERIFY(!f.editor->currentFile() && !f.editor->document() && !f.editor->isModified());
    f.editor->find(RegExp(text("k")), 0);
    f.editor->navigateTo(1, 1);
    f.editor->deleteNode();
    f.editor->pasteAfter();
    f.editor->saveAsUTF8();
    f.editor->cut();
    f.window.grab();
}

void tst_CodeFileEditor::statusTellsPlaceAndErrors()
{
    Fixture f;
    QTest::keyClick(f.code, Qt::Key_Down);
    QTest::keyClick(f.code, Qt::Key_Right);
    QCOMPARE(f.host.statusTexts.value(0), text("Line: 2, Column: 2, Line count: 8"));
    QCOMPARE(f.host.statusTexts.value(1), text("Syntax error count: 1"));
    f.editor->deactivate();
    QTest::keyClick(f.code, Qt::Key_Right);
    QCOMPARE(f.host.statusTexts.value(0), text("Line: 2, Column: 2, Line count: 8"));
}

void tst_CodeFileEditor::treeFollowsTheText()
{
    Fixture f;
    f.tree.expand(f.row(0));
    f.workspace->goTo(5, 0);
    QVERIFY(!f.tree.isExpanded(f.row(0)));
    const QModelIndex nested = f.row(1, 0);
    const QModelIndex value = f.tree.model()->index(0, 0, nested);
    QCOMPARE(f.tree.selectionModel()->selectedRows(), QModelIndexList{value});
    QVERIFY(f.tree.visualRect(value).isValid());
    QTest::keyClick(f.code, Qt::Key_Up);
    QCOMPARE(f.tree.selectionModel()->selectedRows(), QModelIndexList{nested});
    QVERIFY(f.tree.isExpanded(nested));
    // Whoever comes back to the text finds its place in the tree, too.
    f.editor->setCurrentFile(nullptr);
    f.editor->setCurrentFile(f.document.get());
    QCOMPARE(f.tree.selectionModel()->selectedRows(), QModelIndexList{nested});

    f.host.options.insert(text("auto_expand_tree"), false);
    f.workspace->goTo(0, 0);
    QCOMPARE(f.tree.selectionModel()->selectedRows(), QModelIndexList{nested});
}

void tst_CodeFileEditor::clickInTheTreeGoesToTheLine()
{
    Fixture f;
    f.tree.expandAll();
    f.click(f.row(0, 1));
    QCOMPARE(f.place(), text("2,0"));
    QVERIFY(f.window.focusWidget() == f.code);
    // Further rows can be added: the text does not choose for the user.
    f.click(f.row(2), Qt::ControlModifier);
    QCOMPARE(f.place(), text("7,0"));
    QCOMPARE(f.tree.selectionModel()->selectedRows().size(), 2);
    QVERIFY(f.tree.isExpanded(f.row(0)));
    f.editor->deactivate();
    f.click(f.row(0));
    QCOMPARE(f.place(), text("7,0"));
}

void tst_CodeFileEditor::menuNeedsASelectedRow()
{
    Fixture f;
    f.tree.clearSelection();
    QVERIFY(!f.menuAt(f.tree.visualRect(f.row(0)).center()));
    f.click(f.row(0));
    QVERIFY(!f.menuAt(QPoint(5, f.tree.viewport()->height() - 2)));
    QMenu *menu = f.menuAt(f.tree.visualRect(f.row(0)).center());
    QVERIFY(menu);
    QStringList entries;
    const QList<QAction *> actions = menu->actions();
    for (const QAction *const action : actions)
        entries.append(text(action->isEnabled() ? "+" : "-") + action->text());
    QCOMPARE(entries,
             (QStringList{text("+Remove"), text("+Cut"), text("+Copy"), text("-Paste before"),
                          text("-Paste after")}));
    menu->close();
    QGuiApplication::clipboard()->setText(text("x"));
    menu = f.menuAt(f.tree.visualRect(f.row(0)).center());
    QVERIFY(menu && menu->actions().last()->isEnabled());
    menu->close();
}

void tst_CodeFileEditor::removesSelectedNodes()
{
    Fixture f;
    f.tree.expandAll();
    // A group with what is in it, and a value of another one.
    f.click(f.row(1));
    f.click(f.row(1, 0), Qt::ControlModifier);
    f.click(f.row(0, 0), Qt::ControlModifier);
    f.choose(f.row(1), "Remove");
    QCOMPARE(f.document->toPlainText(), text("[a]\nl = int 2\n[c]"));
    QCOMPARE(f.tree.model()->rowCount(), 2);
    f.document->undo();
    QCOMPARE(f.document->toPlainText(), text(twoGroups));
}

void tst_CodeFileEditor::cutsAndPastesNodes()
{
    Fixture f;
    f.tree.expandAll();
    f.click(f.row(0, 1));
    f.click(f.row(0, 0), Qt::ControlModifier);
    f.choose(f.row(0, 0), "Copy");
    // In the order of the text, as other programs know lines.
    QCOMPARE(QGuiApplication::clipboard()->text(), text("k = int 1\nl = int 2\n"));
    f.click(f.row(0, 0));
    f.choose(f.row(0, 0), "Cut");
    QCOMPARE(QGuiApplication::clipboard()->text(), text("k = int 1\n"));
    QCOMPARE(f.document->toPlainText().left(14), text("[a]\nl = int 2\n"));

    QGuiApplication::clipboard()->setText(text("x = int 7"));
    f.click(f.row(2));
    f.choose(f.row(2), "Paste before");
    QCOMPARE(f.document->toPlainText(),
             text("[a]\nl = int 2\n[b]\n[[n]]\nm = int 3\nbad\nx = int 7\n[c]"));
    f.click(f.row(0));
    f.choose(f.row(0), "Paste after");
    QCOMPARE(f.document->toPlainText(),
             text("[a]\nl = int 2\nx = int 7\n[b]\n[[n]]\nm = int 3\nbad\nx = int 7\n[c]"));
}

void tst_CodeFileEditor::readOnlyTextKeepsItsNodes()
{
    Fixture f;
    QGuiApplication::clipboard()->setText(text("x = int 7"));
    f.click(f.row(0));
    f.code->setReadOnly(true);
    f.choose(f.row(0), "Remove");
    f.choose(f.row(0), "Paste after");
    f.choose(f.row(0), "Cut");
    QCOMPARE(f.document->toPlainText(), text(twoGroups));
}

void tst_CodeFileEditor::findShowsTheFirstMatch_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("scroll"); // where the user has scrolled to meanwhile
    QTest::addColumn<unsigned int>("flags");
    QTest::addColumn<int>("line");
    QTest::newRow("forward") << 100 << 100 << 0u << 157;
    QTest::newRow("forward, seen from below") << 100 << 300 << 0u << 157;
    QTest::newRow("from the start") << 100 << 100 << unsigned(CodeDocument::FromStart) << 57;
    QTest::newRow("backward") << 200 << 200 << unsigned(CodeDocument::Backward) << 157;
    QTest::newRow("backward, seen from above")
        << 200 << 0 << unsigned(CodeDocument::Backward) << 157;
    QTest::newRow("none") << 290 << 290 << 0u << -1;
}

void tst_CodeFileEditor::findShowsTheFirstMatch()
{
    QFETCH(int, start);
    QFETCH(int, scroll);
    QFETCH(unsigned int, flags);
    QFETCH(int, line);
    Fixture f(numbered(300)); // 57, 157 and 257
    f.workspace->goTo(unsigned(start), 0);
    f.code->verticalScrollBar()->setValue(scroll);
    const QList<ProjectFile::SearchResult> results =
        f.editor->find(RegExp(text("k(157|57) ")), flags);
    QCOMPARE(results.size(), line < 0 ? 0 : 1);
    if (line < 0) {
        QCOMPARE(f.place(), text("290,0"));
        return;
    }
    const QTextCursor cursor = f.code->textCursor();
    QCOMPARE(cursor.blockNumber(), line);
    QCOMPARE(cursor.selectedText(), text("k%1 ").arg(line));
    QVERIFY(f.isInTheMiddle());
    QVERIFY(highlighted(f.code).isEmpty());
}

void tst_CodeFileEditor::findUnfoldsNothingOnTheWay()
{
    QString content = text("[a]\nwanted = int 1\n");
    for (int i = 0; i < 100; ++i)
        content += text("[b]\nk = int 1\n");
    Fixture f(content);
    for (int line = 2; line < 200; line += 2)
        f.code->toggleBlockVisible(f.document->findBlockByNumber(line));
    const int shown = f.document->lineCount();
    f.editor->find(RegExp(text("wanted")), CodeDocument::FromStart);
    QCOMPARE(f.place(), text("1,6"));
    QCOMPARE(f.document->lineCount(), shown);
}

void tst_CodeFileEditor::findHighlightsAllMatches()
{
    Fixture f(text("k = int 1\nl = int 1\nm = int 1"));
    QCOMPARE(f.editor->find(RegExp(text("int")), CodeDocument::FindAll).size(), 3);
    QCOMPARE(f.code->textCursor().selectionStart(), 4);
    QCOMPARE(f.code->textCursor().selectionEnd(), 7);
    QCOMPARE(highlighted(f.code), (QStringList{text("14-17"), text("24-27")}));
    QTest::keyClick(f.code, Qt::Key_Down);
    QCOMPARE(highlighted(f.code).size(), 2);
    QVERIFY(f.editor->find(RegExp(QString()), CodeDocument::FindAll).isEmpty());
    QVERIFY(highlighted(f.code).isEmpty());
}

void tst_CodeFileEditor::replaceLeavesTheCursor()
{
    Fixture f(text("k = int 1\nl = int 1"));
    const auto results = f.editor->find(RegExp(text("i(n)t")), CodeDocument::FindAll);
    f.editor->navigateTo(1, 2);
    f.editor->replace(results, text("%1%1"));
    QCOMPARE(f.document->toPlainText(), text("k = nn 1\nl = nn 1"));
    QCOMPARE(f.place(), text("1,2"));
    QVERIFY(highlighted(f.code).isEmpty());
    f.code->setReadOnly(true);
    f.editor->replace(f.editor->find(RegExp(text("nn")), 0), text("x"));
    QCOMPARE(f.document->toPlainText(), text("k = nn 1\nl = nn 1"));
}

void tst_CodeFileEditor::navigatesToAPlace()
{
    Fixture f(numbered(300));
    f.editor->navigateTo(150, 3);
    QCOMPARE(f.place(), text("150,3"));
    QVERIFY(f.isInTheMiddle());
    f.editor->navigateTo(1, 1000);
    QCOMPARE(f.place(), text("1,10")); // the end of the line
    f.editor->navigateTo(0xFFFFFFFFu, 0xFFFFFFFFu);
    QCOMPARE(f.place(), text("299,12"));
}

void tst_CodeFileEditor::savesAsUtf8()
{
    Fixture f;
    QTemporaryDir folder;
    const QString path = folder.filePath(text("a.def"));
    f.document->setPlainText(text("caf\u00E9"));
    f.document->setCodec("ISO-8859-1");
    QVERIFY(f.document->toFile(FileSystemArchive::instance(), path, 0, nullptr));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("caf\xE9"));
    file.close();
    // The text is as it was saved, but for its encoding.
    QVERIFY(!f.editor->isModified());
    f.editor->saveAsUTF8();
    f.document->waitForSave();
    QVERIFY(!f.editor->isModified());
    QCOMPARE(f.host.statusTexts.value(2), text("Encoding: UTF-8"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("caf\xC3\xA9"));
}

// The second save finds the document without a name, as the first one is still being written.
void tst_CodeFileEditor::savesTwiceInARow()
{
    Fixture f;
    DialogAnswerer dialogs;
    QTemporaryDir folder;
    const QString path = folder.filePath(text("a.def"));
    QVERIFY(f.document->toFile(FileSystemArchive::instance(), path, 0, nullptr));
    f.workspace->goTo(0, 0);
    QTest::keyClicks(f.code, text("; "));
    f.editor->save();
    QTest::keyClicks(f.code, text("x"));
    f.editor->save();
    f.document->waitForSave();
    QVERIFY(dialogs.dialogs.isEmpty());
    QVERIFY(!f.editor->isModified());
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().startsWith("; x[a]"));
}

QTEST_MAIN(tst_CodeFileEditor)
#include "tst_codefileeditor.moc"

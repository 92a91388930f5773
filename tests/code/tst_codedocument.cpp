// SPDX-License-Identifier: MIT
#include "code/codedocument.h"

#include "code/codemark.h"
#include "frame/filesystemarchive.h"
#include "frame/regexp.h"
#include "frame/textcodecs.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"
#include "support/testgrammar.h"

#include <QAbstractTextDocumentLayout>
#include <QTemporaryDir>
#include <QtTest>
#include <functional>

using namespace Vela;

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QStringList list(const char *texts)
{
    return text(texts).split(QLatin1Char(','));
}

QString placesOf(const QList<ProjectFile::SearchResult> &results)
{
    QStringList places;
    for (const ProjectFile::SearchResult &result : results)
        places.append(text("%1:%2+%3").arg(result.line).arg(result.column).arg(result.length));
    return places.join(QLatin1Char(' '));
}

/// Returns text, name, title and encoding, with "*" behind them if the document is modified.
QString stateOf(const CodeDocument &document)
{
    return text("%1|%2|%3|%4%5")
        .arg(document.toString(), document.fileName(), document.title(),
             QString::fromLatin1(document.codecName()), text(document.isModified() ? "*" : ""));
}

/// The revisions of the lines: "saved" for that of the last save, "stored" for its complement,
/// else "changed".
QStringList lineStates(const CodeDocument &document)
{
    QStringList states;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const int revision = block.revision();
        states.append(revision == document.savedRevision()        ? text("saved")
                          : revision == ~document.savedRevision() ? text("stored")
                                                                  : text("changed"));
    }
    return states;
}

void typeInLine(CodeDocument &document, int line, const char *characters)
{
    QTextCursor(document.findBlockByNumber(line)).insertText(text(characters));
}

void setTabOption(CodeDocument &document, const char *key)
{
    document.setOption(text(key), true, false, false);
}

/// Has commits that fail at the last step, files that claim to be huge and records its lifetime.
class HardArchive : public MemoryArchive
{
public:
    using MemoryArchive::MemoryArchive;

    bool commitFile(QIODevice *device) override
    {
        if (!refuseCommits)
            return MemoryArchive::commitFile(device);
        discardFile(device);
        return false;
    }

    QIODevice *openFile(const QString &path, QIODevice::OpenMode mode) override
    {
        if (path != QLatin1String("huge"))
            return MemoryArchive::openFile(path, mode);
        class Huge : public QBuffer
        {
            qint64 size() const override
            {
                return 1000000001;
            }
        };
        auto *const device = new Huge;
        device->open(mode);
        return device;
    }

    bool refuseCommits = false;
};

class Mark : public CodeMark
{
public:
    void setLine(int newLine) override
    {
        line = newLine;
    }
    void setBlock(const QTextBlock &block) override
    {
        blockText = block.text();
    }
    void lineRemoved() override
    {
        ++removals;
    }
    void paint(QPainter &, const QRect &) const override
    {
    }

    int line = 0;
    QString blockText;
    int removals = 0;
};

} // namespace

class tst_CodeDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void startsEmpty();
    void readsAndWritesBytes_data();
    void readsAndWritesBytes();
    void loads();
    void textWithoutAFile();
    void saveBindsAndMarks();
    void failedSaveLeavesTheDocumentAsItWas();
    void savesInTheBackgroundWhileEdited();
    void whoeverWaitsFinishesTheSave();
    void savesToDisk();
    void insertsLinesByNodes();
    void bracketIsOneStep();
    void marks();
    void rowsAndLines();
    void icons();
    void searches();
    void searchResults();
    void replaces();

private:
    void failedSave(const QString &fault, unsigned int flags);
};

void tst_CodeDocument::initTestCase()
{
    TextCodecs::initialize();
}

void tst_CodeDocument::startsEmpty()
{
    TestDocument document;
    QCOMPARE(stateOf(document), text("|||UTF-8"));
    QCOMPARE(document.defaultFont().family(), text("Courier"));
    QCOMPARE(document.defaultFont().pointSize(), 10);
    QVERIFY(document.defaultFont().fixedPitch());
    QCOMPARE(document.capabilities(), ProjectFile::SavesSlowly | ProjectFile::HasText);
    document.setCodec("no such codec");
    QCOMPARE(document.codecId(), 0);
}

void tst_CodeDocument::readsAndWritesBytes_data()
{
    QTest::addColumn<QByteArray>("option");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("content");
    QTest::addColumn<QByteArray>("codec");
    QTest::addColumn<QByteArray>("written");
    const auto row = [](const char *tag, const char *hex, const char *content, const char *codec,
                        const char *written) {
        QTest::newRow(tag) << QByteArray() << QByteArray::fromHex(hex) << text(content)
                           << QByteArray(codec) << QByteArray::fromHex(*written ? written : hex);
    };
    row("empty", "", "", "UTF-8", "");
    row("line feeds", "610a620a", "a\nb\n", "UTF-8", "610d0a620d0a");
    row("mixed line ends", "610d0a620d630a", "a\nb\nc\n", "UTF-8", "610d0a620d0a630d0a");
    row("UTF-8", "c3a90d0ae282ac", "é\n€", "UTF-8", "");
    row("no-break space", "61c2a0620d0a", "a\u00a0b\n", "UTF-8", "");
    row("UTF-16LE", "fffe61000d000a00ac20", "a\n€", "UTF-16LE", "");
    row("UTF-16BE", "feff00610a0d", "a\u0a0d", "UTF-16BE", "");
    row("UTF-32LE", "fffe000061000000ac20000000f60100", "a€😀", "UTF-32LE", "");
    row("Windows-1251",
        "c2f1e520f1f7e0f1f2ebe8e2fbe520f1e5ecfce820efeef5eee6e820e4f0f3e320ede020e4f0f3e3e00d0a",
        "Все счастливые семьи похожи друг на друга\n", "windows-1251", "");

    const QByteArray open = "open_tabToSpace";
    const QByteArray save = "save_spaceToTab";
    const auto tabs = [open](const char *tag, const QByteArray &option, const QByteArray &bytes,
                             const QByteArray &written) {
        QByteArray content = option == open ? written : bytes;
        QTest::newRow(tag) << option << bytes << text(content.replace("\r\n", "\n").constData())
                           << QByteArray("UTF-8") << written;
    };
    tabs("neither option", "none", "\ta\tb    c", "\ta\tb    c");
    tabs("tab at column 0", open, "\tx", "    x");
    tabs("tab at column 2", open, "ab\tx", "ab  x");
    tabs("tab at column 3", open, "abc\tx", "abc x");
    tabs("tabs in a row", open, "a\t\tx", "a       x");
    tabs("tab behind lines", open, "abc\r\na\tx", "abc\r\na   x");
    tabs("blanks up to a stop", save, "ab  c", "ab\tc");
    tabs("one blank", save, "a b", "a b");
    tabs("one blank at a stop", save, "abc d", "abc d");
    tabs("too few blanks", save, "   x", "   x");
    tabs("blanks over a stop", save, "ab     c", "ab\t   c");
    tabs("blanks behind a tab", save, "a\t    b", "a\t\tb");
    tabs("blanks at the ends", save, "ab  \r\n    ", "ab\t\r\n\t");
}

void tst_CodeDocument::readsAndWritesBytes()
{
    QFETCH(QByteArray, option);
    QFETCH(QByteArray, bytes);
    MemoryArchive archive({{text("in"), bytes}});
    TestDocument document;
    setTabOption(document, option.constData());
    QVERIFY(document.fromFile(archive, text("in"), 0, nullptr));
    QTEST(document.toString(), "content");
    QTEST(document.codecName(), "codec");
    QVERIFY(document.toFile(archive, text("out"), 0, nullptr));
    QTEST(archive.content(text("out")), "written");
    QCOMPARE(archive.openDevices, 0);
}

void tst_CodeDocument::loads()
{
    HardArchive archive({{text("dir/a"), "[a]"}, {text("b"), "[b]"}});
    TestDocument document;
    QVERIFY(document.fromFile(archive, text("dir/a"), 0, nullptr));
    QCOMPARE(stateOf(document), text("[a]|dir/a|a|UTF-8"));
    QCOMPARE(lineStates(document), list("saved"));

    // The content of another file is a change of this one, and a copy that is written no save.
    QVERIFY(document.fromFile(archive, text("b"), ProjectFile::Copy, nullptr));
    QCOMPARE(stateOf(document), text("[b]|dir/a|a|UTF-8*"));
    QCOMPARE(document.root()->childCount(), 1u);
    QVERIFY(document.toFile(archive, text("c"), ProjectFile::Copy, nullptr));
    QCOMPARE(archive.content(text("c")), QByteArray("[b]"));
    QCOMPARE(stateOf(document), text("[b]|dir/a|a|UTF-8*"));

    document.setCodec("ISO-8859-1");
    typeInLine(document, 0, ";");
    for (const char *name : {"missing", "huge"}) {
        QVERIFY(!document.fromFile(archive, text(name), 0, nullptr));
        QCOMPARE(stateOf(document), text(";[b]|dir/a|a|ISO-8859-1*"));
        QVERIFY(document.isUndoAvailable());
        QCOMPARE(archive.openDevices, 0);
    }

    // The bytes of UTF-8, which detection would find.
    archive.put(text("dir/a"), "\xc3\xa9");
    document.reload();
    QCOMPARE(stateOf(document), text("Ã©|dir/a|a|ISO-8859-1"));
}

void tst_CodeDocument::textWithoutAFile()
{
    MemoryArchive archive({{text("a"), QByteArray::fromHex("fffe6100")}});
    TestDocument document;
    const std::function<void()> steps[] = {
        [&] { document.fromString(text("[a]\t;\n[b]")); },
        [&] { document.reset(); },
    };
    for (const auto &step : steps) {
        QVERIFY(document.fromFile(archive, text("a"), 0, nullptr));
        QCOMPARE(document.codecName(), QByteArray("UTF-16LE"));
        typeInLine(document, 0, "x");
        setTabOption(document, "open_tabToSpace");
        QSignalSpy modified(&document, &QTextDocument::modificationChanged);
        const bool isReset = &step == &steps[1];
        step();
        QCOMPARE(stateOf(document), text(isReset ? "|||UTF-8" : "[a] ;\n[b]|||UTF-8"));
        QCOMPARE(document.root()->childCount(), isReset ? 0u : 2u);
        QVERIFY(!document.isUndoAvailable());
        QCOMPARE(modified.last(), QVariantList{false});
        QVERIFY(!lineStates(document).contains(text("changed")));
    }
}

void tst_CodeDocument::saveBindsAndMarks()
{
    MemoryArchive archive({{text("a"), "1\n2\n3"}});
    MemoryArchive other;
    TestDocument document;
    QVERIFY(document.fromFile(archive, text("a"), 0, nullptr));
    typeInLine(document, 1, ";");
    QCOMPARE(lineStates(document), list("saved,changed,saved"));
    document.setCodec("UTF-16BE");

    RecordingProgress progress;
    const std::unique_ptr<JobStats> job(progress.createJob(QString(), 0));
    QVERIFY(document.toFile(other, text("dir/b"), 0, job.get()));
    QCOMPARE(other.content(text("dir/b")),
             QByteArray::fromHex("feff0031000d000a003b0032000d000a0033"));
    QCOMPARE(lineStates(document), list("saved,stored,saved"));
    QCOMPARE(stateOf(document), text("1\n;2\n3|dir/b|b|UTF-16BE"));
    QCOMPARE(&document.archive(), static_cast<Archive *>(&other));
    QVERIFY(!document.isSaving());
    QCOMPARE(progress.jobs.front()->maximum, 1u);
    QCOMPARE(progress.jobs.front()->value, 1u);
    QVERIFY(!progress.jobs.front()->ended);

    typeInLine(document, 0, ";");
    QVERIFY(document.toFile(other, text("dir/b"), 0, nullptr));
    QCOMPARE(lineStates(document), list("stored,stored,saved"));
    // Back to the state of before the save: the line is changed again.
    document.undo();
    QVERIFY(document.isModified());
    QCOMPARE(lineStates(document).first(), text("changed"));
}

void tst_CodeDocument::failedSaveLeavesTheDocumentAsItWas()
{
    for (const char *fault : {"read-only", "open", "write", "commit"}) {
        failedSave(text(fault), 0);
        failedSave(text(fault), ProjectFile::WithJob);
        if (QTest::currentTestFailed())
            QFAIL(fault);
    }
}

void tst_CodeDocument::failedSave(const QString &fault, unsigned int flags)
{
    HardArchive archive({{text("a"), "old"}, {text("b"), "other"}});
    TestDocument document;
    QVERIFY(document.fromFile(archive, text("a"), 0, nullptr));
    document.setTitle(text("Title"));
    typeInLine(document, 0, "newer ");
    const int savedRevision = document.savedRevision();
    if (fault == text("read-only"))
        archive.readOnlyFiles.insert(text("/b"));
    archive.failOpen = fault == text("open") ? 1 : 0;
    archive.writeLimit = fault == text("write") ? 4 : -1;
    archive.refuseCommits = fault == text("commit");

    RecordingProgress progress;
    JobStats *const job = progress.createJob(QString(), 0);
    const bool isOpened = fault == text("write") || fault == text("commit");
    QCOMPARE(document.toFile(archive, text("b"), flags, job), isOpened && flags);
    QTRY_VERIFY(!document.isSaving());
    QCOMPARE(progress.jobs.front()->ended, flags != 0);
    if (!flags)
        delete job;
    QCOMPARE(progress.jobs.front()->errors.size(), 1);
    QVERIFY(progress.jobs.front()->errors.first().contains(text("'b'")));
    QCOMPARE(archive.content(text("b")), QByteArray("other"));
    QCOMPARE(archive.openDevices, 0);
    QCOMPARE(stateOf(document), text("newer old|a|Title|UTF-8*"));
    QCOMPARE(document.savedRevision(), savedRevision);
}

void tst_CodeDocument::savesInTheBackgroundWhileEdited()
{
    const int lines = 20000;
    const QString content = text("key = int 1\n").repeated(lines);
    const QByteArray bytes = QByteArray("key = int 1\r\n").repeated(lines);
    MemoryArchive archive;
    TestDocument document(content);

    RecordingProgress progress;
    QVERIFY(document.toFile(archive, text("dir/a"), ProjectFile::WithJob,
                            progress.createJob(QString(), 0)));
    QVERIFY(document.isSaving());
    QCOMPARE(document.fileName(), QString());
    for (int line = 0; line < lines; line += 100)
        typeInLine(document, line, ";");
    QTRY_VERIFY(!document.isSaving());
    QCOMPARE(archive.content(text("dir/a")), bytes);
    QCOMPARE(document.fileName(), text("dir/a"));
    QVERIFY2(document.isModified(), "what was typed meanwhile is not on the disk");
    QCOMPARE(lineStates(document).at(100), text("changed"));
    QVERIFY(lineStates(document).at(101) != text("changed"));
    QCOMPARE(progress.jobs.front()->maximum, 1u);
    QCOMPARE(progress.jobs.front()->value, 1u);
    QVERIFY(progress.jobs.front()->ended);

    QVERIFY(document.toFile(archive, text("dir/a"), ProjectFile::WithJob, nullptr));
    document.waitForSave();
    QVERIFY(!document.isModified());
    QVERIFY(!lineStates(document).contains(text("changed")));
    QCOMPARE(archive.content(text("dir/a")).size(), bytes.size() + lines / 100);

    // Undo during a save goes back to the state of the save before, which the file has lost.
    for (const bool editsOn : {false, true}) {
        typeInLine(document, 3, "x");
        QVERIFY(document.toFile(archive, text("dir/a"), ProjectFile::WithJob, nullptr));
        if (editsOn)
            typeInLine(document, 5, "y");
        else
            document.undo();
        document.waitForSave();
        if (editsOn) {
            document.undo();
            document.undo();
        }
        QVERIFY(document.isModified());
        QVERIFY(archive.content(text("dir/a")).contains("xkey"));
        QVERIFY(!document.toString().contains(text("xkey")));
        QVERIFY(document.toFile(archive, text("dir/a"), 0, nullptr));
        QVERIFY(!document.isModified());
    }

    // Typed into a bracket that was open before, which counts as one revision with what follows.
    document.beginChange();
    document.insert(text("a"));
    QVERIFY(document.toFile(archive, text("dir/a"), ProjectFile::WithJob, nullptr));
    document.insert(text("b"));
    document.endChange();
    document.waitForSave();
    QVERIFY(archive.content(text("dir/a")).endsWith("a"));
    QVERIFY(document.isModified());
}

void tst_CodeDocument::whoeverWaitsFinishesTheSave()
{
    using Document = std::unique_ptr<TestDocument>;
    struct Case
    {
        const char *action;
        std::function<void(Document &, Archive &)> run;
        const char *state;
    };
    MemoryArchive other;
    const Case cases[] = {
        {"destroy", [](Document &d, Archive &) { d.reset(); }, ""},
        {"reset", [](Document &d, Archive &) { d->reset(); }, "|||UTF-8"},
        {"fromString", [](Document &d, Archive &) { d->fromString(text("x")); }, "x|||UTF-8"},
        {"fromFile",
         [](Document &d, Archive &a) { QVERIFY(d->fromFile(a, text("a"), 0, nullptr)); },
         "é|a|a|UTF-8"},
        {"toFile",
         [&](Document &d, Archive &) { QVERIFY(d->toFile(other, text("b"), 0, nullptr)); },
         "é|b|b|UTF-8"},
        {"setCodec", [](Document &d, Archive &) { d->setCodec("ISO-8859-1"); }, "é|a|a|ISO-8859-1"},
    };
    for (const Case &item : cases) {
        MemoryArchive target;
        auto document = std::make_unique<TestDocument>(text("é"));
        RecordingProgress progress;
        QVERIFY(document->toFile(target, text("a"), ProjectFile::WithJob,
                                 progress.createJob(QString(), 0)));
        // The save is all that holds the archive now.
        target.release();
        QCOMPARE(target.timesFreed, 0);
        item.run(document, target);
        QVERIFY2(target.content(text("a")) == "\xc3\xa9", item.action);
        QVERIFY2(target.openDevices == 0, item.action);
        QVERIFY2(progress.jobs.front()->ended, item.action);
        if (document) {
            QVERIFY2(!document->isSaving(), item.action);
            QCOMPARE(stateOf(*document), text(item.state));
        }
        document.reset();
        QVERIFY2(target.timesFreed == 1, item.action);
    }
    QCOMPARE(other.content(text("b")), QByteArray("\xc3\xa9"));
}

void tst_CodeDocument::savesToDisk()
{
    RecordingHost host;
    host.options.insert(text("enable_file_watcher"), true);
    QTemporaryDir folder;
    const QString name = folder.filePath(text("a.txt"));
    Archive &disk = FileSystemArchive::instance();
    TestDocument first(text("[a]"));
    QVERIFY(first.toFile(disk, name, ProjectFile::WithJob, nullptr));
    first.waitForSave();
    TestDocument second;
    QVERIFY(second.fromFile(disk, name, 0, nullptr));

    // The other document follows; the one that wrote keeps its undo.
    typeInLine(first, 0, ";");
    QVERIFY(first.toFile(disk, name, ProjectFile::WithJob, nullptr));
    QTRY_COMPARE(second.toString(), text(";[a]"));
    QVERIFY(first.isUndoAvailable());
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), list("a.txt"));

    // A change by another program behind one's own save is not taken for one's own.
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[b] ; by another");
    file.close();
    QTRY_COMPARE(first.toString(), text("[b] ; by another"));
}

void tst_CodeDocument::insertsLinesByNodes()
{
    const char *const groups = "[a]\nx = int 1\n[b]";
    const char *const frames = "anim 1 A\n; c\nframe f 3";
    const struct
    {
        const char *content;
        int line; // of the node, -1 for none
        bool before;
        bool single;
        const char *result;
    } cases[] = {
        {groups, 0, false, true, "[a]\nNEW\nx = int 1\n[b]"},
        {groups, 0, false, false, "[a]\nx = int 1\nNEW\n[b]"},
        // The last group covers lines up to one past the end.
        {groups, 2, false, false, "[a]\nx = int 1\n[b]\nNEW"},
        {groups, -1, false, true, "[a]\nx = int 1\n[b]NEW\n"},
        {"", -1, false, true, "NEW\n"},
        {groups, 2, true, true, "[a]\nx = int 1\nNEW\n[b]"},
        {groups, 0, true, true, "NEW\n[a]\nx = int 1\n[b]"},
        {frames, 2, true, true, "anim 1 A\n; c\nNEW\nframe f 3"},
        {frames, 2, true, false, "anim 1 A\nNEW\n; c\nframe f 3"},
        {groups, -1, true, false, "NEW\n[a]\nx = int 1\n[b]"},
    };
    for (const auto &item : cases) {
        TestDocument document(text(item.content));
        const CodeNode *const node = document.nodeInBlock(document.findBlockByNumber(item.line));
        QCOMPARE(node != nullptr, item.line >= 0);
        if (item.before)
            document.insertBefore(node, text("NEW"), item.single);
        else
            document.insertAfter(node, text("NEW"), item.single);
        QCOMPARE(document.toString(), text(item.result));
        // The document's cursor stands behind what came.
        const QString above = document.toString().left(document.cursor().position());
        QVERIFY2(above.trimmed().endsWith(text("NEW")), qPrintable(above));
    }
}

void tst_CodeDocument::bracketIsOneStep()
{
    TestDocument document(text("[a]"));
    document.setOption(text("parseCode"), true, false, false);
    document.beginChange();
    document.beginChange();
    document.insert(text("\n[b]"));
    QVERIFY(document.isCodeBeingChanged());
    QCOMPARE(document.root()->childCount(), 2u);
    document.endChange();
    document.setCursor(QTextCursor());
    document.insert(text("\nx = int 1"));
    document.endChange();
    document.endChange(); // one too many
    QVERIFY(!document.isCodeBeingChanged());
    QCOMPARE(document.root()->childAt(1)->next()->type(), CodeNode::Value);
    document.undo();
    QCOMPARE(document.toString(), text("[a]"));
    document.redo();
    QCOMPARE(document.toString(), text("[a]\n[b]\nx = int 1"));
}

void tst_CodeDocument::marks()
{
    TestDocument document(text("1\n2\n3"));
    QSignalSpy updates(document.documentLayout(), &QAbstractTextDocumentLayout::update);
    Mark mark;
    QVERIFY(!document.addMark(&mark, 0));
    QVERIFY(!document.addMark(&mark, 4));
    QVERIFY(!document.hasMark(&mark));
    QCOMPARE(updates.count(), 0);
    QVERIFY(document.addMark(&mark, 2));
    QCOMPARE(mark.line, 2);
    QCOMPARE(mark.blockText, text("2"));
    QVERIFY(document.hasMark(&mark));
    QCOMPARE(document.marksAt(2), QList<CodeMark *>{&mark});
    QVERIFY(document.marksAt(1).isEmpty());
    QCOMPARE(updates.count(), 1);
    document.removeMark(&mark);
    QVERIFY(!document.hasMark(&mark));
    QCOMPARE(updates.count(), 2);
    document.removeMark(&mark);
    QCOMPARE(updates.count(), 2);

    QVERIFY(document.addMark(&mark, 3));
    document.fromString(QString());
    QCOMPARE(mark.removals, 1);
}

void tst_CodeDocument::rowsAndLines()
{
    TestDocument document(text("; c\n[a]\nx = int 1\n; c\n[b]\n[[n]]\ny = int 2\nanim 1 A\n"
                               "frame f 3\nbox a 1 2 3 4\nframe g 4"));
    document.setOption(text("modelCode"), true, false, false);
    document.reparse();
    const auto lineOfRow = [&](unsigned int line) {
        const QModelIndex index = document.indexInLine(line);
        return index.isValid() ? document.lineNo(index) : -1;
    };
    // Line 9 has a box, and boxes are rows of nothing: the animation covers it. Line 6 is a value
    // of a group inside a group.
    const int expected[] = {-1, 1, 2, 1, 4, 5, 6, 7, 8, 7, 10};
    for (unsigned int line = 0; line < 11; ++line)
        QCOMPARE(lineOfRow(line), expected[line]);
    QCOMPARE(lineOfRow(1000), 7);
    QCOMPARE(document.lineNo(QModelIndex()), 0);
    const QModelIndex value = document.indexInLine(6);
    QCOMPARE(document.nodeFromIndex(value)->type(), CodeNode::Value);
    QCOMPARE(document.nodeFromIndex(value.parent().parent()), document.root()->childAt(1));
}

void tst_CodeDocument::icons()
{
    RecordingHost host;
    QString content = text("[a]\n");
    for (int type = 0; type < TestValue::typeNames().size(); ++type) {
        if (!TestValue::typeNames().at(type).isEmpty())
            content += TestValue::line(text("x"), ValueCode::Type(type), text("1")) + text("\n");
    }
    TestDocument document(content);
    host.iconsAsked.clear();
    for (const CodeNode *node = document.root(); node; node = node->next())
        document.nodeIcon(node);
    QCOMPARE(host.iconsAsked.join(QLatin1Char(' ')).remove(text("code_")),
             text("string bool file date keyword keyword float float float float float "
                  "int int int int int"));
}

void tst_CodeDocument::searches()
{
    const QString ones = text("one two\none two\none"); // "one" at 0, 8 and 16
    const QString half = QString(QChar(0xd800)) + QLatin1Char('a');
    constexpr unsigned int back = CodeDocument::Backward;
    constexpr unsigned int wrap = CodeDocument::WrapAround;
    constexpr unsigned int start = CodeDocument::FromStart;
    constexpr unsigned int all = CodeDocument::FindAll;
    const struct
    {
        const char *tag;
        QString content;
        const char *pattern;
        unsigned int flags;
        int anchor;
        int position;
        const char *places; ///< "line:column+length"
    } cases[] = {
        {"all", ones, "one", all, 9, 9, "0:0+3 1:0+3 2:0+3"},
        {"from the cursor", ones, "one", 0, 0, 1, "1:0+3"},
        {"at the cursor", ones, "one", 0, 3, 8, "1:0+3"},
        {"from the start", ones, "one", start, 9, 9, "0:0+3"},
        {"to the end", ones, "one", 0, 17, 17, ""},
        {"around", ones, "one", wrap, 17, 17, "0:0+3"},
        {"nothing from the start", ones, "three", start | wrap, 0, 0, ""},
        {"back", ones, "one", back, 17, 17, "2:0+3"},
        {"back from the selection", ones, "one", back, 11, 8, "0:0+3"},
        {"back to the start", ones, "one", back, 0, 0, ""},
        {"back around", ones, "one", back | wrap, 0, 0, "2:0+3"},
        {"back from the end", ones, "two", back | start, 0, 0, "1:4+3"},
        {"back, overlapping", text("aaaa"), "aa", back | start, 0, 0, "0:2+2"},
        {"back, far", text("b") + text("a\n").repeated(9000), "b", back | start, 0, 0, "0:0+1"},
        {"over lines", ones, "two\\none", all, 0, 0, "0:4+7 1:4+7"},
        {"empty matches", text("a\nb"), "(?m)^", all, 0, 0, "0:0+0 1:0+0"},
        {"empty match at the end", text("a\n"), "\\z", 0, 1, 1, "1:0+0"},
        {"back, empty match", text("ab"), "x*", back | start, 0, 0, "0:1+0"},
        {"pair at the end", text("a😀"), ".", back | start, 0, 0, "0:1+2"},
        {"half a pair", half, "a", all, 0, 0, "0:1+1"},
        {"not valid", ones, "(", all, 0, 0, ""},
    };
    for (const auto &item : cases) {
        TestDocument document(item.content, false);
        QTextCursor cursor(&document);
        cursor.setPosition(item.anchor);
        cursor.setPosition(item.position, QTextCursor::KeepAnchor);
        document.setCursor(cursor);
        const auto results = document.search(RegExp(text(item.pattern)), item.flags);
        QCOMPARE(text("%1: %2").arg(text(item.tag), placesOf(results)),
                 text("%1: %2").arg(text(item.tag), text(item.places)));
    }
}

void tst_CodeDocument::searchResults()
{
    TestDocument document(text("one two\none two\nend"), false);
    const auto results = document.search(RegExp(text("t(w)o\\n(o)|e(n)d")), CodeDocument::FindAll);
    QCOMPARE(results.size(), 2);
    QCOMPARE(results.at(0).item, -1);
    QCOMPARE(results.at(0).text, text("one two\none two"));
    QCOMPARE(results.at(0).captures, QStringList({text("w"), text("o"), QString()}));
    QCOMPARE(results.at(1).line, 2);
    QCOMPARE(results.at(1).text, text("end"));
    QCOMPARE(results.at(1).captures, QStringList({QString(), QString(), text("n")}));
}

void tst_CodeDocument::replaces()
{
    TestDocument document(text("a1 b2\nc3"), false);
    const auto results = document.search(RegExp(text("([a-c])(\\d)")), CodeDocument::FindAll);
    document.replace(results, text("%2--%1"));
    QCOMPARE(document.toString(), text("1--a 2--b\n3--c"));
    document.undo();
    QCOMPARE(document.toString(), text("a1 b2\nc3"));
    document.replace({}, text("x"));
    document.replace({results.at(1)}, text("%2%1"));
    QCOMPARE(document.toString(), text("a1 2b\nc3"));

    // A group that took no part leaves nothing.
    document.fromString(text("ab"));
    document.replace(document.search(RegExp(text("(a)|(b)")), CodeDocument::FindAll),
                     text("<%1%2>"));
    QCOMPARE(document.toString(), text("<a><b>"));

    // Results of a text that is no longer there.
    document.fromString(text("a1 b"));
    document.replace(results, text("%2x%1"));
    QCOMPARE(document.toString(), text("1xa b"));
}

QTEST_MAIN(tst_CodeDocument)
#include "tst_codedocument.moc"

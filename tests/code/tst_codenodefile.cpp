// SPDX-License-Identifier: MIT
#include "code/codenodefile.h"

#include "frame/regexp.h"
#include "support/memoryarchive.h"
#include "support/testgrammar.h"

#include <QtTest>

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

/// Writes down what it is told of its nodes, by their names.
class RecordingNodeFile : public CodeNodeFile
{
public:
    explicit RecordingNodeFile(CodeDocument *document)
        : CodeNodeFile(document)
    {
        ++alive;
    }
    ~RecordingNodeFile() override
    {
        --alive;
    }

    void insertChild(CodeNode *node, unsigned int index) override
    {
        names.insert(node, static_cast<TestGroup *>(node)->name());
        calls.append(text("+%1 %2").arg(names.value(node)).arg(index));
    }
    void removeChild(CodeNode *node) override
    {
        calls.append(text("-%1").arg(names.take(node)));
    }
    void childChanged(CodeNode *node) override
    {
        calls.append(text("*%1").arg(names.value(node)));
    }

    QStringList takeCalls()
    {
        return std::exchange(calls, {});
    }

    static int alive;
    QHash<CodeNode *, QString> names;
    QStringList calls;

protected:
    void free() override
    {
        delete this;
    }
};

int RecordingNodeFile::alive = 0;

/// A document as a project holds it, that says when it is gone.
class CountedDocument : public TestDocument
{
public:
    using TestDocument::TestDocument;
    ~CountedDocument() override
    {
        ++freed;
    }

    static int freed;
};

int CountedDocument::freed = 0;

} // namespace

class tst_CodeNodeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followTheText();
    void groupsChangeTheirKind();
    void shareTheDocument();
    void lifetime();
};

void tst_CodeNodeFile::followTheText()
{
    TestDocument document(text("; c\n[a]\n[x 3]\n[b]\nanim 1 A\n[c]"));
    document.registerNodeFile(nullptr, CodeNode::Group, 1);
    auto *const ones = new RecordingNodeFile(&document);
    document.registerNodeFile(ones, CodeNode::Group, 1);
    QCOMPARE(ones->takeCalls(), list("+a 0,+b 1,+c 2"));
    QCOMPARE(document.nodeFile(CodeNode::Group, 1), ones);
    QCOMPARE(document.nodeFile(CodeNode::Group, 2), nullptr);

    // Indexes from the middle, the end and the start, whatever was asked for before.
    QTextCursor cursor(&document);
    const auto insertBehind = [&](int line, const char *code) {
        cursor.setPosition(document.findBlockByNumber(line).position());
        cursor.movePosition(QTextCursor::EndOfBlock);
        cursor.insertText(QLatin1Char('\n') + text(code));
    };
    insertBehind(3, "[d]");
    insertBehind(5, "[e]");
    insertBehind(0, "[f]");
    insertBehind(1, "[y 3]");
    insertBehind(2, "[g]\n[h]");
    QCOMPARE(ones->takeCalls(), list("+d 2,+e 3,+f 0,+g 1,+h 2"));
    QCOMPARE(document.toString(),
             text("; c\n[f]\n[y 3]\n[g]\n[h]\n[a]\n[x 3]\n[b]\n[d]\n"
                  "anim 1 A\n[e]\n[c]"));
    cursor.setPosition(document.begin().length() - 1);
    cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor, 3);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    insertBehind(4, "[i]");
    insertBehind(9, "[j]");
    QCOMPARE(ones->takeCalls(), list("-f,-g,+i 3,+j 7"));
    QCOMPARE(document.toString(),
             text("; c\n[h]\n[a]\n[x 3]\n[b]\n[i]\n[d]\nanim 1 A\n[e]\n[c]\n[j]"));
}

void tst_CodeNodeFile::groupsChangeTheirKind()
{
    TestDocument document(text("[a]\n[b 3]\n[c]\n[d 3]"));
    auto *const ones = new RecordingNodeFile(&document);
    auto *const threes = new RecordingNodeFile(&document);
    document.registerNodeFile(ones, CodeNode::Group, 1);
    document.registerNodeFile(threes, CodeNode::Group, 3);
    ones->calls.clear();
    QCOMPARE(threes->takeCalls(), list("+b 0,+d 1"));

    // A group that stays and becomes one of the other kind moves over.
    QTextCursor cursor(document.findBlockByNumber(2));
    cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::MoveAnchor, 2);
    cursor.insertText(text(" 3"));
    QCOMPARE(ones->takeCalls(), list("-c"));
    QCOMPARE(threes->takeCalls(), list("+c 1"));
    // One that changes its name is changed.
    QTextCursor(document.findBlockByNumber(3)).insertText(text(" "));
    QVERIFY(threes->takeCalls().isEmpty());
    cursor = QTextCursor(document.findBlockByNumber(0));
    cursor.movePosition(QTextCursor::NextCharacter);
    cursor.insertText(text("a"));
    QCOMPARE(ones->takeCalls(), list("*a"));
    cursor = QTextCursor(document.findBlockByNumber(2));
    cursor.select(QTextCursor::LineUnderCursor);
    cursor.removeSelectedText();
    QCOMPARE(threes->takeCalls(), list("-c"));
    document.insert(text("\n[e 3]"));
    QCOMPARE(threes->takeCalls(), list("+e 2"));
    // The document gives its files up with its end.
}

void tst_CodeNodeFile::shareTheDocument()
{
    QCOMPARE(RecordingNodeFile::alive, 0);
    CountedDocument::freed = 0;
    MemoryArchive archive({{text("a"), "[a]"}});
    auto *const document = new CountedDocument;
    auto *const file = new RecordingNodeFile(document);
    document->registerNodeFile(file, CodeNode::Group, 1);
    QVERIFY(file->fromFile(archive, text("a"), 0, nullptr));
    QCOMPARE(file->takeCalls(), list("+a 0"));
    QCOMPARE(file->fileName(), text("a"));
    QCOMPARE(file->model(), document->model());
    QCOMPARE(file->displayName(), text("a"));
    QCOMPARE(&file->archive(), static_cast<Archive *>(&archive));
    file->setOption(text("key"), 1, false, false);
    QCOMPARE(document->option(text("key")), QVariant(1));
    file->replace(file->search(RegExp(text("a")), CodeDocument::FindAll), text("b"));
    QVERIFY(file->isModified());
    QCOMPARE(file->capabilities(), ProjectFile::SavesSlowly | ProjectFile::SharesContent);
    QVERIFY(!file->canSave());
    document->release(); // the file is the last to hold it
    QCOMPARE(file->capabilities(), ProjectFile::Capabilities(ProjectFile::SavesSlowly));
    QVERIFY(file->canSave());
    QVERIFY(file->toFile(archive, text("b"), 0, nullptr));
    QCOMPARE(archive.content(text("b")), QByteArray("[b]"));
    file->reset();
    QVERIFY(file->isEmpty());
    QCOMPARE(CountedDocument::freed, 0);
    file->release();
    QCOMPARE(CountedDocument::freed, 1);
}

void tst_CodeNodeFile::lifetime()
{
    // A file in two places holds two references; one that is replaced hands its own on.
    CountedDocument::freed = 0;
    auto *document = new CountedDocument;
    auto *const twice = new RecordingNodeFile(document);
    document->registerNodeFile(twice, CodeNode::Group, 1);
    document->registerNodeFile(twice, CodeNode::Group, 2);
    document->registerNodeFile(twice, CodeNode::Group, 2);
    QCOMPARE(document->refCount(), 3);
    auto *const heir = new RecordingNodeFile(document);
    document->registerNodeFile(heir, CodeNode::Group, 2);
    QCOMPARE(document->refCount(), 3);
    twice->release();
    QCOMPARE(document->nodeFile(CodeNode::Group, 1), nullptr);
    QCOMPARE(document->nodeFile(CodeNode::Group, 2), heir);
    QCOMPARE(document->refCount(), 2);

    // Once only its files hold it, the release of the document takes them along.
    document->release();
    QCOMPARE(CountedDocument::freed, 0);
    document->release();
    QCOMPARE(CountedDocument::freed, 1);
    QCOMPARE(RecordingNodeFile::alive, 0);

    // A file that has lost its only place lets its nodes go, and may outlive the document.
    document = new CountedDocument(text("[a]\n[b 3]\n[c]"));
    auto *const lost = new RecordingNodeFile(document);
    document->registerNodeFile(lost, CodeNode::Group, 1);
    document->registerNodeFile(new RecordingNodeFile(document), CodeNode::Group, 1);
    QCOMPARE(lost->takeCalls(), list("+a 0,+c 1,-c,-a"));
    document->release();
    document->release();
    QCOMPARE(CountedDocument::freed, 2);
    lost->release();
    QCOMPARE(RecordingNodeFile::alive, 0);
}

QTEST_MAIN(tst_CodeNodeFile)
#include "tst_codenodefile.moc"

// SPDX-License-Identifier: MIT
#include "code/childlist.h"
#include "support/memoryarchive.h"
#include "support/testfile.h"
#include "support/testgrammar.h"
#include "support/testproject.h"

#include <QAbstractItemModelTester>
#include <QtTest>
#include <array>
#include <memory>

using namespace Vela;

using Ints = QVector<int>;

namespace {

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

/// A tree without a document. Its nodes are made from words: "A" is a group, "a" a value, "@a" an
/// animation and "#a" a frame, in each case of the name "A" or "a".
class Tree : public RootCode
{
public:
    explicit Tree(const QString &words = QString())
        : RootCode(0)
    {
        CodeNode *last = this;
        for (const QString &word : words.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            last = make(word, last);
    }
    ~Tree() override
    {
        destroy();
    }
    using RootCode::destroy;

    static CodeNode *make(const QString &word, CodeNode *previous)
    {
        const QString name = word.mid(1);
        if (word.startsWith(QLatin1Char('@')))
            return new TestAnimation(QTextBlock(), previous, name, name);
        if (word.startsWith(QLatin1Char('#')))
            return new TestFrame(QTextBlock(), previous, name, 1, false);
        if (word.at(0).isUpper())
            return new TestGroup(QTextBlock(), previous, word, 1, false);
        return new TestValue(ValueCode::Int, QTextBlock(), previous, word, 0);
    }

    static QString nameOf(CodeNode *node)
    {
        if (auto *const named = dynamic_cast<NamedCode *>(node))
            return named->name();
        return dynamic_cast<PropertyItem *>(node)->property(text("Identifier")).toString();
    }

    /// Returns the node of a name; the root for an empty one.
    CodeNode *node(const QString &name)
    {
        if (name.isEmpty())
            return this;
        CodeNode *found = next();
        while (found && nameOf(found) != name)
            found = found->next();
        return found;
    }

    ParentCode *header(const char *name)
    {
        return dynamic_cast<ParentCode *>(node(text(name)));
    }

    QModelIndex indexOf(const char *name)
    {
        CodeNode *const child = node(text(name));
        const ParentCode *const above = child->parent();
        return index(above->childIndex(child), 0, parentIndex(above));
    }

    /// Returns the names of the children of \a above, with theirs in parentheses.
    static QString outline(const ParentCode *above)
    {
        QStringList names;
        for (unsigned int row = 0; row < above->childCount(); ++row) {
            CodeNode *const child = above->childAt(row);
            const auto *const parent = dynamic_cast<ParentCode *>(child);
            names.append(nameOf(child)
                         + (parent && parent->childCount() > 0
                                ? QLatin1Char('(') + outline(parent) + QLatin1Char(')')
                                : QString()));
            if (child->parent() != above || above->childIndex(child) != int(row))
                names.append(text("broken"));
        }
        return names.join(QLatin1Char(' '));
    }

    /// Returns the names of the chain, and checks that it is linked both ways.
    QString chain() const
    {
        QStringList names;
        for (const CodeNode *node = this; node->next(); node = node->next()) {
            names.append(nameOf(node->next()));
            if (node->next()->previous() != node)
                names.append(text("broken"));
        }
        return names.join(QLatin1Char(' '));
    }
};

/// A value whose protected parts are open, of a size that no other node has.
class Probe : public TestValue
{
public:
    Probe(const QTextBlock &block, CodeNode *previous)
        : TestValue(String, block, previous, QString(), QVariant())
    {
    }
    using CodeNode::change;
    using CodeNode::heapBytes;

    char room[4096] = {};
};

/// A node that does not know where it begins.
class LostProbe : public Probe
{
public:
    using Probe::Probe;
    int firstLine() const override
    {
        return 99;
    }
};

/// A group that lets go of a value that changes.
class DroppingGroup : public TestGroup
{
public:
    using TestGroup::TestGroup;
    void childChanged(CodeNode *child) override
    {
        removeChild(child);
    }
};

/// An engine whose comments begin with a text.
class CommentEngine : public TestEngine
{
public:
    QString queryString(StringType what, unsigned int argument) const override
    {
        return what == CommentString ? comment : TestEngine::queryString(what, argument);
    }
    QString comment;
};

/// A document without a parser in a project of an engine.
class ProjectDocument : public TestDocument
{
public:
    explicit ProjectDocument(const QString &content)
        : TestDocument(content, false)
        , m_parent(text("/game"), m_store)
        , m_project(&m_parent, 0, new TestFile)
    {
        m_parent.activeEngine = &engine;
    }
    Project *project() const override
    {
        return inProject ? const_cast<TestProject *>(&m_project) : nullptr;
    }

    CommentEngine engine;
    bool inProject = true;

private:
    MemoryArchive m_store;
    TestParentProject m_parent;
    TestProject m_project;
};

} // namespace

class tst_CodeNode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void memoryIsReusedAndTested();
    void searchesTestTheTypeBeforeTheStopMask();
    void joining_data();
    void joining();
    void leaving_data();
    void leaving();
    void headersLeaveOneAfterTheOther_data();
    void headersLeaveOneAfterTheOther();
    void removesWithoutADocument();
    void groupFindsItsValues();
    void childListKeepsItsOrder();
    void modelShowsTheTree();
    void modelReportsMoves();
    void linksWithoutARowAreNotShown_data();
    void linksWithoutARowAreNotShown();
    void changesMayTakeTheParentAway();
    void staleIndexesAnswerEmpty();
    void rootKeepsItsNumbers();
    void linesOfADocument();
    void selectsLines();
    void removesLines();
    void appendsLines();
    void changesItsLine_data();
    void changesItsLine();
    void changesFewCharacters();
};

void tst_CodeNode::memoryIsReusedAndTested()
{
    QVERIFY(!CodeNode::isValid(nullptr));
    Tree tree;
    QVERIFY(CodeNode::isValid(&tree));

    const size_t before = Probe::heapBytes();
    auto *const first = new Probe(QTextBlock(), &tree);
    auto *const second = new Probe(QTextBlock(), first);
    QCOMPARE(Probe::heapBytes(), before + 2 * (sizeof(Probe) + 8));
    first->release();
    QVERIFY(!CodeNode::isValid(first));
    QVERIFY(CodeNode::isValid(second));
    second->release();
    QVERIFY(!CodeNode::isValid(second));
    QCOMPARE(tree.chain(), QString());

    // The block that was freed last comes first, and only for a node of its size.
    CodeNode *const other = Tree::make(text("a"), &tree);
    QVERIFY(!CodeNode::isValid(first) && !CodeNode::isValid(second));
    const size_t warm = Probe::heapBytes();
    auto *const third = new Probe(QTextBlock(), other);
    QCOMPARE(third, second);
    QVERIFY(CodeNode::isValid(second));
    QVERIFY(!CodeNode::isValid(first));
    QCOMPARE(Probe::heapBytes(), warm);
}

void tst_CodeNode::searchesTestTheTypeBeforeTheStopMask()
{
    Tree tree(text("A a B b @m #f"));
    CodeNode *const root = &tree;
    const auto node = [&tree](const char *name) { return tree.node(text(name)); };
    QCOMPARE(node("a")->next(CodeNode::Value, 0), node("b"));
    QVERIFY(!node("a")->next(CodeNode::Value, CodeNode::Group));
    QCOMPARE(node("B")->next(CodeNode::Value, CodeNode::Value), node("b"));
    QVERIFY(!node("b")->next(CodeNode::Group, 0));
    QCOMPARE(node("f")->previous(CodeNode::Group, 0), node("B"));
    QVERIFY(!node("f")->previous(CodeNode::Group, CodeNode::Animation));
    QCOMPARE(node("f")->previous(CodeNode::Root, CodeNode::HitBox), root);
    QCOMPARE(node("f")->parent(CodeNode::Root, 0), root);
    QCOMPARE(node("f")->parent(CodeNode::Animation, ~0), node("m"));
    QVERIFY(!node("f")->parent(CodeNode::Root, CodeNode::Animation));
    QVERIFY(!root->parent(CodeNode::Root, 0));
}

void tst_CodeNode::joining_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("behind");
    QTest::addColumn<QString>("added");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char *name, const char *words, const char *behind, const char *added,
                        const char *expected) {
        QTest::newRow(name) << text(words) << text(behind) << text(added) << text(expected);
    };
    row("value behind a value", "A a b", "a", "x", "A(a x b)");
    row("value behind a header", "A a", "A", "x", "A(x a)");
    row("value behind one without a parent", "A @m a", "a", "x", "A m");
    row("value behind an animation", "A a @m", "m", "x", "A(a) m");
    row("value behind a frame", "A a #f", "f", "x", "A(a x)");
    row("value at the top", "A a", "", "x", "A(a)");
    row("header between values", "A a b c", "a", "X", "A(a) X(b c)");
    row("header above values without a parent", "a b A c", "", "X", "X(a b) A(c)");
    row("header above a header", "A a B b", "", "X", "X A(a) B(b)");
    row("header above an animation", "A a @m b", "a", "X", "A(a) X m");
    row("header between frames", "@m #f #g a", "f", "X", "m(f) X(a)");
    row("animation between frames", "@m #f #g A", "f", "@x", "m(f) x(g) A");
    row("animation behind a group's value", "A a b B", "a", "@x", "A(a b) x B");
    row("frame behind a frame", "@m #f #g", "f", "#x", "m(f x g)");
    row("frame behind a group", "@m #f A", "A", "#x", "m(f) A");
}

void tst_CodeNode::joining()
{
    QFETCH(QString, words);
    QFETCH(QString, behind);
    QFETCH(QString, added);
    Tree tree(words);
    const QAbstractItemModelTester tester(&tree,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    CodeNode *const node = Tree::make(added, tree.node(behind));
    QTEST(Tree::outline(&tree), "expected");
    QCOMPARE(node->previous(), tree.node(behind));
    QVERIFY(!tree.chain().contains(text("broken")));
    if (added == text("X") && behind == text("f")) {
        const auto *const out = static_cast<FrameCode *>(tree.node(text("g")));
        QVERIFY(!out->parent());
        QCOMPARE(out->index(), -1);
    }
}

void tst_CodeNode::leaving_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("gone");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("chain");

    const auto row = [](const char *name, const char *words, const char *gone, const char *expected,
                        const char *chain) {
        QTest::newRow(name) << text(words) << text(gone) << text(expected) << text(chain);
    };
    row("value", "A a b c", "b", "A(a c)", "A a c");
    row("second header", "A a b B c d", "B", "A(a b c d)", "A a b c d");
    row("first header", "A a b B c", "A", "B(c)", "a b B c");
    row("header below an animation", "A a @m B b c", "B", "A(a) m", "A a m b c");
    row("header below a frame", "A a #f B b", "B", "A(a)", "A a f b");
    row("second animation", "@m #f A @n #g #h", "n", "m(f) A", "m f A g h");
    row("next animation", "@m #f @n #g #h", "n", "m(f g h)", "m f g h");
    row("first animation", "@m #f @n #g", "m", "n(g)", "f n g");
}

void tst_CodeNode::leaving()
{
    QFETCH(QString, words);
    QFETCH(QString, gone);
    Tree tree(words);
    const QAbstractItemModelTester tester(&tree,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    tree.node(gone)->release();
    QTEST(Tree::outline(&tree), "expected");
    QTEST(tree.chain(), "chain");
    tree.destroy();
    QCOMPARE(tree.rowCount(), 0);
}

void tst_CodeNode::headersLeaveOneAfterTheOther_data()
{
    // A step releases a node, or makes one behind another: "-B", "X>a".
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("outline");
    QTest::newRow("downwards") << text("-B -C -D") << text("A(a b c d)");
    QTest::newRow("upwards") << text("-D -C -B") << text("A(a b c d)");
    QTest::newRow("an animation comes between") << text("-B @m>A -C") << text("A(a b) m D(d)");
    QTest::newRow("a frame comes between") << text("-B #f>A -C") << text("A(a b) D(d)");
    QTest::newRow("a group comes between") << text("-B X>A -C") << text("A X(a b c) D(d)");
    QTest::newRow("the line above goes") << text("-B -a -C") << text("A(b c) D(d)");
    QTest::newRow("the line above is made anew") << text("-B -a a>A -C") << text("A(a b c) D(d)");
    QTest::newRow("the heir goes") << text("-B -A -C") << text("D(d)");
    QTest::newRow("the heir is made anew") << text("-B -A X> -C") << text("X(a b c) D(d)");
}

void tst_CodeNode::headersLeaveOneAfterTheOther()
{
    QFETCH(QString, steps);
    Tree tree(text("A a B b C c D d"));
    for (const QString &step : steps.split(QLatin1Char(' '))) {
        const QStringList parts = step.split(QLatin1Char('>'));
        if (parts.size() > 1)
            Tree::make(parts.at(0), tree.node(parts.at(1)));
        else
            tree.node(step.mid(1))->release();
    }
    QTEST(Tree::outline(&tree), "outline");
}

void tst_CodeNode::removesWithoutADocument()
{
    Tree tree(text("A a b B c @m #f"));
    tree.header("A")->remove(true);
    QCOMPARE(tree.chain(), text("B c m f"));
    tree.header("m")->remove(false);
    QCOMPARE(tree.chain(), text("B c f"));
    static_cast<GroupCode *>(tree.header("B"))->removeValue(1);
    static_cast<GroupCode *>(tree.header("B"))->removeValue(0);
    QCOMPARE(tree.chain(), text("B f"));
    tree.remove(true);
    QCOMPARE(tree.chain(), text("f"));
}

void tst_CodeNode::groupFindsItsValues()
{
    Tree tree(text("A a b a"));
    const auto &group = *static_cast<GroupCode *>(tree.node(text("A")));
    QVERIFY(group.valueByName(text("a")) == tree.node(text("a")));
    QCOMPARE(group.value(text("a")), QVariant(0));
    QVERIFY(!group.valueByName(text("c")));
    QVERIFY(!group.value(text("c")).isValid());
}

// Runs the gap and the outward search against a plain list.
void tst_CodeNode::childListKeepsItsOrder()
{
    ChildList<int> list;
    QList<int *> expected;
    std::array<int, 300> values;
    QRandomGenerator random(4711);
    for (int &value : values) {
        const int row = random.bounded(expected.size() + 1);
        list.insert(row, &value);
        expected.insert(row, &value);
        if (expected.size() > 3 && random.bounded(3) == 0) {
            const int out = random.bounded(expected.size());
            list.removeAt(out);
            expected.removeAt(out);
        }
        int *const wanted = expected.at(random.bounded(expected.size()));
        QCOMPARE(list.indexOf(wanted), expected.indexOf(wanted));
        QCOMPARE(list.toList(), expected);
    }
    QCOMPARE(list.indexOf(nullptr), -1);
    QVERIFY(!list.value(unsigned(list.size())));
}

void tst_CodeNode::modelShowsTheTree()
{
    Tree tree(text("A a b @m #f #"));
    const QAbstractItemModelTester tester(&tree,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(tree.rowCount(), 2);
    QCOMPARE(tree.columnCount(), 1);
    const QModelIndex animation = tree.index(1, 0);
    QCOMPARE(animation.internalPointer(), static_cast<void *>(tree.node(text("m"))));
    QCOMPARE(animation.data(), QVariant(text("m")));
    QCOMPARE(tree.index(0, 0).data(Qt::ToolTipRole), QVariant(text("A")));
    const QModelIndex second = tree.index(1, 0, animation);
    QCOMPARE(tree.index(0, 0, animation).data(), QVariant(text("Frame - f")));
    QCOMPARE(second.data(), QVariant(text("Frame 2")));
    QCOMPARE(second.parent(), animation);
    QVERIFY(!second.data(Qt::DecorationRole).isValid() && !second.data(Qt::EditRole).isValid());
    QVERIFY(!tree.hasChildren(second));
    QVERIFY(!tree.index(2, 0, animation).isValid());
    QCOMPARE(tree.flags(second), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    QCOMPARE(tree.flags(QModelIndex()), Qt::NoItemFlags);
    QVERIFY(!tree.data(QModelIndex()).isValid());

    QSignalSpy changes(&tree, &QAbstractItemModel::dataChanged);
    static_cast<TestValue *>(tree.node(text("b")))->update(text("c"), text("5"));
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.at(0).at(0).toModelIndex(), tree.indexOf("c"));
    QCOMPARE(changes.at(0).at(2).value<Ints>(), Ints{Qt::DisplayRole});
    QCOMPARE(static_cast<TestValue *>(tree.node(text("c")))->rawValue(), QVariant(5));
}

void tst_CodeNode::modelReportsMoves()
{
    Tree tree(text("A a b B c d"));
    const QAbstractItemModelTester tester(&tree,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QPersistentModelIndex b = tree.indexOf("b");
    const QPersistentModelIndex d = tree.indexOf("d");
    tree.header("A")->insertChild(tree.node(text("c")), 1);
    QCOMPARE(Tree::outline(&tree), text("A(a c b) B(d)"));
    QCOMPARE(QModelIndex(b), tree.indexOf("b"));
    QCOMPARE(QModelIndex(d), tree.indexOf("d"));
    tree.header("A")->insertChild(tree.node(text("a")), 99);
    QCOMPARE(Tree::outline(&tree), text("A(c b a) B(d)"));
    QCOMPARE(QModelIndex(b), tree.indexOf("b"));
    tree.insertChild(tree.node(text("B")), 0);
    QCOMPARE(Tree::outline(&tree), text("B(d) A(c b a)"));
    QCOMPARE(QModelIndex(b), tree.indexOf("b"));
    QVERIFY(!d.isValid());

    // From a group into one inside it, which then stands a row higher.
    CodeNode *const nested = new TestGroup(QTextBlock(), tree.node(text("b")), text("N"), 2, true);
    const QSignalSpy inserts(&tree, &QAbstractItemModel::rowsInserted);
    static_cast<ParentCode *>(nested)->insertChild(tree.node(text("c")), 0);
    QCOMPARE(Tree::outline(&tree), text("B(d) A(b a N(c))"));
    QCOMPARE(inserts.at(0).at(0).toModelIndex(), tree.indexOf("N"));
}

void tst_CodeNode::linksWithoutARowAreNotShown_data()
{
    QTest::addColumn<QString>("outer");
    QTest::addColumn<QString>("inner");
    QTest::newRow("child below") << text("A") << text("B");
    QTest::newRow("child above") << text("B") << text("A");
}

// A class that lists values only still is the parent of another node. Views see nothing of that
// one, and it outlives its parent.
void tst_CodeNode::linksWithoutARowAreNotShown()
{
    QFETCH(QString, outer);
    QFETCH(QString, inner);
    Tree tree(text("A a B b"));
    const QAbstractItemModelTester tester(&tree,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    auto *const group = static_cast<TestGroup *>(tree.node(outer));
    auto *const linked = static_cast<TestGroup *>(tree.node(inner));
    tree.removeChild(tree.node(outer.toLower()));
    group->removeChild(tree.node(inner.toLower()));
    QCOMPARE(Tree::outline(&tree), text("A(a) B(b)"));

    group->GroupCode::insertChild(linked, 0);
    QVERIFY(linked->parent() == group);
    const QSignalSpy inserts(&tree, &QAbstractItemModel::rowsInserted);
    const QSignalSpy removals(&tree, &QAbstractItemModel::rowsRemoved);
    const QSignalSpy changes(&tree, &QAbstractItemModel::dataChanged);
    linked->insertChild(tree.node(outer.toLower()), 0);
    static_cast<TestValue *>(tree.node(inner.toLower()))->update(text("x"), 5);
    QCOMPARE(Tree::outline(&tree), outer);
    QCOMPARE(Tree::outline(linked), outer.toLower() + text(" x"));
    QCOMPARE(removals.size(), 1);
    QCOMPARE(inserts.size() + changes.size(), 0);

    group->release();
    QVERIFY(!linked->parent());
    QCOMPARE(tree.rowCount(), 0);
}

void tst_CodeNode::changesMayTakeTheParentAway()
{
    Tree tree;
    CodeNode *const group = new DroppingGroup(QTextBlock(), &tree, text("D"), 1, false);
    auto *const value = static_cast<TestValue *>(Tree::make(text("a"), group));
    QVERIFY(value->parent() == group);
    value->update(text("b"), 5);
    QCOMPARE(value->rawValue(), QVariant(5));
    QVERIFY(!value->parent());
}

void tst_CodeNode::staleIndexesAnswerEmpty()
{
    Tree tree(text("A a B b c"));
    const QModelIndex group = tree.indexOf("B");
    const QModelIndex value = tree.indexOf("c");
    tree.node(text("c"))->release();
    QCOMPARE(tree.rowCount(value), 0);
    QVERIFY(!tree.hasChildren(value));
    QVERIFY(!tree.index(0, 0, value).isValid());
    QVERIFY(!tree.data(value).isValid());
    QCOMPARE(tree.parent(value), group);

    // The last parent has gone with the group, and another tree's is none of this one's.
    tree.node(text("B"))->release();
    QVERIFY(!tree.parent(value).isValid());
    QCOMPARE(tree.rowCount(group), 0);
    Tree other(text("A a"));
    other.node(text("a"))->release();
    QVERIFY(!tree.parent(value).isValid());

    // A node that has left the tree but lives has nothing to show.
    Tree orphans(text("A a"));
    const QModelIndex orphan = orphans.indexOf("a");
    orphans.node(text("A"))->release();
    QVERIFY(!orphans.data(orphan).isValid());
    QVERIFY(!orphans.parent(orphan).isValid());
}

void tst_CodeNode::rootKeepsItsNumbers()
{
    Tree root;
    QSignalSpy versions(&root, &RootCode::versionChanged);
    QSignalSpy types(&root, &RootCode::typeChanged);
    QCOMPARE(root.version(), 0u);
    root.setVersion(3, true);
    root.setVersion(3, true);
    root.setVersion(4, false);
    QCOMPARE(root.version(), 4u);
    root.setFileType(2, false);
    root.setFileType(2, true);
    root.setFileType(5, true);
    QCOMPARE(root.fileType(), 5);
    QCOMPARE(versions.size(), 1);
    QCOMPARE(types.size(), 1);
    QVERIFY(root.canParseCode());

    TestDocument document;
    document.setOption(text("parseCode"), false, false, false);
    QVERIFY(!document.root()->canParseCode());
    document.setOption(text("parseCode"), true, false, false);
    QVERIFY(document.root()->canParseCode());
}

void tst_CodeNode::linesOfADocument()
{
    TestDocument document(text("[A]\na = int 1\n; note\n[[N]]\nn = int 3\n[[M]]\n[B]\nb = int 4\n"
                               "anim m\n; shown\nframe f 5\nbox a 1 2 3 4\nframe g 5\n"));
    const auto node = [&document](int line) {
        return document.nodeInBlock(document.findBlockByNumber(line));
    };
    const auto range = [&node](int line) {
        return qMakePair(node(line)->firstLine(), node(line)->lastLine());
    };
    QCOMPARE(node(1)->document(), static_cast<CodeDocument *>(&document));
    QVERIFY(!node(2));
    QCOMPARE(range(0), qMakePair(0, 5));
    QCOMPARE(range(1), qMakePair(1, 1));
    QCOMPARE(range(3), qMakePair(3, 4));
    QCOMPARE(range(5), qMakePair(5, 5));
    QCOMPARE(range(6), qMakePair(6, 7));
    QCOMPARE(range(8), qMakePair(8, 14));
    QCOMPARE(range(10), qMakePair(9, 10));
    QCOMPARE(range(12), qMakePair(11, 12));

    // A node without a line has that of the next one; in the end it has none.
    CodeNode *const bare = Tree::make(text("a"), node(0));
    QCOMPARE(bare->lineNo(), 1);
    QVERIFY(!bare->document() && bare->selectAll().isNull() && bare->select().isNull());
    bare->release();
    Tree tree(text("A a"));
    QCOMPARE(tree.node(text("a"))->lineNo(), -1);
    QCOMPARE(tree.node(text("A"))->lastLine(), -1);
    const QTextDocument plain;
    CodeNode *const foreign = new Probe(plain.firstBlock(), tree.node(text("a")));
    QVERIFY(!foreign->document() && foreign->select().isNull() && foreign->code().isEmpty());
}

void tst_CodeNode::selectsLines()
{
    TestDocument document(text("[A]\na = int 1\nb = int 2"));
    const auto selected = [&document](int line, bool all) {
        const CodeNode *const node = document.nodeInBlock(document.findBlockByNumber(line));
        const QTextCursor cursor = all ? node->selectAll() : node->select();
        return qMakePair(cursor.anchor(), cursor.position());
    };
    QCOMPARE(selected(0, false), qMakePair(0, 4));
    QCOMPARE(selected(1, false), qMakePair(4, 14));
    QCOMPARE(selected(2, false), qMakePair(14, 23));
    QCOMPARE(selected(0, true), qMakePair(0, 23));
    QCOMPARE(selected(1, true), qMakePair(4, 14));
    QCOMPARE(document.nodeInBlock(document.firstBlock())->code(),
             text("[A]\na = int 1\nb = int 2").replace(QLatin1Char('\n'), QChar(0x2029)));
}

void tst_CodeNode::removesLines()
{
    TestDocument document(text("[A]\na = int 1\nb = int 2\n[B]\nc = int 3"));
    const auto group = [&document](unsigned int row) {
        return static_cast<GroupCode *>(document.root()->childAt(row));
    };
    CodeNode *const value = group(0)->valueAt(0);
    value->remove(false);
    QVERIFY(!CodeNode::isValid(value));
    QCOMPARE(document.toString(), text("[A]\nb = int 2\n[B]\nc = int 3"));
    group(0)->removeValue(0);
    QCOMPARE(document.toString(), text("[A]\n[B]\nc = int 3"));
    group(0)->removeValue(0);
    group(1)->remove(true);
    QCOMPARE(document.toString(), text("[A]\n"));
    QCOMPARE(document.root()->childCount(), 1u);
    document.undo();
    QCOMPARE(Tree::outline(document.root()), text("A B(c)"));

    // The node of a line is never released behind the back of that line.
    TestDocument plain(text("a\nb"), false);
    CodeNode *const lost = new LostProbe(plain.lastBlock(), plain.root());
    lost->remove(true);
    QCOMPARE(plain.toString(), text("a\n"));
    QVERIFY(CodeNode::isValid(lost));
    lost->release();
}

void tst_CodeNode::appendsLines()
{
    TestDocument document(text("[A]\n\n[B]\nb = int 1\n; note"));
    const auto group = [&document](unsigned int row) {
        return static_cast<GroupCode *>(document.root()->childAt(row));
    };
    group(0)->appendValue(text("a = int 1"));
    group(1)->appendValue(text("c = int 2"));
    QCOMPARE(document.toString(), text("[A]\na = int 1\n\n[B]\nb = int 1\nc = int 2\n; note"));
    QCOMPARE(Tree::outline(document.root()), text("A(a) B(b c)"));
    Tree tree(text("A"));
    tree.header("A")->appendValue(text("a = int 1"));
    QCOMPARE(tree.chain(), text("A"));
}

void tst_CodeNode::changesItsLine_data()
{
    QTest::addColumn<QString>("comment");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("preserved");

    const auto row = [](const char *name, const char *comment, const char *line, const char *code,
                        const char *plain, const char *preserved) {
        QTest::newRow(name) << text(comment) << text(line) << text(code) << text(plain)
                            << text(preserved);
    };
    row("spaces and comment", ";", "  x  =   1  ; note", "x = 22", "x = 22  ; note",
        "  x  =   22  ; note");
    row("more words", ";", "x  = 1", "x = 1 2 3", "x = 1 2 3", "x  = 1 2 3");
    row("more words and comment", ";", "x = 1 ; note", "x = 1 2 3", "x = 1 2 3 ; note",
        "x = 1 2 3; note");
    row("fewer words", ";", "a  b  c ; d", "z", "z ; d", "z     ; d");
    row("tabs", ";", "a\t= 1\t;n", "a = 2", "a = 2\t;n", "a\t= 2\t;n");
    row("commented out", ";", ";x  = 1 ;n", "x = 2", "x = 2 ;n", "x  = 2 ;n");
    row("only a comment", ";", "; note", "x", "x", " x");
    row("blanks before a comment", ";", "   ; note", "x", "x   ; note", "   x; note");
    row("empty line", ";", "", "x = 1", "x = 1", "x = 1");
    row("empty code", ";", "x ;n", "", " ;n", " ;n");
    row("blanks in the code", ";", "x = 1", "x   =  2", "x   =  2", "x = 2");
    row("comment of two characters", "//", "x  = 1 // n", "x = 2", "x = 2 // n", "x  = 2 // n");
    row("no comments", "", "x  = 1 ; note", "x = 2", "x = 2", "x  = 2  ");
}

void tst_CodeNode::changesItsLine()
{
    QFETCH(QString, comment);
    QFETCH(QString, line);
    QFETCH(QString, code);
    const QString frame = text("before\n%1\nafter");
    for (const bool preserve : {false, true}) {
        ProjectDocument document(frame.arg(line));
        document.engine.comment = comment;
        document.setOption(text("preserve_code_formatting"), preserve, false, false);
        auto *const node = new Probe(document.findBlockByNumber(1), document.root());
        node->change(code);
        QFETCH(QString, plain);
        QFETCH(QString, preserved);
        QCOMPARE(document.toString(), frame.arg(preserve ? preserved : plain));
        if (document.toString() != frame.arg(line)) {
            document.undo();
            QCOMPARE(document.toString(), frame.arg(line));
        }
        node->release();
    }
}

void tst_CodeNode::changesFewCharacters()
{
    ProjectDocument document(text("head\nabcabc ;n"));
    auto *const node = new Probe(document.findBlockByNumber(1), document.root());
    QVector<Ints> changes;
    const auto listen = connect(&document, &QTextDocument::contentsChange, this,
                                [&changes](int from, int removed, int added) {
                                    changes.append({from, removed, added});
                                });
    document.inProject = false;
    node->change(text("abcabc ;n"));
    QCOMPARE(changes, QVector<Ints>());
    node->change(text("abcXabc ;n"));
    node->change(text("abcXX ;n"));
    document.inProject = true;
    document.engine.comment = text(";");
    node->change(text("abcXXX"));
    QCOMPARE(changes, QVector<Ints>({{8, 0, 1}, {9, 3, 1}, {10, 0, 1}}));
    QCOMPARE(document.toString(), text("head\nabcXXX ;n"));
    disconnect(listen);
    node->release();
}

QTEST_MAIN(tst_CodeNode)
#include "tst_codenode.moc"

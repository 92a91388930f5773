// SPDX-License-Identifier: MIT
#include "frame/treemodel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <vector>

namespace {

struct Node
{
    QString name;
    Node *parent = nullptr;
    std::vector<std::unique_ptr<Node>> children;

    Node *add(const QString &childName)
    {
        children.push_back(std::make_unique<Node>());
        children.back()->name = childName;
        children.back()->parent = this;
        return children.back().get();
    }

    int row() const
    {
        int found = 0;
        while (parent->children[size_t(found)].get() != this)
            ++found;
        return found;
    }
};

/// Two columns over a tree whose root is not shown.
class SmallTree : public Vela::TreeModel
{
public:
    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override
    {
        if (!hasIndex(row, column, parent))
            return QModelIndex();
        return createIndex(row, column, nodeOf(parent)->children[size_t(row)].get());
    }

    QModelIndex parent(const QModelIndex &child) const override
    {
        Node *up = child.isValid() ? nodeOf(child)->parent : nullptr;
        return !up || up == &root ? QModelIndex() : createIndex(up->row(), 0, up);
    }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.column() > 0 ? 0 : int(nodeOf(parent)->children.size());
    }

    int columnCount(const QModelIndex & = QModelIndex()) const override
    {
        return 2;
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole ? nodeOf(index)->name : QVariant();
    }

    /// Moves a node to the end of another's children.
    void moveUnder(Node *node, Node *target)
    {
        beginRelayout();
        auto &from = node->parent->children;
        const auto place = from.begin() + node->row();
        std::unique_ptr<Node> moving = std::move(*place);
        from.erase(place);
        moving->parent = target;
        target->children.push_back(std::move(moving));
        endRelayout();
    }

    void remove(Node *node)
    {
        beginRelayout();
        auto &from = node->parent->children;
        from.erase(from.begin() + node->row());
        endRelayout();
    }

    mutable Node root;

protected:
    QModelIndex nodeIndex(void *node, int column) const override
    {
        const Node *found = find(root, node);
        return found ? createIndex(found->row(), column, node) : QModelIndex();
    }

private:
    Node *nodeOf(const QModelIndex &index) const
    {
        return index.isValid() ? static_cast<Node *>(index.internalPointer()) : &root;
    }

    static const Node *find(const Node &from, const void *wanted)
    {
        for (const auto &child : from.children) {
            if (child.get() == wanted)
                return child.get();
            if (const Node *deeper = find(*child, wanted))
                return deeper;
        }
        return nullptr;
    }
};

} // namespace

class TestTreeModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void persistentIndexesFollowTheirNodes();
    void indexesOfRemovedNodesEnd();
    void baseKeepsNoIndex();

private:
    std::unique_ptr<SmallTree> m_model;
    std::unique_ptr<QAbstractItemModelTester> m_tester;
    Node *m_folder = nullptr;
    Node *m_other = nullptr;
    Node *m_leaf = nullptr;
    Node *m_sibling = nullptr;
};

// folder (leaf, sibling), other
void TestTreeModel::init()
{
    m_model = std::make_unique<SmallTree>();
    m_folder = m_model->root.add(QStringLiteral("folder"));
    m_leaf = m_folder->add(QStringLiteral("leaf"));
    m_sibling = m_folder->add(QStringLiteral("sibling"));
    m_other = m_model->root.add(QStringLiteral("other"));
    m_tester = std::make_unique<QAbstractItemModelTester>(
        m_model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
}

void TestTreeModel::cleanup()
{
    m_tester.reset();
    m_model.reset();
}

void TestTreeModel::persistentIndexesFollowTheirNodes()
{
    const QModelIndex folder = m_model->index(0, 0);
    const QPersistentModelIndex leaf = m_model->index(0, 1, folder);
    const QPersistentModelIndex sibling = m_model->index(1, 0, folder);
    const QPersistentModelIndex other = m_model->index(1, 0);
    qRegisterMetaType<QList<QPersistentModelIndex>>();
    qRegisterMetaType<QAbstractItemModel::LayoutChangeHint>();
    QSignalSpy before(m_model.get(), &QAbstractItemModel::layoutAboutToBeChanged);
    QSignalSpy after(m_model.get(), &QAbstractItemModel::layoutChanged);

    m_model->moveUnder(m_leaf, m_other);

    QCOMPARE(before.size(), 1);
    QCOMPARE(after.size(), 1);
    QVERIFY(leaf.isValid());
    QCOMPARE(leaf.data().toString(), QStringLiteral("leaf"));
    QCOMPARE(leaf.column(), 1);
    QCOMPARE(leaf.row(), 0);
    QCOMPARE(leaf.parent(), QModelIndex(other));
    QCOMPARE(sibling.row(), 0);
    QCOMPARE(sibling.data().toString(), QStringLiteral("sibling"));

    m_model->moveUnder(m_folder, m_other);
    QCOMPARE(other.row(), 0);
    QCOMPARE(sibling.parent().parent(), QModelIndex(other));
    QCOMPARE(sibling.parent().row(), 1);
}

void TestTreeModel::indexesOfRemovedNodesEnd()
{
    const QModelIndex folder = m_model->index(0, 0);
    const QPersistentModelIndex leaf = m_model->index(0, 0, folder);
    const QPersistentModelIndex sibling = m_model->index(1, 0, folder);
    m_model->remove(m_leaf);
    QVERIFY(!leaf.isValid());
    QVERIFY(sibling.isValid());
    QCOMPARE(sibling.row(), 0);

    m_model->remove(m_folder);
    QVERIFY(!sibling.isValid());
    QCOMPARE(m_model->rowCount(), 1);
}

// A subclass that names no nodes loses its indexes at a relayout, which is safe.
void TestTreeModel::baseKeepsNoIndex()
{
    class Nameless : public SmallTree
    {
    protected:
        QModelIndex nodeIndex(void *node, int column) const override
        {
            return TreeModel::nodeIndex(node, column);
        }
    };
    Nameless model;
    Node *kept = model.root.add(QStringLiteral("kept"));
    Node *gone = model.root.add(QStringLiteral("gone"));
    const QPersistentModelIndex index = model.index(0, 0);
    model.remove(gone);
    QVERIFY(!index.isValid());
    QCOMPARE(model.index(0, 0).internalPointer(), static_cast<void *>(kept));
}

QTEST_APPLESS_MAIN(TestTreeModel)

#include "tst_treemodel.moc"

// SPDX-License-Identifier: MIT
#include "frame/organizablelistmodel.h"

#include <QAbstractItemModelTester>
#include <QDataStream>
#include <QMimeData>
#include <QTest>
#include <memory>

namespace {

const QString QtFormat = QStringLiteral("application/x-qabstractitemmodeldatalist");

class LetterModel : public Vela::OrganizableListModel
{
public:
    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : letters.size();
    }

    QVariant data(const QModelIndex &index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(letters.at(index.row())) : QVariant();
    }

    void setLetters(const QString &text)
    {
        beginResetModel();
        letters = text;
        endResetModel();
    }

    std::unique_ptr<QMimeData> drag(const QVector<int> &rows) const
    {
        QModelIndexList indexes;
        for (const int row : rows)
            indexes.append(index(row));
        return std::unique_ptr<QMimeData>(mimeData(indexes));
    }

    QString letters = QStringLiteral("abcdef");
    int moves = 0;
    bool knewOfDrag = true;

protected:
    void moveItem(unsigned int from, unsigned int to) override
    {
        ++moves;
        knewOfDrag &= isMoveFromDrag();
        const int row = int(to);
        if (beginMoveRows(QModelIndex(), int(from), int(from), QModelIndex(),
                          from < to ? row + 1 : row)) {
            const QChar letter = letters.at(int(from));
            letters.remove(int(from), 1);
            letters.insert(row, letter);
            endMoveRows();
        }
    }
};

} // namespace

class TestOrganizableListModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itemsAreDraggedAndDroppedBetween();
    void dropKeepsTheDraggedRowsTogether_data();
    void dropKeepsTheDraggedRowsTogether();
    void otherDropsAreRefused();
    void damagedDataIsRefused();
    void rowsThatAreGoneAreLeftOut();
};

void TestOrganizableListModel::itemsAreDraggedAndDroppedBetween()
{
    const LetterModel model;
    const QAbstractItemModel &base = model;
    QCOMPARE(base.flags(base.index(2, 0)),
             Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled);
    QCOMPARE(base.flags(QModelIndex()), Qt::ItemIsDropEnabled);
    QCOMPARE(base.supportedDropActions(), Qt::MoveAction);
    QVERIFY(model.drag({1})->hasFormat(QtFormat));
    QVERIFY(!model.drag({}));
}

void TestOrganizableListModel::dropKeepsTheDraggedRowsTogether_data()
{
    QTest::addColumn<QVector<int>>("rows");
    QTest::addColumn<int>("target");
    QTest::addColumn<QString>("letters");
    QTest::addColumn<int>("moves");

    const auto row = [](const char *name, const QVector<int> &rows, int target, const char *letters,
                        int moves) {
        QTest::newRow(name) << rows << target << QString::fromLatin1(letters) << moves;
    };
    row("down", {1}, 4, "acdbef", 1);
    row("up", {4}, 1, "aebcdf", 1);
    row("to the top", {5}, 0, "fabcde", 1);
    row("to the bottom", {0}, 6, "bcdefa", 1);
    row("on the empty area", {0}, -1, "bcdefa", 1);
    row("behind the end", {0}, 99, "bcdefa", 1);
    row("on its own place", {2}, 2, "abcdef", 0);
    row("behind itself", {2}, 3, "abcdef", 0);
    row("several down", {0, 2}, 5, "bdeacf", 2);
    row("several up", {3, 5}, 1, "adfbce", 2);
    row("from both sides", {0, 1, 4, 5}, 3, "cabefd", 4);
    row("round a row that stays", {1, 2, 4}, 2, "abcedf", 1);
    row("in any order, twice", {5, 0, 5}, 3, "bcafde", 2);
    row("all", {0, 1, 2, 3, 4, 5}, 3, "abcdef", 0);
}

void TestOrganizableListModel::dropKeepsTheDraggedRowsTogether()
{
    QFETCH(QVector<int>, rows);
    QFETCH(int, target);
    LetterModel model;
    const QAbstractItemModelTester tester(&model);
    QVERIFY(model.dropMimeData(model.drag(rows).get(), Qt::MoveAction, target, 0, QModelIndex()));
    QTEST(model.letters, "letters");
    QTEST(model.moves, "moves");
    QVERIFY(model.knewOfDrag);
    QVERIFY(!model.isMoveFromDrag());
}

void TestOrganizableListModel::otherDropsAreRefused()
{
    LetterModel model;
    const auto drag = model.drag({0});
    QVERIFY(!model.dropMimeData(nullptr, Qt::MoveAction, 3, 0, QModelIndex()));
    QVERIFY(!model.dropMimeData(drag.get(), Qt::CopyAction, 3, 0, QModelIndex()));
    QVERIFY(!model.dropMimeData(drag.get(), Qt::MoveAction, -1, -1, model.index(3)));

    const LetterModel other;
    QVERIFY(!model.dropMimeData(other.drag({0}).get(), Qt::MoveAction, 3, 0, QModelIndex()));

    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly)
        << 0 << 0 << QMap<int, QVariant>() << -7 << 0 << QMap<int, QVariant>();
    QMimeData made;
    made.setData(QtFormat, bytes);
    QVERIFY(!model.dropMimeData(&made, Qt::MoveAction, 3, 0, QModelIndex()));
    QCOMPARE(model.moves, 0);
}

void TestOrganizableListModel::damagedDataIsRefused()
{
    LetterModel model;
    const auto drag = model.drag({0, 1});
    for (const QString &format : drag->formats()) {
        const QByteArray whole = drag->data(format);
        for (int size = 0; size < whole.size(); ++size) {
            QMimeData damaged;
            damaged.setData(format, whole.left(size));
            QVERIFY2(!model.dropMimeData(&damaged, Qt::MoveAction, 4, 0, QModelIndex()),
                     qPrintable(QStringLiteral("%1 bytes of %2").arg(size).arg(format)));
        }
    }
    QCOMPARE(model.letters, QStringLiteral("abcdef"));
}

void TestOrganizableListModel::rowsThatAreGoneAreLeftOut()
{
    LetterModel model;
    const auto drag = model.drag({0, 5});
    model.setLetters(QStringLiteral("xyz"));
    QVERIFY(model.dropMimeData(drag.get(), Qt::MoveAction, 3, 0, QModelIndex()));
    QCOMPARE(model.letters, QStringLiteral("yzx"));
    model.setLetters(QString());
    QVERIFY(!model.dropMimeData(drag.get(), Qt::MoveAction, 0, 0, QModelIndex()));
}

QTEST_GUILESS_MAIN(TestOrganizableListModel)
#include "tst_organizablelistmodel.moc"

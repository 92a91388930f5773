// SPDX-License-Identifier: MIT
#include "project/messagelist.h"
#include "project/simplemessages.h"
#include "support/recordinghost.h"
#include "support/testfile.h"

#include <QAbstractItemModelTester>
#include <QIcon>
#include <QSortFilterProxyModel>
#include <QtTest>
#include <memory>

using namespace Vela;

namespace {

constexpr auto Fatal = QAbstractItemModelTester::FailureReportingMode::Fatal;

QStringList column(const QAbstractItemModel &model, int number)
{
    QStringList texts;
    for (int row = 0; row < model.rowCount(); ++row)
        texts.append(model.index(row, number).data().toString());
    return texts;
}

QString text(const char *latin1)
{
    return QString::fromLatin1(latin1);
}

} // namespace

class tst_Messages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messagesAreCountedAndFoundByType();
    void indexPastTheEndGivesEmptyMessage();
    void fileModelShowsTextAndIcon();
    void iconFollowsType_data();
    void iconFollowsType();
    void eachChangeUpdatesListOnce();
    void nestedChangeUpdatesListAtItsEnd();
    void clearingNothingSendsNoUpdate();
    void listAloneChangesItsOwnRows();
    void tableShowsSourcesInOrder();
    void rowIsFoundInItsSource();
    void modelsStayConsistent();
    void destroyedSourceLeaves();
    void sourceOutlivesList();
    void sourceIsListedOnceAndInOneList();
};

void tst_Messages::messagesAreCountedAndFoundByType()
{
    SimpleMessages messages(nullptr);
    messages.add(Message::Warning, text("w0"), 1, 2);
    messages.add(Message::Error, text("e0"), 3, 4);
    messages.add(Message::Warning, text("w1"), 5, 6);
    messages.add(Message::Information, text("i0"), 7, 8);

    QCOMPARE(messages.count(Message::Error), 1);
    QCOMPARE(messages.count(Message::Warning), 2);
    QCOMPARE(messages.count(Message::Information), 1);
    QCOMPARE(messages.count(Message::Any), 4);

    const Message second = messages.at(1, Message::Warning);
    QCOMPARE(second.type, Message::Warning);
    QCOMPARE(second.text, text("w1"));
    QCOMPARE(second.line, 5u);
    QCOMPARE(second.column, 6u);
    QCOMPARE(messages.at(1, Message::Any).text, text("e0"));

    messages.clear();
    for (const Message::Type type :
         {Message::Error, Message::Warning, Message::Information, Message::Any})
        QCOMPARE(messages.count(type), 0);
}

void tst_Messages::indexPastTheEndGivesEmptyMessage()
{
    SimpleMessages messages(nullptr);
    messages.add(Message::Error, text("e0"), 3, 4);
    for (const Message::Type type : {Message::Error, Message::Warning, Message::Any}) {
        for (const unsigned int index : {1u, 0x80000000u, 0xffffffffu}) {
            const Message none = messages.at(index, type);
            QCOMPARE(none.type, Message::Any);
            QCOMPARE(none.line, 0u);
            QCOMPARE(none.column, 0u);
            QVERIFY(none.text.isEmpty());
        }
    }
}

void tst_Messages::fileModelShowsTextAndIcon()
{
    SimpleMessages messages(nullptr);
    messages.add(Message::Error, text("broken"), 0, 0);
    const QModelIndex index = messages.index(0);
    QCOMPARE(messages.rowCount(), 1);
    QCOMPARE(messages.rowCount(index), 0);
    QCOMPARE(index.data().toString(), text("broken"));
    QVERIFY(!index.data(Qt::DecorationRole).value<QIcon>().isNull());
    QVERIFY(!index.data(Qt::ToolTipRole).isValid());
    QVERIFY(!messages.data(QModelIndex(), Qt::DisplayRole).isValid());
}

void tst_Messages::iconFollowsType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("hostName");
    QTest::addColumn<QString>("resource");
    QTest::newRow("error") << 0 << "error"
                           << ":/vlib_icons/icons/error.png";
    QTest::newRow("warning") << 1 << "warning"
                             << ":/vlib_icons/icons/warn.png";
    QTest::newRow("information") << 2 << "information"
                                 << ":/vlib_icons/icons/info.png";
}

void tst_Messages::iconFollowsType()
{
    QFETCH(int, type);
    QFETCH(QString, hostName);
    QFETCH(QString, resource);

    SimpleMessages messages(nullptr);
    MessageList list(nullptr);
    list.registerMessages(&messages);
    messages.add(static_cast<Message::Type>(type), text("t"), 0, 0);

    const QImage own =
        messages.index(0).data(Qt::DecorationRole).value<QIcon>().pixmap(16).toImage();
    QVERIFY(!own.isNull());
    QCOMPARE(own, QIcon(resource).pixmap(16).toImage());

    RecordingHost host;
    list.index(0, 0).data(Qt::DecorationRole);
    QCOMPARE(host.iconsAsked, QStringList(hostName));
    for (const int column : {1, 2}) {
        const QVariant icon = list.index(0, column).data(Qt::DecorationRole);
        QVERIFY(icon.isValid());
        QVERIFY(icon.value<QIcon>().isNull());
    }
}

void tst_Messages::eachChangeUpdatesListOnce()
{
    SimpleMessages messages(nullptr);
    MessageList list(nullptr);
    QSignalSpy updated(&list, &MessageList::updated);

    list.registerMessages(&messages);
    QCOMPARE(updated.count(), 1);
    messages.add(Message::Error, text("e"), 0, 0);
    QCOMPARE(updated.count(), 2);
    messages.add(Message::Warning, text("w"), 0, 0);
    QCOMPARE(updated.count(), 3);
    QCOMPARE(list.errorCount(), 1u);
    QCOMPARE(list.warningCount(), 1u);
    QCOMPARE(list.rowCount(), 2);
    messages.clear();
    QCOMPARE(updated.count(), 4);
    QCOMPARE(list.errorCount(), 0u);
    QCOMPARE(list.rowCount(), 0);
    list.unregisterMessages(&messages);
    QCOMPARE(updated.count(), 5);
    messages.add(Message::Error, text("e"), 0, 0);
    QCOMPARE(updated.count(), 5);
}

void tst_Messages::nestedChangeUpdatesListAtItsEnd()
{
    SimpleMessages messages(nullptr);
    MessageList list(nullptr);
    list.registerMessages(&messages);
    QSignalSpy updated(&list, &MessageList::updated);

    messages.beginChange();
    messages.beginChange();
    messages.add(Message::Error, text("a"), 0, 0);
    messages.clear();
    messages.add(Message::Error, text("b"), 0, 0);
    messages.endChange();
    QCOMPARE(updated.count(), 0);
    QCOMPARE(list.rowCount(), 0);
    messages.endChange();
    QCOMPARE(updated.count(), 1);
    QCOMPARE(column(list, 0), QStringList(text("b")));
}

void tst_Messages::clearingNothingSendsNoUpdate()
{
    SimpleMessages messages(nullptr);
    MessageList list(nullptr);
    list.registerMessages(&messages);
    QSignalSpy updated(&list, &MessageList::updated);
    QSignalSpy removed(&messages, &QAbstractItemModel::rowsRemoved);
    messages.clear();
    QCOMPARE(updated.count(), 0);
    QCOMPARE(removed.count(), 0);
}

void tst_Messages::listAloneChangesItsOwnRows()
{
    SimpleMessages messages(nullptr);
    QAbstractItemModelTester tester(&messages, Fatal);
    QSignalSpy inserted(&messages, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&messages, &QAbstractItemModel::rowsRemoved);
    messages.add(Message::Error, text("a"), 0, 0);
    messages.add(Message::Error, text("b"), 0, 0);
    QCOMPARE(inserted.count(), 2);
    QCOMPARE(inserted.at(1).at(1).toInt(), 1);
    QCOMPARE(inserted.at(1).at(2).toInt(), 1);
    messages.clear();
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.at(0).at(2).toInt(), 1);
}

void tst_Messages::tableShowsSourcesInOrder()
{
    TestFile first(text("/game/chars/hero.txt"));
    TestFile second(text("stage.txt"));
    MessageList list(nullptr);
    list.registerMessages(&first.notes);
    list.registerMessages(&second.notes);
    second.notes.add(Message::Information, text("s"), 41, 0);
    first.notes.add(Message::Error, text("h"), 0, 7);

    QCOMPARE(list.columnCount(), 3);
    QCOMPARE(column(list, 0), QStringList({text("h"), text("s")}));
    QCOMPARE(column(list, 1), QStringList({text("hero.txt"), text("stage.txt")}));
    QCOMPARE(list.index(0, 2).data(), QVariant(1u));
    QCOMPARE(list.index(1, 2).data(), QVariant(42u));
}

void tst_Messages::rowIsFoundInItsSource()
{
    SimpleMessages two(nullptr);
    SimpleMessages three(nullptr);
    for (const char *name : {"a0", "a1"})
        two.add(Message::Error, text(name), 0, 0);
    for (const char *name : {"b0", "b1", "b2"})
        three.add(Message::Warning, text(name), 0, 0);
    MessageList list(nullptr);
    list.registerMessages(&two);
    list.registerMessages(&three);

    const Messages *source = nullptr;
    QCOMPARE(list.messageAt(3, source).text, text("b1"));
    QCOMPARE(source, &three);
    QCOMPARE(list.messageAt(1, source).text, text("a1"));
    QCOMPARE(source, &two);
    for (const int row : {5, -1}) {
        QCOMPARE(list.messageAt(row, source).type, Message::Any);
        QCOMPARE(source, &two);
    }
}

/// The table under a view's sorting, through every kind of change.
void tst_Messages::modelsStayConsistent()
{
    TestFile file(text("a.txt"));
    auto other = std::make_unique<TestFile>(text("b.txt"));
    MessageList list(nullptr);
    QSortFilterProxyModel sorted;
    sorted.setSourceModel(&list);
    sorted.sort(0);
    QAbstractItemModelTester tableTester(&list, Fatal);
    QAbstractItemModelTester sortedTester(&sorted, Fatal);

    file.notes.add(Message::Error, text("m"), 0, 0);
    list.registerMessages(&file.notes);
    list.registerMessages(&other->notes);
    other->notes.add(Message::Warning, text("z"), 2, 0);
    other->notes.add(Message::Information, text("a"), 1, 0);
    QCOMPARE(column(sorted, 0), QStringList({text("a"), text("m"), text("z")}));

    file.notes.beginChange();
    file.notes.clear();
    file.notes.add(Message::Error, text("n"), 0, 0);
    file.notes.endChange();
    QCOMPARE(column(sorted, 0), QStringList({text("a"), text("n"), text("z")}));

    other.reset();
    QCOMPARE(column(sorted, 0), QStringList(text("n")));
    list.unregisterMessages(&file.notes);
    QCOMPARE(sorted.rowCount(), 0);
}

void tst_Messages::destroyedSourceLeaves()
{
    SimpleMessages stays(nullptr);
    stays.add(Message::Error, text("stays"), 0, 0);
    MessageList list(nullptr);
    QSignalSpy updated(&list, &MessageList::updated);
    {
        SimpleMessages goes(nullptr);
        goes.add(Message::Error, text("goes"), 0, 0);
        list.registerMessages(&goes);
        list.registerMessages(&stays);
        QCOMPARE(list.errorCount(), 2u);
        updated.clear();
    }
    QCOMPARE(updated.count(), 1);
    QCOMPARE(list.errorCount(), 1u);
    QCOMPARE(column(list, 0), QStringList(text("stays")));
}

void tst_Messages::sourceOutlivesList()
{
    SimpleMessages messages(nullptr);
    {
        MessageList list(nullptr);
        list.registerMessages(&messages);
    }
    messages.add(Message::Error, text("after"), 0, 0);
    QCOMPARE(messages.rowCount(), 1);
}

/// A file under two types is tied to its project twice, and a file can move to another project.
void tst_Messages::sourceIsListedOnceAndInOneList()
{
    SimpleMessages messages(nullptr);
    messages.add(Message::Error, text("e"), 0, 0);
    MessageList first(nullptr);
    MessageList second(nullptr);
    first.registerMessages(&messages);
    first.registerMessages(&messages);
    QCOMPARE(first.rowCount(), 1);

    second.registerMessages(&messages);
    QCOMPARE(first.rowCount(), 0);
    first.unregisterMessages(&messages);
    messages.add(Message::Error, text("f"), 0, 0);
    QCOMPARE(first.rowCount(), 0);
    QCOMPARE(second.rowCount(), 2);
}

QTEST_MAIN(tst_Messages)
#include "tst_messages.moc"

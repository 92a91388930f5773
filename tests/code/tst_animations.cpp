// SPDX-License-Identifier: MIT
#include "code/animationplayer.h"
#include "frame/organizablelistmodel.h"
#include "support/testgrammar.h"

#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <memory>

using Vela::AnimationCode;
using Vela::AnimationPlayer;
using Vela::CodeNode;
using Vela::ContactBoxCode;
using Vela::FrameCode;

namespace {

const QString ParseCode = QStringLiteral("parseCode");

/// A document with its animations.
struct Definition
{
    explicit Definition(const QString &text, bool parsesInChange = true)
        : document(text)
        , animations(new TestAnimations(&document))
        , model(animations->listModel())
    {
        document.setOption(ParseCode, parsesInChange, false, false);
        document.registerNodeFile(animations, CodeNode::Animation, 0);
    }

    /// Returns each animation with its frames: "a(f g) b()".
    QString outline() const
    {
        QStringList items;
        for (const AnimationCode *animation : animations->animations()) {
            QStringList frames;
            for (const FrameCode *frame : animation->frames())
                frames.append(frame->property(QStringLiteral("Identifier")).toString());
            items.append(QStringLiteral("%1(%2)").arg(
                animation->property(QStringLiteral("Identifier")).toString(),
                frames.join(QLatin1Char(' '))));
        }
        return items.join(QLatin1Char(' '));
    }

    /// Returns the rows of the list model, for an animation of a name.
    QStringList rows() const
    {
        QStringList names;
        for (int row = 0; row < model->rowCount(); ++row)
            names.append(model->index(row).data().toString());
        return names;
    }

    /// Replaces \a length characters from where \a line begins.
    void edit(int line, int length, const QString &text)
    {
        QTextCursor cursor(document.findBlockByNumber(line));
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor, length);
        cursor.insertText(text);
    }

    TestDocument document;
    TestAnimations *const animations;
    QAbstractListModel *const model;
    QAbstractItemModelTester listTester{animations->listModel()};
    QAbstractItemModelTester treeTester{document.model()};
};

} // namespace

class TestAnimationList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listFollowsTheText();
    void listTellsOfItsChanges();
    void nothingIsShownDuringAChange();
    void operationsChangeTheText_data();
    void operationsChangeTheText();
    void moveKeepsTheRows_data();
    void moveKeepsTheRows();
    void moveInAChangeThatIsParsedAtItsEnd();
    void dropMovesAnimations_data();
    void dropMovesAnimations();
    void wrongIndexesDoNothing();
    void findsIdentifiers();
    void comparesIdentifiers_data();
    void comparesIdentifiers();
    void animationRewritesItsText();
    void framesKnowTheirBoxes();
    void playerWalksTheFrames_data();
    void playerWalksTheFrames();
    void playerStops();
    void copiesOfAPlayerMoveTogether();
    void playerOutlivesTheText();
};

void TestAnimationList::listFollowsTheText()
{
    Definition def(QStringLiteral("anim a\nframe f 1\nanim b\nframe g 2\nframe h 3\n"));
    QCOMPARE(def.outline(), QStringLiteral("a(f) b(g h)"));

    // Without its header the second animation's frames are the first one's.
    def.edit(2, 7, QString());
    QCOMPARE(def.outline(), QStringLiteral("a(f g h)"));
    QCOMPARE(def.model->rowCount(), 1);
    def.document.undo();
    QCOMPARE(def.outline(), QStringLiteral("a(f) b(g h)"));

    def.edit(4, 0, QStringLiteral("anim n\nframe i 4\n"));
    QCOMPARE(def.outline(), QStringLiteral("a(f) b(g) n(i h)"));
    def.edit(0, 0, QStringLiteral("anim z\n"));
    QCOMPARE(def.outline(), QStringLiteral("z() a(f) b(g) n(i h)"));

    // A group takes the frames below it from their animation, and is no parent to them.
    def.edit(7, 0, QStringLiteral("[G]\n"));
    QCOMPARE(def.outline(), QStringLiteral("z() a(f) b(g) n(i)"));
    const CodeNode *const orphan = def.document.nodeInBlock(def.document.findBlockByNumber(8));
    QCOMPARE(orphan->type(), CodeNode::Frame);
    QVERIFY(!orphan->parent());
    QCOMPARE(static_cast<const FrameCode *>(orphan)->index(), -1);
    def.document.undo();
    QCOMPARE(def.outline(), QStringLiteral("z() a(f) b(g) n(i h)"));

    def.document.setPlainText(QStringLiteral("anim q"));
    QCOMPARE(def.outline(), QStringLiteral("q()"));
    def.document.reparse();
    QCOMPARE(def.outline(), QStringLiteral("q()"));
    def.document.reset();
    QCOMPARE(def.animations->count(), 0u);
}

void TestAnimationList::listTellsOfItsChanges()
{
    Definition def(QStringLiteral("anim a one\nanim b two\n"));
    QCOMPARE(def.rows(), (QStringList{QStringLiteral("one"), QStringLiteral("two")}));
    QSignalSpy changed(def.animations, &Vela::OrganizableObject::changed);
    QSignalSpy modified(def.animations, &Vela::OrganizableObject::modified);
    QSignalSpy dataChanged(def.model, &QAbstractItemModel::dataChanged);

    def.animations->at(1)->setProperty(QStringLiteral("Name"), QStringLiteral("three"));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.takeFirst().at(0).toBool(), false);
    QCOMPARE(modified.size(), 1);
    QCOMPARE(dataChanged.size(), 1);
    QCOMPARE(dataChanged.first().at(0).toModelIndex().row(), 1);
    QCOMPARE(def.rows(), (QStringList{QStringLiteral("one"), QStringLiteral("three")}));

    def.animations->remove(0);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.takeFirst().at(0).toBool(), true);
    QCOMPARE(modified.size(), 2);
    QCOMPARE(def.rows(), QStringList{QStringLiteral("three")});
}

void TestAnimationList::nothingIsShownDuringAChange()
{
    Definition def(QStringLiteral("anim a one\n"));
    def.animations->beginChange();
    QCOMPARE(def.model->rowCount(), 1);
    QVERIFY(!def.model->index(0).data().isValid());
    // The list is in step all the same.
    const AnimationCode *const added = def.animations->add(QStringLiteral("b"));
    QCOMPARE(def.animations->at(1), added);
    def.animations->at(0)->setProperty(QStringLiteral("Name"), QStringLiteral("new"));
    QCOMPARE(def.outline(), QStringLiteral("a() b()"));
    def.animations->endChange();
    QCOMPARE(def.rows(), (QStringList{QStringLiteral("new"), QString()}));
    QVERIFY(!def.model->index(0).data(Qt::EditRole).isValid());
    def.document.undo();
    QCOMPARE(def.document.toString(), QStringLiteral("anim a one\n"));
    QCOMPARE(def.rows(), QStringList{QStringLiteral("one")});
}

void TestAnimationList::operationsChangeTheText_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("outline");

    const auto row = [](const char *name, const char *before, const char *operation,
                        const char *after, const char *outline) {
        QTest::newRow(name) << QString::fromLatin1(before) << QString::fromLatin1(operation)
                            << QString::fromLatin1(after) << QString::fromLatin1(outline);
    };
    row("add to an empty text", "", "add x", "anim x\n", "x()");
    row("add", "anim a\n", "add x", "anim a\nanim x\n", "a() x()");
    row("add behind a line without end", "anim a\nframe f 1", "add x",
        "anim a\nframe f 1\nanim x\n", "a(f) x()");
    row("insert between", "anim a\nframe f 1\nanim b\n", "insert x 1",
        "anim a\nframe f 1\nanim x\n\nanim b\n", "a(f) x() b()");
    row("insert in the first line", "anim a\nframe f 1\n", "insert x 0",
        "anim x\n\nanim a\nframe f 1\n", "x() a(f)");
    row("insert at the end", "anim a\n", "insert x 1", "anim a\nanim x\n", "a() x()");
    row("remove the first", "anim a\nframe f 1\n\nanim b\n", "remove - 0", "anim b\n", "b()");
    row("remove the last", "anim a\nframe f 1\nanim b\nframe g 1\n", "remove - 1",
        "anim a\nframe f 1\n", "a(f)");
    row("remove in front of a group", "anim a\nframe f 1\n[G]\nx = int 1\n", "remove - 0",
        "[G]\nx = int 1\n", "");
    row("duplicate", "anim a\nframe f 1\nanim b\n", "duplicate - 0",
        "anim a\nframe f 1\nanim a\nframe f 1\nanim b\n", "a(f) a(f) b()");
    row("duplicate with an identifier", "anim a\n; as ANIM A\nframe a 1\n", "duplicate x 0",
        "anim a\n; as ANIM A\nframe a 1\nanim x\n; as anim x\nframe a 1\n", "a(a) x(a)");
    row("duplicate a text without a last line end", "anim a\nframe f 1", "duplicate x 0",
        "anim a\nframe f 1\nanim x\nframe f 1", "a(f) x(f)");
    row("duplicate behind a group", "anim a\n[G]\nx = int 1\nanim b\n", "duplicate x 0",
        "anim a\n[G]\nx = int 1\nanim x\nanim b\n", "a() x() b()");
}

void TestAnimationList::operationsChangeTheText()
{
    QFETCH(QString, before);
    QFETCH(QString, operation);
    const QStringList words = operation.split(QLatin1Char(' '));
    const unsigned int index = words.value(2).toUInt();
    Definition def(before);
    const QString outline = def.outline();
    if (words.first() == QLatin1String("add")) {
        const AnimationCode *const added = def.animations->add(words.at(1));
        QCOMPARE(added, def.animations->at(def.animations->count() - 1));
    } else if (words.first() == QLatin1String("insert")) {
        const AnimationCode *const added = def.animations->insert(index, words.at(1));
        QCOMPARE(added, def.animations->at(index));
    } else if (words.first() == QLatin1String("remove")) {
        def.animations->remove(index);
    } else {
        def.animations->duplicate(index, QString(words.at(1)).remove(QLatin1Char('-')));
    }
    QTEST(def.document.toString(), "after");
    QTEST(def.outline(), "outline");
    def.document.undo();
    QCOMPARE(def.document.toString(), before);
    QCOMPARE(def.outline(), outline);
}

void TestAnimationList::moveKeepsTheRows_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("outline");
    QTest::addColumn<bool>("parses");

    const auto row = [](const char *name, const char *before, int from, int to, const char *after,
                        const char *outline) {
        for (const bool parses : {true, false}) {
            QTest::addRow("%s, parsed %s", name, parses ? "at once" : "at the end")
                << QString::fromLatin1(before) << from << to << QString::fromLatin1(after)
                << QString::fromLatin1(outline) << parses;
        }
    };
    const char *const three = "anim a\nframe f 1\nanim b\nframe g 1\nanim c\n";
    row("down", three, 0, 1, "anim b\nframe g 1\nanim a\nframe f 1\nanim c\n", "b(g) a(f) c()");
    row("up", three, 1, 0, "anim b\nframe g 1\nanim a\nframe f 1\nanim c\n", "b(g) a(f) c()");
    row("to the end", three, 0, 2, "anim b\nframe g 1\nanim c\n\nanim a\nframe f 1",
        "b(g) c() a(f)");
    row("last one up", three, 2, 0, "anim c\nanim a\nframe f 1\nanim b\nframe g 1\n",
        "c() a(f) b(g)");
    row("last one up by one", three, 2, 1, "anim a\nframe f 1\nanim c\nanim b\nframe g 1\n",
        "a(f) c() b(g)");
    row("last line without end", "anim a\nanim b\nframe f 10", 1, 0, "anim b\nframe f 10\nanim a\n",
        "b(f) a()");
    row("blank lines between", "anim a\nframe f 1\n\nanim b\nframe g 1\n", 0, 1,
        "anim b\nframe g 1\n\nanim a\nframe f 1\n", "b(g) a(f)");
    row("past a group", "anim a\n[G]\nx = int 1\nanim b\nanim c\n", 0, 1,
        "[G]\nx = int 1\nanim b\nanim a\nanim c\n", "b() a() c()");
    row("behind a group", "[G]\nx = int 1\nanim a\nframe f 1\nanim b\n", 1, 0,
        "[G]\nx = int 1\nanim b\nanim a\nframe f 1\n", "b() a(f)");
}

void TestAnimationList::moveKeepsTheRows()
{
    QFETCH(QString, before);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(bool, parses);
    Definition def(before, parses);
    const QString outline = def.outline();
    const QPersistentModelIndex moved = def.model->index(from);
    QSignalSpy inserted(def.model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(def.model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(def.animations, &Vela::OrganizableObject::changed);

    def.animations->move(unsigned(from), unsigned(to));
    QTEST(def.document.toString(), "after");
    QTEST(def.outline(), "outline");
    QCOMPARE(moved.row(), to);
    QVERIFY(inserted.isEmpty() && removed.isEmpty());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.first().at(0).toBool(), false);
    def.document.undo();
    QCOMPARE(def.document.toString(), before);
    QCOMPARE(def.outline(), outline);
}

// The list lacks the animation until the outer change ends.
void TestAnimationList::moveInAChangeThatIsParsedAtItsEnd()
{
    Definition def(QStringLiteral("anim a\nframe f 1\nanim b\nanim c\n"), false);
    def.animations->beginChange();
    def.animations->move(0, 1);
    QCOMPARE(def.outline(), QStringLiteral("b() c()"));
    QCOMPARE(def.model->rowCount(), 2);
    def.animations->endChange();
    QCOMPARE(def.outline(), QStringLiteral("b() a(f) c()"));
    def.document.undo();
    QCOMPARE(def.outline(), QStringLiteral("a(f) b() c()"));
}

void TestAnimationList::dropMovesAnimations_data()
{
    QTest::addColumn<bool>("parses");
    QTest::addColumn<QString>("undone");
    QTest::newRow("parsed at once") << true << QStringLiteral("a() b() c() d()");
    // Each row is a change of its own: the first one moved was c.
    QTest::newRow("parsed at the end") << false << QStringLiteral("a() b() d() c()");
}

void TestAnimationList::dropMovesAnimations()
{
    QFETCH(bool, parses);
    Definition def(QStringLiteral("anim a\nanim b\nanim c\nanim d\n"), parses);
    const std::unique_ptr<QMimeData> drag(
        def.model->mimeData({def.model->index(2), def.model->index(0)}));
    QVERIFY(def.model->dropMimeData(drag.get(), Qt::MoveAction, -1, -1, QModelIndex()));
    QCOMPARE(def.outline(), QStringLiteral("b() d() a() c()"));
    def.document.undo();
    QTEST(def.outline(), "undone");
}

void TestAnimationList::wrongIndexesDoNothing()
{
    const QString text = QStringLiteral("anim a\nanim b\n");
    Definition def(text);
    QSignalSpy moved(def.model, &QAbstractItemModel::rowsMoved);
    def.animations->move(0, 2);
    def.animations->move(2, 0);
    def.animations->move(1, 1);
    def.animations->remove(2);
    def.animations->duplicate(2, QStringLiteral("x"));
    def.animations->at(0)->removeFrame(0);
    QVERIFY(!def.animations->at(2));
    QVERIFY(!def.animations->at(0)->frameAt(0));
    QCOMPARE(def.animations->indexOf(nullptr), -1);
    QCOMPARE(def.animations->compare(7, 8), 1);
    QCOMPARE(def.document.toString(), text);
    QVERIFY(moved.isEmpty());
    QVERIFY(!def.document.isUndoAvailable());
}

void TestAnimationList::findsIdentifiers()
{
    Definition def(QStringLiteral("anim 7\nanim a\nanim 7\nanim 07\n"));
    QCOMPARE(def.animations->find(0, 7), 0);
    QCOMPARE(def.animations->find(1, 7), 2);
    QCOMPARE(def.animations->find(2, QStringLiteral("7")), 2);
    QCOMPARE(def.animations->find(3, 7), -1);
    QCOMPARE(def.animations->find(0, QStringLiteral("A")), -1);
    QCOMPARE(def.animations->find(4, 7), -1);
    QCOMPARE(def.animations->find(99, 7), -1);
}

void TestAnimationList::comparesIdentifiers_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("ab");
    QTest::addColumn<int>("ba");

    const auto row = [](const char *a, const char *b, int ab, int ba) {
        QTest::addRow("%s, %s", a, b)
            << QString::fromLatin1(a) << QString::fromLatin1(b) << ab << ba;
    };
    row("9", "10", -1, 1);
    row("-3", "2", -1, 1);
    row("5", "5", 1, 1);
    row("05", "5", 1, 1);
    row("run", "Walk", -1, 1);
    row("RUN", "run", 1, 1);
    row("a9", "a10", 1, -1);
    row("5", "walk", 1, 1);
    row("0x10", "2", 1, 1);
    row("99999999999", "1", 1, 1);
}

void TestAnimationList::comparesIdentifiers()
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    Definition def(QStringLiteral("anim %1\nanim %2\n").arg(a, b));
    QTEST(def.animations->compare(0, 1), "ab");
    QTEST(def.animations->compare(1, 0), "ba");
}

void TestAnimationList::animationRewritesItsText()
{
    Definition def(
        QStringLiteral("anim a\n; one\nframe f 1\n; two\n\nframe g 2\nanim b\nframe h 3"));
    AnimationCode *const first = def.animations->at(0);
    QCOMPARE(first->propertyNames(),
             (QStringList{QStringLiteral("DisplayName"), QStringLiteral("Name"),
                          QStringLiteral("Identifier")}));
    QCOMPARE(first->selectedFrame(), 0u);
    QCOMPARE(first->indexOfFrame(first->frameAt(1)), 1);
    QCOMPARE(first->frameAt(1)->index(), 1);

    // A frame goes with the comments above it.
    first->removeFrame(1);
    QCOMPARE(def.document.toString(),
             QStringLiteral("anim a\n; one\nframe f 1\nanim b\nframe h 3"));
    QCOMPARE(first->code(), QStringLiteral("anim a\u2029; one\u2029frame f 1"));
    QCOMPARE(def.animations->at(1)->code(), QStringLiteral("anim b\u2029frame h 3"));

    first->setCode(QStringLiteral(" \nanim c\nframe k 1\nframe l 1\n\n\n"));
    QCOMPARE(def.document.toString(),
             QStringLiteral("anim c\nframe k 1\nframe l 1\n\nanim b\nframe h 3"));
    QCOMPARE(def.outline(), QStringLiteral("c(k l) b(h)"));
    def.animations->at(1)->setCode(QString());
    QCOMPARE(def.outline(), QStringLiteral("c(k l)"));
}

void TestAnimationList::framesKnowTheirBoxes()
{
    Definition def(QStringLiteral("anim a\nbox a 1 2 3 4\nbox c 5 6 7 8\nframe f 1\n"));
    const FrameCode *const frame = def.animations->at(0)->frameAt(0);
    QCOMPARE(frame->propertyNames().join(QLatin1Char(' ')),
             QStringLiteral("Identifier Offset Delay Scale Angle Flip LoopPoint"));
    QCOMPARE(frame->attackBoxes()->frame(), frame);
    QCOMPARE(frame->collisionBoxes()->frame(), frame);
    QCOMPARE(frame->contactBoxes(ContactBoxCode::Attack)->at(0)->rect(), QRect(1, 2, 3, 4));
    QCOMPARE(frame->contactBoxes(ContactBoxCode::Collision)->at(0)->rect(), QRect(5, 6, 7, 8));
    QCOMPARE(frame->contactBoxes(ContactBoxCode::BoxType(3)), frame->attackBoxes());
    QCOMPARE(frame->attackBoxes()->boxType(), ContactBoxCode::Attack);
}

// The frames are their delays; "l" behind one is the loop point. What a tick gave, the frames'
// numbers behind it and the frame time are a column each; "-" is no frame.
void TestAnimationList::playerWalksTheFrames_data()
{
    QTest::addColumn<QString>("delays");
    QTest::addColumn<QString>("times");
    QTest::addColumn<QString>("frames");
    QTest::addColumn<QString>("next");
    QTest::addColumn<QString>("frameTimes");

    const auto row = [](const char *name, const char *delays, const char *times, const char *frames,
                        const char *next, const char *frameTimes) {
        QTest::newRow(name) << QString::fromLatin1(delays) << QString::fromLatin1(times)
                            << QString::fromLatin1(frames) << QString::fromLatin1(next)
                            << QString::fromLatin1(frameTimes);
    };
    row("no frames", "", "0 0 0", "- - -", "- - -", "1 1 1");
    row("one frame", "3", "0 1 2 0 1", "0 0 0 0 0", "0 0 0 0 0", "1 2 3 1 2");
    row("from the beginning", "1 2", "0 1 2 0 1", "0 1 1 0 1", "1 0 0 1 0", "1 1 2 1 1");
    row("with a loop point", "3 2l", "0 1 2 3 4 3 4 3", "0 0 0 1 1 1 1 1", "1 1 1 1 1 1 1 1",
        "1 2 3 1 2 1 2 1");
    row("loop point in the middle", "1 1l 1", "0 1 2 1 2", "0 1 2 1 2", "1 2 1 2 1", "1 1 1 1 1");
    row("without an end", "2 -1 3", "0 1 2 3 4 5 6", "0 0 1 1 1 1 1", "1 1 2 2 2 2 2",
        "1 2 1 2 3 4 5");
    row("without an end in front of the loop point", "1 -1 3l", "0 1 2 3", "0 1 1 1", "1 2 2 2",
        "1 1 2 3");
    row("a frame of no time", "1 0 1", "0 1 0 1", "0 2 0 2", "1 0 1 0", "1 1 1 1");
    row("no time at all", "0 0", "0 0 0", "1 1 1", "0 0 0", "1 1 1");
    row("sums beyond an int", "2147483647 2147483647l 1", "0 1 2", "0 0 0", "1 1 1", "1 2 3");
}

void TestAnimationList::playerWalksTheFrames()
{
    QFETCH(QString, delays);
    QString text = QStringLiteral("anim a\n");
    for (const QString &delay : delays.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const bool isLoopPoint = delay.endsWith(QLatin1Char('l'));
        text += TestFrame::line(QStringLiteral("f"),
                                delay.left(delay.size() - int(isLoopPoint)).toInt(), isLoopPoint)
            + QLatin1Char('\n');
    }
    Definition def(text);
    const AnimationCode *const animation = def.animations->at(0);
    const auto number = [animation](const FrameCode *frame) {
        return frame ? QString::number(animation->indexOfFrame(frame)) : QStringLiteral("-");
    };

    AnimationPlayer player;
    QVERIFY(player.change(def.animations, 0, false));
    QFETCH(QString, times);
    for (const char *round : {"first", "after reset()"}) {
        QCOMPARE(player.frameTime(), 0u);
        QStringList given;
        QStringList frames;
        QStringList next;
        QStringList frameTimes;
        for (int i = times.count(QLatin1Char(' ')); i >= 0; --i) {
            given.append(QString::number(player.tick()));
            frames.append(number(player.currentFrame()));
            next.append(number(player.nextFrame()));
            frameTimes.append(QString::number(player.frameTime()));
        }
        QVERIFY2(given.join(QLatin1Char(' ')) == times, round);
        QTEST(frames.join(QLatin1Char(' ')), "frames");
        QTEST(next.join(QLatin1Char(' ')), "next");
        QTEST(frameTimes.join(QLatin1Char(' ')), "frameTimes");
        player.reset();
    }
}

void TestAnimationList::playerStops()
{
    Definition def(QStringLiteral("anim a\nframe f 5\nanim b\nframe g 5\n"));
    TestAnimations *const list = def.animations;
    const FrameCode *const f = list->at(0)->frameAt(0);
    AnimationPlayer player;
    QVERIFY(!player.currentFrame() && !player.nextFrame());
    QCOMPARE(player.tick(), 0);

    struct Step
    {
        Vela::Animations *animations;
        int index;
        bool force;
        bool plays;
    };
    const Step steps[] = {
        {list, 0, false, true},    {list, 0, true, true},   {list, 1, false, true},
        {list, 0, false, true},    {list, 0, false, false}, {list, 0, false, true},
        {nullptr, 0, true, false}, {list, 0, false, true},  {list, -1, true, false},
        {list, 2, true, false},    {list, 3, true, false}};
    for (const Step &step : steps) {
        player.tick();
        QCOMPARE(player.change(step.animations, step.index, step.force), step.plays);
        QCOMPARE(player.frameTime(), 0u);
        QCOMPARE(player.currentFrame() != nullptr, step.plays);
        QCOMPARE(player.currentFrame() == f, step.plays && step.index == 0);
        QCOMPARE(player.tick(), 0);
        QCOMPARE(player.tick(), step.plays ? 1 : 0);
    }
}

void TestAnimationList::copiesOfAPlayerMoveTogether()
{
    Definition def(QStringLiteral("anim a\nframe f 1\nframe g 5\n"));
    AnimationPlayer player;
    player.change(def.animations, 0, false);
    player.tick();
    AnimationPlayer copy;
    copy = player;
    QCOMPARE(copy.currentFrame(), player.currentFrame());
    QCOMPARE(copy.frameTime(), 1u);
    QCOMPARE(copy.tick(), 1);
    QCOMPARE(player.tick(), 2);
    QCOMPARE(player.currentFrame(), def.animations->at(0)->frameAt(1));
    QCOMPARE(copy.frameTime(), 1u);
}

void TestAnimationList::playerOutlivesTheText()
{
    auto def =
        std::make_unique<Definition>(QStringLiteral("anim a\nframe f 2\nframe g 2\nframe h 2\n"));
    const auto frame = [&def](unsigned int index) {
        return def->animations->at(0)->frameAt(index);
    };
    AnimationPlayer player;
    player.change(def->animations, 0, false);
    for (int time = 0; time < 5; ++time)
        QCOMPARE(player.tick(), time);
    QCOMPARE(player.currentFrame(), frame(2));

    // The frame that is shown goes, and with it the one to come; what is left is shown.
    def->edit(2, 20, QString());
    QCOMPARE(def->outline(), QStringLiteral("a(f)"));
    QCOMPARE(player.tick(), 5);
    QCOMPARE(player.currentFrame(), frame(0));
    QCOMPARE(player.nextFrame(), frame(0));

    // A frame that would begin later now stays as long as it is there.
    def->edit(2, 0, QStringLiteral("frame k 2\n"));
    QCOMPARE(player.tick(), 0);
    QCOMPARE(player.tick(), 1);
    QCOMPARE(player.tick(), 2);
    QCOMPARE(player.currentFrame(), frame(1));
    frame(0)->setProperty(QStringLiteral("Delay"), 90);
    QCOMPARE(player.tick(), 3);
    QCOMPARE(player.currentFrame(), frame(1));

    def->animations->at(0)->removeFrame(1);
    def->animations->at(0)->removeFrame(0);
    player.tick();
    QVERIFY(!player.currentFrame() && !player.nextFrame());
    def->document.reset();
    QCOMPARE(player.tick(), 0);
    def.reset();
    QCOMPARE(player.tick(), 0);
    QVERIFY(!player.currentFrame());
}

QTEST_MAIN(TestAnimationList)
#include "tst_animations.moc"

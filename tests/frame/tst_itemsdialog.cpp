// SPDX-License-Identifier: MIT
#include "frame/itemsdialog.h"

#include "frame/resetscrollpos.h"
#include "support/dialoganswerer.h"
#include "support/recordinghost.h"

#include <QDialogButtonBox>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QStringListModel>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <algorithm>

Q_DECLARE_METATYPE(QDialogButtonBox::StandardButton)

using Vela::ItemsDialog;

namespace {

QStringList names(int count)
{
    QStringList result;
    for (int i = 0; i < count; ++i)
        result.append(QStringLiteral("item %1").arg(i));
    return result;
}

QVector<int> rows(const ItemsDialog *dialog)
{
    QVector<int> result;
    const QModelIndexList selected = dialog->selectedRows();
    for (const QModelIndex &index : selected)
        result.append(index.column() == 0 ? index.row() : -1);
    std::sort(result.begin(), result.end());
    return result;
}

} // namespace

class TestItemsDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void opensWithTitleIconAndSize();
    void givenRowIsSelectedAndOnTop_data();
    void givenRowIsSelectedAndOnTop();
    void buttonsChangeTheSelection();
    void listTakesExtendedSelection();
    void okAndCancelEndTheDialog_data();
    void okAndCancelEndTheDialog();
    void emptyOrLostModelsSelectNothing();
    void releaseDeletes();
    void scrollPositionComesBackAfterAReset();
    void scrollPositionOfALostViewIsDropped();

private:
    void open(QAbstractItemModel *model, int row);
    void click(const char *button);
    QListView *list() const;

    std::unique_ptr<RecordingHost> m_host;
    std::unique_ptr<ItemsDialog> m_dialog;
};

void TestItemsDialog::init()
{
    m_host = std::make_unique<RecordingHost>();
}

void TestItemsDialog::cleanup()
{
    m_dialog.reset();
    m_host.reset();
}

void TestItemsDialog::open(QAbstractItemModel *model, int row)
{
    m_dialog.reset(
        m_host->itemsDialog(nullptr, "pal_save", QStringLiteral("Save palettes"), model, row));
    m_dialog->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_dialog.get()));
}

void TestItemsDialog::click(const char *button)
{
    auto *found = m_dialog->findChild<QPushButton *>(QLatin1String(button));
    QVERIFY(found);
    QTest::mouseClick(found, Qt::LeftButton);
}

QListView *TestItemsDialog::list() const
{
    return m_dialog->findChild<QListView *>(QStringLiteral("list"));
}

void TestItemsDialog::opensWithTitleIconAndSize()
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::red);
    m_host->icons.insert(QStringLiteral("pal_save"), QIcon(pixmap));
    QStringListModel model(names(3));
    open(&model, -1);
    QCOMPARE(m_dialog->windowTitle(), QStringLiteral("Save palettes"));
    QCOMPARE(m_host->iconsAsked, QStringList{QStringLiteral("pal_save")});
    QVERIFY(!m_dialog->windowIcon().isNull());
    QVERIFY(m_dialog->width() >= 195);
    // A dialog sizes itself to two thirds of the screen at most.
    QCOMPARE(m_dialog->height(), qMin(456, m_dialog->screen()->geometry().height() * 2 / 3));
    QCOMPARE(m_dialog->sizeHint().height(), 456);
    QVERIFY(!m_dialog->hasSelection());
    QCOMPARE(list()->model(), static_cast<QAbstractItemModel *>(&model));
}

void TestItemsDialog::givenRowIsSelectedAndOnTop_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QVector<int>>("selected");
    QTest::newRow("first") << 0 << QVector<int>{0};
    QTest::newRow("middle") << 40 << QVector<int>{40};
    QTest::newRow("none") << -1 << QVector<int>{};
    QTest::newRow("behind the end") << 500 << QVector<int>{};
}

void TestItemsDialog::givenRowIsSelectedAndOnTop()
{
    QFETCH(int, row);
    QStringListModel model(names(100));
    open(&model, row);
    QTEST(rows(m_dialog.get()), "selected");
    if (m_dialog->hasSelection())
        QTRY_COMPARE(list()->visualRect(model.index(row)).top(), 0);
    else
        QCOMPARE(list()->verticalScrollBar()->value(), 0);
}

void TestItemsDialog::buttonsChangeTheSelection()
{
    // Rows count, however many columns the model has.
    QStandardItemModel model(4, 2);
    open(&model, 1);
    QCOMPARE(rows(m_dialog.get()), QVector<int>{1});
    click("invBut");
    QCOMPARE(rows(m_dialog.get()), (QVector<int>{0, 2, 3}));
    click("clearBut");
    QVERIFY(!m_dialog->hasSelection());
    click("invBut");
    QCOMPARE(rows(m_dialog.get()), (QVector<int>{0, 1, 2, 3}));
    click("invBut");
    QVERIFY(!m_dialog->hasSelection());
    click("allBut");
    QCOMPARE(rows(m_dialog.get()), (QVector<int>{0, 1, 2, 3}));
}

void TestItemsDialog::listTakesExtendedSelection()
{
    QStringListModel model(names(6));
    open(&model, -1);
    const auto clickRow = [&](int row, Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, modifiers,
                          list()->visualRect(model.index(row)).center());
    };
    clickRow(1, Qt::NoModifier);
    clickRow(3, Qt::ShiftModifier);
    clickRow(5, Qt::ControlModifier);
    QCOMPARE(rows(m_dialog.get()), (QVector<int>{1, 2, 3, 5}));
    clickRow(4, Qt::NoModifier);
    QCOMPARE(rows(m_dialog.get()), QVector<int>{4});
}

void TestItemsDialog::okAndCancelEndTheDialog_data()
{
    QTest::addColumn<QDialogButtonBox::StandardButton>("button");
    QTest::addColumn<int>("result");
    QTest::newRow("OK") << QDialogButtonBox::Ok << int(QDialog::Accepted);
    QTest::newRow("Cancel") << QDialogButtonBox::Cancel << int(QDialog::Rejected);
}

void TestItemsDialog::okAndCancelEndTheDialog()
{
    QFETCH(QDialogButtonBox::StandardButton, button);
    DialogAnswerer answerer;
    QStringListModel model(names(3));
    m_dialog.reset(m_host->itemsDialog(nullptr, "icon", QString(), &model, 2));
    answerer.handle([=](QDialog *dialog) {
        QTest::mouseClick(dialog->findChild<QDialogButtonBox *>()->button(button), Qt::LeftButton);
    });
    QTEST(m_dialog->exec(), "result");
    QCOMPARE(rows(m_dialog.get()), QVector<int>{2});
}

void TestItemsDialog::emptyOrLostModelsSelectNothing()
{
    open(nullptr, 0);
    click("invBut");
    click("allBut");
    QVERIFY(!m_dialog->hasSelection());

    auto model = std::make_unique<QStringListModel>();
    open(model.get(), 0);
    click("invBut");
    QVERIFY(!m_dialog->hasSelection());
    model->setStringList(names(2));
    click("allBut");
    QVERIFY(m_dialog->hasSelection());
    model.reset();
    click("invBut");
    QVERIFY(!m_dialog->hasSelection());
}

void TestItemsDialog::releaseDeletes()
{
    QStringListModel model(names(1));
    const QPointer<ItemsDialog> dialog(m_host->itemsDialog(nullptr, "icon", QString(), &model, 0));
    dialog->release();
    QVERIFY(dialog.isNull());
}

// A tree that is scrolled down loses its place when its model is reset; the position comes back
// once the view has laid out the new rows.
void TestItemsDialog::scrollPositionComesBackAfterAReset()
{
    QStringListModel model(names(200));
    QTreeView view;
    view.setModel(&model);
    view.resize(200, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    view.verticalScrollBar()->setValue(77);
    const QPointer<Vela::Private::ResetScrollPos> keeper(
        new Vela::Private::ResetScrollPos(&view, view.verticalScrollBar()->value()));
    model.setStringList(names(150));
    view.verticalScrollBar()->setValue(0);
    QTimer::singleShot(0, keeper, &Vela::Private::ResetScrollPos::reset);
    QTRY_VERIFY(keeper.isNull());
    QCOMPARE(view.verticalScrollBar()->value(), 77);
}

void TestItemsDialog::scrollPositionOfALostViewIsDropped()
{
    auto view = std::make_unique<QTreeView>();
    const QPointer<Vela::Private::ResetScrollPos> keeper(
        new Vela::Private::ResetScrollPos(view.get(), 5));
    view.reset();
    keeper->reset();
    QVERIFY(!keeper.isNull());
    QTRY_VERIFY(keeper.isNull());
}

QTEST_MAIN(TestItemsDialog)

#include "tst_itemsdialog.moc"

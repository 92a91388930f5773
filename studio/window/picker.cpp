// SPDX-License-Identifier: MIT
#include "studio/window/picker.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

namespace Studio {

namespace {

constexpr int DetailRole = Qt::UserRole + 1;
constexpr int ShownRows = 12;
constexpr int MostRows = 200; // nobody scrolls further instead of typing

QIcon emptyIcon()
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    return QIcon(pixmap);
}

/// A row with a detail at its right end.
class DetailDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        const bool selected = option.state & QStyle::State_Selected;
        painter->save();
        painter->setPen(
            option.palette.color(selected ? QPalette::HighlightedText : QPalette::PlaceholderText));
        painter->drawText(option.rect.adjusted(0, 0, -8, 0), Qt::AlignRight | Qt::AlignVCenter,
                          index.data(DetailRole).toString());
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 8);
    }
};

} // namespace

Picker::Picker(const QString &title, const QString &hint, const QVector<Entry> &entries,
               QWidget *parent)
    : QDialog(parent)
    , m_entries(entries)
    , m_typed(new QLineEdit)
    , m_list(new QListWidget)
{
    setObjectName(QStringLiteral("picker"));
    setWindowTitle(title);
    m_typed->setPlaceholderText(hint);
    m_typed->setAccessibleName(hint);
    m_typed->installEventFilter(this);
    m_list->setAccessibleName(title);
    m_list->setItemDelegate(new DetailDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setIconSize(QSize(16, 16));
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_typed);
    layout->addWidget(m_list);
    connect(m_typed, &QLineEdit::textChanged, this, &Picker::list);
    connect(m_list, &QListWidget::itemClicked, this, &Picker::choose);
    list();
    const int row = qMax(24, m_list->sizeHintForRow(0));
    resize(560, 72 + ShownRows * row);
    const QRect window = parent->geometry();
    move(window.center().x() - width() / 2, window.top() + 80);
}

int Picker::rank(const QString &text, const QString &typed)
{
    const int whole = text.indexOf(typed, 0, Qt::CaseInsensitive);
    if (whole >= 0) {
        const bool atWord = whole == 0 || !text.at(whole - 1).isLetterOrNumber();
        return whole + (atWord ? 0 : 100);
    }
    int from = 0;
    int gaps = 0;
    for (const QChar letter : typed) {
        const int place = text.indexOf(letter, from, Qt::CaseInsensitive);
        if (place < 0)
            return -1;
        gaps += place - from;
        from = place + 1;
    }
    return 200 + gaps;
}

int Picker::pick()
{
    return exec() == Accepted ? m_chosen : -1;
}

bool Picker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    const int rows = m_list->count();
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Down:
    case Qt::Key_Up: {
        const int step = static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down ? 1 : rows - 1;
        if (rows > 0)
            m_list->setCurrentRow((m_list->currentRow() + step) % rows);
        return true;
    }
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(m_list->currentItem());
        return true;
    default:
        return QDialog::eventFilter(watched, event);
    }
}

void Picker::list()
{
    const QString typed = m_typed->text().trimmed();
    QVector<QPair<int, int>> found; // how well it fits, and which entry
    for (int entry = 0; entry < m_entries.size(); ++entry) {
        const int fit = rank(m_entries.at(entry).text, typed);
        if (fit >= 0)
            found.append({fit, entry});
    }
    const auto shown = found.begin() + qMin(found.size(), MostRows);
    std::partial_sort(found.begin(), shown, found.end());
    m_list->clear();
    for (auto match = found.begin(); match != shown; ++match) {
        const Entry &entry = m_entries.at(match->second);
        auto *item =
            new QListWidgetItem(entry.icon.isNull() ? emptyIcon() : entry.icon, entry.text, m_list);
        item->setData(DetailRole, entry.detail);
        item->setData(Qt::UserRole, match->second);
    }
    m_list->setCurrentRow(0);
}

void Picker::choose(QListWidgetItem *item)
{
    if (!item)
        return;
    m_chosen = item->data(Qt::UserRole).toInt();
    accept();
}

} // namespace Studio

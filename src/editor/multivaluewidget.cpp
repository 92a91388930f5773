// SPDX-License-Identifier: MIT
#include "editor/multivaluewidget.h"

#include "editor/propertyvalueedit.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QVariant>
#include <QVector>

namespace Vela {

namespace {

const int badgeMargin = 4; // pixels beside the text
const int itemSpacing = 4;

const char *const badgeColors[] = {"F00", "008000", "00F", "C86400"};

const char badgeStyle[] = "QWidget#BL { border: none; border-radius: 3px; background: #%1; } "
                          "QWidget#BL QLabel { color: #FFF; }";

} // namespace

/// The items of a MultiValueWidget.
class MultiValueWidgetPrivate
{
public:
    struct Item
    {
        QWidget *parent = nullptr;
        QLabel *label = nullptr;
        QPointer<QWidget> widget;
    };

    Item newItem(MultiValueWidget *owner, int position) const;
    void layOut();

    QVector<Item> items;
    QBoxLayout *layout = nullptr;
    bool folded = true;
};

MultiValueWidgetPrivate::Item MultiValueWidgetPrivate::newItem(MultiValueWidget *owner,
                                                               int position) const
{
    Item item;
    item.parent = new QWidget(owner);
    auto *badge = new QWidget(item.parent);
    badge->setObjectName(QStringLiteral("BL"));
    badge->setAttribute(Qt::WA_StyledBackground);
    const int colors = int(std::size(badgeColors));
    badge->setStyleSheet(
        QString::fromLatin1(badgeStyle).arg(QLatin1String(badgeColors[position % colors])));
    item.label = new QLabel(badge);
    item.label->setTextFormat(Qt::PlainText);
    item.label->setAlignment(Qt::AlignCenter);
    auto *inBadge = new QHBoxLayout(badge);
    inBadge->setContentsMargins(badgeMargin, 0, badgeMargin, 0);
    inBadge->addWidget(item.label);
    auto *row = new QHBoxLayout(item.parent);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(itemSpacing);
    row->addWidget(badge);
    return item;
}

void MultiValueWidgetPrivate::layOut()
{
    layout->setDirection(folded ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    // One under the other, the editors begin at the same place.
    int width = 0;
    for (const Item &item : qAsConst(items))
        width = qMax(width, item.label->sizeHint().width());
    for (const Item &item : qAsConst(items))
        item.label->setMinimumWidth(folded ? 0 : width);
}

MultiValueWidget::MultiValueWidget(unsigned int count, QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<MultiValueWidgetPrivate>())
{
    d->layout = new QBoxLayout(QBoxLayout::LeftToRight, this);
    d->layout->setContentsMargins(0, 0, 0, 0);
    d->layout->setSpacing(itemSpacing);
    for (int i = 0; i < int(count); ++i) {
        d->items.append(d->newItem(this, i));
        d->layout->addWidget(d->items.last().parent);
    }
}

MultiValueWidget::~MultiValueWidget() = default;

unsigned int MultiValueWidget::count() const
{
    return unsigned(d->items.size());
}

QLabel *MultiValueWidget::itemLabel(unsigned int item) const
{
    return d->items.value(int(item)).label;
}

QWidget *MultiValueWidget::itemParent(unsigned int item) const
{
    return d->items.value(int(item)).parent;
}

QWidget *MultiValueWidget::itemWidget(unsigned int item) const
{
    return d->items.value(int(item)).widget;
}

void MultiValueWidget::setItemWidget(unsigned int item, QWidget *widget)
{
    if (item >= count() || !widget)
        return;
    MultiValueWidgetPrivate::Item &changed = d->items[int(item)];
    if (changed.widget == widget)
        return;
    if (changed.widget) {
        changed.widget->hide();
        changed.widget->deleteLater();
    }
    changed.widget = widget;
    changed.label->setBuddy(widget);
    auto *row = static_cast<QBoxLayout *>(changed.parent->layout());
    row->addWidget(widget, 1);
    if (item == 0)
        setFocusProxy(widget);
}

bool MultiValueWidget::isFolded() const
{
    return d->folded;
}

void MultiValueWidget::setFolded(bool folded)
{
    if (folded == d->folded)
        return;
    d->folded = folded;
    if (const auto *edit = property("edit").value<PropertyValueEdit *>())
        edit->retranslateOwn(this);
    d->layOut();
}

} // namespace Vela

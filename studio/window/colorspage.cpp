// SPDX-License-Identifier: MIT
#include "studio/window/colorspage.h"

#include "studio/colors.h"

#include <QColorDialog>
#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Studio {

namespace {

enum Column { TextColumn, ValueColumn };

constexpr int KeyRole = Qt::UserRole;
constexpr int SwatchSize = 16;

QIcon swatch(const QColor &color, const QPalette &palette)
{
    QPixmap pixmap(SwatchSize, SwatchSize);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(palette.color(QPalette::Text));
    painter.drawRect(0, 0, SwatchSize - 1, SwatchSize - 1);
    QIcon icon(pixmap);
    // A selected row would tint it.
    icon.addPixmap(pixmap, QIcon::Selected);
    return icon;
}

} // namespace

ColorsPage::ColorsPage(Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_colors(colors)
    , m_list(new QTreeWidget)
    , m_choose(new QPushButton(tr("&Change...")))
    , m_reset(new QPushButton(tr("&Default")))
{
    m_list->setObjectName(QStringLiteral("colors"));
    m_list->setAccessibleName(tr("Colours"));
    m_list->setHeaderLabels({tr("Colour of"), tr("Value")});
    m_list->setRootIsDecorated(false);
    m_list->setAlternatingRowColors(true);
    m_list->setUniformRowHeights(true);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(TextColumn, QHeaderView::Stretch);
    m_choose->setObjectName(QStringLiteral("changeColor"));
    m_reset->setObjectName(QStringLiteral("resetColor"));
    m_choose->setAutoDefault(false);
    m_reset->setAutoDefault(false);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_choose);
    buttons->addWidget(m_reset);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    layout->addLayout(buttons);
    connect(m_list, &QTreeWidget::itemActivated, this, &ColorsPage::choose);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &ColorsPage::updateButtons);
    connect(m_choose, &QPushButton::clicked, this, &ColorsPage::choose);
    connect(m_reset, &QPushButton::clicked, this, &ColorsPage::resetCurrent);
    fill();
}

void ColorsPage::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    // The defaults of a light and of a dark palette are others.
    if (event->type() == QEvent::PaletteChange)
        showRows();
}

void ColorsPage::fill()
{
    for (const ColorInfo &info : Colors::table()) {
        auto *item = new QTreeWidgetItem(m_list, {Colors::text(info)});
        item->setData(TextColumn, KeyRole, QLatin1String(info.key));
    }
    showRows();
    m_list->setCurrentItem(m_list->topLevelItem(0));
}

void ColorsPage::showRow(QTreeWidgetItem *item)
{
    const QString key = item->data(TextColumn, KeyRole).toString();
    const QColor color = m_colors.color(key);
    QFont changed = font();
    changed.setBold(m_colors.isChosen(key));
    item->setIcon(TextColumn, swatch(color, palette()));
    item->setText(ValueColumn, color.name());
    item->setFont(ValueColumn, changed);
}

void ColorsPage::showRows()
{
    for (int row = 0; row < m_list->topLevelItemCount(); ++row)
        showRow(m_list->topLevelItem(row));
    updateButtons();
}

void ColorsPage::choose()
{
    const QTreeWidgetItem *item = m_list->currentItem();
    if (!item)
        return;
    const QColor chosen =
        QColorDialog::getColor(m_colors.color(currentKey()), this, item->text(TextColumn),
                               QColorDialog::DontUseNativeDialog);
    if (chosen.isValid())
        m_colors.setColor(currentKey(), chosen);
    showRows();
}

void ColorsPage::resetCurrent()
{
    m_colors.setColor(currentKey(), QColor());
    showRows();
}

void ColorsPage::updateButtons()
{
    m_choose->setEnabled(m_list->currentItem());
    m_reset->setEnabled(m_colors.isChosen(currentKey()));
}

QString ColorsPage::currentKey() const
{
    const QTreeWidgetItem *item = m_list->currentItem();
    return item ? item->data(TextColumn, KeyRole).toString() : QString();
}

} // namespace Studio

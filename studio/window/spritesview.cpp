// SPDX-License-Identifier: MIT
#include "studio/window/spritesview.h"

#include "image/palette.h"
#include "image/sprite.h"
#include "image/sprites.h"
#include "studio/window/imagepreview.h"
#include "studio/window/notelabel.h"
#include "studio/window/palettegrid.h"
#include "studio/window/spritesmodel.h"

#include <QItemSelectionModel>
#include <QLabel>
#include <QListView>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>

namespace Studio {

namespace {

constexpr int PictureSide = 80;
constexpr int CellWidth = 104;
constexpr int Space = 8;

QVector<QRgb> colorsOf(const Vela::Sprite *sprite)
{
    Vela::RGBA table[256];
    const Vela::Palette *const palette = sprite ? sprite->palette() : nullptr;
    if (!palette || !palette->colorTable(table))
        return {};
    QVector<QRgb> colors;
    std::transform(std::begin(table), std::end(table), std::back_inserter(colors), &Vela::toRgb);
    return colors;
}

QString identifierOf(const Vela::PropertyItem &item)
{
    return item.property(QStringLiteral("Identifier")).toString();
}

} // namespace

SpritesView::SpritesView(QWidget *parent)
    : QWidget(parent)
    , m_model(new SpritesModel(this))
    , m_list(new QListView)
    , m_image(new ImagePreview)
    , m_words(new NoteLabel)
    , m_paletteName(new QLabel)
    , m_palette(new PaletteGrid)
{
    m_list->setObjectName(QStringLiteral("spriteList"));
    m_list->setAccessibleName(tr("Sprites of the file"));
    m_list->setModel(m_model);
    m_list->setViewMode(QListView::IconMode);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setMovement(QListView::Static);
    m_list->setUniformItemSizes(true);
    m_list->setIconSize(QSize(PictureSide, PictureSide));
    m_list->setGridSize(QSize(CellWidth, PictureSide + 2 * Space + fontMetrics().lineSpacing()));
    m_image->setObjectName(QStringLiteral("spriteImage"));
    m_image->setAccessibleName(tr("Current sprite"));
    m_words->setObjectName(QStringLiteral("spriteWords"));
    m_words->setWordWrap(true);
    m_words->setTextFormat(Qt::PlainText);
    m_paletteName->setObjectName(QStringLiteral("paletteName"));
    m_paletteName->setTextFormat(Qt::PlainText);
    m_palette->setObjectName(QStringLiteral("paletteGrid"));

    auto *const side = new QWidget;
    auto *const column = new QVBoxLayout(side);
    column->setContentsMargins(Space, 0, Space, Space);
    column->addWidget(m_image, 1);
    column->addWidget(m_words);
    column->addWidget(m_paletteName);
    column->addWidget(m_palette);
    auto *const parts = new QSplitter;
    parts->addWidget(m_list);
    parts->addWidget(side);
    parts->setStretchFactor(0, 2);
    parts->setStretchFactor(1, 1);
    parts->setChildrenCollapsible(false);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(parts);

    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &SpritesView::onCurrentChanged);
    connect(m_model, &QAbstractItemModel::modelReset, this, [this] {
        if (m_model->sprites())
            selectRow(int(m_model->sprites()->selected()));
        showCurrent();
    });
    connect(m_model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex &, const QModelIndex &, const QVector<int> &roles) {
                if (roles.isEmpty())
                    showCurrent();
            });
}

void SpritesView::setSprites(Vela::Sprites *sprites)
{
    if (sprites == m_model->sprites())
        return;
    if (m_model->sprites())
        disconnect(m_model->sprites(), nullptr, this, nullptr);
    m_model->setSprites(sprites);
    if (sprites)
        connect(sprites, &Vela::Sprites::modified, this, &SpritesView::edited);
}

Vela::Sprite *SpritesView::currentSprite() const
{
    return m_model->sprite(m_list->currentIndex());
}

SpritesModel *SpritesView::model() const
{
    return m_model;
}

QListView *SpritesView::list() const
{
    return m_list;
}

void SpritesView::showEvent(QShowEvent *event)
{
    m_model->setPictureSize(PictureSide, devicePixelRatioF());
    QWidget::showEvent(event);
}

void SpritesView::onCurrentChanged(const QModelIndex &index)
{
    if (m_model->sprites() && index.isValid())
        m_model->sprites()->setSelected(unsigned(index.row()));
    showCurrent();
}

void SpritesView::selectRow(int row)
{
    m_list->setCurrentIndex(m_model->index(std::min(row, m_model->rowCount() - 1)));
}

void SpritesView::showCurrent()
{
    const Vela::Sprite *const sprite = currentSprite();
    m_image->setImage(sprite ? shownImage(*sprite) : QImage());
    m_words->clear();
    if (sprite) {
        const Vela::ImageInfo info = sprite->imageProperties();
        const QPoint axis = sprite->axis();
        m_words->setText(sprite->isEmpty() ? tr("%1: empty").arg(identifierOf(*sprite))
                                           : tr("%1: %2 by %3 pixels, axis at %4, %5")
                                                 .arg(identifierOf(*sprite))
                                                 .arg(info.width)
                                                 .arg(info.height)
                                                 .arg(axis.x())
                                                 .arg(axis.y()));
    }
    const QVector<QRgb> colors = colorsOf(sprite);
    m_palette->setColors(colors);
    m_palette->setVisible(!colors.isEmpty());
    m_paletteName->setText(!sprite ? QString()
                               : colors.isEmpty()
                               ? tr("No palette")
                               : tr("Palette %1").arg(identifierOf(*sprite->palette())));
    Q_EMIT currentChanged();
}

} // namespace Studio

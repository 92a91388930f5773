// SPDX-License-Identifier: MIT
#include "studio/window/spritesmodel.h"

#include "image/sprite.h"
#include "image/sprites.h"

#include <QElapsedTimer>
#include <QPainter>

#include <algorithm>

namespace Studio {

namespace {

constexpr int Slice = 8;                 // ms of work between two looks at what else there is to do
constexpr int KeptPictures = 100 * 1024; // KB, of 25 KB each at 80 pixels a side
constexpr int LongestQueue = 400;        // more than fit on a screen

} // namespace

QImage shownImage(const Vela::Sprite &sprite)
{
    QImage image = sprite.image();
    if (image.format() == QImage::Format_Indexed8 && image.colorCount() > 0)
        image.setColor(0, image.color(0) & RGB_MASK);
    return image;
}

SpritesModel::SpritesModel(QObject *parent)
    : QAbstractListModel(parent)
    , m_pictures(KeptPictures)
{
    m_filling.setInterval(0);
    connect(&m_filling, &QTimer::timeout, this, &SpritesModel::makePictures);
}

void SpritesModel::setSprites(Vela::Sprites *sprites)
{
    if (sprites == m_sprites)
        return;
    if (m_sprites)
        disconnect(m_sprites, nullptr, this, nullptr);
    beginResetModel();
    forgetPictures();
    m_sprites = sprites;
    m_count = sprites ? int(sprites->count()) : 0;
    endResetModel();
    if (!sprites)
        return;
    connect(sprites, &Vela::Sprites::changed, this, &SpritesModel::onChanged);
    connect(sprites, &QObject::destroyed, this, [this] {
        beginResetModel();
        forgetPictures();
        m_count = 0;
        endResetModel();
    });
}

Vela::Sprites *SpritesModel::sprites() const
{
    return m_sprites;
}

Vela::Sprite *SpritesModel::sprite(const QModelIndex &index) const
{
    return m_sprites && index.isValid() ? m_sprites->at(unsigned(index.row())) : nullptr;
}

void SpritesModel::setPictureSize(int side, qreal ratio)
{
    if (side == m_side && qFuzzyCompare(ratio, m_ratio))
        return;
    m_side = side;
    m_ratio = ratio;
    onChanged(false);
}

bool SpritesModel::isFilling() const
{
    return m_filling.isActive();
}

int SpritesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_count;
}

QVariant SpritesModel::data(const QModelIndex &index, int role) const
{
    const Vela::Sprite *const sprite = this->sprite(index);
    if (!sprite)
        return {};
    const QString name = sprite->property(QStringLiteral("Identifier")).toString();
    switch (role) {
    case Qt::DisplayRole:
        return name;
    case Qt::DecorationRole:
        return picture(index.row());
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole: {
        const Vela::ImageInfo info = sprite->imageProperties();
        return sprite->isEmpty()
            ? tr("Sprite %1, empty").arg(name)
            : tr("Sprite %1, %2 by %3 pixels").arg(name).arg(info.width).arg(info.height);
    }
    default:
        return {};
    }
}

// Where the count is the same the old pictures stand until there are new ones.
void SpritesModel::onChanged(bool count)
{
    if (!m_sprites)
        return forgetPictures();
    ++m_state;
    if (count || int(m_sprites->count()) != m_count) {
        beginResetModel();
        forgetPictures();
        m_count = int(m_sprites->count());
        endResetModel();
    } else if (m_count > 0) {
        Q_EMIT dataChanged(index(0), index(m_count - 1));
    }
}

void SpritesModel::forgetPictures()
{
    m_pictures.clear();
    m_wanted.clear();
    m_filling.stop();
}

QVariant SpritesModel::picture(int row) const
{
    const Picture *const made = m_pictures.object(row);
    if (made && made->state == m_state)
        return made->pixmap;
    m_wanted.removeOne(row);
    m_wanted.append(row);
    if (m_wanted.size() > LongestQueue)
        m_wanted.removeFirst();
    m_filling.start();
    if (made)
        return made->pixmap;
    // What keeps the place until then.
    QPixmap empty(QSize(m_side, m_side) * m_ratio);
    empty.setDevicePixelRatio(m_ratio);
    empty.fill(Qt::transparent);
    return empty;
}

void SpritesModel::makePictures()
{
    QElapsedTimer time;
    time.start();
    while (!m_wanted.isEmpty() && time.elapsed() < Slice) {
        const int row = m_wanted.takeLast();
        if (row >= m_count)
            continue;
        auto *const picture = new Picture{makePicture(row), m_state};
        const QSize size = picture->pixmap.size();
        m_pictures.insert(row, picture, std::max(1, size.width() * size.height() / 256));
        Q_EMIT dataChanged(index(row), index(row), {Qt::DecorationRole});
    }
    if (m_wanted.isEmpty())
        m_filling.stop();
}

// Pixels stay square: small images grow by whole factors, only large ones are smoothed.
QPixmap SpritesModel::makePicture(int row) const
{
    // A change that is under way may have fewer sprites than are told yet.
    const Vela::Sprite *const sprite = m_sprites->at(unsigned(row));
    const QImage image = sprite ? shownImage(*sprite) : QImage();
    const int side = int(m_side * m_ratio);
    QPixmap picture(side, side);
    picture.fill(Qt::transparent);
    if (!image.isNull()) {
        const int factor = side / std::max(image.width(), image.height());
        QSize size = image.size() * std::max(1, factor);
        if (factor < 1)
            size.scale(side, side, Qt::KeepAspectRatio);
        QRect place(QPoint(), size.expandedTo(QSize(1, 1)));
        place.moveCenter(picture.rect().center());
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, factor < 1);
        painter.drawImage(place, image);
    }
    picture.setDevicePixelRatio(m_ratio);
    return picture;
}

} // namespace Studio

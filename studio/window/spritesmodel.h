// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractListModel>
#include <QCache>
#include <QPixmap>
#include <QPointer>
#include <QSet>
#include <QTimer>
#include <QVector>

namespace Vela {
class Sprite;
class Sprites;
} // namespace Vela

namespace Studio {

/// The sprites of a file as a list of pictures with their identifiers. The pictures that a view
/// asks for are made while the program has nothing else to do, those that were asked for last
/// first.
class SpritesModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit SpritesModel(QObject *parent = nullptr);

    /// Shows \a sprites until the next call or their end; null shows none.
    void setSprites(Vela::Sprites *sprites);
    Vela::Sprites *sprites() const;
    /// Returns null for an invalid index.
    Vela::Sprite *sprite(const QModelIndex &index) const;
    /// Sets the room of a picture, in device pixels a pixel of the screen.
    void setPictureSize(int side, qreal ratio);
    /// Returns whether pictures that were asked for are yet to come.
    bool isFilling() const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    struct Picture
    {
        QPixmap pixmap;
        int state = 0;
    };

    void onChanged(bool count);
    void forgetPictures();
    QVariant picture(int row) const;
    void makePictures();
    QPixmap makePicture(int row) const;

    QPointer<Vela::Sprites> m_sprites;
    int m_count = 0;
    int m_side = 80;
    qreal m_ratio = 1;
    mutable QCache<int, Picture> m_pictures;
    int m_state = 0;               // of the sprites; a picture of another one is out of date
    mutable QVector<int> m_wanted; // rows, the most urgent one last
    mutable QTimer m_filling;
};

/// Returns a sprite's image as it is seen: with the palette's first colour transparent.
QImage shownImage(const Vela::Sprite &sprite);

} // namespace Studio

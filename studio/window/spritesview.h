// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class QListView;
class QModelIndex;

namespace Vela {
class Sprite;
class Sprites;
} // namespace Vela

namespace Studio {

class ImagePreview;
class PaletteGrid;
class SpritesModel;

/// The sprites of a file: all of them as small pictures, and beside them the current one as large
/// as fits, with its palette.
class SpritesView : public QWidget
{
    Q_OBJECT

public:
    explicit SpritesView(QWidget *parent = nullptr);

    /// Shows \a sprites, with the sprite that they have selected; null shows none. The same ones
    /// again change nothing.
    void setSprites(Vela::Sprites *sprites);
    /// Returns null if there is none.
    Vela::Sprite *currentSprite() const;
    SpritesModel *model() const;
    QListView *list() const;

Q_SIGNALS:
    /// Another sprite is the current one, or it has changed.
    void currentChanged();
    /// The file has changed.
    void edited();

protected:
    void showEvent(QShowEvent *event) override;

private:
    void onCurrentChanged(const QModelIndex &index);
    void selectRow(int row);
    void showCurrent();

    SpritesModel *m_model;
    QListView *m_list;
    ImagePreview *m_image;
    QLabel *m_words;
    QLabel *m_paletteName;
    PaletteGrid *m_palette;
};

} // namespace Studio

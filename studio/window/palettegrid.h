// SPDX-License-Identifier: MIT
#pragma once

#include <QVector>
#include <QWidget>

namespace Studio {

/// The colours of a palette, 16 in a row. The one under the pointer, or where the arrow keys have
/// gone, is named in a tool tip.
class PaletteGrid : public QWidget
{
    Q_OBJECT

public:
    explicit PaletteGrid(QWidget *parent = nullptr);

    /// Shows up to 256 colours; none shows an empty grid.
    void setColors(const QVector<QRgb> &colors);
    /// Returns the index of the colour at a place; -1 for none.
    int colorAt(QPoint place) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    int cellSide() const;
    QRect cell(int index) const;
    QString nameOf(int index) const;

    QVector<QRgb> m_colors;
    int m_current = 0; ///< where the arrow keys have gone
};

} // namespace Studio

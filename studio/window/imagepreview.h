// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QWidget>

namespace Studio {

/// An image over a checkered ground, as large as fits in whole multiples of its pixels.
class ImagePreview : public QWidget
{
    Q_OBJECT

public:
    explicit ImagePreview(QWidget *parent = nullptr);

    void setImage(const QImage &image);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRect imageRect() const;

    QImage m_image;
};

} // namespace Studio

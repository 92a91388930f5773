// SPDX-License-Identifier: MIT
#include "image/sprite.h"

#include "image/pixels_p.h"

#include <QStringList>

#include <cstring>
#include <limits>

namespace Vela {

namespace {

// Copies all pixels to a place inside an image of the same format.
void copyPixels(const QImage &source, QImage &target, int left, int top)
{
    const auto pixelBytes = static_cast<size_t>(source.depth() / 8);
    for (int y = 0; y < source.height(); ++y) {
        if (pixelBytes > 0) {
            std::memcpy(target.scanLine(top + y) + static_cast<size_t>(left) * pixelBytes,
                        source.constScanLine(y), static_cast<size_t>(source.width()) * pixelBytes);
            continue;
        }
        for (int x = 0; x < source.width(); ++x) // eight pixels a byte
            target.setPixel(left + x, top + y, static_cast<uint>(source.pixelIndex(x, y)));
    }
}

} // namespace

Sprite::~Sprite() = default;

QStringList Sprite::propertyNames() const
{
    return {QStringLiteral("Identifier")};
}

void Sprite::setImage(const QImage &image)
{
    setImage(image, ShareMode::Share);
}

QImage Sprite::aligned(QPoint axis, QPoint leftTop, QPoint rightBottom) const
{
    const QImage source = image();
    // Scripts may pass any numbers, so sums are wider than they are.
    const qint64 width = qint64(leftTop.x()) + rightBottom.x();
    const qint64 height = qint64(leftTop.y()) + rightBottom.y();
    const qint64 left = qint64(leftTop.x()) - axis.x();
    const qint64 top = qint64(leftTop.y()) - axis.y();
    const bool holdsSprite =
        left >= 0 && top >= 0 && left + source.width() <= width && top + source.height() <= height;
    if (source.isNull() || !holdsSprite || qMax(width, height) > std::numeric_limits<int>::max())
        return {};
    QImage target =
        makeImage(QSize(static_cast<int>(width), static_cast<int>(height)), source.format());
    if (target.isNull())
        return {};
    target.setColorTable(source.colorTable());
    std::memset(target.bits(), 0, static_cast<size_t>(target.sizeInBytes()));
    copyPixels(source, target, static_cast<int>(left), static_cast<int>(top));
    return target;
}

bool SubItem::parse(const QString &text, SubItem &item)
{
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 2)
        return false;
    bool ok = false;
    const int group = parts.at(0).trimmed().toInt(&ok);
    if (!ok)
        return false;
    item.group = group;
    const int image = parts.at(1).trimmed().toInt(&ok);
    if (ok)
        item.image = image;
    return ok;
}

} // namespace Vela

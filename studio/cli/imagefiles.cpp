// SPDX-License-Identifier: MIT
#include "studio/cli/imagefiles.h"

#include "image/imageformats.h"
#include "image/paletteobject.h"
#include "studio/cli/diskfiles.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace Studio {

namespace {

bool isAmong(const QByteArray &word, std::initializer_list<const char *> words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

QString text(const QByteArray &word)
{
    return QString::fromUtf8(word);
}

QImage::Format plainFormat(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_Mono:
    case QImage::Format_MonoLSB:
    case QImage::Format_Indexed8:
    case QImage::Format_Grayscale8:
        return QImage::Format_Indexed8;
    default:
        return image.hasAlphaChannel() ? QImage::Format_ARGB32 : QImage::Format_RGB32;
    }
}

bool hasTransparency(const QImage &image)
{
    if (!image.hasAlphaChannel())
        return false;
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < argb.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        if (std::any_of(row, row + argb.width(), [](QRgb color) { return qAlpha(color) < 255; }))
            return true;
    }
    return false;
}

} // namespace

ImageFormat ImageFormat::ofFile(const QString &name)
{
    return ofWord(QFileInfo(name).suffix());
}

ImageFormat ImageFormat::ofWord(const QString &word)
{
    using Vela::Extension;
    ImageFormat format;
    format.word = word.toUpper().toUtf8();
    const bool isImage = isAmong(format.word, {"PNG", "BMP", "GIF", "PCX"});
    format.loadsImages = isImage || hasExtension(Extension::ImageLoader, format.word);
    format.savesImages = isImage || hasExtension(Extension::ImageSaver, format.word);
    format.loadsPalettes = isImage || isAmong(format.word, {"ACT", "ACO", "ASE", "PAL", "TXT"})
        || hasExtension(Extension::PaletteLoader, format.word);
    format.savesPalettes =
        format.word == "ACT" || hasExtension(Extension::PaletteSaver, format.word);
    return format;
}

int transparentColor(const QVector<QRgb> &colors)
{
    const auto found =
        std::find_if(colors.begin(), colors.end(), [](QRgb color) { return qAlpha(color) == 0; });
    return found == colors.end() ? -1 : int(found - colors.begin());
}

QImage withOneTransparentColor(QImage image)
{
    const QVector<QRgb> colors = image.colorTable();
    const int transparent = transparentColor(colors);
    if (transparent < 0)
        return image;
    for (int y = 0; y < image.height(); ++y) {
        uchar *const row = image.scanLine(y);
        std::replace_if(
            row, row + image.width(),
            [&colors](uchar index) { return index < colors.size() && qAlpha(colors[index]) == 0; },
            uchar(transparent));
    }
    return image;
}

QImage readImage(const QString &file, QString *error)
{
    const ImageFormat format = ImageFormat::ofFile(file);
    QFile device;
    QImage image;
    if (!format.loadsImages)
        failFile(file, QStringLiteral("is of no format of images that can be read"), error);
    else if (!openFile(device, file, error))
        return {};
    else if (!Vela::loadImage(&device, format.word.constData(), image))
        failFile(file, QStringLiteral("is no %1 image").arg(text(format.word)), error);
    else if (image.format() != plainFormat(image))
        image = image.convertToFormat(plainFormat(image));
    return image;
}

bool encodeImage(const QImage &image, const QByteArray &format, QByteArray *bytes, QString *error)
{
    if (format == "GIF" && image.format() != QImage::Format_Indexed8) {
        *error = QStringLiteral("a GIF holds 256 colors of a palette at most, and this image has "
                                "no palette");
        return false;
    }
    QBuffer device(bytes);
    device.open(QIODevice::WriteOnly);
    const QImage written = format == "GIF" ? withOneTransparentColor(image) : image;
    if (Vela::saveImage(&device, format.constData(), written))
        return true;
    *error =
        QStringLiteral("%1 by %2 pixels cannot be written as %3")
            .arg(QString::number(image.width()), QString::number(image.height()), text(format));
    return false;
}

QString lostTransparency(QImage image, const QByteArray &format)
{
    QVector<QRgb> colors = image.colorTable();
    QString loss;
    if (format == "BMP") {
        loss = QStringLiteral("a BMP holds no transparency");
    } else if (format == "PCX" && !colors.isEmpty()) {
        loss = QStringLiteral("a PCX with a palette holds no transparency");
        colors.first() |= ~RGB_MASK;
    } else if (format == "GIF") {
        loss = QStringLiteral("a GIF holds no partial transparency");
        for (QRgb &color : colors)
            color |= qAlpha(color) == 0 ? ~RGB_MASK : 0;
    } else {
        return {};
    }
    image.setColorTable(colors);
    return hasTransparency(image) ? loss : QString();
}

bool ColorTable::read(const QString &file, QString *error)
{
    const ImageFormat format = ImageFormat::ofFile(file);
    if (!format.loadsPalettes)
        return failFile(file, QStringLiteral("is of no format of palettes that can be read"),
                        error);
    if (format.loadsImages) {
        const QImage image = readImage(file, error);
        if (image.format() == QImage::Format_Indexed8)
            *this = ofImage(image);
        else if (!image.isNull())
            failFile(file, QStringLiteral("has no palette"), error);
        return error->isEmpty();
    }
    QFile device;
    if (!openFile(device, file, error))
        return false;
    Vela::PaletteObject palette(&colors);
    if (!palette.fromFile(&device, format.word.constData()))
        return failFile(file, QStringLiteral("is no %1 palette").arg(text(format.word)), error);
    while (count > 1 && colors[count - 1] == Vela::RGBA())
        --count;
    return true;
}

bool ColorTable::encode(const QByteArray &format, QByteArray *bytes, QString *error)
{
    QBuffer device(bytes);
    device.open(QIODevice::WriteOnly);
    Vela::PaletteObject palette(&colors);
    if (palette.toFile(&device, format.constData()))
        return true;
    *error = QStringLiteral("the palette cannot be written as %1").arg(text(format));
    return false;
}

ColorTable ColorTable::ofImage(const QImage &image)
{
    ColorTable result;
    std::fill(std::begin(result.colors), std::end(result.colors), Vela::RGBA{0, 0, 0, 255});
    const QVector<QRgb> table = image.colorTable();
    result.count = qBound(1, table.size(), 256);
    std::transform(table.begin(), table.begin() + qMin(table.size(), 256), result.colors,
                   Vela::toRGBA);
    return result;
}

} // namespace Studio

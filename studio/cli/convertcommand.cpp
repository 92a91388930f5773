// SPDX-License-Identifier: MIT
#include "image/imageoperations.h"
#include "studio/cli/colorreduction.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/diskfiles.h"

#include <QRegularExpression>
#include <QTransform>
#include <QtMath>

#include <cmath>
#include <optional>

namespace Studio {

namespace {

const struct
{
    const char *name;
    Vela::ImageResizeFilter filter;
} filters[] = {
    {"nearest", Vela::NearestFilter},        {"bilinear", Vela::BilinearFilter},
    {"epx-nearest", Vela::EpxNearestFilter}, {"epx-bilinear", Vela::EpxBilinearFilter},
    {"hq-nearest", Vela::HqNearestFilter},   {"hq-bilinear", Vela::HqBilinearFilter},
};

constexpr CallOptions imageOptions = Crop | Scale | Filter | Rotate | WithPalette | ColorCount;

/// What a call asks to do with an image, in the order in which it is done.
struct Changes
{
    bool isCropped = false;
    QSize size; ///< invalid to keep that of the image
    Vela::ImageResizeFilter filter = Vela::NearestFilter;
    double degrees = 0;
    std::optional<ColorTable> palette;
    int colors = 0; ///< 0 to keep them
};

bool readSize(const QString &text, QSize *size)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = pattern.match(text);
    *size = QSize(match.captured(1).toInt(), match.captured(2).toInt());
    return match.hasMatch() && !size->isEmpty() && size->width() <= 0xFFFF
        && size->height() <= 0xFFFF;
}

bool readFilter(const QString &text, Vela::ImageResizeFilter *filter)
{
    for (const auto &known : filters) {
        if (text != QLatin1String(known.name))
            continue;
        *filter = known.filter;
        return true;
    }
    return false;
}

bool readColors(const QString &text, int *colors)
{
    bool isNumber = false;
    *colors = text.toInt(&isNumber);
    return isNumber && *colors >= 2 && *colors <= 256;
}

/// Whole turns are left out of \a degrees.
bool readDegrees(const QString &text, double *degrees)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    *degrees = std::fmod(value, 360);
    return isNumber && std::abs(value) <= 3600;
}

/// Reads the options of a call. Returns false with a reason for the user.
bool readChanges(const Call &call, Changes *changes, QString *error)
{
    const auto has = [&call](CallOption option) { return call.options.testFlag(option); };
    changes->isCropped = has(Crop);
    if (has(Scale) && !readSize(call.values.value(Scale), &changes->size))
        *error = QStringLiteral("--scale needs a size such as 64x48, each side from 1 to 65535");
    else if (has(Filter) && !has(Scale))
        *error = QStringLiteral("--filter needs --scale");
    else if (has(Filter) && !readFilter(call.values.value(Filter), &changes->filter))
        *error = QStringLiteral("--filter needs one of nearest, bilinear, epx-nearest, "
                                "epx-bilinear, hq-nearest, hq-bilinear");
    else if (has(Rotate) && !readDegrees(call.values.value(Rotate), &changes->degrees))
        *error = QStringLiteral("--rotate needs a number of degrees from -3600 to 3600");
    else if (has(WithPalette) && has(ColorCount))
        *error = QStringLiteral("--palette and --colors cannot be given together");
    else if (has(ColorCount) && !readColors(call.values.value(ColorCount), &changes->colors))
        *error = QStringLiteral("--colors needs a number from 2 to 256");
    else if (has(WithPalette))
        changes->palette.emplace().read(call.values.value(WithPalette), error);
    return error->isEmpty();
}

QImage scaled(const QImage &image, QSize size, Vela::ImageResizeFilter filter)
{
    ColorTable table = ColorTable::ofImage(image);
    QImage result = Vela::resizeImage(image, size, table.colors, filter);
    result.setColorTable(image.colorTable());
    return result;
}

bool isQuarterTurn(double degrees)
{
    return std::fmod(degrees, 90) == 0;
}

/// Quarter turns keep each pixel.
QImage rotated(const QImage &image, double degrees)
{
    if (isQuarterTurn(degrees))
        return image.transformed(QTransform().rotate(degrees));
    const bool isIndexed = image.format() == QImage::Format_Indexed8;
    const int fill = isIndexed ? qMax(0, transparentColor(image.colorTable())) : 0;
    const QImage source = isIndexed ? image : image.convertToFormat(QImage::Format_ARGB32);
    QImage result = Vela::rotateImage(source, float(qDegreesToRadians(degrees)), unsigned(fill));
    result.setColorTable(image.colorTable());
    return result;
}

/// Returns the offset of a turned image of which \a size was the size. Null for turns that do not
/// keep each pixel.
QPointF turnedOffset(QPointF offset, QSize size, double degrees)
{
    if (!isQuarterTurn(degrees))
        return {};
    const QTransform turn =
        QImage::trueMatrix(QTransform().rotate(degrees), size.width(), size.height());
    const QPointF middle(0.5, 0.5); // of a pixel
    return middle - turn.map(middle - offset);
}

/// Returns a place within what whole numbers hold.
QPoint bounded(QPointF place)
{
    constexpr double limit = 0x3FFFFFFF;
    return QPoint(qRound(qBound(-limit, place.x(), limit)),
                  qRound(qBound(-limit, place.y(), limit)));
}

/// Returns a null image where memory does not hold the result. An offset goes along with its image:
/// it tells the axis of a sprite.
QImage changed(QImage image, const Changes &changes)
{
    const bool hasOffset = !image.offset().isNull();
    QPointF offset = image.offset();
    if (changes.isCropped) {
        QPoint corner;
        Vela::cropImage(image, &corner, 0);
        offset += corner;
    }
    if (changes.size.isValid()) {
        offset = {offset.x() * changes.size.width() / image.width(),
                  offset.y() * changes.size.height() / image.height()};
        image = scaled(image, changes.size, changes.filter);
    }
    if (changes.degrees != 0) {
        offset = turnedOffset(offset, image.size(), changes.degrees);
        image = rotated(image, changes.degrees);
    }
    if (changes.palette)
        image = fittedToPalette(image, *changes.palette);
    if (changes.colors > 0)
        image = reducedToColors(image, changes.colors);
    if (hasOffset)
        image.setOffset(bounded(offset));
    return image;
}

bool encodePaletteOf(const QImage &image, const QByteArray &format, QByteArray *bytes,
                     QString *error)
{
    if (image.format() == QImage::Format_Indexed8)
        return ColorTable::ofImage(image).encode(format, bytes, error);
    *error = QStringLiteral("the image has no palette; --colors or --palette gives it one");
    return false;
}

bool convertImage(const Call &call, const Changes &changes, const ImageFormat &to,
                  QByteArray *bytes, QString *error)
{
    const QString out = call.arguments.at(1);
    QImage image = readImage(call.arguments.first(), error);
    if (image.isNull())
        return false;
    image = changed(image, changes);
    if (image.isNull())
        return failFile(out, QStringLiteral("would be too large, or empty"), error);
    const bool isEncoded = to.savesImages ? encodeImage(image, to.word, bytes, error)
                                          : encodePaletteOf(image, to.word, bytes, error);
    if (!isEncoded) {
        failFile(out, *error, error);
        if (to.word == "GIF" && image.format() != QImage::Format_Indexed8)
            *error += QStringLiteral("; --colors or --palette gives it one");
        return false;
    }
    const QString loss = lostTransparency(image, to.word);
    if (!loss.isEmpty())
        warn(call, out, loss);
    return true;
}

bool convertPalette(const Call &call, const ImageFormat &to, QByteArray *bytes, QString *error)
{
    ColorTable table;
    if (!to.savesPalettes)
        failFile(call.arguments.at(1), QStringLiteral("a palette cannot be written as an image"),
                 error);
    else if (call.options & imageOptions)
        failFile(call.arguments.first(),
                 QStringLiteral("is a palette, which --crop, --scale, --rotate, --palette and "
                                "--colors do not change"),
                 error);
    return error->isEmpty() && table.read(call.arguments.first(), error)
        && table.encode(to.word, bytes, error);
}

bool convert(const Call &call, QByteArray *bytes, QString *error)
{
    const ImageFormat from = ImageFormat::ofFile(call.arguments.first());
    const ImageFormat to = ImageFormat::ofFile(call.arguments.at(1));
    if (!to.savesImages && !to.savesPalettes)
        return failFile(call.arguments.at(1), QStringLiteral("is of no format that can be written"),
                        error);
    Changes changes;
    if (!readChanges(call, &changes, error))
        return false;
    if (from.loadsPalettes && !from.loadsImages)
        return convertPalette(call, to, bytes, error);
    return convertImage(call, changes, to, bytes, error);
}

} // namespace

int runConvert(const Call &call)
{
    const QString out = call.arguments.at(1);
    QByteArray bytes;
    QString error;
    if (!convert(call, &bytes, &error))
        return Console::fail(error);
    return finishFile(call, out, bytes);
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "image/imageformats.h"
#include "image/palette.h"
#include "image/palettes.h"
#include "image/sprite.h"
#include "studio/cli/collectionexport.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/imagefiles.h"
#include "studio/cli/projectcall.h"
#include "studio/cli/spritename.h"
#include "studio/cli/standalonefile.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Studio {

namespace {

// So many images are in memory at once.
constexpr int batchSize = 64;

QStringList toRow(const Vela::Sprite &sprite)
{
    const Vela::ImageInfo info = sprite.imageProperties();
    const QString numbers = spriteName(sprite.identifier());
    if (sprite.isEmpty())
        return {numbers, QStringLiteral("empty")};
    const QPoint axis = sprite.axis();
    return {numbers, QStringLiteral("%1x%2").arg(info.width).arg(info.height),
            QStringLiteral("%1 bits").arg(Vela::depthOfFormat(info.format)),
            QStringLiteral("axis %1,%2").arg(axis.x()).arg(axis.y()),
            sprite.palette() ? QStringLiteral("palette %1").arg(sprite.palette()->index())
                             : QStringLiteral("-")};
}

QJsonObject toJson(const Vela::Sprite &sprite)
{
    const Vela::ImageInfo info = sprite.imageProperties();
    QJsonObject object{{QStringLiteral("group"), sprite.identifier().group},
                       {QStringLiteral("image"), sprite.identifier().image},
                       {QStringLiteral("width"), sprite.isEmpty() ? 0 : info.width},
                       {QStringLiteral("height"), sprite.isEmpty() ? 0 : info.height},
                       {QStringLiteral("x"), sprite.axis().x()},
                       {QStringLiteral("y"), sprite.axis().y()}};
    if (!sprite.isEmpty())
        object.insert(QStringLiteral("depth"), Vela::depthOfFormat(info.format));
    if (sprite.palette())
        object.insert(QStringLiteral("palette"), static_cast<qint64>(sprite.palette()->index()));
    return object;
}

/// Runs on any thread.
EncodedItem encoded(const QImage &image, const QByteArray &format)
{
    EncodedItem result;
    if (image.isNull())
        result.error = QStringLiteral("the image cannot be read");
    else if (encodeImage(image, format, &result.bytes, &result.error))
        result.warning = lostTransparency(image, format);
    return result;
}

ExportedItem exportedItem(const Vela::Sprite &sprite, const QByteArray &format)
{
    const QString name = spriteName(sprite.identifier());
    if (sprite.isEmpty())
        return {name, nullptr, QStringLiteral("has no image")};
    QImage image = sprite.image();
    image.setOffset(-sprite.axis());
    return {name, [image, format] { return encoded(image, format); }, {}};
}

} // namespace

int runSpritesList(const Call &call)
{
    const auto sprites = openStandalone<Vela::Sprites>(call.arguments.first());
    if (!sprites)
        return Failed;
    QList<QStringList> rows;
    QJsonArray array;
    for (unsigned int i = 0; i < sprites->count(); ++i) {
        rows.append(toRow(*sprites->at(i)));
        array.append(toJson(*sprites->at(i)));
    }
    if (call.options.testFlag(Json))
        printJson({{QStringLiteral("path"), sprites->fileName()},
                   {QStringLiteral("palettes"), static_cast<qint64>(sprites->palettes()->count())},
                   {QStringLiteral("sprites"), array}});
    else
        Console::print(rows);
    return Done;
}

int runSpritesExport(const Call &call)
{
    const ImageFormat format =
        ImageFormat::ofWord(call.values.value(Format, QStringLiteral("png")));
    if (!format.savesImages)
        return Console::fail(QStringLiteral("--format needs a format of images that can be "
                                            "written, such as png, pcx, gif or bmp"));
    return exportCollection<Vela::Sprites>(call, format.word, batchSize, exportedItem);
}

} // namespace Studio

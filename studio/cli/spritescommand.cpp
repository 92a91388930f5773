// SPDX-License-Identifier: MIT
#include "frame/jobstats.h"
#include "image/imageformats.h"
#include "image/palette.h"
#include "image/palettes.h"
#include "image/sprite.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/imagefiles.h"
#include "studio/cli/parallel.h"
#include "studio/cli/projectcall.h"
#include "studio/cli/standalonesprites.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

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

/// A sprite on its way to a file.
struct Exported
{
    QImage image;
    QByteArray format;
    QString file;
    bool isDryRun = false;
    QString error;
};

/// Runs on any thread.
Exported exported(Exported item)
{
    QByteArray bytes;
    QString error;
    if (item.image.isNull())
        error = QStringLiteral("the image cannot be read");
    else if (encodeImage(item.image, item.format, &bytes, &error) && !item.isDryRun)
        writeFile(item.file, bytes, &item.error);
    if (!error.isEmpty())
        item.error = QStringLiteral("%1: %2").arg(item.file, error);
    item.image = QImage();
    return item;
}

/// The sprites of one call on their way to their files.
class Exporter
{
public:
    Exporter(const Call &call, const QByteArray &format)
        : m_call(call)
        , m_folder(call.arguments.at(1))
        , m_format(format)
    {
    }

    /// Returns whether every sprite that has an image was exported.
    bool run(const Vela::Sprites &sprites);
    /// Returns the names of the images, a line each.
    QString written() const
    {
        return m_written;
    }

private:
    Exported itemOf(const Vela::Sprite &sprite);
    void write(QVector<Exported> items, Vela::JobStats &job);

    const Call &m_call;
    const QDir m_folder;
    const QByteArray m_format;
    QSet<QString> m_names;
    QString m_written;
    bool m_isComplete = true;
};

bool Exporter::run(const Vela::Sprites &sprites)
{
    const auto job = createJob("Export");
    job->setMaximum(sprites.count());
    QVector<Exported> items;
    for (unsigned int i = 0; i < sprites.count(); ++i) {
        const Vela::Sprite &sprite = *sprites.at(i);
        if (!sprite.isEmpty())
            items.append(itemOf(sprite));
        if (items.size() < batchSize && i + 1 < sprites.count())
            continue;
        write(items, *job);
        items.clear();
        job->setValue(i + 1);
    }
    return m_isComplete;
}

Exported Exporter::itemOf(const Vela::Sprite &sprite)
{
    const QString numbers = spriteName(sprite.identifier());
    QString name = numbers;
    for (int i = 2; m_names.contains(name); ++i)
        name = QStringLiteral("%1-%2").arg(numbers).arg(i);
    m_names.insert(name);
    Exported item;
    item.image = sprite.image();
    item.image.setOffset(-sprite.axis());
    item.format = m_format;
    item.file = m_folder.filePath(name + QLatin1Char('.') + QString::fromUtf8(m_format).toLower());
    item.isDryRun = m_call.options.testFlag(DryRun);
    return item;
}

void Exporter::write(QVector<Exported> items, Vela::JobStats &job)
{
    mapInParallel(items, exported);
    for (const Exported &item : qAsConst(items)) {
        if (!item.error.isEmpty()) {
            job.error(item.error);
            m_isComplete = false;
        } else {
            m_written += item.file + QLatin1Char('\n');
        }
    }
}

void warnOfEmpty(const Vela::Sprites &sprites)
{
    for (unsigned int i = 0; i < sprites.count(); ++i) {
        const Vela::Sprite &sprite = *sprites.at(i);
        if (sprite.isEmpty())
            Console::report(
                QStringLiteral("warning: %1: has no image").arg(spriteName(sprite.identifier())));
    }
}

} // namespace

int runSpritesList(const Call &call)
{
    const SpritesFilePtr sprites = openSprites(call.arguments.first());
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
    const QString folder = call.arguments.at(1);
    const ImageFormat format =
        ImageFormat::ofWord(call.values.value(Format, QStringLiteral("png")));
    if (!format.savesImages)
        return Console::fail(QStringLiteral("--format needs a format of images that can be "
                                            "written, such as png, pcx, gif or bmp"));
    const SpritesFilePtr sprites = openSprites(call.arguments.first());
    if (!sprites)
        return Failed;
    const QString path = ProjectSession::normalizedPath(folder);
    if (!call.options.testFlag(DryRun) && !QDir().mkpath(path))
        return Console::fail(QStringLiteral("%1: the folder cannot be made").arg(folder));
    Exporter exporter(call, format.word);
    const bool isComplete = exporter.run(*sprites);
    if (!call.options.testFlag(Quiet)) {
        Console::print(exporter.written());
        warnOfEmpty(*sprites);
    }
    return isComplete ? Done : Failed;
}

} // namespace Studio

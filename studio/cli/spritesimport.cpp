// SPDX-License-Identifier: MIT
#include "frame/filesystemarchive.h"
#include "frame/jobstats.h"
#include "image/sprite.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/imagefiles.h"
#include "studio/cli/parallel.h"
#include "studio/cli/projectcall.h"
#include "studio/cli/standalonesprites.h"

#include <QFileInfo>

#include <algorithm>
#include <set>

namespace Studio {

namespace {

// So many images are in memory at once.
constexpr int batchSize = 64;

/// An image on its way into a sprites file.
struct Imported
{
    QString file;
    bool hasName = false; ///< whether its name tells the identifier
    Vela::SubItem identifier;
    QImage image; ///< null with an error
    QString error;
};

/// Returns the images in the order in which they are imported: those that are named first, so that
/// no other takes the numbers that they have. Reports two of one identifier and returns none.
QVector<Imported> importList(const QStringList &files)
{
    QVector<Imported> items;
    std::set<Vela::SubItem> identifiers;
    for (const QString &file : files) {
        Imported item;
        item.file = file;
        item.hasName = readSpriteName(QFileInfo(file).completeBaseName(), &item.identifier);
        if (item.hasName && !identifiers.insert(item.identifier).second) {
            Console::report(QStringLiteral("%1: a second image of the sprite %2")
                                .arg(file, spriteName(item.identifier)));
            return {};
        }
        items.append(item);
    }
    std::stable_partition(items.begin(), items.end(),
                          [](const Imported &item) { return item.hasName; });
    return items;
}

/// Runs on any thread.
Imported decoded(Imported item)
{
    item.image = readImage(item.file, &item.error);
    return item;
}

Vela::Sprite *replaced(Vela::Sprite *sprite, const QImage &image)
{
    sprite->setImage(image, true, Vela::Sprite::OwnPalette, nullptr, Vela::ShareMode::Share);
    const Vela::ImageInfo info = sprite->imageProperties();
    return QSize(info.width, info.height) == image.size() ? sprite : nullptr;
}

/// Returns null if the file cannot take the image.
Vela::Sprite *put(Vela::Sprites &sprites, const Imported &item)
{
    const QVariant identifier = item.hasName ? QVariant::fromValue(item.identifier) : QVariant();
    const int known = item.hasName ? sprites.find(0, identifier) : -1;
    Vela::Sprite *const sprite = known >= 0
        ? replaced(sprites.at(static_cast<unsigned int>(known)), item.image)
        : sprites.add(identifier, item.image, Vela::ShareMode::Share);
    if (sprite && !item.image.offset().isNull())
        sprite->setAxis(-item.image.offset());
    return sprite;
}

/// Puts decoded images into a file. Returns the numbers and the file of each sprite, and reports
/// what cannot be taken.
QList<QStringList> putAll(Vela::Sprites &sprites, const QVector<Imported> &items,
                          Vela::JobStats &job)
{
    QList<QStringList> rows;
    for (const Imported &item : items) {
        const Vela::Sprite *const sprite = item.image.isNull() ? nullptr : put(sprites, item);
        if (sprite)
            rows.append({spriteName(sprite->identifier()), item.file});
        else
            job.error(item.image.isNull()
                          ? item.error
                          : QStringLiteral("%1: the file cannot take it").arg(item.file));
    }
    return rows;
}

QList<QStringList> importAll(Vela::Sprites &sprites, const QVector<Imported> &items)
{
    const auto job = createJob("Import");
    job->setMaximum(static_cast<unsigned int>(items.size()));
    QList<QStringList> rows;
    sprites.beginChange();
    for (int i = 0; i < items.size(); i += batchSize) {
        QVector<Imported> batch = items.mid(i, batchSize);
        mapInParallel(batch, decoded);
        rows += putAll(sprites, batch, *job);
        job->setValue(static_cast<unsigned int>(qMin(i + batchSize, items.size())));
    }
    sprites.endChange();
    return rows;
}

/// Returns whether it was saved; otherwise the reason has been reported.
bool save(Vela::Sprites &sprites, const QString &file)
{
    const auto job = createJob("Save");
    return sprites.toFile(Vela::FileSystemArchive::instance(), ProjectSession::normalizedPath(file),
                          0, job.get());
}

} // namespace

int runSpritesImport(const Call &call)
{
    const QString file = call.arguments.first();
    const bool exists = QFileInfo::exists(ProjectSession::normalizedPath(file));
    const QVector<Imported> items = importList(call.arguments.mid(1));
    const SpritesFilePtr sprites = items.isEmpty() ? nullptr
        : exists                                   ? openSprites(file)
                                                   : createSprites(file);
    if (!sprites)
        return Failed;
    const QList<QStringList> rows = importAll(*sprites, items);
    const bool isDryRun = call.options.testFlag(DryRun);
    if (!rows.isEmpty() && !isDryRun && !save(*sprites, file))
        return Failed;
    if (!call.options.testFlag(Quiet) && !rows.isEmpty())
        Console::print(isDryRun ? QList<QStringList>{{file}} : rows);
    return rows.size() == items.size() ? Done : Failed;
}

} // namespace Studio

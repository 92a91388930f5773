// SPDX-License-Identifier: MIT
#include "image/palette.h"
#include "image/palettes.h"
#include "image/sprite.h"
#include "studio/cli/collectionimport.h"
#include "studio/cli/commands.h"
#include "studio/cli/imagefiles.h"
#include "studio/cli/spritename.h"

#include <algorithm>
#include <set>

namespace Studio {

namespace {

// So many images are in memory at once.
constexpr int batchSize = 64;

/// Reads the identifier that the name of an image tells. Returns false if it tells none.
bool readIdentifier(const QString &file, Vela::SubItem *identifier)
{
    return readSpriteName(QFileInfo(file).completeBaseName(), identifier);
}

/// Returns the images in the order in which they are imported: those that are named first, so that
/// no other takes the numbers that they have. Reports two of one identifier and returns none.
QStringList importList(QStringList files)
{
    std::set<Vela::SubItem> identifiers;
    Vela::SubItem identifier;
    for (const QString &file : qAsConst(files)) {
        if (readIdentifier(file, &identifier) && !identifiers.insert(identifier).second) {
            Console::report(QStringLiteral("%1: a second image of the sprite %2")
                                .arg(file, spriteName(identifier)));
            return {};
        }
    }
    std::stable_partition(files.begin(), files.end(), [&identifier](const QString &file) {
        return readIdentifier(file, &identifier);
    });
    return files;
}

/// Puts images into a sprites file.
class SpritesImport
{
public:
    explicit SpritesImport(Vela::Sprites &sprites)
        : m_sprites(sprites)
    {
    }

    /// Returns the name of the sprite; empty if the file cannot take the image.
    QString put(const QString &file, const QImage &image);
    /// Removes the palettes that replaced sprites had and no sprite uses any more.
    void removeLostPalettes();

private:
    Vela::Sprite *replaced(Vela::Sprite *sprite, const QImage &image);

    Vela::Sprites &m_sprites;
    std::set<const Vela::Palette *> m_lostPalettes;
};

QString SpritesImport::put(const QString &file, const QImage &image)
{
    Vela::SubItem identifier;
    const bool hasName = readIdentifier(file, &identifier);
    const QVariant wanted = hasName ? QVariant::fromValue(identifier) : QVariant();
    const int known = hasName ? m_sprites.find(0, wanted) : -1;
    Vela::Sprite *sprite = nullptr;
    if (known >= 0)
        sprite = replaced(m_sprites.at(static_cast<unsigned int>(known)), image);
    else if (!image.isNull())
        sprite = m_sprites.add(wanted, image, Vela::ShareMode::Share);
    if (!sprite)
        return {};
    if (!image.offset().isNull())
        sprite->setAxis(-image.offset());
    return spriteName(sprite->identifier());
}

Vela::Sprite *SpritesImport::replaced(Vela::Sprite *sprite, const QImage &image)
{
    if (image.isNull())
        return nullptr;
    m_lostPalettes.insert(sprite->palette());
    sprite->setImage(image, true, Vela::Sprite::OwnPalette, nullptr, Vela::ShareMode::Share);
    const Vela::ImageInfo info = sprite->imageProperties();
    return QSize(info.width, info.height) == image.size() ? sprite : nullptr;
}

void SpritesImport::removeLostPalettes()
{
    for (unsigned int i = 0; i < m_sprites.count(); ++i)
        m_lostPalettes.erase(m_sprites.at(i)->palette());
    Vela::Palettes &palettes = *m_sprites.palettes();
    for (unsigned int i = palettes.count(); i-- > 0;) {
        if (m_lostPalettes.count(palettes.at(i)) > 0)
            palettes.remove(i);
    }
}

} // namespace

int runSpritesImport(const Call &call)
{
    const QStringList files = importList(call.arguments.mid(1));
    const auto sprites =
        files.isEmpty() ? nullptr : openOrCreate<Vela::Sprites>(call.arguments.first());
    if (!sprites)
        return Failed;
    SpritesImport target(*sprites);
    sprites->beginChange();
    const QVector<ImportedItem> items = importFiles(
        files, batchSize, readImage,
        [&target](const QString &file, const QImage &image) { return target.put(file, image); });
    target.removeLostPalettes();
    sprites->endChange();
    return finishImport(call, *sprites, items, files.size(), "sprites");
}

} // namespace Studio

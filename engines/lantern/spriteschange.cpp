// SPDX-License-Identifier: MIT
#include "lantern/spriteschange.h"

#include "lantern/spritesfile.h"

#include <algorithm>

namespace Lantern {

namespace {

// The part in which two lists differ, between equal beginnings and equal ends.
template <class Ref>
Splice<Ref> spliceOf(const QVector<Ref> &before, const QVector<Ref> &after)
{
    const int shorter = std::min(before.size(), after.size());
    int begin = 0;
    while (begin < shorter && before.at(begin) == after.at(begin))
        ++begin;
    int end = 0;
    while (end < shorter - begin
           && before.at(before.size() - 1 - end) == after.at(after.size() - 1 - end))
        ++end;
    return {begin, before.mid(begin, before.size() - begin - end),
            after.mid(begin, after.size() - begin - end)};
}

template <class Item, class Changed>
QVector<Changed> valuesSince(const QHash<Item *, Changed> &before)
{
    QVector<Changed> changes;
    for (Changed change : before) {
        change.after = change.item->value();
        if (!isSame(change.before, change.after))
            changes.append(change);
    }
    return changes;
}

bool areSame(const StreamRef &a, const StreamRef &b)
{
    return a == b || (a && b && a->sharesWith(*b));
}

} // namespace

bool isSame(const SpriteItem::Value &a, const SpriteItem::Value &b)
{
    return a.identifier == b.identifier && a.axis == b.axis && a.palette == b.palette
        && areSame(a.image, b.image);
}

bool isSame(const PaletteItem::Value &a, const PaletteItem::Value &b)
{
    return a.identifier == b.identifier && areSame(a.colors, b.colors);
}

bool SpritesChange::isEmpty() const
{
    return sprites.isEmpty() && palettes.isEmpty() && spriteValues.isEmpty()
        && paletteValues.isEmpty();
}

SpritesChange changeSince(const SpritesBefore &before, const std::shared_ptr<StreamStore> &store,
                          const QVector<SpriteRef> &sprites, const QVector<PaletteRef> &palettes)
{
    return {before.store,
            store,
            spliceOf(before.sprites, sprites),
            spliceOf(before.palettes, palettes),
            valuesSince(before.spriteValues),
            valuesSince(before.paletteValues)};
}

SpritesCommand::SpritesCommand(SpritesFile &file, const SpritesChange &change, const QString &text)
    : QUndoCommand(text)
    , m_file(file)
    , m_change(change)
{
}

void SpritesCommand::undo()
{
    m_file.apply(m_change, false);
}

void SpritesCommand::redo()
{
    if (m_isPushed)
        m_file.apply(m_change, true);
    m_isPushed = true;
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/spriteitem.h"

#include <QHash>
#include <QUndoCommand>
#include <QVector>

namespace Lantern {

/// The items of a list that one state has in the place of another's.
template <class Ref>
struct Splice
{
    int position = 0;
    QVector<Ref> before;
    QVector<Ref> after;

    bool isEmpty() const
    {
        return before.isEmpty() && after.isEmpty();
    }
};

/// The change of an item's value.
template <class Ref, class Value>
struct ValueChange
{
    Ref item;
    Value before;
    Value after;
};

/// The difference between two states of a sprites file. The streams of each are in its store.
struct SpritesChange
{
    std::shared_ptr<StreamStore> storeBefore;
    std::shared_ptr<StreamStore> storeAfter;
    Splice<SpriteRef> sprites;
    Splice<PaletteRef> palettes;
    QVector<ValueChange<SpriteRef, SpriteItem::Value>> spriteValues;
    QVector<ValueChange<PaletteRef, PaletteItem::Value>> paletteValues;

    bool isEmpty() const;
};

/// What a change that is under way has to know of the state in front of it.
struct SpritesBefore
{
    std::shared_ptr<StreamStore> store;
    QVector<SpriteRef> sprites;
    QVector<PaletteRef> palettes;
    // Of the items that have another value since, without what stands behind the change.
    QHash<SpriteItem *, ValueChange<SpriteRef, SpriteItem::Value>> spriteValues;
    QHash<PaletteItem *, ValueChange<PaletteRef, PaletteItem::Value>> paletteValues;
    QString text; ///< what users read of the step
};

/// Returns whether users see no difference.
bool isSame(const SpriteItem::Value &a, const SpriteItem::Value &b);
bool isSame(const PaletteItem::Value &a, const PaletteItem::Value &b);

/// Returns what has changed since.
SpritesChange changeSince(const SpritesBefore &before, const std::shared_ptr<StreamStore> &store,
                          const QVector<SpriteRef> &sprites, const QVector<PaletteRef> &palettes);

/// A change as a step of undo. It has been done already when it is pushed.
class SpritesCommand : public QUndoCommand
{
public:
    SpritesCommand(SpritesFile &file, const SpritesChange &change, const QString &text);

    void undo() override;
    void redo() override;

private:
    SpritesFile &m_file;
    const SpritesChange m_change;
    bool m_isPushed = false;
};

} // namespace Lantern

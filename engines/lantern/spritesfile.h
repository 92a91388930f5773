// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/contentfile.h"
#include "lantern/identifiers.h"
#include "lantern/palettelist.h"
#include "lantern/spriteschange.h"

#include "image/sprites.h"
#include "project/simplemessages.h"

#include <QUndoStack>

namespace Lantern {

struct SpriteTable;

/// A file of many sprites and their palettes. docs/lantern.md tells its layout.
///
/// Equal images, and equal palettes, are stored once where they may be shared. The streams of a
/// large file on the disk are read in the background. Every change is a step of undo; reading the
/// file again is one, too.
class SpritesFile : public ContentFile<Vela::Sprites>
{
    Q_OBJECT

public:
    SpritesFile();
    ~SpritesFile() override;

    bool fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                  Vela::JobStats *stats) override;
    /// Writes what has not been changed since it was read byte for byte.
    bool toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                Vela::JobStats *stats) override;
    void reset() override;
    bool isModified() const override;
    bool isEmpty() const override;
    void undo() override;
    void redo() override;
    const QUndoStack &undoStack() const;

    void move(unsigned int from, unsigned int to) override;
    void remove(unsigned int index) override;
    /// By identifier, then by place.
    int compare(unsigned int a, unsigned int b) const override;
    void beginChange() override;
    void endChange() override;
    /// Begins a change that users read \a text of, unless it is part of another.
    void beginChange(const QString &text);

    /// Never past the end.
    unsigned int selected() const override;
    void setSelected(unsigned int index) override;
    Vela::Palettes *palettes() const override;
    unsigned int count() const override;
    Vela::Sprite *at(unsigned int index) const override;
    /// An identifier that is none becomes the next free number of the last group. An indexed image
    /// brings its colours as a palette; none is added where the file has an equal one.
    Vela::Sprite *add(const QVariant &identifier, const QImage &image,
                      Vela::ShareMode share) override;
    Vela::Sprite *insert(unsigned int index, const QVariant &identifier, const QImage &image,
                         Vela::ShareMode share) override;
    int find(unsigned int start, const QVariant &identifier) const override;
    void clear() override;

    /// There is no text to be found in it.
    QList<SearchResult> search(const Vela::RegExp &expression, unsigned int flags) const override;
    void replace(const QList<SearchResult> &results, const QString &text) override;

    /// The properties "Sprites" and "Palettes", their numbers.
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    // What sprites, palettes and steps of undo are made of.

    const QVector<SpriteRef> &spriteItems() const;
    const QVector<PaletteRef> &paletteItems() const;
    /// Returns the stream of plain data: a twin's, if there is one and \a share allows it. Null if
    /// it cannot be kept.
    StreamRef keep(const QByteArray &plain, StreamKind kind, Vela::ShareMode share);
    void setValue(SpriteItem &sprite, const SpriteItem::Value &value);
    void setValue(PaletteItem &palette, const PaletteItem::Value &value);
    /// Inserts at the end what has its place behind it: the neighbour may have been removed.
    void insertSprite(unsigned int index, const SpriteRef &sprite);
    void insertPalette(unsigned int index, const PaletteRef &palette);
    void movePalette(unsigned int from, unsigned int to);
    /// Sprites that use the palette are left with \a substitute, which may be null.
    void removePalette(unsigned int index, const PaletteRef &substitute);
    /// Returns the palette of this file that \a palette is; null if it is none.
    PaletteRef paletteRef(const Vela::Palette *palette) const;
    /// Returns the identifier of that group behind all others.
    Vela::SubItem freeIdentifier(Vela::SubItem ofGroup) const;
    /// Brings the state in front of, or behind, a change back. Others hear of it when the step of
    /// undo is through.
    void apply(const SpritesChange &change, bool forward);

Q_SIGNALS:
    /// The sprites have other names than before.
    void namesChanged();

protected:
    void load() override;
    bool read(Vela::Archive &archive, const QString &name, QString &error) override;
    bool encode(QByteArray &data, QString &error) const override;
    void dropContent() override;
    void markSaved() override;
    void loadFailed(const QString &error) override;
    Vela::Messages *fileMessages() const override;

private:
    friend class Change;

    bool originalBytes(QByteArray &data) const;
    void ensureContent() const;
    void replaceContent(const SpriteTable &table, const QVector<StreamRef> &streams,
                        const std::shared_ptr<StreamStore> &store);
    void renumber(int from);
    void renumberPalettes(int from);
    void notify(const SpritesChange &change);
    void notifyApplied();

    std::shared_ptr<StreamStore> m_store;
    QByteArray m_tables; // of the file as it was read; empty once it was written
    QVector<SpriteRef> m_sprites;
    QVector<PaletteRef> m_palettes;
    std::unique_ptr<PaletteList> m_paletteList;
    std::unique_ptr<SpritesBefore> m_before;  // while a change is under way
    std::unique_ptr<SpritesChange> m_applied; // by undo or redo, of which nobody has heard yet
    int m_changeDepth = 0;
    bool m_isOpening = false; // while the first content comes
    unsigned int m_selected = 0;
    std::unique_ptr<Vela::SimpleMessages> m_messages;
    QUndoStack m_undoStack; // its steps go in front of what they refer to
};

/// A change of a file from the construction to the destruction.
class Change
{
public:
    Change(SpritesFile &file, const QString &text);
    ~Change();

private:
    Q_DISABLE_COPY(Change)

    SpritesFile &m_file;
};

} // namespace Lantern

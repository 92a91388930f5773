// SPDX-License-Identifier: MIT
#include "lantern/spritesfile.h"

#include "frame/interface.h"

#include <QCoreApplication>
#include <QScopedValueRollback>

#include <algorithm>
#include <limits>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

QString spritesProperty()
{
    return QStringLiteral("Sprites");
}

QString palettesProperty()
{
    return QStringLiteral("Palettes");
}

bool mayShare(Vela::ShareMode share)
{
    switch (share) {
    case Vela::ShareMode::NoShare:
        return false;
    case Vela::ShareMode::AskToShare:
        return Vela::Interface::yesNoOption(
            Texts::tr("Equal data"),
            Texts::tr("The file holds the same data already. Do you want to store it only once?"),
            QStringLiteral("showmsg_share_data"), 1, Vela::Interface::NoButton);
    default:
        return true;
    }
}

template <class Ref>
void replaceRange(QVector<Ref> &list, int position, const QVector<Ref> &from,
                  const QVector<Ref> &to)
{
    list = list.mid(0, position) + to + list.mid(position + from.size());
}

template <class Ref>
void apply(const Splice<Ref> &splice, bool forward, QVector<Ref> &list)
{
    replaceRange(list, splice.position, forward ? splice.before : splice.after,
                 forward ? splice.after : splice.before);
}

template <class Ref>
void moveItem(QVector<Ref> &list, unsigned int from, unsigned int to)
{
    list.move(int(from), int(to));
}

} // namespace

Change::Change(SpritesFile &file, const QString &text)
    : m_file(file)
{
    m_file.beginChange(text);
}

Change::~Change()
{
    m_file.endChange();
}

SpritesFile::SpritesFile()
    : ContentFile("sprites")
    , m_store(std::make_shared<StreamStore>(QString(), true))
    , m_paletteList(std::make_unique<PaletteList>(*this))
    , m_messages(std::make_unique<Vela::SimpleMessages>(this))
{
}

SpritesFile::~SpritesFile() = default;

// Most operations are asked of a content that may not have been read yet.
void SpritesFile::ensureContent() const
{
    ensureLoaded();
}

// What a file held when it was opened is not to be taken back.
bool SpritesFile::fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                           Vela::JobStats *stats)
{
    const bool hasContent =
        m_undoStack.count() > 0 || !m_sprites.isEmpty() || !m_palettes.isEmpty();
    const QScopedValueRollback<bool> isOpening(m_isOpening, !(flags & Copy) && !hasContent);
    if (!ContentFile::fromFile(archive, name, flags, stats))
        return false;
    if (!hasContent) {
        Q_EMIT namesChanged();
        Q_EMIT changed(true);
    }
    return true;
}

bool SpritesFile::toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                         Vela::JobStats *stats)
{
    if (!ContentFile::toFile(archive, name, flags, stats))
        return false;
    if (!(flags & Copy))
        m_tables.clear();
    return true;
}

// Nobody hears of it: the content was there all the time.
void SpritesFile::load()
{
    const QScopedValueRollback<bool> isOpening(m_isOpening, true);
    ContentFile::load();
}

void SpritesFile::reset()
{
    ContentFile::reset();
    m_undoStack.clear();
    m_messages->clear();
    m_tables.clear();
}

bool SpritesFile::isModified() const
{
    const bool isChanging =
        m_before && !changeSince(*m_before, m_store, m_sprites, m_palettes).isEmpty();
    return isChanging || !m_undoStack.isClean();
}

bool SpritesFile::isEmpty() const
{
    ensureContent();
    return m_sprites.isEmpty() && m_palettes.isEmpty();
}

void SpritesFile::undo()
{
    ensureContent();
    if (m_changeDepth == 0) // a change that is under way is no step yet
        m_undoStack.undo();
    notifyApplied();
}

void SpritesFile::redo()
{
    ensureContent();
    if (m_changeDepth == 0) // a change that is under way is no step yet
        m_undoStack.redo();
    notifyApplied();
}

const QUndoStack &SpritesFile::undoStack() const
{
    return m_undoStack;
}

void SpritesFile::move(unsigned int from, unsigned int to)
{
    if (from >= count() || to >= count() || from == to)
        return;
    const Change change(*this, Texts::tr("Move sprite"));
    moveItem(m_sprites, from, to);
    renumber(int(std::min(from, to)));
}

void SpritesFile::remove(unsigned int index)
{
    if (index >= count())
        return;
    const Change change(*this, Texts::tr("Remove sprite"));
    m_sprites.removeAt(int(index));
    renumber(int(index));
}

int SpritesFile::compare(unsigned int a, unsigned int b) const
{
    if (a >= count() || b >= count() || a == b)
        return 0;
    const Vela::SubItem first = m_sprites.at(int(a))->identifier();
    const Vela::SubItem second = m_sprites.at(int(b))->identifier();
    if (first == second)
        return a < b ? -1 : 1;
    return first < second ? -1 : 1;
}

void SpritesFile::beginChange()
{
    beginChange(Texts::tr("Change of sprites"));
}

void SpritesFile::beginChange(const QString &text)
{
    ensureContent();
    if (m_changeDepth++ > 0)
        return;
    m_before = std::make_unique<SpritesBefore>();
    m_before->store = m_store;
    m_before->sprites = m_sprites;
    m_before->palettes = m_palettes;
    m_before->text = text;
}

void SpritesFile::endChange()
{
    if (m_changeDepth == 0 || --m_changeDepth > 0)
        return;
    const std::unique_ptr<SpritesBefore> before = std::move(m_before);
    const SpritesChange change = changeSince(*before, m_store, m_sprites, m_palettes);
    if (change.isEmpty())
        return;
    m_undoStack.push(new SpritesCommand(*this, change, before->text));
    notify(change);
}

void SpritesFile::apply(const SpritesChange &change, bool forward)
{
    m_store = forward ? change.storeAfter : change.storeBefore;
    Lantern::apply(change.sprites, forward, m_sprites);
    Lantern::apply(change.palettes, forward, m_palettes);
    for (const auto &changed : change.spriteValues)
        changed.item->m_value = forward ? changed.after : changed.before;
    for (const auto &changed : change.paletteValues)
        changed.item->m_value = forward ? changed.after : changed.before;
    renumber(0);
    renumberPalettes(0);
    m_applied = std::make_unique<SpritesChange>(change);
}

// Whoever hears of it may change the file again, which the stack of undo does not bear while it is
// at a step.
void SpritesFile::notifyApplied()
{
    if (const std::unique_ptr<SpritesChange> applied = std::move(m_applied))
        notify(*applied);
}

void SpritesFile::notify(const SpritesChange &change)
{
    const auto hasOtherCount = [](const auto &splice) {
        return splice.before.size() != splice.after.size();
    };
    const bool hasOtherNames = !change.sprites.isEmpty()
        || std::any_of(
            change.spriteValues.begin(), change.spriteValues.end(),
            [](const auto &value) { return value.before.identifier != value.after.identifier; });
    if (hasOtherNames)
        Q_EMIT namesChanged();
    Q_EMIT modified();
    Q_EMIT changed(hasOtherCount(change.sprites));
    if (change.palettes.isEmpty() && change.paletteValues.isEmpty())
        return;
    Q_EMIT m_paletteList->modified();
    Q_EMIT m_paletteList->changed(hasOtherCount(change.palettes));
}

void SpritesFile::renumber(int from)
{
    for (int i = from; i < m_sprites.size(); ++i)
        m_sprites.at(i)->m_index = unsigned(i);
}

void SpritesFile::renumberPalettes(int from)
{
    for (int i = from; i < m_palettes.size(); ++i)
        m_palettes.at(i)->m_index = unsigned(i);
}

unsigned int SpritesFile::selected() const
{
    return std::min(m_selected, std::max(count(), 1u) - 1);
}

void SpritesFile::setSelected(unsigned int index)
{
    m_selected = index;
}

Vela::Palettes *SpritesFile::palettes() const
{
    ensureContent();
    return m_paletteList.get();
}

unsigned int SpritesFile::count() const
{
    ensureContent();
    return unsigned(m_sprites.size());
}

Vela::Sprite *SpritesFile::at(unsigned int index) const
{
    return index < count() ? m_sprites.at(int(index)).get() : nullptr;
}

Vela::Sprite *SpritesFile::add(const QVariant &identifier, const QImage &image,
                               Vela::ShareMode share)
{
    return insert(count(), identifier, image, share);
}

Vela::Sprite *SpritesFile::insert(unsigned int index, const QVariant &identifier,
                                  const QImage &image, Vela::ShareMode share)
{
    SpriteItem::Value value;
    if (!readIdentifier(identifier, value.identifier)) {
        const Vela::SubItem last =
            count() == 0 ? Vela::SubItem() : m_sprites.constLast()->identifier();
        value.identifier = freeIdentifier(last);
    }
    const Change change(*this, Texts::tr("Add sprite"));
    const auto sprite = std::make_shared<SpriteItem>(*this, value);
    if (!image.isNull()) {
        sprite->setImage(image, true, SpriteItem::OwnPalette, nullptr, share);
        if (sprite->isEmpty())
            return nullptr;
    }
    insertSprite(index, sprite);
    return sprite.get();
}

int SpritesFile::find(unsigned int start, const QVariant &identifier) const
{
    Vela::SubItem item;
    if (!readIdentifier(identifier, item))
        return -1;
    for (unsigned int i = start; i < count(); ++i) {
        if (m_sprites.at(int(i))->identifier() == item)
            return int(i);
    }
    return -1;
}

void SpritesFile::clear()
{
    if (isEmpty())
        return;
    const Change change(*this, Texts::tr("Remove all sprites"));
    m_sprites.clear();
    m_palettes.clear();
}

QList<SpritesFile::SearchResult> SpritesFile::search(const Vela::RegExp &, unsigned int) const
{
    return {};
}

void SpritesFile::replace(const QList<SearchResult> &, const QString &)
{
}

QStringList SpritesFile::propertyNames() const
{
    return {spritesProperty(), palettesProperty()};
}

QVariant SpritesFile::property(const QString &name) const
{
    if (name == spritesProperty())
        return count();
    return name == palettesProperty() ? QVariant(palettes()->count()) : QVariant();
}

void SpritesFile::setProperty(const QString &, const QVariant &)
{
}

const QVector<SpriteRef> &SpritesFile::spriteItems() const
{
    return m_sprites;
}

const QVector<PaletteRef> &SpritesFile::paletteItems() const
{
    return m_palettes;
}

StreamRef SpritesFile::keep(const QByteArray &plain, StreamKind kind, Vela::ShareMode share)
{
    ensureContent();
    const StreamRef twin =
        share == Vela::ShareMode::NoShare ? StreamRef() : m_store->findTwin(plain, kind);
    const Encoding encoding = kind == StreamKind::Image ? preferredEncoding(plain) : Raw;
    return twin && mayShare(share) ? twin : m_store->addPlain(plain, encoding, kind);
}

void SpritesFile::setValue(SpriteItem &sprite, const SpriteItem::Value &value)
{
    if (isSame(sprite.m_value, value))
        return;
    auto &known = m_before->spriteValues[&sprite];
    if (!known.item)
        known = {sprite.shared_from_this(), sprite.m_value, {}};
    sprite.m_value = value;
}

void SpritesFile::setValue(PaletteItem &palette, const PaletteItem::Value &value)
{
    if (isSame(palette.m_value, value))
        return;
    auto &known = m_before->paletteValues[&palette];
    if (!known.item)
        known = {palette.shared_from_this(), palette.m_value, {}};
    palette.m_value = value;
}

void SpritesFile::insertSprite(unsigned int index, const SpriteRef &sprite)
{
    const int place = std::min(int(index), m_sprites.size());
    m_sprites.insert(place, sprite);
    renumber(place);
}

void SpritesFile::insertPalette(unsigned int index, const PaletteRef &palette)
{
    const int place = std::min(int(index), m_palettes.size());
    m_palettes.insert(place, palette);
    renumberPalettes(place);
}

void SpritesFile::movePalette(unsigned int from, unsigned int to)
{
    moveItem(m_palettes, from, to);
    renumberPalettes(int(std::min(from, to)));
}

void SpritesFile::removePalette(unsigned int index, const PaletteRef &substitute)
{
    const PaletteRef palette = m_palettes.takeAt(int(index));
    renumberPalettes(int(index));
    for (const SpriteRef &sprite : qAsConst(m_sprites)) {
        SpriteItem::Value value = sprite->value();
        if (value.palette != palette)
            continue;
        value.palette = substitute;
        setValue(*sprite, value);
    }
}

PaletteRef SpritesFile::paletteRef(const Vela::Palette *palette) const
{
    const auto found =
        std::find_if(m_palettes.begin(), m_palettes.end(),
                     [palette](const PaletteRef &own) { return own.get() == palette; });
    return found == m_palettes.end() ? nullptr : *found;
}

Vela::SubItem SpritesFile::freeIdentifier(Vela::SubItem ofGroup) const
{
    Vela::SubItem free{ofGroup.group, 0};
    for (const SpriteRef &sprite : m_sprites) {
        const Vela::SubItem used = sprite->identifier();
        if (used.group == free.group && used.image >= free.image
            && used.image < std::numeric_limits<qint32>::max())
            free.image = used.image + 1;
    }
    return free;
}

void SpritesFile::dropContent()
{
    clear();
}

void SpritesFile::markSaved()
{
    m_undoStack.setClean();
}

void SpritesFile::loadFailed(const QString &error)
{
    m_messages->clear();
    m_messages->add(Vela::Message::Error, error, 0, 0);
}

Vela::Messages *SpritesFile::fileMessages() const
{
    return m_messages.get();
}

} // namespace Lantern

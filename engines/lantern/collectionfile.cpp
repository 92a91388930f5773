// SPDX-License-Identifier: MIT
#include "lantern/collectionfile.h"

#include "lantern/soundcodec.h"
#include "lantern/soundsfile.h"
#include "lantern/soundtable.h"
#include "lantern/spritecodec.h"
#include "lantern/spritesfile.h"
#include "lantern/spritetable.h"

#include "frame/filesystemarchive.h"
#include "frame/interface.h"

#include <QCoreApplication>
#include <QScopedValueRollback>
#include <QUndoCommand>

#include <algorithm>
#include <functional>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

// A file above this size is loaded in the background.
constexpr qint64 largeFile = 1024 * 1024;

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

StreamKind kindOf(const SpriteTable::Stream &stream)
{
    return stream.info.format == QImage::Format_Invalid ? StreamKind::Palette : StreamKind::Image;
}

StreamKind kindOf(const SoundTable::Stream &)
{
    return StreamKind::Sound;
}

// Returns false if a stream cannot be had. They are loaded late without a device.
template <class Row>
bool readStreams(QIODevice *device, const QVector<Row> &rows, StreamStore &store,
                 QVector<StreamRef> &streams)
{
    for (const Row &row : rows) {
        StreamRef stream;
        if (!device)
            stream =
                store.addLate({row.offset, row.size, row.crc, row.encoding, nullptr}, kindOf(row));
        else if (device->seek(row.offset))
            stream = store.addRaw(device->read(row.size), row.encoding, kindOf(row), row.crc);
        if (!stream || stream->item()->size() != row.size)
            return false;
        streams.append(stream);
    }
    return true;
}

// A change as a step of undo. It has been done already when it is pushed.
class ChangeCommand : public QUndoCommand
{
public:
    ChangeCommand(const QString &text, std::function<void(bool forward)> apply)
        : QUndoCommand(text)
        , m_apply(std::move(apply))
    {
    }

    void undo() override
    {
        m_apply(false);
    }
    void redo() override
    {
        if (m_isPushed)
            m_apply(true);
        m_isPushed = true;
    }

private:
    const std::function<void(bool forward)> m_apply;
    bool m_isPushed = false;
};

} // namespace

template <class Kind>
CollectionFile<Kind>::CollectionFile(const char *extension)
    : ContentFile<Base>(extension)
    , m_store(newStore(QString(), true))
    , m_messages(std::make_unique<Vela::SimpleMessages>(this))
{
}

template <class Kind>
std::shared_ptr<StreamStore> CollectionFile<Kind>::newStore(const QString &fileName,
                                                            bool isPreferred)
{
    return std::make_shared<StreamStore>(std::make_unique<typename Kind::Codec>(), fileName,
                                         isPreferred);
}

// What a file held when it was opened is not to be taken back.
template <class Kind>
bool CollectionFile<Kind>::fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                                    Vela::JobStats *stats)
{
    const bool hasContent = m_undoStack.count() > 0 || !m_lists.isEmpty();
    const bool isFirst = !hasContent && !(flags & Base::Copy);
    const QScopedValueRollback<bool> isOpening(m_isOpening, isFirst);
    if (flags & Base::Copy)
        this->ensureLoaded();
    const QByteArray tables = m_tables;
    if (!ContentFile<Base>::fromFile(archive, name, flags, stats))
        return false;
    if (flags & Base::Copy)
        m_tables = tables;
    tell();
    if (isFirst) {
        namesHaveChanged();
        Q_EMIT this->changed(true);
    }
    return true;
}

template <class Kind>
bool CollectionFile<Kind>::toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                                  Vela::JobStats *stats)
{
    if (!ContentFile<Base>::toFile(archive, name, flags, stats))
        return false;
    if (!(flags & Base::Copy))
        m_tables.clear();
    return true;
}

// Nobody hears of it: the content was there all the time.
template <class Kind>
void CollectionFile<Kind>::load()
{
    const QScopedValueRollback<bool> isOpening(m_isOpening, true);
    ContentFile<Base>::load();
}

// The state in front of it comes back with undo, out of the store that it has been in, unless this
// is the first one. Neither state is to suffer from what becomes of the files later.
template <class Kind>
bool CollectionFile<Kind>::read(Vela::Archive &archive, const QString &name, QString &error)
{
    QIODevice *const device = archive.openFile(name, QIODevice::ReadOnly);
    if (!device) {
        error = Texts::tr("The file '%1' cannot be read.").arg(name);
        return false;
    }
    Table table;
    QString reason;
    const bool isOnDisk = &archive == &Vela::FileSystemArchive::instance();
    const bool isLate = isOnDisk && device->size() > largeFile;
    bool isRead = device->size() <= largestFile && table.read(*device, reason);
    const auto store = newStore(isLate ? name : QString(), table.isPreferred);
    QVector<StreamRef> streams;
    isRead = isRead && readStreams(isLate ? nullptr : device, table.streams, *store, streams);
    archive.closeFile(device);
    if (!isRead) {
        error = Texts::tr("The file '%1' cannot be read: %2.")
                    .arg(name, reason.isEmpty() ? Texts::tr("it is too large or cut off") : reason);
        return false;
    }
    m_messages->clear();
    m_tables = table.original;
    this->setLoaded();
    if (!m_isOpening) {
        m_store->finishLoads();
        store->finishLoads();
        beginChange(Texts::tr("Reading the file"));
    }
    m_store = store;
    takeRows(table, streams);
    if (!m_isOpening)
        finishStep();
    return true;
}

// Another program may have put another file in its place.
template <class Kind>
bool CollectionFile<Kind>::originalBytes(QByteArray &data) const
{
    QString error;
    return !isModified() && !m_tables.isEmpty()
        && readAll(this->archive(), this->fileName(), largestFile, data, error)
        && data.startsWith(m_tables);
}

template <class Kind>
bool CollectionFile<Kind>::encode(QByteArray &data, QString &error) const
{
    m_store->finishLoads();
    if (originalBytes(data))
        return true;
    Table table;
    table.isPreferred = true;
    StreamWriter<Table> writer(table);
    if (!makeRows(table, writer, error))
        return false;
    data = table.write() + writer.bytes();
    if (!writer.isTooLarge() && data.size() <= largestFile)
        return true;
    error = Texts::tr("The content takes more than %1 bytes; the file '%2' stays as it is.")
                .arg(largestFile)
                .arg(this->fileName());
    return false;
}

template <class Kind>
void CollectionFile<Kind>::reset()
{
    ContentFile<Base>::reset();
    m_undoStack.clear();
    m_messages->clear();
    m_tables.clear();
}

template <class Kind>
bool CollectionFile<Kind>::isModified() const
{
    const bool isChanging = m_changeDepth > 0 && !m_lists.changeSinceBegin().isEmpty();
    return isChanging || !m_undoStack.isClean();
}

template <class Kind>
bool CollectionFile<Kind>::isEmpty() const
{
    this->ensureLoaded();
    return m_lists.isEmpty();
}

template <class Kind>
void CollectionFile<Kind>::undo()
{
    travel(&QUndoStack::undo);
}

template <class Kind>
void CollectionFile<Kind>::redo()
{
    travel(&QUndoStack::redo);
}

// Whoever hears of it may change the file again, which the stack of undo does not bear while it is
// at a step.
template <class Kind>
void CollectionFile<Kind>::travel(void (QUndoStack::*direction)())
{
    this->ensureLoaded();
    if (m_changeDepth == 0) // a change that is under way is no step yet
        (m_undoStack.*direction)();
    tell();
}

template <class Kind>
void CollectionFile<Kind>::tell()
{
    if (const std::unique_ptr<Changes> step = std::move(m_untold))
        notify(*step);
}

template <class Kind>
const QUndoStack &CollectionFile<Kind>::undoStack() const
{
    return m_undoStack;
}

template <class Kind>
void CollectionFile<Kind>::beginChange()
{
    beginChange(Texts::tr("Change of the file"));
}

template <class Kind>
void CollectionFile<Kind>::beginChange(const QString &text)
{
    this->ensureLoaded();
    if (m_changeDepth++ > 0)
        return;
    m_storeBefore = m_store;
    m_changeText = text;
    m_lists.beginChange();
}

template <class Kind>
void CollectionFile<Kind>::endChange()
{
    finishStep();
    tell();
}

template <class Kind>
void CollectionFile<Kind>::finishStep()
{
    if (m_changeDepth == 0 || --m_changeDepth > 0)
        return;
    const Step step{std::move(m_storeBefore), m_store, m_lists.changeSinceBegin()};
    m_lists.endChange();
    if (step.change.isEmpty())
        return;
    m_undoStack.push(
        new ChangeCommand(m_changeText, [this, step](bool forward) { apply(step, forward); }));
    m_untold = std::make_unique<Changes>(step.change);
}

template <class Kind>
void CollectionFile<Kind>::apply(const Step &step, bool forward)
{
    m_store = forward ? step.storeAfter : step.storeBefore;
    m_lists.apply(step.change, forward);
    m_untold = std::make_unique<Changes>(step.change);
}

template <class Kind>
void CollectionFile<Kind>::notify(const Changes &changes)
{
    const ListChange<Main> &change = changes.template of<Main>();
    const auto &values = change.values;
    const bool hasOtherNames =
        !change.items.isEmpty() || std::any_of(values.begin(), values.end(), [](const auto &value) {
            return value.before.identifier != value.after.identifier;
        });
    if (hasOtherNames)
        namesHaveChanged();
    Q_EMIT this->modified();
    Q_EMIT this->changed(change.items.changesCount());
}

template <class Kind>
int CollectionFile<Kind>::compare(unsigned int a, unsigned int b) const
{
    return list<Main>().compare(a, b);
}

template <class Kind>
unsigned int CollectionFile<Kind>::selected() const
{
    return std::min(m_selected, std::max(count(), 1u) - 1);
}

template <class Kind>
void CollectionFile<Kind>::setSelected(unsigned int index)
{
    m_selected = index;
}

template <class Kind>
unsigned int CollectionFile<Kind>::count() const
{
    return list<Main>().count();
}

template <class Kind>
void CollectionFile<Kind>::clearLists(const QString &text)
{
    const Change change(*this, text);
    m_lists.clear();
}

template <class Kind>
QList<Vela::ProjectFile::SearchResult> CollectionFile<Kind>::search(const Vela::RegExp &,
                                                                    unsigned int) const
{
    return {};
}

template <class Kind>
void CollectionFile<Kind>::replace(const QList<Vela::ProjectFile::SearchResult> &, const QString &)
{
}

template <class Kind>
void CollectionFile<Kind>::setProperty(const QString &, const QVariant &)
{
}

template <class Kind>
StreamRef CollectionFile<Kind>::keep(const QByteArray &plain, StreamKind kind,
                                     Vela::ShareMode share)
{
    this->ensureLoaded();
    const StreamRef twin = share == Vela::ShareMode::NoShare ? StreamRef() : findTwin(plain, kind);
    return twin && mayShare(share) ? twin : m_store->addPlain(plain, kind);
}

template <class Kind>
StreamRef CollectionFile<Kind>::findTwin(const QByteArray &plain, StreamKind kind) const
{
    return m_store->findTwin(plain, kind);
}

template <class Kind>
StreamRef CollectionFile<Kind>::keepEncoded(const QByteArray &plain, unsigned int encoding,
                                            StreamKind kind)
{
    return m_store->addEncoded(plain, encoding, kind);
}

template <class Kind>
void CollectionFile<Kind>::dropContent()
{
    this->clear();
}

// What stands in the file in the middle of a change is the content of no step.
template <class Kind>
void CollectionFile<Kind>::markSaved()
{
    if (m_changeDepth == 0)
        m_undoStack.setClean();
    else
        m_undoStack.resetClean();
    tell();
}

template <class Kind>
void CollectionFile<Kind>::loadFailed(const QString &error)
{
    m_messages->clear();
    m_messages->add(Vela::Message::Error, error, 0, 0);
}

template <class Kind>
Vela::Messages *CollectionFile<Kind>::fileMessages() const
{
    return m_messages.get();
}

template class CollectionFile<SpritesKind>;
template class CollectionFile<SoundsKind>;

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/contentfile.h"
#include "lantern/itemlist.h"
#include "lantern/streamwriter.h"

#include "cache/sharemode.h"
#include "project/simplemessages.h"

#include <QUndoStack>

namespace Lantern {

/// A change of a file from the construction to the destruction.
template <class File>
class Change
{
public:
    Change(File &file, const QString &text)
        : m_file(file)
    {
        m_file.beginChange(text);
    }
    ~Change()
    {
        m_file.endChange();
    }

private:
    Q_DISABLE_COPY(Change)

    File &m_file;
};

/// A file of many items, whose data are streams behind tables. \a Kind names the library's class of
/// such files as Base, the Table and the Codec of the streams, and the Lists of items.
///
/// Equal data are stored once where they may be shared. The streams of a large file on the disk are
/// read in the background. Every change is a step of undo; reading the file again is one, too.
template <class Kind>
class CollectionFile : public ContentFile<typename Kind::Base>
{
public:
    using Base = typename Kind::Base;
    using Table = typename Kind::Table;

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

    /// By identifier, then by place.
    int compare(unsigned int a, unsigned int b) const override;
    void beginChange() override;
    /// Begins a change that users read \a text of, unless it is part of another.
    void beginChange(const QString &text);
    void endChange() override;
    /// Never past the end.
    unsigned int selected() const override;
    void setSelected(unsigned int index) override;
    unsigned int count() const override;

    /// There is no text to be found in it.
    QList<Vela::ProjectFile::SearchResult> search(const Vela::RegExp &expression,
                                                  unsigned int flags) const override;
    void replace(const QList<Vela::ProjectFile::SearchResult> &results,
                 const QString &text) override;

    /// To be read only.
    void setProperty(const QString &name, const QVariant &value) override;

    // What items are made of.

    template <class Item>
    const ItemList<Item> &list() const
    {
        this->ensureLoaded();
        return m_lists.template of<Item>();
    }
    /// For use inside of a change.
    template <class Item>
    ItemList<Item> &list()
    {
        this->ensureLoaded();
        return m_lists.template of<Item>();
    }
    /// Does nothing for an index out of range.
    template <class Item>
    void moveItem(unsigned int from, unsigned int to, const QString &text)
    {
        if (from >= list<Item>().count() || to >= list<Item>().count() || from == to)
            return;
        const Change change(*this, text);
        list<Item>().move(from, to);
    }
    /// Sets the value of an item as a change.
    template <class Item>
    void changeValue(Item &item, const typename Item::Value &value, const QString &text)
    {
        const Change change(*this, text);
        list<Item>().setValue(item, value);
    }
    /// Returns the stream of plain data: a twin's, if there is one and \a share allows it. Null if
    /// it cannot be kept.
    StreamRef keep(const QByteArray &plain, StreamKind kind, Vela::ShareMode share);
    /// Returns a new stream of plain data with another encoding; null if that is no smaller than
    /// the data, or if it cannot be kept.
    StreamRef keepEncoded(const QByteArray &plain, unsigned int encoding, StreamKind kind);

protected:
    using Lists = typename Kind::Lists;
    using Main = typename Lists::Main;
    using Changes = typename Lists::Change;

    explicit CollectionFile(const char *extension);

    void load() override;
    bool read(Vela::Archive &archive, const QString &name, QString &error) override;
    bool encode(QByteArray &data, QString &error) const override;
    void dropContent() override;
    void markSaved() override;
    void loadFailed(const QString &error) override;
    Vela::Messages *fileMessages() const override;

    /// Removes everything as a change.
    void clearLists(const QString &text);

    /// Takes the rows of tables that have been read, as a part of a change.
    virtual void takeRows(const Table &table, const QVector<StreamRef> &streams) = 0;
    /// Makes rows of the items. Returns false with a reason in \a error.
    virtual bool makeRows(Table &table, StreamWriter<Table> &writer, QString &error) const = 0;
    /// Returns a stream of plain data that may be shared; null if there is none. It is any stream
    /// of the store that is not given up, also one that only undo brings back.
    virtual StreamRef findTwin(const QByteArray &plain, StreamKind kind) const;
    /// Called when items have other names than before.
    virtual void namesHaveChanged() = 0;
    /// Tells others of a step.
    virtual void notify(const Changes &changes);

private:
    // The streams of each state are in its store.
    struct Step
    {
        std::shared_ptr<StreamStore> storeBefore;
        std::shared_ptr<StreamStore> storeAfter;
        Changes change;
    };

    static std::shared_ptr<StreamStore> newStore(const QString &fileName, bool isPreferred);
    void apply(const Step &step, bool forward);
    void travel(void (QUndoStack::*direction)());
    void finishStep();
    void tell();
    bool originalBytes(QByteArray &data) const;

    std::shared_ptr<StreamStore> m_store;
    QByteArray m_tables; // of the file as it was read; empty once it was written
    Lists m_lists;
    // While a change is under way.
    std::shared_ptr<StreamStore> m_storeBefore;
    QString m_changeText;
    int m_changeDepth = 0;
    std::unique_ptr<Changes> m_untold; // a step that nobody has heard of yet
    bool m_isOpening = false;          // while the first content comes
    unsigned int m_selected = 0;
    std::unique_ptr<Vela::SimpleMessages> m_messages;
    QUndoStack m_undoStack; // its steps go in front of what they refer to
};

} // namespace Lantern

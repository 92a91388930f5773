// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/splice.h"
#include "lantern/streamhandle.h"

#include "frame/checksum.h"
#include "image/subitem.h"

#include <QHash>
#include <QString>

#include <algorithm>
#include <memory>
#include <optional>
#include <tuple>

namespace Lantern {

/// What the items of a file have in common. \a ItemValue is what undo takes back; it has an
/// "identifier" and a "stream", and isSame() compares two of them.
template <class Item, class ItemValue>
class ListItem : public std::enable_shared_from_this<Item>
{
public:
    using Value = ItemValue;

    const Value &value() const
    {
        return m_value;
    }
    /// Returns its place, or the last one that it had.
    unsigned int place() const
    {
        return m_place;
    }

protected:
    explicit ListItem(const Value &value)
        : m_value(value)
    {
    }

private:
    template <class>
    friend class ItemList;

    Value m_value;
    unsigned int m_place = 0;
};

/// The difference between two states of a list.
template <class Item>
struct ListChange
{
    using Ref = std::shared_ptr<Item>;

    struct ValueChange
    {
        Ref item;
        typename Item::Value before;
        typename Item::Value after;
    };

    Splice<Ref> items;
    QVector<ValueChange> values;

    bool isEmpty() const
    {
        return items.isEmpty() && values.isEmpty();
    }
};

/// Below 0 if \a a sorts in front of \a b; 0 if they are the same to users.
inline int compareIdentifiers(Vela::SubItem a, Vela::SubItem b)
{
    return a == b ? 0 : a < b ? -1 : 1;
}

inline int compareIdentifiers(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive);
}

/// Equal for what is the same to users.
inline quint64 identifierKey(Vela::SubItem identifier)
{
    return quint64(quint32(identifier.group)) << 32 | quint32(identifier.image);
}

inline QString identifierKey(const QString &identifier)
{
    return identifier.toCaseFolded();
}

/// The items of one kind in a file. It knows what a change that is under way has made of them.
template <class Item>
class ItemList
{
public:
    using Ref = std::shared_ptr<Item>;
    using Change = ListChange<Item>;

    const QVector<Ref> &items() const
    {
        return m_items;
    }
    unsigned int count() const
    {
        return unsigned(m_items.size());
    }
    /// Returns null past the end.
    Item *at(unsigned int index) const
    {
        return index < count() ? m_items.at(int(index)).get() : nullptr;
    }
    /// By identifier, then by place.
    int compare(unsigned int a, unsigned int b) const
    {
        if (a >= count() || b >= count() || a == b)
            return 0;
        const int order = compareIdentifiers(at(a)->value().identifier, at(b)->value().identifier);
        return order != 0 ? order : a < b ? -1 : 1;
    }
    /// Returns the place of the first item from \a start on with that identifier, or -1.
    template <class Identifier>
    int find(unsigned int start, const Identifier &identifier) const
    {
        int first = -1;
        const auto key = identifierKey(identifier);
        const Index &index = this->index();
        for (auto it = index.constFind(key); it != index.constEnd() && it.key() == key; ++it) {
            const unsigned int place = it.value()->place();
            if (place >= start && (first < 0 || place < unsigned(first)))
                first = int(place);
        }
        return first;
    }
    /// Returns the first item that \a isRight and whose stream has that plain data; null if there
    /// is none.
    template <class IsRight>
    Ref firstEqual(const QByteArray &plain, IsRight isRight) const
    {
        const unsigned int crc = Vela::CRC32(plain.constData(), size_t(plain.size()));
        for (const Ref &item : m_items) {
            const StreamRef &stream = item->value().stream;
            if (stream && isRight(*item) && stream->isEqualToData(plain, crc))
                return item;
        }
        return nullptr;
    }
    /// Returns whether another item has the stream of this one.
    bool sharesStream(const Item &item) const
    {
        const StreamRef &own = item.value().stream;
        if (!own || (own.use_count() < 2 && own->item()->refCount() < 2))
            return false;
        return std::any_of(m_items.begin(), m_items.end(), [&item, &own](const Ref &other) {
            return other.get() != &item && other->value().stream
                && isSameStream(other->value().stream, own);
        });
    }

    void setItems(const QVector<Ref> &items)
    {
        m_items = items;
        m_index.reset();
        renumber(0);
    }
    /// Inserts at the end what has its place behind it: the neighbour may have been removed.
    void insert(unsigned int index, const Ref &item)
    {
        const int place = int(std::min(index, count()));
        m_items.insert(place, item);
        if (m_index)
            m_index->insert(identifierKey(item->value().identifier), item.get());
        renumber(place);
    }
    void move(unsigned int from, unsigned int to)
    {
        m_items.move(int(from), int(to));
        renumber(int(std::min(from, to)));
    }
    Ref take(unsigned int index)
    {
        const Ref item = m_items.takeAt(int(index));
        m_index.reset();
        renumber(int(index));
        return item;
    }
    void setValue(Item &item, const typename Item::Value &value)
    {
        if (isSame(item.value(), value))
            return;
        auto &known = m_valuesBefore[&item];
        if (!known.item)
            known = {item.shared_from_this(), item.value(), {}};
        if (compareIdentifiers(item.value().identifier, value.identifier) != 0)
            m_index.reset();
        item.m_value = value;
    }

    void beginChange()
    {
        m_itemsBefore = m_items;
    }
    /// Returns what has changed since.
    Change changeSinceBegin() const
    {
        Change change{spliceOf(m_itemsBefore, m_items), {}};
        for (typename Change::ValueChange value : m_valuesBefore) {
            value.after = value.item->value();
            if (!isSame(value.before, value.after))
                change.values.append(value);
        }
        return change;
    }
    void endChange()
    {
        m_itemsBefore.clear();
        m_valuesBefore.clear();
    }
    /// Makes the state in front of a change the one behind it, or the other way round.
    void apply(const Change &change, bool forward)
    {
        Lantern::apply(change.items, forward, m_items);
        for (const typename Change::ValueChange &value : change.values)
            value.item->m_value = forward ? value.after : value.before;
        m_index.reset();
        renumber(0);
    }

private:
    using Key = decltype(identifierKey(std::declval<typename Item::Value>().identifier));
    using Index = QMultiHash<Key, Item *>;

    const Index &index() const
    {
        if (!m_index) {
            m_index.emplace();
            for (const Ref &item : m_items)
                m_index->insert(identifierKey(item->value().identifier), item.get());
        }
        return *m_index;
    }
    void renumber(int from)
    {
        for (int i = from; i < m_items.size(); ++i)
            m_items.at(i)->m_place = unsigned(i);
    }

    QVector<Ref> m_items;
    mutable std::optional<Index> m_index; // none behind a change that it does not follow
    // While a change is under way. The values are of the items that have another one since, without
    // what stands behind the change.
    QVector<Ref> m_itemsBefore;
    QHash<Item *, typename Change::ValueChange> m_valuesBefore;
};

/// All items of a file, a list of each kind. The first kind is what the file is for.
template <class... Items>
class ItemLists
{
public:
    using Main = std::tuple_element_t<0, std::tuple<Items...>>;

    /// The difference between two states.
    class Change
    {
    public:
        explicit Change(const ListChange<Items> &...lists)
            : m_lists(lists...)
        {
        }

        template <class Item>
        const ListChange<Item> &of() const
        {
            return std::get<ListChange<Item>>(m_lists);
        }
        bool isEmpty() const
        {
            return (of<Items>().isEmpty() && ...);
        }

    private:
        std::tuple<ListChange<Items>...> m_lists;
    };

    template <class Item>
    const ItemList<Item> &of() const
    {
        return std::get<ItemList<Item>>(m_lists);
    }
    template <class Item>
    ItemList<Item> &of()
    {
        return std::get<ItemList<Item>>(m_lists);
    }
    bool isEmpty() const
    {
        return ((of<Items>().count() == 0) && ...);
    }
    void clear()
    {
        (of<Items>().setItems({}), ...);
    }

    void beginChange()
    {
        (of<Items>().beginChange(), ...);
    }
    Change changeSinceBegin() const
    {
        return Change(of<Items>().changeSinceBegin()...);
    }
    void endChange()
    {
        (of<Items>().endChange(), ...);
    }
    void apply(const Change &change, bool forward)
    {
        (of<Items>().apply(change.template of<Items>(), forward), ...);
    }

private:
    std::tuple<ItemList<Items>...> m_lists;
};

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <algorithm>
#include <vector>

namespace Vela {

/// The children of a node in their order. It has a gap at the place of its last change, so that a
/// run of changes in neighbouring rows costs the same in a long list as in a short one. It searches
/// for a child outwards from the two places that were asked for last: what moves children from one
/// parent to another asks for both in turn.
template <typename T>
class ChildList
{
public:
    int size() const
    {
        return int(m_items.size()) - m_gapSize;
    }
    bool isEmpty() const
    {
        return size() == 0;
    }
    T *at(int row) const
    {
        return m_items[size_t(row < m_gap ? row : row + m_gapSize)];
    }
    T *value(unsigned int row) const
    {
        return row < unsigned(size()) ? at(int(row)) : nullptr;
    }

    int indexOf(const void *child) const
    {
        for (int &hint : m_hints)
            hint = qMin(hint, size());
        for (int distance = 0; distance <= size(); ++distance) {
            for (int &hint : m_hints) {
                if (isAt(hint + distance, child))
                    return hint += distance;
                if (isAt(hint - distance, child))
                    return hint -= distance;
            }
        }
        return -1;
    }

    void insert(int row, T *child)
    {
        moveGap(row);
        if (m_gapSize == 0)
            grow();
        m_items[size_t(m_gap)] = child;
        ++m_gap;
        --m_gapSize;
        nearestHint(row) = row;
    }

    void removeAt(int row)
    {
        moveGap(row);
        ++m_gapSize;
        nearestHint(row) = row;
    }

    QList<T *> toList() const
    {
        QList<T *> list;
        list.reserve(size());
        for (int row = 0; row < size(); ++row)
            list.append(at(row));
        return list;
    }

private:
    bool isAt(int row, const void *child) const
    {
        return row >= 0 && row < size() && at(row) == child;
    }

    int &nearestHint(int row)
    {
        return m_hints[qAbs(m_hints[1] - row) < qAbs(m_hints[0] - row) ? 1 : 0];
    }

    void moveGap(int row)
    {
        const auto begin = m_items.begin();
        // To move a range onto itself is not defined.
        if (m_gapSize > 0 && row < m_gap)
            std::move_backward(begin + row, begin + m_gap, begin + m_gap + m_gapSize);
        else if (m_gapSize > 0)
            std::move(begin + m_gap + m_gapSize, begin + row + m_gapSize, begin + m_gap);
        m_gap = row;
    }

    void grow()
    {
        const int room = qMax(4, int(m_items.size()) / 2);
        m_items.insert(m_items.begin() + m_gap, size_t(room), nullptr);
        m_gapSize = room;
    }

    std::vector<T *> m_items;
    int m_gap = 0;
    int m_gapSize = 0;
    mutable int m_hints[2] = {0, 0}; ///< where the search for a child begins
};

} // namespace Vela

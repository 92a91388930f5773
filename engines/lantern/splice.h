// SPDX-License-Identifier: MIT
#pragma once

#include <QVector>

#include <algorithm>

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
    bool changesCount() const
    {
        return before.size() != after.size();
    }
};

/// Returns the part in which two lists differ, between equal beginnings and equal ends.
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

/// Makes one state of a list the other.
template <class Ref>
void apply(const Splice<Ref> &splice, bool forward, QVector<Ref> &list)
{
    const QVector<Ref> &from = forward ? splice.before : splice.after;
    const QVector<Ref> &to = forward ? splice.after : splice.before;
    list = list.mid(0, splice.position) + to + list.mid(splice.position + from.size());
}

} // namespace Lantern

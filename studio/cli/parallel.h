// SPDX-License-Identifier: MIT
#pragma once

#include <QVector>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace Studio {

/// Puts what \a map makes of each item in the item's place, on all cores. \a map is called on
/// several threads, and does not throw.
template <typename Item, typename Map>
void mapInParallel(QVector<Item> &items, Map map)
{
    Item *const all = items.data();
    const int count = items.size();
    std::atomic<int> next{0};
    const auto work = [&] {
        for (int i = next++; i < count; i = next++)
            all[i] = map(all[i]);
    };
    std::vector<std::thread> others;
    const int threads = std::min(count, int(std::thread::hardware_concurrency()));
    for (int i = 1; i < threads; ++i)
        others.emplace_back(work);
    work();
    for (std::thread &other : others)
        other.join();
}

} // namespace Studio

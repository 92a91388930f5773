// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QVector>

/// The search of the LZ5 writer without any short cut: every distance, pixel by pixel. The result
/// is what the fast one has to give.
namespace PlainLZ5 {

struct Packet
{
    int color = 0;
    int length = 0;
    int distance = 0; ///< 0 for a run

    bool isShortCopy() const
    {
        return distance > 0 && distance <= 256 && length <= 64;
    }
};

inline Packet findCopy(const char *pixels, int total, int pos)
{
    Packet best;
    int bestLength = 1;
    for (int d = 2; d <= qMin(pos, 1024); ++d) {
        int n = 0;
        int changes = 0;
        int stretch = 0;
        bool longRun = false;
        while (n < 258 && pos + n < total && pixels[pos + n] == pixels[pos + n - d]) {
            const bool changed = n > 0 && pixels[pos + n] != pixels[pos + n - 1];
            changes += changed;
            stretch = changed ? 1 : stretch + 1;
            longRun = longRun || stretch == 8;
            ++n;
        }
        if (changes == 0 || n <= bestLength)
            continue;
        bool accepted = false;
        if (n <= 64 && d <= 256) {
            const bool ends = pos + n == total || pixels[pos + n] != pixels[pos + n - 1];
            accepted = changes > 1 || ends;
        } else {
            accepted = (changes == 2 && longRun) || (n >= 4 && changes >= 3);
        }
        if (accepted) {
            best = {0, n, d};
            bestLength = n;
        }
    }
    return best;
}

inline QVector<Packet> packets(const QByteArray &pixels, bool useLz)
{
    QVector<Packet> list;
    int pos = 0;
    const auto takeCopy = [&](int at) {
        const Packet copy =
            useLz && at >= 1 ? findCopy(pixels.constData(), pixels.size(), at) : Packet();
        if (copy.length == 0)
            return false;
        if (at > pos)
            list.append({pixels[pos], at - pos, 0});
        list.append(copy);
        pos = at + copy.length;
        return true;
    };
    while (pos < pixels.size()) {
        if (takeCopy(pos))
            continue;
        int run = 1;
        const auto extend = [&](int limit) {
            while (run < limit && pos + run < pixels.size() && pixels[pos + run] == pixels[pos])
                ++run;
        };
        extend(7);
        if (run == 7 && takeCopy(pos + 7))
            continue;
        extend(263);
        list.append({pixels[pos], run, 0});
        pos += run;
    }
    return list;
}

inline QByteArray encode(const QByteArray &pixels, bool useLz)
{
    const QVector<Packet> list = packets(pixels, useLz);
    QVector<int> shortCopies;
    for (int i = 0; i < list.size(); ++i) {
        if (list[i].isShortCopy())
            shortCopies.append(i);
    }
    QByteArray bytes;
    for (int i = 0; i < list.size(); ++i) {
        if (i % 8 == 0) {
            int flags = 0;
            for (int j = 0; j < 8 && i + j < list.size(); ++j)
                flags |= int(list[i + j].distance > 0) << j;
            bytes += char(flags);
        }
        const Packet &packet = list[i];
        if (packet.distance == 0 && packet.length < 8) {
            bytes += char(packet.length << 5 | packet.color);
        } else if (packet.distance == 0) {
            bytes += char(packet.color);
            bytes += char(packet.length - 8);
        } else if (packet.isShortCopy()) {
            const int number = shortCopies.indexOf(i);
            const int fourth = number / 4 * 4 + 3;
            const int recycled =
                fourth < shortCopies.size() ? list[shortCopies[fourth]].distance - 1 : 0;
            const int part = recycled >> (6 - number % 4 * 2) & 3;
            bytes += char(part << 6 | (packet.length - 1));
            if (number != fourth)
                bytes += char(packet.distance - 1);
        } else {
            bytes += char((packet.distance - 1) >> 8 << 6);
            bytes += char(packet.distance - 1);
            bytes += char(packet.length - 3);
        }
    }
    return bytes;
}

} // namespace PlainLZ5

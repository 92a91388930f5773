// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QList>

/// The contents that tst_savekill's child saves: a line with the save's number, the body's length
/// and the body's checksum, then the body, of 1 byte to 2 MB.
namespace SaveContent {

inline QByteArray checksum(const QByteArray &body)
{
    return QCryptographicHash::hash(body, QCryptographicHash::Sha1).toHex();
}

inline QByteArray make(int number)
{
    constexpr int sizes[] = {1, 100, 16384, 100000, 2 * 1024 * 1024};
    const QByteArray body(sizes[number % 5], char('a' + number % 26));
    return QByteArray::number(number) + ' ' + QByteArray::number(body.size()) + ' ' + checksum(body)
        + '\n' + body;
}

/// Returns the number of a content that is complete; -1 for any other.
inline int number(const QByteArray &content)
{
    const int end = content.indexOf('\n');
    const QList<QByteArray> fields = content.left(end).split(' ');
    const QByteArray body = content.mid(end + 1);
    const bool isComplete = end > 0 && fields.size() == 3 && fields[1].toInt() == body.size()
        && fields[2] == checksum(body);
    return isComplete ? fields[0].toInt() : -1;
}

} // namespace SaveContent

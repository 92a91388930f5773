// SPDX-License-Identifier: MIT
#include "lantern/soundnames.h"

#include <algorithm>

namespace Lantern {

namespace {

constexpr int longestName = 100;

bool isRefused(QChar c)
{
    // Readers of UTF-8 drop a byte order mark at the beginning.
    return c.category() == QChar::Other_Control || c == QChar::ByteOrderMark
        || QStringLiteral("/\\:*?\"<>|").contains(c);
}

bool isBlankOrDot(QChar c)
{
    return c.isSpace() || c == QLatin1Char('.');
}

} // namespace

bool isSoundName(const QString &name)
{
    return !name.isEmpty() && name.size() <= longestName && name.isValidUtf16()
        && !isBlankOrDot(name.front()) && !isBlankOrDot(name.back())
        && std::none_of(name.begin(), name.end(), isRefused);
}

QString freeSoundName(const QString &wanted, const std::function<bool(const QString &)> &isUsed)
{
    const QString name = isSoundName(wanted) ? wanted : QStringLiteral("sound");
    QString result = name;
    for (int number = 2; isUsed(result); ++number) {
        const QString suffix = QLatin1Char('-') + QString::number(number);
        result = name.left(longestName - suffix.size());
        if (result.at(result.size() - 1).isHighSurrogate())
            result.chop(1);
        result += suffix;
    }
    return result;
}

} // namespace Lantern

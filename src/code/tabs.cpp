// SPDX-License-Identifier: MIT
#include "code/tabs.h"

#include <algorithm>

namespace Vela {

namespace {

constexpr int tabSize = 4;

/// Returns the number of columns from \a column to the next tab stop, from 1.
int roomAt(int column)
{
    return tabSize - column % tabSize;
}

/// Returns the column behind a character.
int columnBehind(QChar character, int column)
{
    if (character == QLatin1Char('\n') || character == QLatin1Char('\r'))
        return 0;
    return column + (character == QLatin1Char('\t') ? roomAt(column) : 1);
}

bool isBlankRun(const QString &text, int from, int count)
{
    const auto isBlank = [](QChar character) { return character == QLatin1Char(' '); };
    return from + count <= text.size()
        && std::all_of(text.begin() + from, text.begin() + from + count, isBlank);
}

} // namespace

qint64 expandedSize(const QString &text)
{
    return text.size() + qint64(tabSize - 1) * text.count(QLatin1Char('\t'));
}

QString expandTabs(const QString &text)
{
    QString result;
    result.reserve(text.size());
    int column = 0;
    for (const QChar character : text) {
        if (character == QLatin1Char('\t')) {
            for (int i = roomAt(column); i > 0; --i)
                result += QLatin1Char(' ');
        } else {
            result += character;
        }
        column = columnBehind(character, column);
    }
    return result;
}

QString blanksToTabs(const QString &text)
{
    QString result;
    result.reserve(text.size());
    int column = 0;
    for (int i = 0; i < text.size();) {
        const int room = roomAt(column);
        if (room > 1 && isBlankRun(text, i, room)) {
            result += QLatin1Char('\t');
            column += room;
            i += room;
        } else {
            result += text[i];
            column = columnBehind(text[i], column);
            ++i;
        }
    }
    return result;
}

} // namespace Vela

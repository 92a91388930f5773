// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Vela {

/// Returns what a line becomes when \a code takes the place of what it says. The comment behind the
/// old code stays, one in front of it does not. With \a keepBlanks the new words take the places of
/// the old ones, with the blanks between those. An empty \a commentString begins no comment.
QString rewrittenLine(const QString &line, const QString &code, const QString &commentString,
                      bool keepBlanks);

/// One replacement that makes one text of another.
struct TextDifference
{
    bool isEmpty() const
    {
        return removed == 0 && inserted.isEmpty();
    }

    int position = 0; ///< of the first different character
    int removed = 0;  ///< number of characters of the old text
    QString inserted;
};

/// Returns the shortest replacement, with the longest equal beginning.
TextDifference textDifference(const QString &from, const QString &to);

} // namespace Vela

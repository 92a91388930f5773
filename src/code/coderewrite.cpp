// SPDX-License-Identifier: MIT
#include "code/coderewrite.h"

namespace Vela {

namespace {

/// Returns the end of the run of blanks, or with \a blank unset of other characters, at \a from.
int runEnd(const QString &text, int from, bool blank)
{
    while (from < text.size() && text.at(from).isSpace() == blank)
        ++from;
    return from;
}

/// Returns where the code of a line begins: behind the comment string that takes it all out.
int codeStart(const QString &line, const QString &commentString)
{
    return line.startsWith(commentString) ? commentString.size() : 0;
}

QString mergeWords(const QString &line, const QString &code, const QString &commentString)
{
    QString result;
    int to = 0;
    int from = codeStart(line, commentString);
    while (from < line.size()) {
        const bool blank = line.at(from).isSpace();
        if (!blank && !commentString.isEmpty() && line.at(from) == commentString.at(0))
            return result + code.midRef(to) + line.midRef(from);
        const int end = runEnd(line, from, blank);
        to = runEnd(code, to, true);
        if (blank) {
            result += line.midRef(from, end - from);
        } else {
            const int wordEnd = runEnd(code, to, false);
            result += code.midRef(to, wordEnd - to);
            to = wordEnd;
        }
        from = end;
    }
    return result + code.midRef(to);
}

/// Returns the comment behind the code of a line, with the blanks in front of it.
QString trailingComment(const QString &line, const QString &commentString)
{
    if (commentString.isEmpty())
        return QString();
    int from = line.indexOf(commentString, codeStart(line, commentString));
    if (from < 0)
        return QString();
    while (from > 0 && line.at(from - 1).isSpace())
        --from;
    return line.mid(from);
}

} // namespace

QString rewrittenLine(const QString &line, const QString &code, const QString &commentString,
                      bool keepBlanks)
{
    const QString merged = keepBlanks ? mergeWords(line, code, commentString) : QString();
    return merged.isEmpty() ? code + trailingComment(line, commentString) : merged;
}

TextDifference textDifference(const QString &from, const QString &to)
{
    const int shorter = qMin(from.size(), to.size());
    int start = 0;
    while (start < shorter && from.at(start) == to.at(start))
        ++start;
    int end = 0;
    while (end < shorter - start && from.at(from.size() - 1 - end) == to.at(to.size() - 1 - end))
        ++end;
    return {start, from.size() - start - end, to.mid(start, to.size() - start - end)};
}

} // namespace Vela

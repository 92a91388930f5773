// SPDX-License-Identifier: MIT
#include "lantern/report.h"

#include "lantern/schema.h"

namespace Lantern {

bool Report::expected(const char *what, int index)
{
    if (!m_syntax)
        return false;
    if (index < m_line.count()) {
        const Token &token = m_line.at(index);
        return expectedAt(token.kind == Token::Unclosed ? tr("a closing quote") : tr(what),
                          token.start, token.end);
    }
    // Where the line ends too early its last token is marked, as a mark needs characters.
    const Token &last = m_line.at(m_line.count() - 1);
    return error(tr("Expected %1, but the line ends here.").arg(tr(what)), last.start, last.end);
}

bool Report::expectedAt(const char *what, int start, int end)
{
    return m_syntax && expectedAt(tr(what), start, end);
}

bool Report::expectedAt(const QString &what, int start, int end)
{
    if (!m_syntax)
        return false;
    const QString found = m_line.text().mid(start, end - start).toString();
    return error(tr("Expected %1, but found '%2'.").arg(what, clipped(found)), start, end);
}

void Report::parenthesis(int index)
{
    if (!m_syntax)
        return;
    const Token &token = m_line.at(index);
    m_syntax->addParenthesis(token.kind == Token::Open, m_line.text()[token.start], token.start);
}

bool Report::error(const QString &message, int start, int end)
{
    if (m_syntax) {
        handOn();
        m_syntax->addError(TokenKind::Number, message, start, end);
    }
    return false;
}

void Report::warning(int type, const QString &message, int index)
{
    warning(type, message, m_line.at(index).start, m_line.at(index).end);
}

void Report::warning(int type, const QString &message, int start, int end)
{
    if (m_syntax) {
        handOn();
        m_syntax->addWarning(type, message, start, end);
    }
}

void Report::unknown(const QString &message, int index, const QStringList &words)
{
    if (!m_syntax)
        return;
    const QString closest = closestWord(m_line.text(index), words);
    warning(TokenKind::Ignored,
            closest.isEmpty() ? message
                              : message + QLatin1Char(' ') + tr("Did you mean '%1'?").arg(closest),
            index);
}

void Report::outdated(int type, int index, const QString &replacement)
{
    outdated(type, m_line.at(index).start, m_line.at(index).end, replacement);
}

void Report::outdated(int type, int start, int end, const QString &replacement)
{
    if (!m_syntax)
        return;
    const QString found = m_line.text().mid(start, end - start).toString();
    handOn();
    m_syntax->addDeprecation(
        type, tr("'%1' is outdated: write '%2'.").arg(clipped(found), replacement), start, end);
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "studio/window/textsearch.h"

#include "code/codedocument.h"
#include "studio/session/projectsearch.h"
#include "studio/window/textplaces.h"

#include <QPlainTextEdit>
#include <QTextBlock>

namespace Studio {

using Document = Vela::CodeDocument;

namespace {

constexpr int NearLines = 500; // at either side of the cursor

} // namespace

Vela::RegExp SearchTerm::expression() const
{
    QString pattern = isExpression ? text : QRegularExpression::escape(text);
    if (isWholeWords)
        pattern = QStringLiteral("(?<!\\w)(?:%1)(?!\\w)").arg(pattern);
    QRegularExpression::PatternOptions options =
        QRegularExpression::MultilineOption | QRegularExpression::UseUnicodePropertiesOption;
    if (!matchesCase)
        options |= QRegularExpression::CaseInsensitiveOption;
    return Vela::RegExp(pattern, options);
}

TextSearch::TextSearch(Vela::CodeDocument &document, QPlainTextEdit &view)
    : m_document(document)
    , m_view(view)
{
}

TextSearch::Outcome TextSearch::find(const Vela::RegExp &expression, unsigned int flags)
{
    const bool backward = flags & Document::Backward;
    QTextCursor from = m_view.textCursor();
    QList<Result> found = search(expression, from, flags);
    // A match without a length at the cursor is the one where the user stands already.
    if (!found.isEmpty() && found.first().length == 0 && !backward && !(flags & Document::FromStart)
        && position(found.first()) == from.position()) {
        const bool moved = from.movePosition(QTextCursor::NextCharacter);
        found = moved ? search(expression, from, flags) : QList<Result>();
        if (!moved && (flags & Document::WrapAround))
            found = search(expression, from, flags | Document::FromStart);
    }
    if (found.isEmpty())
        return NotFound;
    const Result &match = found.first();
    const int start = position(match);
    const bool around = backward ? start >= from.selectionStart() : start < from.position();
    selectText(m_view, match.line, match.column, match.length);
    return around && !(flags & Document::FromStart) ? FoundAround : Found;
}

QList<QTextCursor> TextSearch::matchesNearby(const Vela::RegExp &expression) const
{
    QTextCursor lines = m_view.textCursor();
    const int line = lines.blockNumber();
    const auto block = [this](int number) {
        return m_document.findBlockByNumber(qBound(0, number, m_document.blockCount() - 1));
    };
    const QTextBlock last = block(line + NearLines);
    lines.setPosition(block(line - NearLines).position());
    lines.setPosition(last.position() + last.length() - 1, QTextCursor::KeepAnchor);
    const QString text = lines.selectedText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));

    QList<QTextCursor> matches;
    for (auto found = expression.globalMatch(text); found.hasNext();) {
        const QRegularExpressionMatch match = found.next();
        QTextCursor cursor = lines;
        cursor.setPosition(lines.selectionStart() + match.capturedStart());
        cursor.setPosition(lines.selectionStart() + match.capturedEnd(), QTextCursor::KeepAnchor);
        matches.append(cursor);
    }
    return matches;
}

bool TextSearch::replace(const Vela::RegExp &expression, const QString &text)
{
    const QTextCursor selected = m_view.textCursor();
    QTextCursor from = selected;
    from.setPosition(selected.selectionStart());
    const QList<Result> found = search(expression, from, 0);
    if (found.isEmpty() || position(found.first()) != selected.selectionStart()
        || found.first().length != selected.selectionEnd() - selected.selectionStart())
        return false;
    m_document.replace(found, text);
    return true;
}

int TextSearch::replaceAll(const Vela::RegExp &expression, const QString &text)
{
    const QList<Result> found = ProjectSearch::searchAll(m_document, expression);
    m_document.replace(found, text);
    return found.size();
}

QList<TextSearch::Result> TextSearch::search(const Vela::RegExp &expression,
                                             const QTextCursor &from, unsigned int flags) const
{
    m_document.setCursor(from);
    return m_document.search(expression, flags);
}

int TextSearch::position(const Result &result) const
{
    return m_view.document()->findBlockByNumber(result.line).position() + result.column;
}

} // namespace Studio

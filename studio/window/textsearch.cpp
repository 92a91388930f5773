// SPDX-License-Identifier: MIT
#include "studio/window/textsearch.h"

#include "code/codedocument.h"
#include "project/searchableprojectfile.h"
#include "studio/session/documents.h"
#include "studio/window/textview.h"

#include <QTextBlock>
#include <algorithm>

namespace Studio {

using Document = Vela::CodeDocument;

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

TextSearch::TextSearch(Vela::ProjectFile &file, TextView &view)
    : m_file(file)
    , m_document(documentOf(&file))
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
    m_view.select(match.line, match.column, match.length);
    return around && !(flags & Document::FromStart) ? FoundAround : Found;
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
    m_file.replace(found, text);
    return true;
}

int TextSearch::replaceAll(const Vela::RegExp &expression, const QString &text)
{
    const QList<Result> found = searchAll(expression);
    m_file.replace(found, text);
    return found.size();
}

QList<TextSearch::Result> TextSearch::search(const Vela::RegExp &expression,
                                             const QTextCursor &from, unsigned int flags) const
{
    if (!m_document)
        return nextOf(searchAll(expression), from, flags);
    m_document->setCursor(from);
    return m_document->search(expression, flags);
}

QList<TextSearch::Result> TextSearch::searchAll(const Vela::RegExp &expression) const
{
    return m_file.search(expression,
                         m_document ? unsigned(Document::FindAll)
                                    : unsigned(Vela::SearchableProjectFile::FindAll));
}

/// Chooses for a file that knows no cursor.
QList<TextSearch::Result> TextSearch::nextOf(const QList<Result> &all, const QTextCursor &from,
                                             unsigned int flags) const
{
    QList<Result> shown;
    std::copy_if(all.begin(), all.end(), std::back_inserter(shown),
                 [this](const Result &result) { return result.line < m_view.blockCount(); });
    const bool backward = flags & Document::Backward;
    const int start = backward ? from.selectionStart() : from.position();
    const auto edge = std::partition_point(shown.cbegin(), shown.cend(), [&](const Result &result) {
        return position(result) < start;
    });
    const bool beyond = edge == (backward ? shown.cbegin() : shown.cend());
    if (shown.isEmpty() || (beyond && !(flags & (Document::WrapAround | Document::FromStart))))
        return {};
    if (beyond || (flags & Document::FromStart))
        return {backward ? shown.last() : shown.first()};
    return {backward ? *(edge - 1) : *edge};
}

int TextSearch::position(const Result &result) const
{
    return m_view.document()->findBlockByNumber(result.line).position() + result.column;
}

} // namespace Studio

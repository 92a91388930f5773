// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "code/codedocument_p.h"
#include "frame/regexp.h"

namespace Vela {

namespace {

/// Makes results of matches in a document, in any order.
class ResultMaker
{
public:
    explicit ResultMaker(const CodeDocument &document)
        : m_document(document)
    {
    }

    ProjectFile::SearchResult make(const QRegularExpressionMatch &match)
    {
        const QTextBlock block = m_document.findBlock(match.capturedStart());
        ProjectFile::SearchResult result;
        result.line = block.blockNumber();
        result.column = match.capturedStart() - block.position();
        result.length = match.capturedLength();
        result.text = linesFrom(block, match.capturedEnd());
        // A match names no groups behind the last one that took part in it.
        for (int group = 1; group <= match.regularExpression().captureCount(); ++group)
            result.captures.append(match.captured(group));
        return result;
    }

private:
    QString linesFrom(QTextBlock block, int end)
    {
        QString text = lineText(block);
        while (end > block.position() + block.length() && block.next().isValid()) {
            block = block.next();
            text += QLatin1Char('\n') + block.text();
        }
        return text;
    }

    // The results of one line share its text.
    const QString &lineText(const QTextBlock &block)
    {
        if (block != m_block) {
            m_block = block;
            m_text = block.text();
        }
        return m_text;
    }

    const CodeDocument &m_document;
    QTextBlock m_block;
    QString m_text;
};

/// A text that is searched from many places.
class SearchedText
{
public:
    /// Halves of surrogate pairs match nothing: they would make the text one that is refused.
    SearchedText(const RegExp &expression, const QString &text)
        : m_expression(expression)
        , m_text(text)
    {
        for (int i = 0; i < m_text.size(); ++i) {
            if (isPair(i))
                ++i;
            else if (m_text.at(i).isSurrogate())
                m_text[i] = QChar::ReplacementCharacter;
        }
    }

    QRegularExpressionMatchIterator all() const
    {
        return m_expression.globalMatch(m_text);
    }

    /// Returns the first match from a position on.
    QRegularExpressionMatch firstFrom(int position) const
    {
        if (position > 0 && isPair(position - 1))
            ++position;
        // Each search would check the whole text again.
        return m_expression.match(m_text, position, QRegularExpression::NormalMatch,
                                  QRegularExpression::DontCheckSubjectStringMatchOption);
    }

    /// Returns the last match that begins in front of \a end; the matches may overlap. It looks
    /// through pieces of the text from \a end backwards, each twice the size of the last one.
    QRegularExpressionMatch lastBefore(int end) const
    {
        QRegularExpressionMatch last;
        int pieceEnd = end;
        for (int size = firstPiece; pieceEnd > 0 && !last.hasMatch(); size *= 2) {
            const int pieceStart = qMax(0, pieceEnd - size);
            int position = pieceStart;
            while (position < pieceEnd) {
                const QRegularExpressionMatch match = firstFrom(position);
                if (!match.hasMatch() || match.capturedStart() >= pieceEnd)
                    break;
                last = match;
                // With \K an expression can match in front of where the search began.
                position = qMax(position, match.capturedStart()) + 1;
            }
            pieceEnd = pieceStart;
        }
        return last;
    }

    int size() const
    {
        return m_text.size();
    }

private:
    static constexpr int firstPiece = 4096;

    bool isPair(int position) const
    {
        return m_text.at(position).isHighSurrogate() && position + 1 < m_text.size()
            && m_text.at(position + 1).isLowSurrogate();
    }

    const RegExp &m_expression;
    QString m_text;
};

QRegularExpressionMatch searchForward(const SearchedText &text, int from, bool wrap)
{
    const QRegularExpressionMatch match = text.firstFrom(from);
    return match.hasMatch() || !wrap ? match : text.firstFrom(0);
}

QRegularExpressionMatch searchBackward(const SearchedText &text, int from, bool wrap)
{
    const QRegularExpressionMatch match = text.lastBefore(from);
    return match.hasMatch() || !wrap ? match : text.lastBefore(text.size());
}

} // namespace

QList<ProjectFile::SearchResult> CodeDocument::search(const RegExp &expression,
                                                      unsigned int flags) const
{
    QList<SearchResult> results;
    if (!expression.isValid())
        return results;
    const SearchedText text(expression, toString());
    ResultMaker maker(*this);
    if (flags & FindAll) {
        for (QRegularExpressionMatchIterator match = text.all(); match.hasNext();)
            results.append(maker.make(match.next()));
        return results;
    }

    const bool fromStart = flags & FromStart;
    const bool wrap = (flags & WrapAround) && !fromStart;
    const QRegularExpressionMatch match = flags & Backward
        ? searchBackward(text, fromStart ? text.size() : d->cursor.selectionStart(), wrap)
        : searchForward(text, fromStart ? 0 : d->cursor.position(), wrap);
    if (match.hasMatch())
        results.append(maker.make(match));
    return results;
}

void CodeDocument::replace(const QList<SearchResult> &results, const QString &text)
{
    const bool bracketed = results.size() > 1;
    if (bracketed)
        beginChange();
    for (auto result = results.crbegin(); result != results.crend(); ++result) {
        const QTextBlock block = findBlockByNumber(result->line);
        const int start = block.position() + result->column;
        // A text that has changed since may not have the place any more.
        if (!block.isValid() || result->column < 0 || result->column >= block.length()
            || result->length < 0 || result->length > characterCount() - 1 - start)
            continue;
        QString replacement = text;
        for (const QString &capture : result->captures)
            replacement = replacement.arg(capture);
        QTextCursor cursor(this);
        cursor.setPosition(start);
        cursor.setPosition(start + result->length, QTextCursor::KeepAnchor);
        cursor.insertText(replacement);
    }
    if (bracketed)
        endChange();
}

} // namespace Vela

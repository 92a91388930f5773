// SPDX-License-Identifier: MIT
#pragma once

#include "frame/regexp.h"
#include "project/projectfile.h"

#include <QTextCursor>

class QPlainTextEdit;

namespace Vela {
class CodeDocument;
}

namespace Studio {

/// What is looked for, as the user says it.
struct SearchTerm
{
    QString text;
    bool matchesCase = false;
    bool isWholeWords = false;
    bool isExpression = false;

    /// Returns what finds it. An invalid expression says so itself.
    Vela::RegExp expression() const;
};

/// Finds and replaces in a text, from where the cursor of its view stands.
class TextSearch
{
public:
    enum Outcome {
        NotFound,
        Found,
        FoundAround ///< beyond the end of the text, or beyond its start
    };

    /// \a view shows \a document.
    TextSearch(Vela::CodeDocument &document, QPlainTextEdit &view);

    /// Selects a match, the next one by the flags of a CodeDocument's search.
    Outcome find(const Vela::RegExp &expression, unsigned int flags);
    /// Returns the matches in the lines round the cursor. Those further away would cost more time
    /// than there is with each key.
    QList<QTextCursor> matchesNearby(const Vela::RegExp &expression) const;
    /// Replaces the selection if it is a match, and returns whether it is. "%1" and so on stand for
    /// the captures.
    bool replace(const Vela::RegExp &expression, const QString &text);
    /// Replaces all matches as one step of undo and returns their number.
    int replaceAll(const Vela::RegExp &expression, const QString &text);

private:
    using Result = Vela::ProjectFile::SearchResult;

    QList<Result> search(const Vela::RegExp &expression, const QTextCursor &from,
                         unsigned int flags) const;
    int position(const Result &result) const;

    Vela::CodeDocument &m_document;
    QPlainTextEdit &m_view;
};

} // namespace Studio

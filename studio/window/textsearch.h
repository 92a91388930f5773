// SPDX-License-Identifier: MIT
#pragma once

#include "frame/regexp.h"
#include "project/projectfile.h"

#include <QTextCursor>

namespace Vela {
class CodeDocument;
}

namespace Studio {

class TextView;

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

/// Finds and replaces in the text of a file, from where the cursor of its view stands.
class TextSearch
{
public:
    enum Outcome {
        NotFound,
        Found,
        FoundAround ///< beyond the end of the text, or beyond its start
    };

    /// \a view shows the text of \a file.
    TextSearch(Vela::ProjectFile &file, TextView &view);

    /// Selects a match, the next one by the flags of a CodeDocument's search.
    Outcome find(const Vela::RegExp &expression, unsigned int flags);
    /// Replaces the selection if it is a match, and returns whether it is. "%1" and so on stand for
    /// the captures.
    bool replace(const Vela::RegExp &expression, const QString &text);
    /// Replaces all matches as one step of undo and returns their number.
    int replaceAll(const Vela::RegExp &expression, const QString &text);

private:
    using Result = Vela::ProjectFile::SearchResult;

    QList<Result> search(const Vela::RegExp &expression, const QTextCursor &from,
                         unsigned int flags) const;
    QList<Result> searchAll(const Vela::RegExp &expression) const;
    QList<Result> nextOf(const QList<Result> &all, const QTextCursor &from,
                         unsigned int flags) const;
    int position(const Result &result) const;

    Vela::ProjectFile &m_file;
    Vela::CodeDocument *m_document; // null for a file that only the preview shows
    TextView &m_view;
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/line.h"

#include "code/codeparsersyntax.h"

#include <QCoreApplication>
#include <QStringList>

namespace Lantern {

/// What the kinds of tokens mean in definition texts.
namespace TokenKind {
enum : Vela::CodeParserSyntax::TokenType {
    Ignored = 0, ///< what is not known, or not read
    Comment = Vela::CodeParserSyntax::CommentToken,
    Number = 2,
    Text = 3,
    Key = 4,
    Command = 5, ///< the word that a line begins with
    Option = 6,
    Section = 7,
    Keyword = 8,
    Name = 9 ///< of a sprite, a sound, an animation or a file
};
}

/// Hands on what is found in a line, if anybody listens.
class Report
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)

public:
    /// \a syntax may be null.
    Report(const Line &line, Vela::CodeParserSyntax *syntax)
        : m_line(line)
        , m_syntax(syntax)
    {
    }
    ~Report()
    {
        handOn();
    }

    bool isHeard() const
    {
        return m_syntax;
    }
    Vela::CodeParserSyntax *syntax() const
    {
        return m_syntax;
    }

    void token(int type, int index)
    {
        tokens(type, index, index);
    }
    /// Reports tokens from a first to a last. Neighbours of one kind, or those with a comma
    /// between, are handed on as one span, since each span costs the layout of the line.
    void tokens(int type, int first, int last)
    {
        if (!m_syntax)
            return;
        if (type != m_type || !isBehind(first)) {
            handOn();
            m_type = type;
            m_first = first;
        }
        m_last = last;
    }
    void span(int type, int start, int end)
    {
        if (m_syntax) {
            handOn();
            m_syntax->setToken(type, start, end);
        }
    }

    /// Reports a bracket.
    void parenthesis(int index);

    /// Adds an error that says what was expected in the place of a token, or of the line's end.
    /// Returns false. \a what is translated.
    bool expected(const char *what, int index);
    /// The same for columns of the line.
    bool expectedAt(const char *what, int start, int end);
    bool expectedAt(const QString &what, int start, int end);
    void warning(int type, const QString &message, int index);
    void warning(int type, const QString &message, int start, int end);
    /// Adds a warning about a word, with the one of \a words that was probably meant.
    void unknown(const QString &message, int index, const QStringList &words);
    /// Says that a word is outdated, and what takes its place.
    void outdated(int type, int index, const QString &replacement);
    void outdated(int type, int start, int end, const QString &replacement);

private:
    Q_DISABLE_COPY(Report)

    bool isBehind(int index) const
    {
        return index == m_last + 1 || (index == m_last + 2 && m_line.is(m_last + 1, Token::Comma));
    }
    /// Hands on the tokens that wait for neighbours.
    void handOn()
    {
        if (m_first >= 0)
            m_syntax->setToken(m_type, m_line.at(m_first).start, m_line.at(m_last).end);
        m_first = -1;
        m_type = -1;
    }
    bool error(const QString &message, int start, int end);

    const Line &m_line;
    Vela::CodeParserSyntax *const m_syntax;
    // The tokens of one kind that wait for neighbours; both kind and first are -1 for none.
    int m_type = -1;
    int m_first = -1;
    int m_last = -1;
};

} // namespace Lantern

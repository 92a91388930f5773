// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QStringView>
#include <QVarLengthArray>

namespace Lantern {

/// A piece of a line. Columns count from 0, the end excluded.
struct Token
{
    enum Kind : unsigned char {
        Word,
        Quoted,   ///< with its quotes
        Unclosed, ///< from a quote to the line's end
        Plain,    ///< a value without quotes, blanks inside and all
        Equals,
        Colon,
        Comma,
        Open, ///< the brackets of a header
        Close
    };

    int start;
    int end;
    Kind kind;
};

/// One line of a definition text, cut into its tokens in one pass. Makes no copy of the text, which
/// must outlive it, and takes no memory for a line of few tokens.
class Line
{
public:
    /// What the beginning of a line makes of it.
    enum Shape : unsigned char {
        Blank, ///< nothing, or a comment alone
        Header,
        Setting,   ///< a word and "=", and a value as one token
        Directive, ///< a word that begins with "@", and a value as one token
        Reserved,  ///< begins with a brace
        Words      ///< any others
    };

    explicit Line(const QString &text);

    QStringView text() const
    {
        return m_text;
    }
    Shape shape() const
    {
        return m_shape;
    }
    int count() const
    {
        return m_tokens.size();
    }
    const Token &at(int index) const
    {
        return m_tokens[index];
    }
    /// Returns whether there is a token of a kind at an index.
    bool is(int index, Token::Kind kind) const
    {
        return index < count() && m_tokens[index].kind == kind;
    }
    bool isName(int index) const
    {
        return is(index, Token::Word) || is(index, Token::Quoted);
    }
    /// Returns whether there is a word at an index that says \a word of the grammar, in any case.
    bool says(int index, QLatin1String word) const;
    /// Returns the characters of a token, with quotes.
    QStringView text(int index) const
    {
        return text(m_tokens[index]);
    }
    QStringView text(const Token &token) const
    {
        return m_text.mid(token.start, token.end - token.start);
    }
    /// Returns what a token means: without quotes, if it has them.
    QString value(int index) const;
    /// Returns whether a token means \a value, without making a copy of it.
    bool means(int index, const QString &value) const;

    /// Return where the code begins and ends, without blanks around it.
    int codeStart() const
    {
        return m_codeStart;
    }
    int codeEnd() const
    {
        return m_tokens.isEmpty() ? m_codeStart : m_tokens.last().end;
    }
    /// Returns where the comment begins, or the length of the line.
    int commentStart() const
    {
        return m_commentStart;
    }
    bool hasComment() const
    {
        return m_commentStart < m_text.size();
    }
    /// Returns the column of the first NUL character, or -1.
    int nul() const
    {
        return m_nul;
    }

private:
    void readTokens();
    Token readPlain(int start) const;
    Token readQuoted(int start) const;
    bool isCommentAt(int column) const;

    QStringView m_text;
    QVarLengthArray<Token, 24> m_tokens;
    int m_codeStart = 0;
    int m_commentStart;
    int m_nul;
    Shape m_shape = Blank;
};

inline bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

/// Returns whether \a text is a word of the grammar, in any case. The grammar's own words are of
/// ASCII, and \a word, a string of any kind, is in lower case.
template <typename String>
bool saysWord(QStringView text, const String &word)
{
    if (text.size() != word.size())
        return false;
    for (int i = 0; i < word.size(); ++i) {
        QChar c = text[i];
        if (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
            c = QChar(c.unicode() - 'A' + 'a');
        if (c != word.at(i))
            return false;
    }
    return true;
}

inline bool Line::says(int index, QLatin1String word) const
{
    return is(index, Token::Word) && saysWord(text(index), word);
}

/// Returns whether \a text is a word of the grammar: letters, digits, "-" and "_".
bool isWord(QStringView text);
/// Returns the index of a word in a list of words in lower case, or -1.
int indexOfWord(QStringView word, const QStringList &words);
/// Returns a text with blanks in the place of all characters that would end the line.
QString onOneLine(const QString &text);
/// Returns \a value as it stands in a line that takes plain values: in quotes where it could be
/// taken for something else. Line ends in it become blanks.
QString quotedIfNeeded(const QString &value);
/// The same for a line that takes words.
QString quotedIfNoWord(const QString &value);
QString quoted(const QString &value);
/// Returns a text for a message: a long one is cut.
QString clipped(const QString &text);

} // namespace Lantern

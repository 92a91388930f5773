// SPDX-License-Identifier: MIT
#include "lantern/line.h"

#include <algorithm>
#include <array>

namespace Lantern {

namespace {

const QLatin1Char quote('"');
const QLatin1Char commentSign('#');

/// What characters are to words, in an order in which those at the end of the list end a word, and
/// with them brackets in a header.
enum CharClass : unsigned char {
    OfWords,
    QuoteSign, // these two where a token begins
    CommentSign,
    OpenSign,
    CloseSign,
    BlankSign,
    EqualsSign,
    ColonSign,
    CommaSign
};

constexpr int asciiCount = 128;

constexpr std::array<CharClass, asciiCount> asciiClasses()
{
    std::array<CharClass, asciiCount> classes{};
    classes['"'] = QuoteSign;
    classes['#'] = CommentSign;
    classes['['] = OpenSign;
    classes[']'] = CloseSign;
    classes[' '] = BlankSign;
    classes['\t'] = BlankSign;
    classes['='] = EqualsSign;
    classes[':'] = ColonSign;
    classes[','] = CommaSign;
    return classes;
}

CharClass classOf(QChar c)
{
    static constexpr std::array<CharClass, asciiCount> classes = asciiClasses();
    return c.unicode() < asciiCount ? classes[c.unicode()] : OfWords;
}

Token::Kind signKind(CharClass sign)
{
    static constexpr Token::Kind kinds[] = {Token::Open,   Token::Close, Token::Word,
                                            Token::Equals, Token::Colon, Token::Comma};
    return kinds[sign - OpenSign];
}

int skipBlanks(QStringView text, int column)
{
    const int length = int(text.size());
    while (column < length && isBlank(text[column]))
        ++column;
    return column;
}

int trimmedEnd(QStringView text, int start, int end)
{
    while (end > start && isBlank(text[end - 1]))
        --end;
    return end;
}

// The characters that a document takes for the end of a line or of a paragraph, or that no text
// has.
bool breaksLine(QChar c)
{
    switch (c.unicode()) {
    case 0:
    case '\n':
    case '\r':
    case 0x2028:
    case 0x2029:
    case 0xfdd0:
    case 0xfdd1:
        return true;
    default:
        return false;
    }
}

bool isPlain(const QString &value)
{
    if (value.isEmpty() || value.startsWith(quote) || value.startsWith(commentSign)
        || isBlank(value.at(0)) || isBlank(value.at(value.size() - 1)))
        return false;
    for (int i = 1; i < value.size(); ++i) {
        if (value.at(i) == commentSign && isBlank(value.at(i - 1)))
            return false;
    }
    return true;
}

QString withoutQuotes(QStringView quotedText)
{
    QString value = quotedText.mid(1, quotedText.size() - 2).toString();
    if (value.contains(quote))
        value.replace(QLatin1String("\"\""), QLatin1String("\""));
    return value;
}

} // namespace

Line::Line(const QString &text)
    : m_text(text)
    , m_commentStart(text.size())
    , m_nul(text.indexOf(QChar(0)))
{
    m_codeStart = skipBlanks(m_text, 0);
    if (m_codeStart == m_text.size())
        return;
    const QChar first = m_text[m_codeStart];
    if (first == QLatin1Char('{') || first == QLatin1Char('}')) {
        m_shape = Reserved;
        m_tokens.append(
            {m_codeStart, trimmedEnd(m_text, m_codeStart, m_text.size()), Token::Plain});
        return;
    }
    if (first == QLatin1Char('['))
        m_shape = Header;
    else if (first == QLatin1Char('@'))
        m_shape = Directive;
    else if (first != commentSign)
        m_shape = Words;
    readTokens();
}

void Line::readTokens()
{
    const QChar *const text = m_text.data();
    const int length = int(m_text.size());
    // Brackets are parts of words, but not in a header.
    const CharClass firstOfEnds = m_shape == Header ? OpenSign : BlankSign;
    int valueIndex = m_shape == Directive ? 1 : -1;
    int column = m_codeStart;
    while (column < length) {
        const CharClass first = classOf(text[column]);
        if (first == BlankSign) {
            ++column;
            continue;
        }
        if (first == CommentSign) {
            m_commentStart = column;
            return;
        }
        int end = column + 1;
        Token::Kind kind = Token::Word;
        if (count() == valueIndex || first == QuoteSign) {
            const Token token = first == QuoteSign ? readQuoted(column) : readPlain(column);
            end = token.end;
            kind = token.kind;
        } else if (first >= firstOfEnds) {
            kind = signKind(first);
        } else {
            while (end < length && classOf(text[end]) < firstOfEnds)
                ++end;
        }
        m_tokens.append({column, end, kind});
        if (kind == Token::Equals && count() == 2 && m_shape == Words && is(0, Token::Word)) {
            m_shape = Setting;
            valueIndex = 2;
        }
        column = end;
    }
}

Token Line::readPlain(int start) const
{
    int end = start + 1;
    while (end < m_text.size() && !isCommentAt(end))
        ++end;
    return {start, trimmedEnd(m_text, start, end), Token::Plain};
}

Token Line::readQuoted(int start) const
{
    for (int i = start + 1; i < m_text.size(); ++i) {
        if (m_text[i] != quote)
            continue;
        if (i + 1 == m_text.size() || m_text[i + 1] != quote)
            return {start, i + 1, Token::Quoted};
        ++i;
    }
    return {start, trimmedEnd(m_text, start, m_text.size()), Token::Unclosed};
}

bool Line::isCommentAt(int column) const
{
    return m_text[column] == commentSign && isBlank(m_text[column - 1]);
}

QString Line::value(int index) const
{
    return is(index, Token::Quoted) ? withoutQuotes(text(index)) : text(index).toString();
}

bool Line::means(int index, const QString &value) const
{
    return is(index, Token::Quoted) ? withoutQuotes(text(index)) == value : text(index) == value;
}

bool isWord(QStringView text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](QChar c) {
        return c.isLetterOrNumber() || c.isMark() || c == QLatin1Char('-') || c == QLatin1Char('_');
    });
}

int indexOfWord(QStringView word, const QStringList &words)
{
    for (int i = 0; i < words.size(); ++i) {
        if (saysWord(word, words.at(i)))
            return i;
    }
    return -1;
}

QString onOneLine(const QString &text)
{
    QString line = text;
    std::replace_if(line.begin(), line.end(), breaksLine, QLatin1Char(' '));
    return line;
}

QString quotedIfNeeded(const QString &value)
{
    const QString line = onOneLine(value);
    return isPlain(line) ? line : quoted(line);
}

QString quotedIfNoWord(const QString &value)
{
    const QString line = onOneLine(value);
    const bool isOneWord = isPlain(line) && std::none_of(line.begin(), line.end(), [](QChar c) {
                               return c.isSpace() || c == QLatin1Char('=') || c == QLatin1Char(':')
                                   || c == QLatin1Char(',');
                           });
    return isOneWord ? line : quoted(line);
}

QString quoted(const QString &value)
{
    QString text = onOneLine(value);
    text.replace(quote, QLatin1String("\"\""));
    return quote + text + quote;
}

QString clipped(const QString &text)
{
    constexpr int longest = 40;
    return text.size() <= longest ? text : text.left(longest) + QChar(0x2026);
}

} // namespace Lantern

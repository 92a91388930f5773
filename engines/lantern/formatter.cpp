// SPDX-License-Identifier: MIT
#include "lantern/formatter.h"

#include "lantern/linereader.h"
#include "lantern/motionbox.h"
#include "lantern/node.h"
#include "lantern/options.h"
#include "lantern/report.h"
#include "lantern/scriptcode.h"
#include "lantern/scriptreader.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"

#include "code/codedocument.h"
#include "code/codelink.h"

#include <QHash>
#include <QTextBlock>

#include <algorithm>

namespace Lantern {

namespace {

/// Makes the words of the grammar in a line lower-case.
class Lowering : public Vela::CodeParserSyntax
{
public:
    explicit Lowering(QString &text)
        : m_text(text)
    {
    }

    void setToken(TokenType type, int start, int end) override
    {
        switch (type) {
        case TokenKind::Key:
        case TokenKind::Command:
        case TokenKind::Option:
        case TokenKind::Section:
        case TokenKind::Keyword:
            m_text.replace(start, end - start, m_text.mid(start, end - start).toLower());
            break;
        default:
            break;
        }
    }
    void addError(TokenType, const QString &, int, int) override
    {
    }
    void addDeprecation(TokenType type, const QString &, int start, int end) override
    {
        setToken(type, start, end);
    }
    void addWarning(TokenType, const QString &, int, int) override
    {
    }
    void addParenthesis(bool, QChar, int) override
    {
    }
    void addLink(Vela::CodeLink *link) override
    {
        delete link;
    }

private:
    QString &m_text;
};

bool isTight(Token::Kind left, Token::Kind right)
{
    return left == Token::Open || right == Token::Close || right == Token::Comma;
}

// Returns the tokens from a first to a last with one blank where blanks go.
QString spaced(const Line &line, int first, int last)
{
    QString code;
    for (int i = first; i <= last; ++i) {
        if (i > first && !isTight(line.at(i - 1).kind, line.at(i).kind))
            code += QLatin1Char(' ');
        code += line.text(i);
    }
    return code;
}

QString spacedItems(const QString &list)
{
    QStringList items = list.split(QLatin1Char(','));
    for (QString &item : items)
        item = item.trimmed();
    return items.join(QLatin1String(", "));
}

// Returns "W x H" of a value that is a size or a scale.
QString spacedPair(const QString &pair)
{
    QStringList numbers = pair.toLower().split(QLatin1Char('x'));
    for (QString &number : numbers)
        number = number.trimmed();
    return numbers.join(QLatin1String(" x "));
}

QString spacedValue(Form form, const QString &value)
{
    switch (form) {
    case Form::Words:
    case Form::Integers:
    case Form::Numbers:
        return spacedItems(value);
    case Form::Size:
    case Form::Scale:
        return spacedPair(value);
    default:
        return value;
    }
}

/// What holds for the formatting of all lines of a text.
class Style
{
public:
    explicit Style(const Vela::CodeDocument &document)
        : boxIndent(Lantern::boxIndent(document))
        , lowersWords(optionOf(document, OptionKey::words).toInt() == LowerCaseWords)
        , alignsActions(optionOf(document, OptionKey::aligns).toBool())
    {
    }

    /// Returns where the actions begin in the section that a script's line stands in: behind the
    /// longest event.
    int actionColumn(const Vela::CodeNode &line)
    {
        const auto *const section = static_cast<const SectionCode *>(line.parent());
        const auto found = m_columns.constFind(section);
        if (found != m_columns.constEnd() || !section)
            return section ? *found : 0;
        constexpr int gap = 3;
        int longest = 0;
        const QList<Vela::ValueCode *> values = section->values();
        for (const Vela::ValueCode *const value : values)
            longest = std::max(longest, value->name().size());
        return *m_columns.insert(section, longest + gap);
    }

    QString word(const QString &text) const
    {
        return lowersWords ? text.toLower() : text;
    }

    const QString boxIndent;
    const bool lowersWords;
    const bool alignsActions;

private:
    QHash<const SectionCode *, int> m_columns;
};

/// The formatting of one line.
class LineFormat
{
public:
    LineFormat(const Vela::CodeDocument &document, const QTextBlock &block, Style &style)
        : m_style(style)
        , m_text(block.text())
        , m_line(m_text)
        , m_section(unsigned(std::max(0, block.userState())))
        , m_node(document.nodeInBlock(block))
    {
    }

    /// Returns whether the line means something, or may mean something to somebody else, that
    /// blanks could change.
    bool isUntouchable() const
    {
        return m_line.shape() == Line::Reserved || m_line.nul() >= 0
            || (isReservedSection(m_section) && m_line.shape() != Line::Header);
    }

    bool hasCode() const
    {
        return m_line.shape() != Line::Blank;
    }

    /// Returns the blanks that belong in front of a line with code.
    QString indent() const
    {
        return m_node && m_node->type() == Vela::CodeNode::HitBox ? m_style.boxIndent : QString();
    }

    QString indented(const QString &indent) const
    {
        const bool isEmpty = m_line.codeStart() == m_text.size();
        return isEmpty ? QString() : indent + m_text.mid(m_line.codeStart());
    }

    QString formatted(const QString &indent)
    {
        const QString code = formattedCode();
        QString result = code.isEmpty() ? QString() : indent + code;
        if (m_line.hasComment())
            result += gap(indent, code) + m_text.mid(m_line.commentStart());
        while (!result.isEmpty() && isBlank(result.at(result.size() - 1)))
            result.chop(1);
        return result;
    }

private:
    QString oldCode() const
    {
        return m_text.mid(m_line.codeStart(), m_line.codeEnd() - m_line.codeStart());
    }

    // A comment keeps its column as long as the code ends in front of it.
    QString gap(const QString &indent, const QString &code) const
    {
        if (code.isEmpty())
            return indent;
        if (code == oldCode() && indent == m_text.leftRef(m_line.codeStart()))
            return m_text.mid(m_line.codeEnd(), m_line.commentStart() - m_line.codeEnd());
        const int width = m_line.commentStart() - indent.size() - code.size();
        return QString(std::max(1, width), QLatin1Char(' '));
    }

    // A line in error stays as it is: nobody knows what it means.
    QString formattedCode()
    {
        if (m_line.count() == 0)
            return QString();
        QString text = m_text;
        if (m_section == ScriptLines)
            return formattedScript(text);
        HeaderLine header;
        switch (readLowering(text, header)) {
        case LineKind::Header:
            return formattedHeader(text, header);
        case LineKind::Include:
        case LineKind::Frame:
        case LineKind::Box:
            return spacedTokens(text);
        case LineKind::Setting:
            return formattedSetting();
        case LineKind::None:
            break;
        }
        return oldCode();
    }

    QString formattedScript(QString text)
    {
        HeaderLine header;
        ScriptLine script;
        const bool isHeader = m_line.shape() == Line::Header;
        if (!readScriptLowering(text, header, script))
            return oldCode();
        if (isHeader)
            return spacedTokens(text);
        const Line line(text);
        const int end = line.at(script.action - 1).end;
        QString event = spaced(line, 0, script.action - 1);
        if (m_style.alignsActions && m_node)
            event = event.leftJustified(m_style.actionColumn(*m_node));
        else
            event += text.midRef(end, line.at(script.action).start - end);
        return event + spaced(line, script.action, line.count() - 1);
    }

    bool readScriptLowering(QString &text, HeaderLine &header, ScriptLine &script) const
    {
        Lowering lowering(text);
        Report report(m_line, m_style.lowersWords ? &lowering : nullptr);
        return m_line.shape() == Line::Header ? readScriptHeader(m_line, header, report)
                                              : readScriptLine(m_line, script, report);
    }

    // Makes the words of the grammar in the text lower-case. Returns what the line is, with nothing
    // for one in error.
    LineKind readLowering(QString &text, HeaderLine &header) const
    {
        Lowering lowering(text);
        Report report(m_line, m_style.lowersWords ? &lowering : nullptr);
        // Only settings are of a kind of text, and those know their rules.
        constexpr Scope anyScope = Scope::Motion;
        FrameLine frame;
        BoxLine box;
        QString path;
        const LineKind kind = lineKind(m_line, m_section, report);
        bool isRead = false;
        switch (kind) {
        case LineKind::Header:
            isRead = readHeader(m_line, anyScope, header, report);
            break;
        case LineKind::Include:
            isRead = readInclude(m_line, path, report);
            break;
        case LineKind::Frame:
            isRead = readFrame(m_line, frame, report);
            break;
        case LineKind::Box:
            isRead = readBox(m_line, box, report);
            break;
        case LineKind::Setting:
            isRead = m_node && m_node->type() == Vela::CodeNode::Value;
            break;
        case LineKind::None:
            break;
        }
        return isRead ? kind : LineKind::None;
    }

    static QString spacedTokens(const QString &text)
    {
        const Line line(text);
        return spaced(line, 0, line.count() - 1);
    }

    // What stands behind the word of a section that is no animation is kept as it is.
    QString formattedHeader(const QString &text, const HeaderLine &header) const
    {
        const Line line(text);
        if (header.kind == AnimationSection)
            return spaced(line, 0, line.count() - 1);
        QString word = line.text(header.word).toString();
        if (header.kind != UnknownSection)
            word = m_style.word(word);
        return QLatin1Char('[') + word
            + (header.rest.isEmpty() ? QString() : QLatin1Char(' ') + header.rest.toString())
            + QLatin1Char(']');
    }

    QString formattedSetting() const
    {
        const Rule *const rule = static_cast<const SettingCode *>(m_node)->rule();
        QString value = m_line.text(2).toString();
        if (rule && m_line.is(2, Token::Plain)) {
            const bool isKeyword =
                rule->form == Form::Word || rule->form == Form::Words || rule->form == Form::YesNo;
            value = spacedValue(rule->form, isKeyword ? m_style.word(value) : value);
        }
        return m_style.word(m_line.text(0).toString()) + QLatin1String(" = ") + value;
    }

    Style &m_style;
    const QString m_text;
    const Line m_line;
    const unsigned int m_section;
    const Vela::CodeNode *const m_node;
};

struct Change
{
    QTextBlock block;
    QString text;
};

// Returns the indent of the first line with code behind a line; comments take it.
QString indentBelow(const Vela::CodeDocument &document, const QTextBlock &line, Style &style)
{
    for (QTextBlock block = line.next(); block.isValid(); block = block.next()) {
        const LineFormat format(document, block, style);
        if (format.hasCode())
            return format.indent();
    }
    return QString();
}

} // namespace

void formatLines(Vela::CodeDocument &document, int first, int last, bool indentOnly)
{
    first = std::max(first, 0);
    QTextBlock block = document.findBlockByNumber(std::min(last, document.blockCount() - 1));
    Style style(document);
    QString indent = indentBelow(document, block, style);
    QVector<Change> changes;
    for (; block.isValid() && block.blockNumber() >= first; block = block.previous()) {
        LineFormat format(document, block, style);
        if (format.hasCode())
            indent = format.indent();
        if (format.isUntouchable())
            continue;
        const QString text = indentOnly ? format.indented(indent) : format.formatted(indent);
        if (text != block.text())
            changes.append({block, text});
    }
    if (changes.isEmpty())
        return;
    document.beginChange();
    for (const Change &change : qAsConst(changes))
        replaceColumns(document, change.block, 0, change.block.length() - 1, change.text);
    document.endChange();
}

} // namespace Lantern

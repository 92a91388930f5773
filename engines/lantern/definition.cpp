// SPDX-License-Identifier: MIT
#include "lantern/definition.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

bool isWordCharacter(QChar c)
{
    return c.isLetterOrNumber() || c == QLatin1Char('-') || c == QLatin1Char('_');
}

int skipBlanks(const QString &text, int begin, int end)
{
    while (begin < end && isBlank(text.at(begin)))
        ++begin;
    return begin;
}

int trimEnd(const QString &text, int begin, int end)
{
    while (end > begin && isBlank(text.at(end - 1)))
        --end;
    return end;
}

// A comment begins with '#' at the start of what is left of a line, or behind a blank.
int commentStart(const QString &text, int begin, int end)
{
    for (int i = begin; i < end; ++i) {
        const int found = int(QStringView(text).mid(i, end - i).indexOf(QLatin1Char('#')));
        if (found < 0)
            break;
        i += found;
        if (i == begin || isBlank(text.at(i - 1)))
            return i;
    }
    return end;
}

// Goes by plain numbers: lines can be long.
int lineEnd(const QString &text, int begin)
{
    const ushort *const characters = text.utf16();
    int end = begin;
    while (end < text.size() && characters[end] != '\n' && characters[end] != '\r')
        ++end;
    return end;
}

bool isWord(const QString &text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isWordCharacter);
}

} // namespace

Definition::Definition(const QString &text)
{
    int begin = 0;
    while (begin < text.size() && !m_full) {
        int end = lineEnd(text, begin);
        m_lineBegin = begin;
        readLine(text, begin, end);
        ++lineCount;
        if (text.midRef(end, 2) == QLatin1String("\r\n"))
            ++end;
        begin = end + 1;
    }
}

bool Definition::isReservedSection(const QString &kind)
{
    static const QStringList reserved = {QStringLiteral("animation"), QStringLiteral("font"),
                                         QStringLiteral("palette"),   QStringLiteral("script"),
                                         QStringLiteral("sound"),     QStringLiteral("sprite")};
    return reserved.contains(kind);
}

void Definition::readLine(const QString &text, int begin, int end)
{
    const int nul = QStringView(text).mid(begin, end - begin).indexOf(QChar(0));
    if (nul >= 0) {
        // A file that is no text would have one on nearly every line.
        if (!m_nulSeen)
            add(Vela::Message::Error, begin + nul,
                Texts::tr("A NUL character: this line is not text."));
        m_nulSeen = true;
        return;
    }
    constexpr int most = 1000000;
    if (settings.size() + sections.size() >= most) {
        add(Vela::Message::Error, begin,
            Texts::tr("The text has more than %1 settings; the rest is not read.").arg(most));
        m_full = true;
        return;
    }
    begin = skipBlanks(text, begin, end);
    if (begin == end || text.at(begin) == QLatin1Char('#'))
        return;
    const QChar first = text.at(begin);
    if (first == QLatin1Char('['))
        readSection(text, begin, end);
    else if (m_inReserved)
        return;
    else if (first == QLatin1Char('@') || first == QLatin1Char('{') || first == QLatin1Char('}'))
        add(Vela::Message::Information, begin,
            Texts::tr("A line that begins with '%1' is reserved for a later version.").arg(first));
    else
        readSetting(text, begin, end);
}

void Definition::readSection(const QString &text, int begin, int end)
{
    Section section;
    section.line = lineCount;
    section.column = begin - m_lineBegin;
    m_inReserved = false;

    const int close = text.midRef(begin, end - begin).indexOf(QLatin1Char(']'));
    if (close < 0) {
        add(Vela::Message::Error, begin, Texts::tr("The section's ']' is missing."));
        sections.append(section);
        return;
    }
    const QString inside = text.mid(begin + 1, close - 1).trimmed();
    const auto blank = std::find_if(inside.begin(), inside.end(), isBlank);
    const int kindLength = int(blank - inside.begin());
    section.kind = inside.left(kindLength).toLower();
    section.name = inside.mid(kindLength).trimmed();
    if (!isWord(section.kind)) {
        add(Vela::Message::Error, begin,
            Texts::tr("'%1' is no name for a section.").arg(clipped(section.kind)));
        section.kind.clear();
    }
    m_inReserved = isReservedSection(section.kind);
    sections.append(section);

    const int behind = skipBlanks(text, begin + close + 1, end);
    if (behind < end && text.at(behind) != QLatin1Char('#'))
        add(Vela::Message::Error, behind, Texts::tr("Nothing but a comment may follow a section."));
}

void Definition::readSetting(const QString &text, int begin, int end)
{
    Setting setting;
    setting.line = lineCount;
    setting.column = begin - m_lineBegin;
    const int equals = text.midRef(begin, end - begin).indexOf(QLatin1Char('='));
    const int comment = commentStart(text, begin, end);
    if (equals < 0 || begin + equals > comment) {
        add(Vela::Message::Error, begin,
            Texts::tr("'=' is missing: a setting is written \"key = value\"."));
        return;
    }
    const int keyEnd = trimEnd(text, begin, begin + equals);
    setting.key = text.mid(begin, keyEnd - begin).toLower();
    if (!isWord(setting.key)) {
        add(Vela::Message::Error, begin,
            Texts::tr("'%1' is no name for a setting.").arg(clipped(setting.key)));
        return;
    }
    if (sections.isEmpty()) {
        add(Vela::Message::Error, begin, Texts::tr("A setting stands before the first section."));
        return;
    }
    setting.section = sections.last().kind;
    const int valueBegin = skipBlanks(text, begin + equals + 1, end);
    if (readValue(text, valueBegin, end, setting))
        settings.append(setting);
}

bool Definition::readValue(const QString &text, int begin, int end, Setting &setting)
{
    setting.valueColumn = begin - m_lineBegin;
    setting.valueOffset = begin;
    if (begin < end && text.at(begin) == QLatin1Char('"'))
        return readQuoted(text, begin, end, setting);
    const int valueEnd = trimEnd(text, begin, commentStart(text, begin, end));
    setting.valueLength = valueEnd - begin;
    setting.value = text.mid(begin, setting.valueLength);
    if (setting.value.isEmpty())
        add(Vela::Message::Error, begin, Texts::tr("'%1' has no value.").arg(clipped(setting.key)));
    return true;
}

bool Definition::readQuoted(const QString &text, int begin, int end, Setting &setting)
{
    const QChar quote = QLatin1Char('"');
    int i = begin + 1;
    for (; i < end; ++i) {
        if (text.at(i) == quote && (i + 1 == end || text.at(i + 1) != quote))
            break;
        if (text.at(i) == quote)
            ++i;
        setting.value += text.at(i);
    }
    if (i >= end) {
        add(Vela::Message::Error, begin, Texts::tr("The closing quote is missing."));
        return false;
    }
    setting.valueLength = i + 1 - begin;
    const int behind = skipBlanks(text, i + 1, end);
    if (behind < end && text.at(behind) != QLatin1Char('#')) {
        add(Vela::Message::Error, behind,
            Texts::tr("Nothing but a comment may follow a closing quote."));
    }
    return true;
}

void Definition::add(Vela::Message::Type type, int offset, const QString &message)
{
    messages.append({type, unsigned(lineCount), unsigned(offset - m_lineBegin), message});
    limitMessages(messages);
}

void limitMessages(QVector<Vela::Message> &messages)
{
    constexpr int most = 1000;
    if (messages.size() <= most)
        return;
    messages.resize(most);
    const Vela::Message &last = messages.constLast();
    messages.append({Vela::Message::Information, last.line, last.column,
                     Texts::tr("Further messages are left out.")});
}

QString clipped(const QString &text)
{
    constexpr int longest = 40;
    return text.size() <= longest ? text : text.left(longest) + QChar(0x2026);
}

QString quotedIfNeeded(const QString &value)
{
    const bool plain = !value.isEmpty() && !value.startsWith(QLatin1Char('"'))
        && commentStart(value, 0, value.size()) == value.size() && !isBlank(value.at(0))
        && !isBlank(value.at(value.size() - 1));
    if (plain)
        return value;
    QString quoted = value;
    quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

} // namespace Lantern

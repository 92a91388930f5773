// SPDX-License-Identifier: MIT
#include "lantern/linereader.h"

#include "lantern/report.h"
#include "lantern/values.h"

namespace Lantern {

namespace {

using Vela::ContactBoxCode;

constexpr const char *nothingMore = QT_TRANSLATE_NOOP("Lantern", "nothing but a comment");

bool isKnownIn(Scope scope, unsigned int section)
{
    const SectionRule *rule = sectionOfKind(section);
    return rule && (rule->scopes & scopeBit(scope));
}

QStringList keysOf(Scope scope, unsigned int section)
{
    QStringList keys;
    for (const Rule &rule : rules()) {
        if (rule.section == section && (rule.scopes & scopeBit(scope)))
            keys.append(rule.key);
    }
    return keys;
}

bool isBoxWord(const Line &line)
{
    return line.says(0, QLatin1String("attack")) || line.says(0, QLatin1String("body"))
        || line.says(0, QLatin1String("hit")) || line.says(0, QLatin1String("hurt"));
}

// Tells what a line of words is, or a setting.
LineKind kindInSection(const Line &line, unsigned int section, Report &report)
{
    LineKind kind = LineKind::None;
    if (section == NoSection) {
        report.expected(QT_TRANSLATE_NOOP("Lantern", "a section in brackets"), 0);
    } else if (section == AnimationSection) {
        if (line.shape() == Line::Words && line.says(0, QLatin1String("frame")))
            kind = LineKind::Frame;
        else if (line.shape() == Line::Words && isBoxWord(line))
            kind = LineKind::Box;
        else
            report.expected(QT_TRANSLATE_NOOP("Lantern", "'frame', 'attack' or 'body'"), 0);
    } else if (line.shape() == Line::Setting) {
        kind = LineKind::Setting;
    } else if (!line.is(0, Token::Word)) {
        report.expected(QT_TRANSLATE_NOOP("Lantern", "a setting such as 'key = value'"), 0);
    } else if (line.says(0, QLatin1String("frame")) || isBoxWord(line)) {
        report.expected(QT_TRANSLATE_NOOP("Lantern", "a setting, as no animation begins above"), 0);
    } else {
        report.expected(QT_TRANSLATE_NOOP("Lantern", "'=' and a value"), 1);
    }
    return kind;
}

void warnOfReserved(const Line &line, Report &report)
{
    report.warning(
        TokenKind::Ignored,
        Report::tr("A line that begins with '%1' is reserved for a later version; it is not read.")
            .arg(clipped(line.shape() == Line::Reserved ? line.text(0).left(1).toString()
                                                        : line.text(0).toString())),
        line.codeStart(), line.codeEnd());
}

bool readAnimationHeader(const Line &line, HeaderLine &header, Report &report)
{
    if (!line.is(2, Token::Word) || !isWord(line.text(2)))
        return report.expected(
            QT_TRANSLATE_NOOP("Lantern", "an identifier of letters, digits, '-' and '_'"), 2);
    header.name = 2;
    report.token(TokenKind::Name, 2);
    int next = 3;
    if (line.is(next, Token::Quoted))
        header.title = next++;
    if (!line.is(next, Token::Close))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "']'"), next);
    report.parenthesis(next++);
    if (header.title >= 0) {
        report.outdated(TokenKind::Text, header.title,
                        QStringLiteral("[animation %1] %2")
                            .arg(clipped(line.text(2).toString()),
                                 clipped(line.text(header.title).toString())));
    } else if (line.is(next, Token::Quoted) || line.is(next, Token::Unclosed)) {
        if (line.is(next, Token::Unclosed))
            return report.expected(nothingMore, next);
        header.title = next++;
        report.token(TokenKind::Text, header.title);
    }
    if (next < line.count())
        return report.expected(header.title < 0
                                   ? QT_TRANSLATE_NOOP("Lantern", "a title in quotes, or nothing")
                                   : nothingMore,
                               next);
    return true;
}

void warnOfSection(const Line &line, const SectionRule *section, const HeaderLine &header,
                   Scope scope, Report &report)
{
    const QString word = clipped(line.text(1).toString());
    const bool belongs = section && (section->scopes & scopeBit(scope));
    if (!section) {
        QStringList words;
        for (const SectionRule &known : sectionRules()) {
            if (known.scopes & scopeBit(scope))
                words.append(known.word);
        }
        report.unknown(Report::tr("The section '%1' is unknown.").arg(word), 1, words);
    } else if (section->isReserved()) {
        report.token(TokenKind::Ignored, 1);
    } else if (!belongs) {
        report.warning(
            TokenKind::Ignored,
            Report::tr("The section '%1' does not belong in this text.").arg(section->word), 1);
    } else {
        report.token(TokenKind::Section, 1);
        if (!header.rest.isEmpty()) {
            report.warning(TokenKind::Ignored,
                           Report::tr("The section '%1' takes no name.").arg(section->word), 2);
        }
    }
}

} // namespace

bool isReadable(const Line &line, Report &report)
{
    return line.nul() < 0
        || report.expectedAt(QT_TRANSLATE_NOOP("Lantern", "text without NUL characters"),
                             line.nul(), line.nul() + 1);
}

LineKind lineKind(const Line &line, unsigned int section, Report &report)
{
    if (line.shape() == Line::Blank && !line.hasComment())
        return LineKind::None;
    if (!isReadable(line, report))
        return LineKind::None;
    const bool isRead = !isReservedSection(section);
    switch (line.shape()) {
    case Line::Blank:
        return LineKind::None;
    case Line::Header:
        return LineKind::Header;
    case Line::Reserved:
        if (isRead)
            warnOfReserved(line, report);
        return LineKind::None;
    case Line::Directive:
        if (isRead && line.says(0, QLatin1String("@include")))
            return LineKind::Include;
        if (isRead)
            warnOfReserved(line, report);
        return LineKind::None;
    case Line::Setting:
    case Line::Words:
        break;
    }
    return isRead ? kindInSection(line, section, report) : LineKind::None;
}

bool readHeader(const Line &line, Scope scope, HeaderLine &header, Report &report)
{
    report.parenthesis(0);
    if (!line.is(1, Token::Word) || !isWord(line.text(1)))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "the name of a section"), 1);
    header.word = 1;
    const SectionRule *const section = findSection(line.text(1));
    header.kind = section ? section->kind : UnknownSection;
    if (header.kind == AnimationSection) {
        report.token(TokenKind::Section, 1);
        return readAnimationHeader(line, header, report);
    }
    int close = 2;
    while (close < line.count() && !line.is(close, Token::Close))
        ++close;
    if (close == line.count())
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "']'"), close);
    report.parenthesis(close);
    if (close > 2) {
        const int start = line.at(2).start;
        header.rest = line.text().mid(start, line.at(close - 1).end - start);
    }
    if (report.isHeard())
        warnOfSection(line, section, header, scope, report);
    if (close + 1 < line.count())
        return report.expected(nothingMore, close + 1);
    return true;
}

bool readInclude(const Line &line, QString &path, Report &report)
{
    report.token(TokenKind::Command, 0);
    if (!line.is(1, Token::Plain) && !line.is(1, Token::Quoted))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "the path of a motion text"), 1);
    path = insidePath(line.value(1));
    if (path.isEmpty())
        return report.expected(
            QT_TRANSLATE_NOOP("Lantern", "a path inside the folder of this file"), 1);
    report.token(TokenKind::Name, 1);
    return line.count() == 2 || report.expected(nothingMore, 2);
}

bool readSetting(const Line &line, Scope scope, unsigned int section, SettingLine &setting,
                 Report &report)
{
    const QStringView key = line.text(0);
    if (!isWord(key))
        return report.expected(
            QT_TRANSLATE_NOOP("Lantern", "the name of a setting, of letters, digits, '-' and '_'"),
            0);
    if (!line.is(2, Token::Plain) && !line.is(2, Token::Quoted))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "a value"), 2);
    if (line.count() > 3)
        return report.expected(nothingMore, 3);

    setting.rule = findRule(scope, section, key);
    if (!setting.rule) {
        const QString renamed = renamedKey(section, key);
        setting.rule = renamed.isEmpty() ? nullptr : findRule(scope, section, renamed);
        if (setting.rule)
            report.outdated(TokenKind::Key, 0, renamed);
    } else {
        report.token(TokenKind::Key, 0);
    }
    const QString value = line.is(2, Token::Quoted) ? line.value(2) : QString();
    if (setting.rule) {
        const QStringView text = line.is(2, Token::Quoted) ? QStringView(value) : line.text(2);
        return readValue(*setting.rule, text, line.at(2), setting.value, report);
    }
    setting.value = line.value(2);
    report.span(TokenKind::Ignored, line.codeStart(), line.codeEnd());
    if (report.isHeard() && isKnownIn(scope, section)) {
        report.unknown(Report::tr("The section '%1' has no setting '%2'.")
                           .arg(sectionOfKind(section)->word, clipped(key.toString())),
                       0, keysOf(scope, section));
    }
    return true;
}

bool readBox(const Line &line, BoxLine &box, Report &report)
{
    const bool isHit = line.says(0, QLatin1String("hit"));
    const bool isHurt = line.says(0, QLatin1String("hurt"));
    const bool isAttack = isHit || line.says(0, QLatin1String("attack"));
    box.type = isAttack ? ContactBoxCode::Attack : ContactBoxCode::Collision;
    if (isHit || isHurt)
        report.outdated(TokenKind::Command, 0,
                        isHit ? QStringLiteral("attack") : QStringLiteral("body"));
    else
        report.token(TokenKind::Command, 0);

    const auto readNumbers = [&](int type, int first, int *numbers, int count, const char *what) {
        for (int i = 0; i < count; ++i) {
            if (!line.is(first + i, Token::Word) || !readInteger(line.text(first + i), numbers[i]))
                return report.expected(what, first + i);
            report.token(type, first + i);
        }
        return true;
    };
    int rect[4];
    if (!readNumbers(TokenKind::Number, 1, rect, 4,
                     QT_TRANSLATE_NOOP("Lantern", "four whole numbers: x, y, width and height")))
        return false;
    box.rect = QRect(rect[0], rect[1], rect[2], rect[3]);
    if (box.rect.isEmpty())
        report.warning(TokenKind::Number, Report::tr("A box without an area touches nothing."),
                       line.at(3).start, line.at(4).end);
    if (line.count() == 5)
        return true;
    if (!line.says(5, QLatin1String("depth")))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "'depth' or the end of the line"), 5);
    report.token(TokenKind::Option, 5);
    int depth[2];
    if (!readNumbers(
            TokenKind::Option, 6, depth, 2,
            QT_TRANSLATE_NOOP("Lantern", "two whole numbers: the least and the greatest depth")))
        return false;
    if (depth[1] < depth[0])
        return report.expectedAt(Report::tr("a greatest depth of %1 or more").arg(depth[0]),
                                 line.at(7).start, line.at(7).end);
    box.depth = {depth[0], depth[1]};
    return line.count() == 8 || report.expected(nothingMore, 8);
}

} // namespace Lantern

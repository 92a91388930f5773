// SPDX-License-Identifier: MIT
#include "lantern/scriptreader.h"

#include "lantern/report.h"
#include "lantern/values.h"

namespace Lantern {

namespace {

QStringList wordList(const char *words)
{
    return QString::fromLatin1(words).split(QLatin1Char(' '));
}

/// Reads one line below a header.
class ScriptLineReader
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)

public:
    ScriptLineReader(const Line &line, ScriptLine &script, Report &report)
        : m_line(line)
        , m_script(script)
        , m_report(report)
    {
    }

    bool read()
    {
        if (!readEvent())
            return false;
        m_script.action = m_index;
        while (readAction()) {
            if (m_index == m_line.count())
                return true;
            if (!m_line.is(m_index, Token::Comma))
                return m_report.expected(QT_TRANSLATE_NOOP("Lantern", "',' or the end of the line"),
                                         m_index);
            ++m_index;
        }
        return false;
    }

private:
    // Reports a token and moves behind it.
    bool take(int type)
    {
        m_report.token(type, m_index++);
        return true;
    }

    bool readEvent()
    {
        const int event =
            m_line.is(0, Token::Word) ? indexOfWord(m_line.text(0), eventWords()) : -1;
        if (event < 0)
            return m_report.expected(QT_TRANSLATE_NOOP("Lantern", "'at', 'when' or 'otherwise'"),
                                     0);
        take(TokenKind::Command);
        if (event == 0)
            return readTicks();
        return event == 1 ? readTrigger() : true;
    }

    bool readTicks()
    {
        int ticks = 0;
        const bool isRead = m_line.is(m_index, Token::Word)
            && readInteger(m_line.text(m_index), ticks)
            && !m_line.text(m_index).startsWith(QLatin1Char('-'));
        return isRead
            ? take(TokenKind::Number)
            : m_report.expected(QT_TRANSLATE_NOOP("Lantern", "a number of ticks"), m_index);
    }

    bool readTrigger()
    {
        if (!m_line.is(m_index, Token::Word)
            || indexOfWord(m_line.text(m_index), triggerWords()) < 0)
            return m_report.expected(
                QT_TRANSLATE_NOOP("Lantern", "'held', 'pressed', 'released', 'near' or 'hit'"),
                m_index);
        const QStringList &names = triggerNames(m_line.text(m_index));
        take(TokenKind::Option);
        if (!m_line.isName(m_index))
            return m_report.expected(names.isEmpty()
                                         ? QT_TRANSLATE_NOOP("Lantern", "the name of a thing")
                                         : QT_TRANSLATE_NOOP("Lantern", "the name of a key"),
                                     m_index);
        if (!names.isEmpty() && indexOfWord(m_line.text(m_index), names) < 0) {
            m_report.unknown(tr("The key '%1' is unknown.").arg(clipped(m_line.value(m_index))),
                             m_index, names);
            ++m_index;
            return true;
        }
        return take(TokenKind::Name);
    }

    bool readAction()
    {
        if (m_line.is(m_index, Token::Word) && m_line.is(m_index + 1, Token::Equals))
            return readAmount();
        const ActionRule *const rule =
            m_line.is(m_index, Token::Word) ? findAction(m_line.text(m_index)) : nullptr;
        if (rule) {
            take(TokenKind::Option);
            return readArgument(rule->argument);
        }
        const bool isAlone = !m_line.isName(m_index + 1);
        if (isAlone && m_line.isName(m_index) && isWord(m_line.value(m_index))) {
            m_script.animations.append(m_index);
            return take(TokenKind::Name);
        }
        if (isAlone || !m_line.is(m_index, Token::Word))
            return m_report.expected(
                QT_TRANSLATE_NOOP("Lantern", "an action such as 'walk' or 'turn left'"), m_index);
        return skipUnknown();
    }

    // Another version may know it.
    bool skipUnknown()
    {
        QStringList words;
        for (const ActionRule &rule : actionRules())
            words.append(rule.word);
        warnOfUnknown(words);
        while (m_index < m_line.count() && !m_line.is(m_index, Token::Comma))
            ++m_index;
        return true;
    }

    void warnOfUnknown(const QStringList &words)
    {
        m_report.unknown(
            tr("The action '%1' is unknown.").arg(clipped(m_line.text(m_index).toString())),
            m_index, words);
    }

    bool readAmount()
    {
        const AmountRule *const rule = findAmount(m_line.text(m_index));
        if (rule) {
            take(TokenKind::Option);
        } else {
            QStringList words;
            for (const AmountRule &known : amountRules())
                words.append(known.word);
            warnOfUnknown(words);
            ++m_index;
        }
        ++m_index;
        double number = 0;
        const bool isRead =
            m_line.is(m_index, Token::Word) && readNumber(m_line.text(m_index), number);
        if (!isRead || (rule && (number < 0 || number > rule->most))) {
            if (!rule || m_index >= m_line.count())
                return m_report.expected(QT_TRANSLATE_NOOP("Lantern", "a number"), m_index);
            return m_report.expectedAt(tr("a number from 0 to %1").arg(rule->most),
                                       m_line.at(m_index).start, m_line.at(m_index).end);
        }
        return take(TokenKind::Number);
    }

    bool readArgument(Argument argument)
    {
        switch (argument) {
        case Argument::Direction:
            return m_line.is(m_index, Token::Word)
                    && indexOfWord(m_line.text(m_index), directionWords()) >= 0
                ? take(TokenKind::Keyword)
                : m_report.expected(QT_TRANSLATE_NOOP("Lantern", "'left', 'right' or 'around'"),
                                    m_index);
        case Argument::Sound:
            if (m_line.isName(m_index))
                m_script.sounds.append(m_index);
            return readName(QT_TRANSLATE_NOOP("Lantern", "the name of a sound"));
        case Argument::Text:
            return m_line.is(m_index, Token::Quoted)
                ? take(TokenKind::Text)
                : m_report.expected(QT_TRANSLATE_NOOP("Lantern", "a text in quotes"), m_index);
        case Argument::Ticks:
            return readTicks();
        case Argument::Thing:
            break;
        }
        return readName(QT_TRANSLATE_NOOP("Lantern", "the name of a thing"));
    }

    bool readName(const char *what)
    {
        return m_line.isName(m_index) ? take(TokenKind::Name) : m_report.expected(what, m_index);
    }

    const Line &m_line;
    ScriptLine &m_script;
    Report &m_report;
    int m_index = 0; // of the token to read next
};

} // namespace

bool readScriptHeader(const Line &line, HeaderLine &header, Report &report)
{
    report.parenthesis(0);
    if (!line.says(1, QLatin1String("script")))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "'script'"), 1);
    report.token(TokenKind::Section, 1);
    header.kind = ScriptLines;
    header.word = 1;
    if (!line.isName(2))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "the name of the script"), 2);
    header.name = 2;
    header.rest = line.text(2);
    report.token(TokenKind::Name, 2);
    if (!line.is(3, Token::Close))
        return report.expected(QT_TRANSLATE_NOOP("Lantern", "']'"), 3);
    report.parenthesis(3);
    return line.count() == 4
        || report.expected(QT_TRANSLATE_NOOP("Lantern", "nothing but a comment"), 4);
}

bool readScriptLine(const Line &line, ScriptLine &script, Report &report)
{
    return ScriptLineReader(line, script, report).read();
}

const QVector<ActionRule> &actionRules()
{
    static const QVector<ActionRule> rules = {
        {QStringLiteral("turn"), Argument::Direction}, {QStringLiteral("play"), Argument::Sound},
        {QStringLiteral("show"), Argument::Text},      {QStringLiteral("wait"), Argument::Ticks},
        {QStringLiteral("start"), Argument::Thing},    {QStringLiteral("stop"), Argument::Thing},
        {QStringLiteral("lift"), Argument::Thing},     {QStringLiteral("drop"), Argument::Thing},
        {QStringLiteral("ring"), Argument::Thing},
    };
    return rules;
}

const QVector<AmountRule> &amountRules()
{
    static const QVector<AmountRule> rules = {
        {QStringLiteral("light"), 1}, {QStringLiteral("volume"), 1}, {QStringLiteral("speed"), 16}};
    return rules;
}

const ActionRule *findAction(QStringView word)
{
    for (const ActionRule &rule : actionRules()) {
        if (saysWord(word, rule.word))
            return &rule;
    }
    return nullptr;
}

const AmountRule *findAmount(QStringView word)
{
    for (const AmountRule &rule : amountRules()) {
        if (saysWord(word, rule.word))
            return &rule;
    }
    return nullptr;
}

const QStringList &eventWords()
{
    static const QStringList words = wordList("at when otherwise");
    return words;
}

const QStringList &triggerWords()
{
    static const QStringList words = wordList("held pressed released near hit");
    return words;
}

const QStringList &triggerNames(QStringView trigger)
{
    static const QStringList keys = wordList("left right up down a b x y start");
    static const QStringList none;
    const bool isOfKeys = saysWord(trigger, QLatin1String("held"))
        || saysWord(trigger, QLatin1String("pressed"))
        || saysWord(trigger, QLatin1String("released"));
    return isOfKeys ? keys : none;
}

const QStringList &directionWords()
{
    static const QStringList words = wordList("left right around");
    return words;
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "lantern/completion.h"

#include "lantern/scriptreader.h"

#include <QCompleter>
#include <QStringListModel>
#include <QTextBlock>
#include <QTextCursor>

#include <algorithm>

namespace Lantern {

namespace {

QStringList sectionWords(Scope scope)
{
    QStringList words;
    for (const SectionRule &section : sectionRules()) {
        if ((section.scopes & scopeBit(scope)) && !section.isReserved())
            words.append(section.word);
    }
    return words;
}

QStringList quotedNames(const QStringList &names)
{
    QStringList words;
    for (const QString &name : names)
        words.append(quotedIfNoWord(name));
    return words;
}

/// Finds the words for the end of a piece of a line.
class PlaceWords
{
public:
    PlaceWords(const Line &line, unsigned int section, const ParserContext &context)
        : m_line(line)
        , m_section(section)
        , m_context(context)
        , m_place(line.count())
        , m_start(int(line.text().size()))
    {
        // A word that the cursor touches is the one to complete.
        const bool touches = m_place > 0 && line.at(m_place - 1).end == m_start
            && (line.is(m_place - 1, Token::Word) || line.is(m_place - 1, Token::Plain));
        if (touches)
            m_start = line.at(--m_place).start;
    }

    int start() const
    {
        return m_start;
    }

    QStringList words()
    {
        const bool isInQuotes = m_place > 0
            && (m_line.is(m_place - 1, Token::Unclosed)
                || (m_line.is(m_place - 1, Token::Quoted)
                    && m_line.at(m_place - 1).end == m_start));
        if (m_line.hasComment() || isInQuotes)
            return {};
        if (m_context.scope() == Scope::Script)
            return wordsInScript();
        switch (m_line.shape()) {
        case Line::Header:
            return m_place == 1 ? sectionWords(m_context.scope()) : QStringList();
        case Line::Directive:
            return m_place == 0 ? QStringList{QStringLiteral("@include")} : QStringList();
        case Line::Setting:
            return m_place == 2 ? valueWords() : QStringList();
        case Line::Words:
            return m_place == 0 ? firstWords() : wordsInAnimation();
        case Line::Blank:
        case Line::Reserved:
            break;
        }
        return {};
    }

private:
    QStringList firstWords() const
    {
        if (m_section == AnimationSection)
            return {QStringLiteral("frame"), QStringLiteral("attack"), QStringLiteral("body")};
        QStringList keys;
        for (const Rule &rule : rules()) {
            if (rule.section == m_section && (rule.scopes & scopeBit(m_context.scope())))
                keys.append(rule.key);
        }
        return keys;
    }

    QStringList valueWords()
    {
        const Rule *const rule = findRule(m_context.scope(), m_section, m_line.text(0));
        if (!rule)
            return {};
        if (rule->form == Form::Words) {
            const QStringView text = m_line.text();
            for (int i = m_start; i < text.size(); ++i) {
                if (text[i] == QLatin1Char(','))
                    m_start = i + 1;
            }
            while (m_start < text.size() && isBlank(text[m_start]))
                ++m_start;
        }
        if (rule->form == Form::YesNo)
            return {QStringLiteral("yes"), QStringLiteral("no")};
        return rule->words;
    }

    QStringList wordsInAnimation() const
    {
        if (m_section != AnimationSection)
            return {};
        if (!m_line.says(0, QLatin1String("frame")))
            return m_place == 5 ? QStringList{QStringLiteral("depth")} : QStringList();
        if (m_place == 1)
            return quotedNames(m_context.spriteNames()) + QStringList{QStringLiteral("none")};
        if (m_place == 3)
            return {QStringLiteral("forever")};
        return optionWords();
    }

    QStringList optionWords() const
    {
        int option = m_place;
        while (option > 0 && !m_line.is(option - 1, Token::Comma))
            --option;
        if (option < 4)
            return {};
        if (option == m_place)
            return openOptions();
        if (m_place == option + 1 && m_line.says(option, QLatin1String("play")))
            return quotedNames(m_context.soundNames());
        if (m_place == option + 2 && m_line.says(option, QLatin1String("flip")))
            return flipWords();
        if (m_place == option + 2 && m_line.says(option, QLatin1String("blend")))
            return blendWords();
        return {};
    }

    QStringList wordsInScript() const
    {
        if (m_line.shape() == Line::Header)
            return m_place == 1 ? QStringList{QStringLiteral("script")} : QStringList();
        if (m_place == 0)
            return eventWords();
        const int event = indexOfWord(m_line.text(0), eventWords());
        if (event == 1 && m_place == 1)
            return triggerWords();
        if (event == 1 && m_place == 2)
            return m_line.is(1, Token::Word) ? triggerNames(m_line.text(1)) : QStringList();
        int action = m_place;
        while (action > 0 && !m_line.is(action - 1, Token::Comma))
            --action;
        if (action == 0 && event >= 0)
            action = event == 0 ? 2 : event == 1 ? 3 : 1;
        if (m_place == action)
            return actionWords();
        return m_place == action + 1 ? argumentWords(m_line.text(action)) : QStringList();
    }

    QStringList actionWords() const
    {
        QStringList words = m_context.animationNames();
        for (const ActionRule &rule : actionRules())
            words.append(rule.word);
        for (const AmountRule &rule : amountRules())
            words.append(rule.word);
        words.removeDuplicates();
        return words;
    }

    QStringList argumentWords(QStringView action) const
    {
        const ActionRule *const rule = findAction(action);
        if (rule && rule->argument == Argument::Direction)
            return directionWords();
        return rule && rule->argument == Argument::Sound ? quotedNames(m_context.soundNames())
                                                         : QStringList();
    }

    // The options that the frame does not have yet.
    QStringList openOptions() const
    {
        QStringList words = frameOptionWords();
        for (int i = 4; i < m_place; ++i) {
            if (m_line.is(i, Token::Comma) && i + 1 < m_place)
                words.removeAll(m_line.text(i + 1).toString().toLower());
        }
        return words;
    }

    const Line &m_line;
    const unsigned int m_section;
    const ParserContext &m_context;
    int m_place; // index of the token to complete
    int m_start;
};

} // namespace

Completion completionAt(const QTextCursor &cursor, const ParserContext &context)
{
    const QTextBlock block = cursor.block();
    const QString text = block.text().left(cursor.positionInBlock());
    const Line line(text);
    const unsigned int section = unsigned(std::max(0, block.previous().userState()));
    PlaceWords place(line, section, context);
    Completion completion;
    const QStringList words = place.words();
    completion.start = place.start();
    completion.prefix = text.mid(completion.start);
    // An empty line is no question.
    if (completion.prefix.isEmpty() && line.count() == 0)
        return completion;
    for (const QString &word : words) {
        if (word.startsWith(completion.prefix, Qt::CaseInsensitive) && word != completion.prefix)
            completion.words.append(word);
    }
    std::sort(
        completion.words.begin(), completion.words.end(),
        [](const QString &a, const QString &b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
    return completion;
}

bool complete(const QTextCursor &cursor, QCompleter &completer, QString &prefix,
              const ParserContext &context)
{
    const Completion completion = completionAt(cursor, context);
    if (completion.words.isEmpty())
        return false;
    prefix = completion.prefix;
    auto *const model = qobject_cast<QStringListModel *>(completer.model());
    if (model)
        model->setStringList(completion.words);
    else
        completer.setModel(new QStringListModel(completion.words, &completer));
    return true;
}

bool insertCompletion(QTextCursor cursor, const QString &word, const ParserContext &context)
{
    if (cursor.isNull())
        return false;
    const QTextBlock block = cursor.block();
    const QString text = block.text();
    int end = cursor.positionInBlock();
    const auto endsWord = [](QChar c) { return isBlank(c) || QStringLiteral("=:,[]").contains(c); };
    while (end < text.size() && !endsWord(text.at(end)))
        ++end;
    const int start = completionAt(cursor, context).start;
    cursor.setPosition(block.position() + start);
    cursor.setPosition(block.position() + end, QTextCursor::KeepAnchor);
    cursor.insertText(word);
    return true;
}

} // namespace Lantern

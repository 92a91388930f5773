// SPDX-License-Identifier: MIT
#include "lantern/options.h"

#include "code/codedocument.h"
#include "engine/engineprivate.h"

#include <algorithm>

namespace Lantern {

namespace {

constexpr int restBeforeSaving = 500; // ms without a change
constexpr int mostIndent = 16;

struct OptionRule
{
    QLatin1String key;
    const char *kind;
    const char *section;
    const char *label;
    QVariant defaultValue;
};

const QVector<OptionRule> &optionRules()
{
    static const QVector<OptionRule> rules = {
        {OptionKey::boxIndent, "int", QT_TRANSLATE_NOOP("Lantern::Options", "Format"),
         QT_TRANSLATE_NOOP("Lantern::Options", "Indent of boxes"), 2},
        {OptionKey::words, "option", QT_TRANSLATE_NOOP("Lantern::Options", "Format"),
         QT_TRANSLATE_NOOP("Lantern::Options", "Words"), int(LowerCaseWords)},
        {OptionKey::aligns, "bool", QT_TRANSLATE_NOOP("Lantern::Options", "Format"),
         QT_TRANSLATE_NOOP("Lantern::Options", "Align actions"), true},
        {OptionKey::warns, "bool", QT_TRANSLATE_NOOP("Lantern::Options", "Warnings"),
         QT_TRANSLATE_NOOP("Lantern::Options", "Missing names"), true},
        {OptionKey::author, "string", QT_TRANSLATE_NOOP("Lantern::Options", "New games"),
         QT_TRANSLATE_NOOP("Lantern::Options", "Author"), QString()},
    };
    return rules;
}

const OptionRule &ruleAt(unsigned int index)
{
    return optionRules().at(int(index));
}

QVariant defaultOf(QLatin1String key)
{
    for (const OptionRule &rule : optionRules()) {
        if (rule.key == key)
            return rule.defaultValue;
    }
    return QVariant();
}

// A configuration file holds texts, and may have been changed by hand.
QVariant cleaned(QLatin1String key, const QVariant &value)
{
    const QVariant standard = defaultOf(key);
    if (!value.isValid())
        return standard;
    bool isNumber = true;
    if (key == OptionKey::boxIndent) {
        const int indent = value.toInt(&isNumber);
        return isNumber ? QVariant(qBound(0, indent, mostIndent)) : standard;
    }
    if (key == OptionKey::words)
        return value.toInt() == WordsAsTyped ? QVariant(int(WordsAsTyped)) : standard;
    return standard.type() == QVariant::Bool ? QVariant(value.toBool())
                                             : QVariant(value.toString());
}

} // namespace

QVariant optionOf(const Vela::CodeDocument &document, QLatin1String key)
{
    return cleaned(key, static_cast<const Vela::ProjectFile &>(document).option(key));
}

bool isEngineOption(const QString &key)
{
    const QVector<OptionRule> &rules = optionRules();
    return std::any_of(rules.begin(), rules.end(),
                       [&key](const OptionRule &rule) { return rule.key == key; });
}

Options::Options(Vela::EnginePrivate &engine)
    : m_engine(engine)
{
    m_saving.setSingleShot(true);
    m_saving.setInterval(restBeforeSaving);
    connect(&m_saving, &QTimer::timeout, this, [this] { m_engine.save(); });
}

QVariant Options::option(QLatin1String key) const
{
    return cleaned(key, m_engine.option(key, QVariant()));
}

void Options::save()
{
    if (!m_saving.isActive())
        return;
    m_saving.stop();
    m_engine.save();
}

unsigned int Options::count() const
{
    return unsigned(optionRules().size());
}

QString Options::kind(unsigned int index) const
{
    return QString::fromLatin1(ruleAt(index).kind);
}

QString Options::label(unsigned int index) const
{
    return tr(ruleAt(index).label);
}

QString Options::section(unsigned int index) const
{
    return tr(ruleAt(index).section);
}

QVariant Options::value(unsigned int index) const
{
    return option(ruleAt(index).key);
}

void Options::setValue(unsigned int index, const QVariant &value)
{
    const QLatin1String key = ruleAt(index).key;
    if (value == option(key))
        return;
    m_engine.setOption(key, value);
    m_saving.start();
    Q_EMIT changed(key);
}

QVariantMap Options::attributes(unsigned int index) const
{
    const QLatin1String key = ruleAt(index).key;
    if (key == OptionKey::boxIndent)
        return {{QStringLiteral("minimum"), 0}, {QStringLiteral("maximum"), mostIndent}};
    if (key == OptionKey::words)
        return {{QStringLiteral("items"), QStringList{tr("Lower case"), tr("As typed")}}};
    // A value ends with its line.
    if (key == OptionKey::author)
        return {{QStringLiteral("validator"), QStringLiteral("[^\\r\\n\\x0000]*")}};
    return {};
}

QString Options::sectionKey(unsigned int index) const
{
    return QStringLiteral("lantern_options_") + QString::fromLatin1(ruleAt(index).section);
}

} // namespace Lantern

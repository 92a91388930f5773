// SPDX-License-Identifier: MIT
#include "lantern/settingcode.h"

#include "lantern/line.h"
#include "lantern/values.h"

namespace Lantern {

SettingCode::SettingCode(const QTextBlock &block, Vela::CodeNode *previous, const Rule *rule,
                         const QString &key, const QVariant &value)
    : Node(rule ? rule->type : Unknown, block, previous, value)
    , m_key(rule ? QString() : key)
    , m_rule(rule)
{
}

QString SettingCode::text() const
{
    const QString text = block().text();
    const Line line(text);
    return line.count() > 2 ? line.value(2) : QString();
}

int SettingCode::valueStart() const
{
    const QString text = block().text();
    const Line line(text);
    return line.count() > 2 ? line.at(2).start : line.codeEnd();
}

int SettingCode::valueEnd() const
{
    const QString text = block().text();
    return Line(text).codeEnd();
}

QString SettingCode::name() const
{
    return m_rule ? m_rule->key : m_key;
}

void SettingCode::setName(const QString &name)
{
    if (!isWord(name))
        return;
    const QString text = block().text();
    const Line line(text);
    if (line.count() > 2)
        write(name + QLatin1String(" = ") + line.text(2).toString());
}

void SettingCode::setValue(const QVariant &value)
{
    const QString text = block().text();
    const Line line(text);
    if (line.count() < 3)
        return;
    const bool isText = !m_rule || value.userType() == QMetaType::QString;
    const QString code =
        isText ? value.toString() : valueText(*m_rule, convertFrom(valueType(), value));
    // No other form than text can be empty.
    if (isText || !code.isEmpty() || m_rule->form == Form::Text)
        write(line.text(0).toString() + QLatin1String(" = ") + quotedIfNeeded(code));
}

QVariant SettingCode::defaultValue() const
{
    return m_rule ? m_rule->defaultValue : QVariant();
}

QString SettingCode::keywordName(unsigned int keyword) const
{
    return m_rule ? m_rule->words.value(int(keyword)) : QString();
}

void SettingCode::update(const Rule *rule, QStringView key, const QVariant &value)
{
    const bool hasSameName =
        rule ? rule == m_rule : !m_rule && key.compare(m_key, Qt::CaseInsensitive) == 0;
    if (hasSameName && convertFrom(valueType(), value) == rawValue())
        return;
    m_rule = rule;
    m_key = rule ? QString() : key.toString().toLower();
    valueChanged(value);
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/node.h"
#include "lantern/schema.h"

#include "code/valuecode.h"

namespace Lantern {

/// A setting. One that its section does not know has the type Unknown and its text as value.
class SettingCode : public Node<Vela::ValueCode>
{
public:
    /// \a rule is null for an unknown setting.
    SettingCode(const QTextBlock &block, Vela::CodeNode *previous, const Rule *rule,
                const QString &key, const QVariant &value);

    /// Returns null for an unknown setting.
    const Rule *rule() const
    {
        return m_rule;
    }
    /// Returns the value as the text has it, without quotes.
    QString text() const;
    /// Returns the column where the value begins in its line, and where it ends.
    int valueStart() const;
    int valueEnd() const;

    /// Returns the key in lower case; the one of today for an outdated one.
    QString name() const override;
    /// Takes a word of the grammar; anything else is ignored.
    void setName(const QString &name) override;
    /// Writes a value of the setting's type. A string is written as it stands, so that the parser
    /// judges it.
    void setValue(const QVariant &value) override;
    QVariant defaultValue() const override;
    QString keywordName(unsigned int keyword) const override;

    /// The parser calls this for a setting that stays.
    void update(const Rule *rule, QStringView key, const QVariant &value);

private:
    QString m_key; // empty where the rule has it
    const Rule *m_rule;
};

} // namespace Lantern

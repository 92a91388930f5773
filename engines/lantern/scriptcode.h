// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/node.h"

#include "code/valuecode.h"

namespace Lantern {

class Line;
struct ScriptLine;

/// A line of a script: its name is the event, such as "when held left", and its value are the
/// actions, as the text has them.
class ScriptCode : public Node<Vela::ValueCode>
{
public:
    ScriptCode(const QTextBlock &block, Vela::CodeNode *previous, const Line &line,
               const ScriptLine &script);

    QString name() const override;
    /// Both write text as it stands, so that the parser judges it.
    void setName(const QString &name) override;
    void setValue(const QVariant &value) override;
    QVariant defaultValue() const override;
    QString keywordName(unsigned int keyword) const override;

    /// The parser calls this for a line that stays.
    void update(const Line &line, const ScriptLine &script);

private:
    QString m_event;
};

/// Returns the event of a line with single blanks, and its actions.
QString eventText(const Line &line, const ScriptLine &script);
QString actionsText(const Line &line, const ScriptLine &script);

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "lantern/scriptcode.h"

#include "lantern/report.h"
#include "lantern/scriptreader.h"

namespace Lantern {

namespace {

/// A script's line taken apart for a change.
struct Parts
{
    explicit Parts(const QString &lineText)
        : text(lineText)
        , line(text)
    {
        Report silent(line, nullptr);
        isScript = readScriptLine(line, script, silent);
    }

    const QString text;
    const Line line;
    ScriptLine script;
    bool isScript;
};

} // namespace

ScriptCode::ScriptCode(const QTextBlock &block, Vela::CodeNode *previous, const Line &line,
                       const ScriptLine &script)
    : Node(String, block, previous, actionsText(line, script))
    , m_event(eventText(line, script))
{
}

QString ScriptCode::name() const
{
    return m_event;
}

void ScriptCode::setName(const QString &name)
{
    const Parts parts(block().text());
    if (!parts.isScript)
        return;
    // The actions may stand right behind a quote, but not behind anything else.
    const int end = parts.line.at(parts.script.action - 1).end;
    const bool isGlued = end == parts.line.at(parts.script.action).start;
    replaceColumns(*this, parts.line.codeStart(), end,
                   onOneLine(name) + QLatin1String(isGlued ? " " : ""));
}

void ScriptCode::setValue(const QVariant &value)
{
    const Parts parts(block().text());
    if (!parts.isScript)
        return;
    // A comment may stand right behind a quote, but not behind anything else.
    const bool isGlued =
        parts.line.codeEnd() == parts.line.commentStart() && parts.line.hasComment();
    replaceColumns(*this, parts.line.at(parts.script.action).start, parts.line.codeEnd(),
                   onOneLine(value.toString()) + QLatin1String(isGlued ? " " : ""));
}

QVariant ScriptCode::defaultValue() const
{
    return QVariant();
}

QString ScriptCode::keywordName(unsigned int) const
{
    return QString();
}

void ScriptCode::update(const Line &line, const ScriptLine &script)
{
    const QString event = eventText(line, script);
    const QString actions = actionsText(line, script);
    if (event == m_event && actions == rawValue().toString())
        return;
    m_event = event;
    valueChanged(actions);
}

QString eventText(const Line &line, const ScriptLine &script)
{
    QStringList words;
    for (int i = 0; i < script.action; ++i)
        words.append(line.text(i).toString());
    return words.join(QLatin1Char(' '));
}

QString actionsText(const Line &line, const ScriptLine &script)
{
    const int start = line.at(script.action).start;
    return line.text().mid(start, line.codeEnd() - start).toString();
}

} // namespace Lantern

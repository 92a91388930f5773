// SPDX-License-Identifier: MIT
#include "lantern/textfile.h"

#include "lantern/documentmessages.h"

#include "frame/regexp.h"
#include "frame/textcodecs.h"
#include "project/searchableprojectfile.h"

#include <algorithm>

using Vela::TextCodecs;

namespace Lantern {

namespace {

// States kept for undo; the texts of most are shared with nobody.
constexpr int mostStates = 200;

QString encodingProperty()
{
    return QStringLiteral("Encoding");
}

QString linesProperty()
{
    return QStringLiteral("Lines");
}

QString lineEndsProperty()
{
    return QStringLiteral("LineEnds");
}

// In the order of TextContent::LineEnds.
const QStringList &lineEndNames()
{
    static const QStringList names = {QString(), QStringLiteral("LF"), QStringLiteral("CRLF"),
                                      QStringLiteral("CR"), QStringLiteral("Mixed")};
    return names;
}

bool isLineEnd(const QString &text, int i)
{
    const bool insidePair = text.at(i) == QLatin1Char('\r') && i + 1 < text.size()
        && text.at(i + 1) == QLatin1Char('\n');
    return (text.at(i) == QLatin1Char('\n') || text.at(i) == QLatin1Char('\r')) && !insidePair;
}

int lineCount(const QString &text)
{
    int count = 0;
    for (int i = 0; i < text.size(); ++i)
        count += isLineEnd(text, i) ? 1 : 0;
    return text.isEmpty() || isLineEnd(text, text.size() - 1) ? count : count + 1;
}

QVector<int> lineStarts(const QString &text)
{
    QVector<int> starts(1, 0);
    for (int i = 0; i < text.size(); ++i) {
        if (isLineEnd(text, i))
            starts.append(i + 1);
    }
    return starts;
}

Vela::ProjectFile::SearchResult searchResult(const QString &text, const QVector<int> &starts,
                                             const QRegularExpressionMatch &match)
{
    const auto next = std::upper_bound(starts.begin(), starts.end(), match.capturedStart());
    const auto behind = std::upper_bound(next, starts.end(), match.capturedEnd() - 1);
    const int begin = *std::prev(next);
    int end = behind == starts.end() ? text.size() : *behind;
    while (end > begin
           && (text.at(end - 1) == QLatin1Char('\n') || text.at(end - 1) == QLatin1Char('\r')))
        --end;
    Vela::ProjectFile::SearchResult result;
    result.line = int(next - starts.begin()) - 1;
    result.column = match.capturedStart() - begin;
    result.length = match.capturedLength();
    result.text = text.mid(begin, end - begin);
    result.captures = match.capturedTexts().mid(1);
    return result;
}

QString filledIn(QString text, const QStringList &captures)
{
    for (const QString &capture : captures)
        text = text.arg(capture);
    return text;
}

} // namespace

TextFile::TextFile(const char *extension)
    : ContentFile(extension)
    , m_messages(this)
{
}

QString TextFile::text() const
{
    return content().text();
}

void TextFile::setText(const QString &text)
{
    TextContent changed = content();
    changed.setText(text);
    change(changed);
}

int TextFile::codec() const
{
    return content().codec();
}

const TextContent &TextFile::content() const
{
    ensureLoaded();
    return m_states.at(m_current).content;
}

Vela::Messages *TextFile::fileMessages() const
{
    return &m_messages;
}

TextFile::Capabilities TextFile::capabilities() const
{
    return HasText;
}

bool TextFile::isModified() const
{
    return m_states.at(m_current).number != m_savedNumber;
}

bool TextFile::isEmpty() const
{
    return content().text().isEmpty();
}

void TextFile::beginChange()
{
    if (m_changeDepth++ == 0)
        m_changePushed = false;
}

void TextFile::endChange()
{
    if (m_changeDepth > 0)
        --m_changeDepth;
}

// Inside a bracket the first change makes the step, and the others go into it.
void TextFile::change(const TextContent &content)
{
    ensureLoaded();
    if (m_changeDepth > 0 && m_changePushed) {
        m_states[m_current] = {content, ++m_lastNumber};
    } else {
        push(content);
        m_changePushed = m_changeDepth > 0;
    }
    notify();
}

void TextFile::push(const TextContent &content)
{
    m_states.resize(m_current + 1);
    m_states.append({content, ++m_lastNumber});
    if (m_states.size() > mostStates)
        m_states.removeFirst();
    m_current = m_states.size() - 1;
}

void TextFile::undo()
{
    step(-1);
}

void TextFile::redo()
{
    step(1);
}

void TextFile::step(int direction)
{
    const int target = m_current + direction;
    if (target < 0 || target >= m_states.size())
        return;
    m_current = target;
    notify();
}

void TextFile::notify()
{
    m_messages.beginChange();
    m_messages.clear();
    for (const Vela::Message &message : content().messages())
        m_messages.add(message.type, message.text, message.line, message.column);
    m_messages.endChange();
}

QList<TextFile::SearchResult> TextFile::search(const Vela::RegExp &expression,
                                               unsigned int flags) const
{
    QList<SearchResult> results;
    const QString searched = text();
    const QVector<int> starts = lineStarts(searched);
    QRegularExpressionMatchIterator matches = expression.globalMatch(searched);
    while (matches.hasNext()) {
        results.append(searchResult(searched, starts, matches.next()));
        if (!(flags
              & (Vela::SearchableProjectFile::FindAll | Vela::SearchableProjectFile::Backward)))
            break;
    }
    if (!(flags & Vela::SearchableProjectFile::FindAll) && results.size() > 1)
        results = {results.last()};
    return results;
}

void TextFile::replace(const QList<SearchResult> &results, const QString &text)
{
    QString changed = this->text();
    const QVector<int> starts = lineStarts(changed);
    QList<SearchResult> ordered = results;
    std::sort(ordered.begin(), ordered.end(), [](const SearchResult &a, const SearchResult &b) {
        return qMakePair(a.line, a.column) > qMakePair(b.line, b.column);
    });
    // From the end, so that the places in front stay true.
    int limit = changed.size();
    for (const SearchResult &result : qAsConst(ordered)) {
        const int offset = starts.value(result.line, changed.size() + 1) + result.column;
        if (result.line < 0 || result.column < 0 || result.length < 0
            || offset > limit - result.length)
            continue;
        changed.replace(offset, result.length, filledIn(text, result.captures));
        limit = offset;
    }
    if (changed != this->text())
        setText(changed);
}

QStringList TextFile::propertyNames() const
{
    return {encodingProperty(), linesProperty(), lineEndsProperty()};
}

QVariant TextFile::property(const QString &name) const
{
    if (name == encodingProperty())
        return QString::fromLatin1(TextCodecs::name(codec()));
    if (name == linesProperty())
        return lineCount(text());
    if (name == lineEndsProperty())
        return lineEndNames().value(content().lineEnds());
    return QVariant();
}

void TextFile::setProperty(const QString &name, const QVariant &value)
{
    TextContent changed = content();
    if (name == encodingProperty()) {
        // The list gives 0 for a name that it does not have, so the name found is compared.
        const QByteArray wanted = value.toString().toLatin1();
        const int codec = TextCodecs::index(wanted.constData());
        const bool known = TextCodecs::aliases(codec)
                               .split(QStringLiteral(", "))
                               .contains(value.toString(), Qt::CaseInsensitive);
        if (!known || codec == this->codec())
            return;
        changed.setCodec(codec);
    } else if (name == lineEndsProperty()) {
        const int lineEnds = lineEndNames().indexOf(value.toString());
        changed.setLineEnds(TextContent::LineEnds(lineEnds));
        if (changed.text() == text())
            return;
    } else {
        return;
    }
    change(changed);
}

void TextFile::decode(const QByteArray &data, bool again)
{
    if (again) {
        if (data != content().toData())
            push(TextContent(data));
    } else {
        m_states = {State{TextContent(data), ++m_lastNumber}};
        m_current = 0;
    }
    notify();
}

bool TextFile::encode(QByteArray &data, QString &error)
{
    const int unwritable = content().firstUnwritable();
    if (unwritable < 0) {
        data = content().toData();
        return true;
    }
    const QVector<int> starts = lineStarts(text());
    const auto next = std::upper_bound(starts.begin(), starts.end(), unwritable);
    const int line = int(next - starts.begin()) - 1;
    const Vela::Message message =
        content().unwritableMessage(unwritable, line, unwritable - *std::prev(next));
    m_messages.add(message.type, message.text, message.line, message.column);
    error = placedText(displayName(), message);
    return false;
}

void TextFile::clear()
{
    decode(QByteArray(), false);
    markSaved();
}

void TextFile::markSaved()
{
    m_savedNumber = m_states.at(m_current).number;
}

void TextFile::reportFailure(const QString &text)
{
    m_messages.add(Vela::Message::Error, text, 0, 0);
}

} // namespace Lantern

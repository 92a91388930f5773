// SPDX-License-Identifier: MIT
#include "code/formatruns.h"

#include <algorithm>

namespace Vela {

namespace {

constexpr int TokenTypeCount = CodeParserSyntax::TokenTypeCount;

bool isToken(int type)
{
    return type >= 0 && type < TokenTypeCount;
}

QTextCharFormat defaultFormat(bool bold, bool italic, const QColor &color)
{
    QTextCharFormat format;
    format.setFontFamily(QStringLiteral("Courier"));
    format.setFontPointSize(10);
    format.setFontFixedPitch(true);
    format.setFontStyleHint(QFont::Monospace);
    format.setFontWeight(bold ? QFont::Bold : QFont::Normal);
    format.setFontItalic(italic);
    format.setForeground(color);
    return format;
}

} // namespace

void FormatRuns::beginPass()
{
    m_known.reset();
    for (Filled &filled : m_filled)
        filled.formats.clear();
}

void FormatRuns::begin(int length)
{
    m_runs.clear();
    m_length = length;
}

void FormatRuns::set(CodeParserSyntax::TokenType token, Underline underline, int start, int end)
{
    if (!isToken(token) || start < 0 || start >= m_length || end <= start)
        return;
    const Run run{start, qMin(end, m_length), underline * TokenTypeCount + token};
    if (m_runs.empty() || m_runs.back().end < start
        || (m_runs.back().end == start && m_runs.back().format != run.format))
        m_runs.push_back(run);
    else
        replace(run);
}

// The runs that the new one overlaps or touches become what is left of the first and the last of
// them, with the new one between.
void FormatRuns::replace(Run run)
{
    auto first = m_runs.end();
    while (first != m_runs.begin() && std::prev(first)->end >= run.start)
        --first;
    auto last = first;
    while (last != m_runs.end() && last->start <= run.end)
        ++last;

    std::vector<Run> pieces;
    pieces.reserve(3);
    if (first != last) {
        const Run before{first->start, qMin(first->end, run.start), first->format};
        const Run behind{qMax(std::prev(last)->start, run.end), std::prev(last)->end,
                         std::prev(last)->format};
        if (before.format == run.format)
            run.start = qMin(run.start, before.start);
        else if (before.start < before.end)
            pieces.push_back(before);
        if (behind.format == run.format)
            run.end = qMax(run.end, behind.end);
        pieces.push_back(run);
        if (behind.format != run.format && behind.start < behind.end)
            pieces.push_back(behind);
    } else {
        pieces.push_back(run);
    }
    const auto place = m_runs.erase(first, last);
    m_runs.insert(place, pieces.begin(), pieces.end());
}

bool FormatRuns::apply(QTextLayout *layout)
{
    const Ranges old = layout->formats();
    const int preeditLength = layout->preeditAreaText().size();
    if (preeditLength > 0) {
        const Ranges ranges = rangesAround(layout->preeditAreaPosition(), preeditLength, old);
        if (ranges == old)
            return false;
        layout->setFormats(ranges);
        return true;
    }
    const Ranges &ranges = filledRanges();
    const bool isSame = ranges == old;
    if (!isSame)
        layout->setFormats(ranges);
    if (!m_allKnown)
        learn(isSame ? old : layout->formats());
    return !isSame;
}

// Lines with the same number of runs are mostly alike. Where a place of the list has the right
// format from the last one of them, its format is not counted down and up again.
const FormatRuns::Ranges &FormatRuns::filledRanges()
{
    Filled &filled = m_filled[qMin(m_runs.size(), m_filled.size() - 1)];
    const int count = int(m_runs.size());
    if (filled.ranges.size() != count)
        filled.ranges.resize(count);
    filled.formats.resize(m_runs.size(), -1);
    m_allKnown = true;
    for (int i = 0; i < count; ++i) {
        const Run &run = m_runs[size_t(i)];
        QTextLayout::FormatRange &range = filled.ranges[i];
        range.start = run.start;
        range.length = run.end - run.start;
        if (filled.formats[size_t(i)] == run.format)
            continue;
        range.format = format(run.format);
        const bool isKnown = m_known[size_t(run.format)];
        filled.formats[size_t(i)] = isKnown ? run.format : -1;
        m_allKnown &= isKnown;
    }
    return filled.ranges;
}

// The text of an input method stands in the layout but not in the line: what lies behind it is
// moved, and a run around it is split.
FormatRuns::Ranges FormatRuns::rangesAround(int preeditStart, int preeditLength,
                                            const Ranges &old) const
{
    Ranges ranges;
    const auto append = [&](int start, int end, int index) {
        if (start < end)
            ranges.append({start, end - start, format(index)});
    };
    for (const Run &run : m_runs)
        append(run.start, qMin(run.end, preeditStart), run.format);
    for (const QTextLayout::FormatRange &range : old) {
        if (range.start >= preeditStart
            && range.start + range.length <= preeditStart + preeditLength)
            ranges.append(range);
    }
    for (const Run &run : m_runs)
        append(qMax(run.start, preeditStart) + preeditLength, run.end + preeditLength, run.format);
    return ranges;
}

const QTextCharFormat &FormatRuns::format(int index) const
{
    return (m_known[size_t(index)] ? m_formats : sharedFormats())[size_t(index)];
}

void FormatRuns::learn(const Ranges &ranges)
{
    for (size_t i = 0; i < m_runs.size(); ++i) {
        const size_t index = size_t(m_runs[i].format);
        if (!m_known[index]) {
            m_formats[index] = ranges.at(int(i)).format;
            m_known.set(index);
        }
    }
}

QTextCharFormat FormatRuns::tokenFormat(CodeParserSyntax::TokenType token)
{
    return isToken(token) ? sharedFormats()[size_t(token)] : QTextCharFormat();
}

void FormatRuns::setTokenFormat(CodeParserSyntax::TokenType token, const QTextCharFormat &format)
{
    if (isToken(token))
        setFormat(sharedFormats(), token, format);
}

FormatRuns::Formats &FormatRuns::sharedFormats()
{
    static Formats formats = defaultFormats();
    return formats;
}

void FormatRuns::setFormat(Formats &formats, int token, const QTextCharFormat &format)
{
    const auto place = [&](Underline underline) -> QTextCharFormat & {
        return formats[size_t(underline * TokenTypeCount + token)];
    };
    const auto setUnderlined = [&](Underline underline, const QColor &color) {
        QTextCharFormat underlined = format;
        underlined.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
        underlined.setUnderlineColor(color);
        place(underline) = underlined;
    };
    place(NoUnderline) = format;
    setUnderlined(ErrorUnderline, Qt::red);
    setUnderlined(DeprecationUnderline, QColor(255, 127, 0));
    setUnderlined(WarningUnderline, QColor(255, 255, 0));
}

FormatRuns::Formats FormatRuns::defaultFormats()
{
    const QTextCharFormat tokens[TokenTypeCount] = {
        defaultFormat(false, true, Qt::black),
        defaultFormat(false, true, Qt::gray),
        defaultFormat(false, false, Qt::red),
        defaultFormat(false, false, Qt::blue),
        defaultFormat(true, false, Qt::black),
        defaultFormat(true, false, QColor(0, 128, 0)),
        defaultFormat(true, false, QColor(255, 128, 0)),
        defaultFormat(true, false, QColor(0, 128, 128)),
        defaultFormat(false, false, QColor(128, 0, 255)),
        defaultFormat(false, false, QColor(255, 0, 255)),
    };
    Formats formats;
    for (int token = 0; token < TokenTypeCount; ++token)
        setFormat(formats, token, tokens[token]);
    return formats;
}

} // namespace Vela

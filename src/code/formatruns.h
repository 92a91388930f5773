// SPDX-License-Identifier: MIT
#pragma once

#include "code/codeparsersyntax.h"

#include <QTextCharFormat>
#include <QTextLayout>
#include <QVector>
#include <array>
#include <bitset>
#include <vector>

namespace Vela {

/// The formats of one line while it is parsed: spans in the order of the line, none empty, none
/// over another, and those that touch of different formats. A span has an index into a table of
/// formats that all documents share, so that reporting a token makes no format.
class FormatRuns
{
public:
    enum Underline { NoUnderline, ErrorUnderline, DeprecationUnderline, WarningUnderline };

    /// Begins a pass over lines, behind which the shared formats may have changed.
    void beginPass();
    /// Begins a line of \a length characters without formats.
    void begin(int length);
    bool isEmpty() const
    {
        return m_runs.empty();
    }
    /// Gives a span a format in the place of what it had. A span that begins outside the line or
    /// is empty changes nothing; one that ends behind the line is cut off there.
    void set(CodeParserSyntax::TokenType token, Underline underline, int start, int end);
    /// Gives the spans to the layout of the line if it has others. The text of an input method in
    /// the line keeps its formats. Returns whether the layout changed.
    bool apply(QTextLayout *layout);

    static QTextCharFormat tokenFormat(CodeParserSyntax::TokenType token);
    static void setTokenFormat(CodeParserSyntax::TokenType token, const QTextCharFormat &format);

private:
    using Ranges = QVector<QTextLayout::FormatRange>;
    static constexpr int FormatCount = 4 * CodeParserSyntax::TokenTypeCount;
    using Formats = std::array<QTextCharFormat, FormatCount>;

    struct Run
    {
        int start;
        int end; ///< excluded
        int format;
    };

    /// Runs as a layout takes them, kept for the next line.
    struct Filled
    {
        Ranges ranges;
        std::vector<int> formats; ///< the format of each; -1 if it is not settled
    };

    static Formats &sharedFormats();
    static void setFormat(Formats &formats, int token, const QTextCharFormat &format);
    static Formats defaultFormats();

    void replace(Run run);
    const QTextCharFormat &format(int index) const;
    const Ranges &filledRanges();
    Ranges rangesAround(int preeditStart, int preeditLength, const Ranges &old) const;
    void learn(const Ranges &ranges);

    std::vector<Run> m_runs;
    int m_length = 0;
    std::array<Filled, 16> m_filled; ///< by the number of runs; the last one for all greater ones
    // A layout keeps formats equal to those that it is given. Giving it its own again saves it from
    // comparing them property by property.
    Formats m_formats;
    std::bitset<FormatCount> m_known; ///< which of m_formats are the layouts' own
    bool m_allKnown = false;          ///< whether those of all runs are
};

} // namespace Vela

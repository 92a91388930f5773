// SPDX-License-Identifier: MIT
#include "studio/session/comparedlines.h"

#include <QPair>
#include <QStringList>

#include <algorithm>

namespace Studio {

namespace {

constexpr int MostEdits = 1000; // memory grows with their square

/// Lines of two texts that differ in the first and in the last one.
struct Middle
{
    const QStringList &before;
    const QStringList &after;
    int first; ///< of both
    int beforeCount;
    int afterCount;

    bool isSame(int i, int j) const
    {
        return before.at(first + i) == after.at(first + j);
    }
};

/// Finds the longest common subsequence in the way of E. W. Myers, "An O(ND) Difference Algorithm
/// and Its Variations", Algorithmica 1 (1986). Diagonal k holds the pairs (i, i - k).
class CommonLines
{
public:
    explicit CommonLines(const Middle &middle)
        : m_middle(middle)
        , m_most(qMin(MostEdits, middle.beforeCount + middle.afterCount))
        , m_furthest(2 * m_most + 3)
    {
    }

    /// Returns pairs of equal lines from the last to the first; empty if there are too many edits.
    QVector<QPair<int, int>> find()
    {
        for (int edits = 0; edits <= m_most; ++edits) {
            m_steps.append(m_furthest);
            for (int k = -edits; k <= edits; k += 2) {
                int i = entry(edits, k);
                while (i < m_middle.beforeCount && i - k < m_middle.afterCount
                       && m_middle.isSame(i, i - k))
                    ++i;
                at(k) = i;
                if (i >= m_middle.beforeCount && i - k >= m_middle.afterCount)
                    return wayBack(edits);
            }
        }
        return {};
    }

private:
    int &at(int k)
    {
        return m_furthest[k + m_most + 1];
    }
    bool comesByInsertion(int edits, int k)
    {
        return k == -edits || (k != edits && at(k - 1) < at(k + 1));
    }
    /// Returns where the way with so many edits enters a diagonal.
    int entry(int edits, int k)
    {
        if (edits == 0)
            return 0;
        return comesByInsertion(edits, k) ? at(k + 1) : at(k - 1) + 1;
    }

    QVector<QPair<int, int>> wayBack(int edits)
    {
        QVector<QPair<int, int>> pairs;
        int i = m_middle.beforeCount;
        int k = m_middle.beforeCount - m_middle.afterCount;
        for (; edits >= 0; --edits) {
            m_furthest = m_steps.at(edits);
            const int start = entry(edits, k);
            while (i > start) {
                --i;
                pairs.append({i, i - k});
            }
            if (edits > 0 && comesByInsertion(edits, k))
                ++k;
            else if (edits > 0) {
                --k;
                --i;
            }
        }
        return pairs;
    }

    const Middle &m_middle;
    const int m_most;
    QVector<int> m_furthest;
    QVector<QVector<int>> m_steps; // m_furthest as it was at the beginning of each round
};

/// Appends lines that differ, in the rows that both texts have as long as there are any.
void appendDifferent(QVector<ComparedLine> &lines, const QStringList &before,
                     const QStringList &after)
{
    for (int i = 0; i < qMax(before.size(), after.size()); ++i)
        lines.append({before.value(i), after.value(i), i < before.size(), i < after.size(), true});
}

} // namespace

QVector<ComparedLine> compareLines(const QString &before, const QString &after)
{
    const QStringList left = before.split(QLatin1Char('\n'));
    const QStringList right = after.split(QLatin1Char('\n'));
    const int common = qMin(left.size(), right.size());
    int head = 0;
    while (head < common && left.at(head) == right.at(head))
        ++head;
    int tail = 0;
    while (tail < common - head
           && left.at(left.size() - 1 - tail) == right.at(right.size() - 1 - tail))
        ++tail;
    const Middle middle{left, right, head, left.size() - head - tail, right.size() - head - tail};
    QVector<QPair<int, int>> pairs = CommonLines(middle).find();
    std::reverse(pairs.begin(), pairs.end());
    pairs.append({middle.beforeCount, middle.afterCount});

    QVector<ComparedLine> lines;
    const auto appendSame = [&](const QString &line) { lines.append({line, line}); };
    std::for_each(left.begin(), left.begin() + head, appendSame);
    int i = 0;
    int j = 0;
    for (const QPair<int, int> &pair : qAsConst(pairs)) {
        appendDifferent(lines, left.mid(head + i, pair.first - i),
                        right.mid(head + j, pair.second - j));
        if (pair.first < middle.beforeCount)
            appendSame(left.at(head + pair.first));
        i = pair.first + 1;
        j = pair.second + 1;
    }
    std::for_each(left.end() - tail, left.end(), appendSame);
    return lines;
}

} // namespace Studio

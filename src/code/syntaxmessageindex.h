// SPDX-License-Identifier: MIT
#pragma once

#include "code/codeblockdata.h"
#include "project/message.h"

#include <array>

namespace Vela {

/// The messages of one line, and the line's place in a SyntaxMessageIndex.
struct SyntaxMessageLine
{
    using Counts = std::array<int, 3>; ///< of messages, by Message::Type

    QTextBlock block;
    QVector<CodeBlockData::SyntaxMessage> messages;

    SyntaxMessageLine *parent = nullptr;
    SyntaxMessageLine *left = nullptr;
    SyntaxMessageLine *right = nullptr;
    unsigned int priority = 0; ///< none in the subtree has a greater one
    Counts own{};
    Counts total{}; ///< of the subtree
};

/// The lines of a document that have messages in the order of the text: a treap that knows how many
/// messages each of its parts has, so that entering, leaving, rows and lookups take time in the
/// logarithm of the number of lines. The lines belong to their CodeBlockData.
///
/// Treap: C. R. Aragon and R. Seidel, "Randomized search trees", FOCS 1989.
class SyntaxMessageIndex
{
public:
    using Line = SyntaxMessageLine;

    /// Returns the type under which a kind of message is listed.
    static Message::Type messageType(int kind);

    /// Returns the last line in front of a text position, or null.
    Line *lastBefore(int position) const;
    /// Enters a line with its messages behind another one, or as the first for null.
    void insertBehind(Line *line, Line *previous);
    void remove(Line *line);

    /// Returns the number of messages in front of a line's.
    static int row(const Line *line);
    int count(Message::Type type) const
    {
        return countIn(m_root, type);
    }
    /// Returns the line of the message at \a index among those of a type, and makes \a index count
    /// from the line's first of that type; null past the end.
    const Line *lineAt(int &index, Message::Type type) const;

private:
    static int countOf(const Line::Counts &counts, Message::Type type);
    static int countIn(const Line *subtree, Message::Type type);
    static void updateTotal(Line *line);
    Line *&linkTo(Line *line);
    void rotateUp(Line *line);
    unsigned int nextPriority();

    Line *m_root = nullptr;
    unsigned int m_seed = 2463534242U;
};

} // namespace Vela

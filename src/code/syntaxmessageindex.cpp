// SPDX-License-Identifier: MIT
#include "code/syntaxmessageindex.h"

namespace Vela {

Message::Type SyntaxMessageIndex::messageType(int kind)
{
    switch (kind) {
    case CodeBlockData::SyntaxMessage::Error:
        return Message::Error;
    case CodeBlockData::SyntaxMessage::Information:
        return Message::Information;
    default:
        return Message::Warning;
    }
}

SyntaxMessageIndex::Line *SyntaxMessageIndex::lastBefore(int position) const
{
    Line *found = nullptr;
    for (Line *line = m_root; line;) {
        if (line->block.position() < position) {
            found = line;
            line = line->right;
        } else {
            line = line->left;
        }
    }
    return found;
}

void SyntaxMessageIndex::insertBehind(Line *line, Line *previous)
{
    // The place is the left end of what lies behind the other line, or its empty right side.
    Line *parent = nullptr;
    for (Line *next = previous ? previous->right : m_root; next; next = next->left)
        parent = next;
    if (parent)
        parent->left = line;
    else if (previous)
        previous->right = line;
    else
        m_root = line;
    line->parent = parent ? parent : previous;

    line->priority = nextPriority();
    line->own = {};
    for (const CodeBlockData::SyntaxMessage &message : qAsConst(line->messages))
        ++line->own[messageType(message.type)];
    for (Line *above = line; above; above = above->parent)
        updateTotal(above);
    while (line->parent && line->parent->priority < line->priority)
        rotateUp(line);
}

void SyntaxMessageIndex::remove(Line *line)
{
    while (line->left || line->right) {
        const bool leftIsUpper =
            line->left && (!line->right || line->left->priority > line->right->priority);
        rotateUp(leftIsUpper ? line->left : line->right);
    }
    linkTo(line) = nullptr;
    for (Line *above = line->parent; above; above = above->parent)
        updateTotal(above);
    line->parent = nullptr;
}

int SyntaxMessageIndex::row(const Line *line)
{
    int row = countIn(line->left, Message::Any);
    for (const Line *above = line->parent; above; line = above, above = above->parent) {
        if (line == above->right)
            row += countIn(above->left, Message::Any) + countOf(above->own, Message::Any);
    }
    return row;
}

const SyntaxMessageIndex::Line *SyntaxMessageIndex::lineAt(int &index, Message::Type type) const
{
    for (const Line *line = m_root; line;) {
        const int before = countIn(line->left, type);
        const int own = countOf(line->own, type);
        if (index < before) {
            line = line->left;
            continue;
        }
        index -= before;
        if (index < own)
            return line;
        index -= own;
        line = line->right;
    }
    return nullptr;
}

int SyntaxMessageIndex::countOf(const Line::Counts &counts, Message::Type type)
{
    return type == Message::Any ? counts[0] + counts[1] + counts[2] : counts[type];
}

int SyntaxMessageIndex::countIn(const Line *subtree, Message::Type type)
{
    return subtree ? countOf(subtree->total, type) : 0;
}

void SyntaxMessageIndex::updateTotal(Line *line)
{
    for (size_t type = 0; type < line->total.size(); ++type) {
        line->total[type] = line->own[type] + (line->left ? line->left->total[type] : 0)
            + (line->right ? line->right->total[type] : 0);
    }
}

SyntaxMessageIndex::Line *&SyntaxMessageIndex::linkTo(Line *line)
{
    Line *const parent = line->parent;
    if (!parent)
        return m_root;
    return parent->left == line ? parent->left : parent->right;
}

void SyntaxMessageIndex::rotateUp(Line *line)
{
    Line *const parent = line->parent;
    linkTo(parent) = line;
    line->parent = parent->parent;

    Line *&inner = parent->left == line ? line->right : line->left;
    (parent->left == line ? parent->left : parent->right) = inner;
    if (inner)
        inner->parent = parent;
    inner = parent;
    parent->parent = line;
    updateTotal(parent);
    updateTotal(line);
}

// xorshift. G. Marsaglia, "Xorshift RNGs", Journal of Statistical Software 8 (14), 2003.
unsigned int SyntaxMessageIndex::nextPriority()
{
    m_seed ^= m_seed << 13;
    m_seed ^= m_seed >> 17;
    m_seed ^= m_seed << 5;
    return m_seed;
}

} // namespace Vela

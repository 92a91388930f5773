// SPDX-License-Identifier: MIT
#include "code/adoption.h"

#include "code/codenode.h"

namespace Vela {

namespace {

/// The pass that runs, the innermost of those that nest.
Adoption *current = nullptr;

} // namespace

Adoption::Adoption()
    : m_outer(current)
{
    current = this;
}

Adoption::~Adoption()
{
    takeUpTo(nullptr);
    current = m_outer;
}

void Adoption::begin(ParentCode *header, Take take)
{
    CodeNode *const node = header->next();
    // A header between the one that waits and its nodes takes them in its place. For any other, a
    // pass of its own.
    if (current && (!current->m_header || current->m_next == node)) {
        current->m_header = header;
        current->m_take = take;
        current->m_next = node;
        return;
    }
    Adoption own;
    own.m_header = header;
    own.m_take = take;
    own.m_next = node;
}

void Adoption::reach(const CodeNode *end)
{
    if (current)
        current->takeUpTo(end);
}

void Adoption::takeUpTo(const CodeNode *end)
{
    constexpr int headers = CodeNode::Group | CodeNode::Animation;
    while (m_header && m_next != end) {
        if (!m_next || (m_next->type() & headers)) {
            m_header = nullptr;
            return;
        }
        // Who hears of a node that comes may take others away.
        CodeNode *const node = m_next;
        m_next = node->next();
        m_take(m_header, node);
    }
}

void Adoption::finish(const ParentCode *header)
{
    for (Adoption *pass = current; pass; pass = pass->m_outer) {
        if (pass->m_header == header)
            pass->takeUpTo(nullptr);
    }
}

void Adoption::nodeGoes(const CodeNode *node)
{
    for (Adoption *pass = current; pass; pass = pass->m_outer) {
        if (pass->m_header == node)
            pass->m_header = nullptr;
        else if (pass->m_next == node)
            pass->m_next = node->next();
    }
}

} // namespace Vela

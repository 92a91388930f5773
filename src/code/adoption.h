// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace Vela {

class CodeNode;
class ParentCode;

/// How a new header comes to the nodes below it. While a pass over lines lasts they come to it as
/// the pass goes down, and the rest at its end: many headers made in one pass would else each take
/// all of a long section from the one above. Outside of a pass they come at once. Passes nest, and
/// one that ends gives the place to the one around it. Main thread only.
class Adoption
{
public:
    /// Makes a node a child of the header, if it is of the kind that belongs to it.
    using Take = void (*)(ParentCode *header, CodeNode *node);

    /// Begins a pass, and ends it.
    Adoption();
    ~Adoption();

    /// Called by a new header for the nodes behind it, up to the next header.
    static void begin(ParentCode *header, Take take);
    /// Called when a pass comes to a line: gives the header its nodes in front of \a end, which is
    /// null for the end of the chain.
    static void reach(const CodeNode *end);
    /// Gives a header all its nodes now, before it goes or gets those of another one.
    static void finish(const ParentCode *header);
    /// Called for each node that leaves the chain for good; its own links still lead to others.
    static void nodeGoes(const CodeNode *node);

private:
    Q_DISABLE_COPY(Adoption)

    void takeUpTo(const CodeNode *end);

    ParentCode *m_header = nullptr; ///< null if there is none that waits
    Take m_take = nullptr;
    CodeNode *m_next = nullptr; ///< the first node that has not come to it
    Adoption *const m_outer;
};

} // namespace Vela

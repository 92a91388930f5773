// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

class QString;
class QTextBlock;

namespace Vela {

class CodeNode;
class CodeParserSyntax;
class RootCode;

/// The grammar of an engine's texts: it turns one line into a node of the tree.
class VELA_EXPORT CodeParser
{
public:
    /// Parses one line and returns the node that stands for it, or null for a line without one.
    ///
    /// \a oldNode is the node that the line had, or null. It may be given back, brought up to date
    /// with CodeNode::valueChanged(). During the call it is out of the chain, and its own
    /// neighbours are stale. The parser never releases it. A new node is made behind \a previous,
    /// which is never null; its constructor links it in, and one that belongs to the root calls
    /// insertRootChild().
    ///
    /// Tokens, messages, parentheses and links of this line go to \a syntax. Where that is null
    /// nothing is reported, and only the tree is kept up.
    virtual CodeNode *parseLine(const QString &line, const QTextBlock &block, CodeNode *oldNode,
                                CodeNode *previous, RootCode *root, CodeParserSyntax *syntax) = 0;
    virtual ~CodeParser();
};

} // namespace Vela

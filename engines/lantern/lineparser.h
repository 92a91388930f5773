// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/parsercontext.h"

#include "code/codeparser.h"

namespace Lantern {

/// The grammar of definition texts, which docs/lantern.md tells: one line becomes one node. What it
/// reports is of the line alone; what needs the whole text is its document's.
class LineParser : public Vela::CodeParser
{
public:
    /// \a context must outlive the parser.
    explicit LineParser(ParserContext &context);
    ~LineParser() override;

    Vela::CodeNode *parseLine(const QString &line, const QTextBlock &block, Vela::CodeNode *oldNode,
                              Vela::CodeNode *previous, Vela::RootCode *root,
                              Vela::CodeParserSyntax *syntax) override;

private:
    ParserContext &m_context;
};

} // namespace Lantern

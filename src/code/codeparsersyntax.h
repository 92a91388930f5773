// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

class QChar;
class QString;

namespace Vela {

class CodeLink;

/// Takes what a parser finds in a line. Places are columns of the line, the end excluded; a span
/// that begins outside the line, or is empty, changes no format.
class VELA_EXPORT CodeParserSyntax
{
public:
    /// The kinds of tokens, from 0 to 9; each has a format of its own.
    using TokenType = int;
    static constexpr TokenType CommentToken = 1;
    static constexpr int TokenTypeCount = 10;

    /// Gives a span the format of its kind. Any but a comment marks the line as parsed.
    virtual void setToken(TokenType type, int start, int end) = 0;
    /// These three underline the span in red, orange or yellow, and add a message.
    virtual void addError(TokenType type, const QString &message, int start, int end) = 0;
    virtual void addDeprecation(TokenType type, const QString &message, int start, int end) = 0;
    virtual void addWarning(TokenType type, const QString &message, int start, int end) = 0;
    virtual void addParenthesis(bool opening, QChar character, int position) = 0;
    /// The line owns the link from then on.
    virtual void addLink(CodeLink *link) = 0;
    virtual ~CodeParserSyntax();
};

} // namespace Vela

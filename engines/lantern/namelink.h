// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/parsercontext.h"

#include "code/codelink.h"

namespace Lantern {

/// A path or a name in a text: a click opens what it names.
class NameLink : public Vela::CodeLink
{
public:
    using Open = void (ParserContext::*)(const QString &name);

    NameLink(int start, int end, const QString &name, ParserContext &context, Open open);

    void activate() override;

private:
    const QString m_name;
    ParserContext &m_context;
    const Open m_open;
};

} // namespace Lantern

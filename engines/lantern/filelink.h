// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/parsercontext.h"

#include "code/codelink.h"

namespace Lantern {

/// A path in a text: a click opens its file.
class FileLink : public Vela::CodeLink
{
public:
    FileLink(int start, int end, const QString &path, ParserContext &context);

    void activate() override;

private:
    const QString m_path;
    ParserContext &m_context;
};

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "code/codeparser.h"

#include "code/codelink.h"
#include "code/codemark.h"
#include "code/codeparsersyntax.h"

namespace Vela {

CodeParser::~CodeParser() = default;

CodeParserSyntax::~CodeParserSyntax() = default;

CodeMark::~CodeMark() = default;

CodeLink::CodeLink(int start, int end)
    : m_start(start)
    , m_end(end)
{
}

CodeLink::~CodeLink() = default;

} // namespace Vela

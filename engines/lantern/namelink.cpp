// SPDX-License-Identifier: MIT
#include "lantern/namelink.h"

namespace Lantern {

NameLink::NameLink(int start, int end, const QString &name, ParserContext &context, Open open)
    : CodeLink(start, end)
    , m_name(name)
    , m_context(context)
    , m_open(open)
{
}

void NameLink::activate()
{
    (m_context.*m_open)(m_name);
}

} // namespace Lantern

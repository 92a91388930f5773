// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

namespace Vela {

/// A place in a line that leads somewhere when it is clicked. An extension says where to. It
/// belongs to its line once it was handed to CodeParserSyntax::addLink().
class VELA_EXPORT CodeLink
{
public:
    /// \a start and \a end are columns of the line, the end excluded.
    CodeLink(int start, int end);
    virtual ~CodeLink();

    /// Goes where the link leads.
    virtual void activate() = 0;

    int start() const
    {
        return m_start;
    }
    int end() const
    {
        return m_end;
    }

private:
    int m_start;
    int m_end;
};

} // namespace Vela

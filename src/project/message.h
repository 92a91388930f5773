// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Vela {

/// One message about a file.
struct Message
{
    enum Type {
        Error = 0,
        Warning = 1,
        Information = 2,
        Any = 3 ///< a filter, not the type of a message
    };

    Type type = Any;
    unsigned int line = 0;   ///< from 0
    unsigned int column = 0; ///< from 0
    QString text;
};

} // namespace Vela

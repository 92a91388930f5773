// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

namespace Vela {

/// The base of everything that is given back with release() instead of delete. It holds no data
/// and no count: each class that derives from it brings its own count, or none, and its own
/// meaning of release().
class VELA_EXPORT Object
{
public:
    /// Gives up one claim on the object. Whether that destroys it is the derived class's business.
    virtual void release() = 0;
    virtual ~Object();

protected:
    Object() = default;
    Object(const Object &) = default;
    Object &operator=(const Object &) = default;
};

} // namespace Vela

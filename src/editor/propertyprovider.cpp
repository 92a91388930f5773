// SPDX-License-Identifier: MIT
#include "editor/propertyprovider.h"

#include "editor/propertyedit_p.h"

namespace Vela {

PropertyProvider::~PropertyProvider()
{
    PropertyEditPrivate::forget(this);
}

} // namespace Vela

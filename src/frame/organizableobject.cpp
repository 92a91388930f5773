// SPDX-License-Identifier: MIT
#include "frame/organizableobject.h"

namespace Vela {

OrganizableObject::OrganizableObject(QObject *parent)
    : QObject(parent)
{
}

OrganizableObject::~OrganizableObject() = default;

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "engine/engineextension.h"

namespace Vela {

Extension::Type EngineExtension::type() const
{
    return EngineProvider;
}

QList<Editor *> EngineExtension::createEditors(const QList<Workspace *> &)
{
    return {};
}

} // namespace Vela

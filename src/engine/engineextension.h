// SPDX-License-Identifier: MIT
#pragma once

#include "engine/extension.h"

#include <QList>

namespace Vela {

class Editor;
class Engine;
class Workspace;

/// The extension of type EngineProvider: what makes an engine known to the host.
class VELA_EXPORT EngineExtension : public Extension
{
public:
    Type type() const override;

    /// Returns the engine. It belongs to the extension and lives as long.
    virtual Engine *engine() = 0;

    /// Makes the editors of the engine's files. A host with a window calls it once, with its
    /// workspaces; an extension finds those that it knows by their names, such as "code". The
    /// caller owns the editors and releases them in front of the workspaces. The default makes
    /// none.
    virtual QList<Editor *> createEditors(const QList<Workspace *> &workspaces);
};

} // namespace Vela

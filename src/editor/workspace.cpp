// SPDX-License-Identifier: MIT
#include "editor/workspace.h"

namespace Vela {

Workspace::Workspace(QObject *parent)
    : QObject(parent)
{
}

Workspace::~Workspace() = default;

void Workspace::engineSwitched(bool)
{
}

void Workspace::activate()
{
    setActive(true);
}

void Workspace::deactivate()
{
    setActive(false);
}

void Workspace::release()
{
    delete this;
}

void Workspace::statusClicked()
{
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "editor/editor.h"

#include "frame/interface.h"

namespace Vela {

Editor::Editor(QObject *parent)
    : QObject(parent)
    , m_interface(Interface::instance())
{
}

Editor::~Editor() = default;

void Editor::activate()
{
    setActive(true);
}

void Editor::deactivate()
{
    setActive(false);
}

void Editor::reconfig()
{
}

void Editor::engineSwitched(bool)
{
}

void Editor::projectSwitched(Project *)
{
}

void Editor::release()
{
    delete this;
}

void Editor::switchToThis()
{
    if (!m_active && m_interface)
        m_interface->switchEditor(this);
}

void Editor::setVisible(bool isVisible)
{
    Q_EMIT visible(isVisible);
}

void Editor::setWritable(bool isWritable)
{
    Q_EMIT writable(isWritable);
}

} // namespace Vela

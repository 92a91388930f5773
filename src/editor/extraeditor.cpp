// SPDX-License-Identifier: MIT
#include "editor/extraeditor.h"

#include "frame/interface.h"

namespace Vela {

ExtraEditor::ExtraEditor(QObject *parent)
    : QObject(parent)
    , m_interface(Interface::instance())
{
}

ExtraEditor::~ExtraEditor() = default;

bool ExtraEditor::isModified() const
{
    return false;
}

void ExtraEditor::reconfig()
{
}

void ExtraEditor::engineSwitched(bool)
{
}

void ExtraEditor::activate()
{
    setActive(true);
}

void ExtraEditor::deactivate()
{
    setActive(false);
}

void ExtraEditor::projectSwitched(Project *)
{
}

void ExtraEditor::retranslate()
{
}

void ExtraEditor::release()
{
    delete this;
}

void ExtraEditor::contentsChanged()
{
    Q_EMIT modified();
}

} // namespace Vela

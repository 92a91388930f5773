// SPDX-License-Identifier: MIT
#include "lantern/texteditor.h"

#include "lantern/editortexts.h"
#include "lantern/nodepanel.h"

#include "editor/codeworkspace.h"
#include "frame/ftranslator.h"
#include "frame/interface.h"
#include "project/project.h"

#include <QAction>

namespace Lantern {

namespace {

/// What tells the editors from each other.
struct Kind
{
    const char *name;
    const char *action;
    Vela::Translator *translator;
    int textId;
};

Kind kindOf(int fileType)
{
    switch (fileType) {
    case Vela::Project::Animations:
        return {"animations", "editor_anim", Vela::FTranslator::instance(), 128};
    case Vela::Project::Scripts:
        return {"scripts", "editor_script", EditorTexts::instance(), EditorTexts::Scripts};
    default:
        return {"main", "editor_code", EditorTexts::instance(), EditorTexts::MainFiles};
    }
}

} // namespace

TextEditor::TextEditor(Vela::CodeWorkspace *workspace, int fileType,
                       const std::shared_ptr<NodePanel> &panel)
    : CodeFileEditor(workspace, kindOf(fileType).name)
    , m_panel(panel)
    , m_fileType(fileType)
{
    const Kind kind = kindOf(fileType);
    m_action = interfaceObject()->editorAction(kind.action, kind.translator, kind.textId);
}

TextEditor::~TextEditor()
{
    // The panel may end with this editor.
    Vela::Interface *const host = Vela::Interface::instance();
    if (isActive() && host)
        host->showExtraEditor(nullptr, 0);
}

QAction *TextEditor::action() const
{
    return m_action;
}

int TextEditor::canEditFileType() const
{
    return m_fileType;
}

void TextEditor::activate()
{
    CodeFileEditor::activate();
    m_panel->follow(workspace()->editor());
    interfaceObject()->showExtraEditor(m_panel.get(), 0);
}

void TextEditor::deactivate()
{
    CodeFileEditor::deactivate();
    m_panel->follow(nullptr);
    interfaceObject()->showExtraEditor(nullptr, 0);
}

void TextEditor::retranslate()
{
    CodeFileEditor::retranslate();
    m_panel->retranslate();
}

void TextEditor::setCurrentFile(Vela::ProjectFile *file)
{
    CodeFileEditor::setCurrentFile(file);
    if (isActive())
        m_panel->follow(workspace()->editor());
}

} // namespace Lantern

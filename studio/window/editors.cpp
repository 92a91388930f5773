// SPDX-License-Identifier: MIT
#include "studio/window/editors.h"

#include "editor/codefileeditor.h"
#include "editor/codeworkspace.h"
#include "engine/engineextension.h"
#include "engine/extensionmanager.h"
#include "project/project.h"
#include "studio/host.h"
#include "studio/toolbararea.h"

#include <QAction>
#include <QApplication>
#include <algorithm>

namespace Studio {

Editors::Editors(Host &host, QObject *parent)
    : QObject(parent)
    , m_host(host)
{
    m_reconfigureLater.setSingleShot(true);
    m_reconfigureLater.setInterval(0);
    connect(&m_reconfigureLater, &QTimer::timeout, this, &Editors::reconfigure);
    connectHost();
    m_host.setCurrentToolBarArea(QStringLiteral("code"));
    m_code = new Vela::CodeWorkspace(m_host);
    m_host.toolBarArea(QStringLiteral("code"))->hide();
    addEditors();
    reconfigure();
    onProjectChanged();
    qApp->installEventFilter(this);
}

Editors::~Editors()
{
    leave();
    m_host.disconnect(this);
    m_host.settings().disconnect(this);
    for (Vela::Editor *editor : qAsConst(m_editors)) {
        m_host.unregisterEditor(editor);
        editor->release();
    }
    m_code->release();
}

void Editors::addEditors()
{
    const auto &extensions = Vela::ExtensionManager::list(Vela::Extension::EngineProvider);
    for (Vela::Extension *extension : extensions) {
        if (auto *engine = dynamic_cast<Vela::EngineExtension *>(extension))
            m_editors += engine->createEditors({m_code});
    }
    for (Vela::Editor *editor : qAsConst(m_editors)) {
        m_host.registerEditor(editor->name(), editor);
        auto *fileEditor = dynamic_cast<Vela::FileEditor *>(editor);
        if (fileEditor)
            m_host.registerFileSaver(fileEditor->canEditFileType(), fileEditor);
        connect(editor->action(), &QAction::triggered, editor, [this, editor, fileEditor] {
            if (fileEditor)
                Q_EMIT fileWanted(fileEditor->canEditFileType());
            else
                editor->switchToThis();
            // There may be no such file.
            checkActions();
        });
    }
}

void Editors::connectHost()
{
    connect(&m_host, &Host::editorSwitched, this, &Editors::onEditorSwitched);
    connect(&m_host, &Host::workspaceChanged, this, &Editors::onWorkspaceChanged);
    connect(&m_host, &Host::currentProjectChanged, this, &Editors::onProjectChanged);
    connect(&m_host, &Host::retranslated, this, [this] {
        m_code->retranslate();
        for (Vela::Editor *editor : qAsConst(m_editors))
            editor->retranslate();
    });
    connect(&m_host.settings(), &Settings::changed, this, &Editors::onSettingChanged);
}

Vela::CodeWorkspace &Editors::code() const
{
    return *m_code;
}

const QList<Vela::Editor *> &Editors::all() const
{
    return m_editors;
}

Vela::CodeFileEditor *Editors::editorOf(Vela::ProjectFile &file) const
{
    const Vela::Project *project = file.project();
    for (Vela::Editor *editor : m_editors) {
        auto *code = dynamic_cast<Vela::CodeFileEditor *>(editor);
        if (code && project && project->filesByType(code->canEditFileType()).contains(&file))
            return code;
    }
    return nullptr;
}

void Editors::show(Vela::FileEditor &editor, Vela::ProjectFile &file)
{
    if (m_host.currentEditor() != &editor)
        leave();
    // An editor tells where it is in a file only while it is current.
    m_host.switchEditor(&editor);
    editor.setCurrentFile(&file);
}

void Editors::leave()
{
    if (auto *editor = dynamic_cast<Vela::FileEditor *>(m_host.currentEditor()))
        editor->setCurrentFile(nullptr);
    m_host.switchEditor(nullptr);
    m_host.setWorkspace(nullptr);
}

void Editors::onEditorSwitched(Vela::Editor *editor, Vela::Editor *previous)
{
    if (previous)
        previous->deactivate();
    if (editor)
        editor->activate();
    checkActions();
}

void Editors::checkActions()
{
    for (const Vela::Editor *editor : qAsConst(m_editors))
        editor->action()->setChecked(editor == m_host.currentEditor());
}

void Editors::onWorkspaceChanged(Vela::Workspace *workspace)
{
    if (m_shown)
        m_shown->deactivate();
    m_shown = workspace;
    if (m_shown)
        m_shown->activate();
    m_host.toolBarArea(QStringLiteral("code"))->setVisible(workspace == m_code);
    Q_EMIT workspaceShown(workspace ? workspace->widget() : nullptr);
}

void Editors::onProjectChanged()
{
    Vela::Engine *engine = m_host.currentParentProject() ? m_host.engine() : nullptr;
    if (engine != m_engine) {
        m_engine = engine;
        m_code->engineSwitched(engine);
        for (Vela::Editor *editor : qAsConst(m_editors))
            editor->engineSwitched(engine);
    }
    for (Vela::Editor *editor : qAsConst(m_editors))
        editor->projectSwitched(m_host.currentProject());
}

// The colours of a light and of a dark palette are others.
bool Editors::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        m_reconfigureLater.start();
    return QObject::eventFilter(watched, event);
}

void Editors::onSettingChanged(const QString &key)
{
    static const char *const groups[] = {"code_", "color/", "font_", "format/"};
    if (std::any_of(std::begin(groups), std::end(groups),
                    [&key](const char *group) { return key.startsWith(QLatin1String(group)); }))
        m_reconfigureLater.start();
    else if (key == QLatin1String("show_code_bar"))
        m_host.action("view_code_bar")->setChecked(m_host.option(key, true).toBool());
}

void Editors::reconfigure()
{
    m_code->reconfig();
    for (Vela::Editor *editor : qAsConst(m_editors))
        editor->reconfig();
}

} // namespace Studio

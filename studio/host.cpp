// SPDX-License-Identifier: MIT
#include "studio/host.h"

#include "engine/engine.h"
#include "frame/controldescriptor.h"
#include "frame/menu.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "studio/icons.h"
#include "studio/libraryactions.h"
#include "studio/progress.h"
#include "studio/toolbararea.h"
#include "version.h"

#include <QColor>
#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QLocale>
#include <QScreen>
#include <QTextCharFormat>
#include <QWidget>

namespace Studio {

namespace {

constexpr qreal standardDpi = 96;

// The DPI of the screen that the window stands on; without a window the first screen's.
qreal dpi(const QWidget *window)
{
    if (window)
        return window->window()->logicalDpiX();
    const bool hasScreen = qobject_cast<QGuiApplication *>(QCoreApplication::instance())
        && QGuiApplication::primaryScreen();
    return hasScreen ? QGuiApplication::primaryScreen()->logicalDotsPerInchX() : standardDpi;
}

} // namespace

Host::Host(const Folders &folders)
    : m_folders(folders)
    , m_settings(folders.settingsFile())
    , m_colors(m_settings)
    , m_actions(m_settings)
    , m_progress(std::make_unique<DialogProgress>([this] { return mainWindow(); }))
{
    setGlobalInterface(this);
    QCoreApplication::instance()->installEventFilter(this);
}

Host::~Host()
{
    for (const QPointer<ToolBarArea> &area : qAsConst(m_areas)) {
        if (area && !area->parent())
            delete area;
    }
    if (Interface::instance() == this)
        setGlobalInterface(nullptr);
}

const Folders &Host::folders() const
{
    return m_folders;
}

Settings &Host::settings()
{
    return m_settings;
}

Colors &Host::colors()
{
    return m_colors;
}

ActionRegistry &Host::actions()
{
    return m_actions;
}

ControlFactory &Host::controls()
{
    return m_controls;
}

void Host::setMainWindow(QWidget *window)
{
    m_mainWindow = window;
}

void Host::setProgressProvider(std::unique_ptr<Vela::ProgressProvider> provider)
{
    m_progress = std::move(provider);
}

void Host::addParentProject(Vela::ParentProject *project)
{
    if (!project || m_parentProjects.contains(project))
        return;
    m_parentProjects.append(project);
    connect(project, &QObject::destroyed, this, &Host::forget);
    if (!m_currentParent)
        setCurrentParentProject(project);
}

void Host::removeParentProject(Vela::ParentProject *project)
{
    if (!m_parentProjects.contains(project))
        return;
    disconnect(project, &QObject::destroyed, this, &Host::forget);
    forget(project);
}

void Host::forget(QObject *project)
{
    // Compared as addresses: what is being destroyed is no parent project any more.
    for (int i = 0; i < m_parentProjects.size(); ++i) {
        Vela::ParentProject *gone = m_parentProjects.at(i);
        if (static_cast<QObject *>(gone) != project)
            continue;
        m_parentProjects.removeAt(i);
        if (gone == m_currentParent)
            setCurrent(m_parentProjects.value(0), nullptr);
        return;
    }
}

const QList<Vela::ParentProject *> &Host::parentProjects() const
{
    return m_parentProjects;
}

void Host::setCurrentParentProject(Vela::ParentProject *project)
{
    if (project != m_currentParent)
        setCurrent(project, nullptr);
}

void Host::setCurrentProject(Vela::Project *project)
{
    setCurrent(project ? project->parent() : m_currentParent, project);
}

void Host::setCurrent(Vela::ParentProject *parent, Vela::Project *project)
{
    if (parent && !project)
        project = parent->openedProjects().value(0);
    if (parent == m_currentParent && project == m_currentProject)
        return;
    m_currentParent = parent;
    m_currentProject = project;
    Q_EMIT currentProjectChanged();
}

void Host::setEngine(Vela::Engine *engine)
{
    m_engine = engine;
}

void Host::registerEditor(const QByteArray &name, Vela::Editor *editor)
{
    m_editors.insert(name, editor);
}

void Host::unregisterEditor(Vela::Editor *editor)
{
    m_editors.remove(m_editors.key(editor));
    if (m_currentEditor == editor)
        m_currentEditor = nullptr;
}

void Host::registerFileSaver(int type, Vela::FileSaver *saver)
{
    if (saver)
        m_fileSavers.insert(type, saver);
    else
        m_fileSavers.remove(type);
}

void Host::setOrganizer(Vela::OrganizerEditor *organizer)
{
    m_organizer = organizer;
}

ToolBarArea *Host::toolBarArea(const QString &name)
{
    QPointer<ToolBarArea> &area = m_areas[name];
    if (!area) {
        area = new ToolBarArea(name);
        Q_EMIT toolBarAreaAdded(area);
    }
    return area;
}

void Host::setCurrentToolBarArea(const QString &name)
{
    m_currentArea = name;
}

QString Host::translate(int id) const
{
    switch (id) {
    case BrokenFileTitle:
        return tr("Broken file");
    case BrokenFile:
        return tr("The file cannot be read as XML: %1 (line %2, column %3).");
    default:
        return QString();
    }
}

QWidget *Host::mainWindow() const
{
    return m_mainWindow;
}

QString Host::userFolder() const
{
    return m_folders.userFolder();
}

QString Host::libraryFolder() const
{
    return m_folders.libraryFolder();
}

QString Host::dataFolder() const
{
    return m_folders.dataFolder();
}

Vela::FileSaver *Host::editorForFile(Vela::ProjectFile *, int type)
{
    return m_fileSavers.value(type, m_fileSavers.value(-1));
}

unsigned int Host::parentProjectCount() const
{
    return unsigned(m_parentProjects.size());
}

Vela::ParentProject *Host::parentProject(unsigned int index) const
{
    return index < parentProjectCount() ? m_parentProjects.at(int(index)) : nullptr;
}

int Host::scaleToDPI(int length) const
{
    return qRound(length * dpi(m_mainWindow) / standardDpi);
}

QIcon Host::icon(const QString &name) const
{
    return namedIcon(name);
}

QVariant Host::option(const QString &key, const QVariant &defaultValue) const
{
    return m_settings.value(key, defaultValue);
}

void Host::setOption(const QString &key, const QVariant &value)
{
    m_settings.setValue(key, value);
}

void Host::refreshProjects()
{
    Q_EMIT projectsRefreshed();
}

Vela::ProgressProvider *Host::progress() const
{
    return m_progress.get();
}

Vela::Engine *Host::engine() const
{
    return m_currentParent ? m_currentParent->engine() : m_engine;
}

Vela::Editor *Host::currentEditor() const
{
    return m_currentEditor;
}

Vela::Editor *Host::editor(const char *name) const
{
    return m_editors.value(QByteArray(name));
}

Vela::Project *Host::currentProject() const
{
    return m_currentProject;
}

QColor Host::colorOption(const QString &key) const
{
    return m_colors.color(key);
}

QTextCharFormat Host::formatOption(const QString &key) const
{
    return m_colors.format(key);
}

void Host::status(int area, const QString &text)
{
    Q_EMIT statusChanged(area, text);
}

QWidget *Host::createControl(const QString &key, const Vela::ControlDescriptor *descriptor)
{
    QWidget *widget = m_controls.create(key, descriptor);
    if (widget && descriptor->kind != Vela::ControlDescriptor::ListView)
        toolBarArea(m_currentArea)->addControl(widget);
    return widget;
}

void Host::addWidget(const QString &key, QWidget *widget)
{
    if (!widget)
        return;
    m_controls.add(key, widget);
    toolBarArea(m_currentArea)->addControl(widget);
}

QWidget *Host::controlWidget(const QString &key) const
{
    return m_controls.widget(key);
}

Vela::Menu *Host::menu(const char *key)
{
    return m_actions.menu(QString::fromUtf8(key));
}

QAction *Host::createAction(const char *scope, const char *key, Vela::Translator *translator,
                            int textId, bool checkable, QObject *receiver, const char *slot,
                            const char *enableSignal, Vela::Menu *menu)
{
    ActionSpec spec;
    spec.key = QString::fromUtf8(key);
    spec.scope = QString::fromUtf8(scope);
    const LibraryAction known = LibraryAction::of(spec.key);
    spec.place = QLatin1String(known.place);
    spec.shortcut = known.shortcut;
    return m_actions.create(spec, {translator, textId, checkable, receiver, slot, enableSignal},
                            menu);
}

QAction *Host::action(const char *key) const
{
    return m_actions.action(QString::fromUtf8(key));
}

QAction *Host::editorAction(const char *key, Vela::Translator *translator, int textId)
{
    return m_actions.createEditorAction(QString::fromUtf8(key), translator, textId);
}

Vela::OrganizerEditor *Host::organizer(int index) const
{
    return index == 0 ? m_organizer : nullptr;
}

void Host::switchEditor(Vela::Editor *editor)
{
    if (editor == m_currentEditor)
        return;
    Vela::Editor *previous = m_currentEditor;
    m_currentEditor = editor;
    Q_EMIT editorSwitched(editor, previous);
}

void Host::showExtraEditor(Vela::ExtraEditor *editor, int side)
{
    Q_EMIT extraEditorRequested(editor, side);
}

void Host::setWorkspace(Vela::Workspace *workspace)
{
    if (workspace == m_workspace)
        return;
    m_workspace = workspace;
    Q_EMIT workspaceChanged(workspace);
}

QString Host::hostName() const
{
    return QStringLiteral("Vela Studio");
}

QString Host::hostVersion() const
{
    return QStringLiteral(VELA_VERSION_STRING);
}

QString Host::language() const
{
    return QLocale::system().bcp47Name();
}

Vela::ParentProject *Host::currentParentProject() const
{
    return m_currentParent;
}

Vela::Workspace *Host::currentWorkspace() const
{
    return m_workspace;
}

void Host::openFile(Vela::ProjectFile *file, unsigned int line, unsigned int column)
{
    Q_EMIT fileRequested(file, line, column);
}

void Host::log(const QString &text)
{
    Q_EMIT logged(text);
}

bool Host::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::LanguageChange && watched == QCoreApplication::instance()) {
        m_actions.retranslate();
        m_controls.retranslate();
        Q_EMIT retranslated();
    }
    return false;
}

} // namespace Studio

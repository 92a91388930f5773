// SPDX-License-Identifier: MIT
#include "support/recordinghost.h"

#include "editor/editor.h"
#include "editor/workspace.h"
#include "frame/controldescriptor.h"
#include "frame/menu.h"

#include <QAction>
#include <QDir>
#include <QToolButton>

namespace {

class RecordingJob : public Vela::ProgressJob
{
public:
    RecordingJob(std::shared_ptr<JobRecord> record, int cancelAfter)
        : m_record(std::move(record))
        , m_cancelAfter(cancelAfter)
    {
    }

    ~RecordingJob() override
    {
        m_record->ended = true;
    }

    bool wasCancelled() const override
    {
        return m_record->asked++ >= m_cancelAfter && m_cancelAfter >= 0;
    }

    void setMaximum(unsigned int maximum) override
    {
        m_record->maximum = maximum;
    }

    void setValue(unsigned int value) override
    {
        m_record->value = value;
    }

    void incrementValue() override
    {
        ++m_record->value;
    }

    void error(const QString &text) override
    {
        m_record->errors.append(text);
    }

    void setLengthy(int lengthy) override
    {
        m_record->lengthy = lengthy;
    }

private:
    std::shared_ptr<JobRecord> m_record;
    int m_cancelAfter;
};

} // namespace

Vela::ProgressJob *RecordingProgress::createJob(const QString &text, int flags)
{
    if (refuseJobs)
        return nullptr;
    auto record = std::make_shared<JobRecord>();
    record->text = text;
    record->flags = flags;
    jobs.push_back(record);
    return new RecordingJob(record, cancelAfter);
}

RecordingHost::RecordingHost()
{
    setGlobalInterface(this);
}

RecordingHost::~RecordingHost()
{
    setGlobalInterface(nullptr);
}

QString RecordingHost::translate(int id) const
{
    return texts.value(id, QStringLiteral("text%1").arg(id));
}

QWidget *RecordingHost::mainWindow() const
{
    return window;
}

QString RecordingHost::folder(const char *name) const
{
    QDir root(m_folders.path());
    root.mkpath(QLatin1String(name));
    return root.filePath(QLatin1String(name));
}

QString RecordingHost::userFolder() const
{
    return folder("user");
}

QString RecordingHost::libraryFolder() const
{
    return folder("library");
}

QString RecordingHost::dataFolder() const
{
    return folder("data");
}

Vela::FileSaver *RecordingHost::editorForFile(Vela::ProjectFile *file, int type)
{
    editorForFileCalls.append({file, type});
    return saver;
}

unsigned int RecordingHost::parentProjectCount() const
{
    return unsigned(parentProjects.size());
}

Vela::ParentProject *RecordingHost::parentProject(unsigned int index) const
{
    return parentProjects.value(int(index));
}

int RecordingHost::scaleToDPI(int length) const
{
    return length * dpiFactor;
}

QIcon RecordingHost::icon(const QString &name) const
{
    iconsAsked.append(name);
    return icons.value(name);
}

QVariant RecordingHost::option(const QString &key, const QVariant &defaultValue) const
{
    return options.value(key, defaultValue);
}

void RecordingHost::setOption(const QString &key, const QVariant &value)
{
    optionsSet.append(key);
    options.insert(key, value);
}

void RecordingHost::refreshProjects()
{
    ++refreshProjectsCount;
}

Vela::ProgressProvider *RecordingHost::progress() const
{
    return &progressProvider;
}

Vela::Engine *RecordingHost::engine() const
{
    return activeEngine;
}

Vela::Editor *RecordingHost::currentEditor() const
{
    return activeEditor;
}

Vela::Editor *RecordingHost::editor(const char *name) const
{
    return editors.value(QString::fromUtf8(name));
}

Vela::Project *RecordingHost::currentProject() const
{
    return project;
}

QColor RecordingHost::colorOption(const QString &key) const
{
    return colors.value(key);
}

QTextCharFormat RecordingHost::formatOption(const QString &key) const
{
    return formats.value(key);
}

void RecordingHost::status(int area, const QString &text)
{
    statusTexts.insert(area, text);
}

QWidget *RecordingHost::createControl(const QString &key, const Vela::ControlDescriptor *descriptor)
{
    controls.append({key, descriptor->kind, descriptor->size});
    QWidget *control = nullptr;
    if (descriptor->kind == Vela::ControlDescriptor::ActionButton) {
        auto *button = new QToolButton;
        button->setDefaultAction(static_cast<const Vela::ActionControl *>(descriptor)->action);
        control = button;
    } else {
        control = new QWidget;
    }
    addWidget(key, control);
    return control;
}

void RecordingHost::addWidget(const QString &key, QWidget *widget)
{
    if (!m_widgets)
        m_widgets = std::make_unique<QWidget>();
    widget->setParent(m_widgets.get());
    m_controls.insert(key, widget);
}

QWidget *RecordingHost::controlWidget(const QString &key) const
{
    return m_controls.value(key);
}

Vela::Menu *RecordingHost::menu(const char *key)
{
    if (!m_widgets)
        m_widgets = std::make_unique<QWidget>();
    Vela::Menu *&menu = m_menus[QString::fromUtf8(key)];
    if (!menu)
        menu = new Vela::Menu(m_widgets.get());
    return menu;
}

QAction *RecordingHost::createAction(const char *, const char *key, Vela::Translator *translator,
                                     int textId, bool checkable, QObject *receiver,
                                     const char *slot, const char *enableSignal, Vela::Menu *menu)
{
    QAction *action = editorAction(key, translator, textId);
    action->setCheckable(checkable);
    if (slot)
        QObject::connect(action, checkable ? SIGNAL(toggled(bool)) : SIGNAL(triggered()), receiver,
                         slot);
    if (enableSignal)
        QObject::connect(receiver, enableSignal, action, SLOT(setEnabled(bool)));
    if (menu)
        menu->addAction(action);
    return action;
}

QAction *RecordingHost::action(const char *key) const
{
    return m_actions.value(QString::fromUtf8(key));
}

QAction *RecordingHost::editorAction(const char *key, Vela::Translator *translator, int textId)
{
    auto *action = new QAction(translator->translate(textId), &m_actionOwner);
    action->setToolTip(translator->toolTip(textId));
    m_actions.insert(QString::fromUtf8(key), action);
    return action;
}

Vela::OrganizerEditor *RecordingHost::organizer(int) const
{
    return organizerPanel;
}

void RecordingHost::switchEditor(Vela::Editor *editor)
{
    editorsSwitched.append(editor);
    if (activeEditor)
        activeEditor->deactivate();
    activeEditor = editor;
    if (editor)
        editor->activate();
}

void RecordingHost::showExtraEditor(Vela::ExtraEditor *editor, int)
{
    extraEditor = editor;
}

void RecordingHost::setWorkspace(Vela::Workspace *newWorkspace)
{
    if (workspace == newWorkspace)
        return;
    if (workspace)
        workspace->deactivate();
    workspace = newWorkspace;
    if (workspace)
        workspace->activate();
}

QString RecordingHost::hostName() const
{
    return QStringLiteral("Recording host");
}

QString RecordingHost::hostVersion() const
{
    return QStringLiteral("1.0");
}

QString RecordingHost::language() const
{
    return QStringLiteral("en");
}

Vela::ParentProject *RecordingHost::currentParentProject() const
{
    return activeParentProject;
}

Vela::Workspace *RecordingHost::currentWorkspace() const
{
    return workspace;
}

void RecordingHost::openFile(Vela::ProjectFile *file, unsigned int line, unsigned int column)
{
    openFileCalls.append({file, line, column});
}

void RecordingHost::log(const QString &text)
{
    logged.append(text);
}

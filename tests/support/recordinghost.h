// SPDX-License-Identifier: MIT
#pragma once

#include "frame/interface.h"
#include "frame/jobstats.h"

#include <QColor>
#include <QMap>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextCharFormat>
#include <QVector>
#include <memory>
#include <vector>

/// What a job of RecordingProgress was told. It outlives the job.
struct JobRecord
{
    QString text;
    int flags = 0;
    int lengthy = -1; ///< -1 while setLengthy() was not called
    unsigned int maximum = 0;
    unsigned int value = 0;
    QStringList errors;
    int asked = 0; ///< calls of wasCancelled()
    bool ended = false;
};

/// Makes jobs that write down what they are told.
class RecordingProgress : public Vela::ProgressProvider
{
public:
    Vela::ProgressJob *createJob(const QString &text, int flags) override;

    std::vector<std::shared_ptr<JobRecord>> jobs;
    /// Each job answers wasCancelled() so many times with false, then with true; negative: never.
    int cancelAfter = -1;
    /// createJob() returns null.
    bool refuseJobs = false;
};

/// A host without a window that keeps settings in a map and writes down what it is asked. It is
/// the installed host from its construction to its end. The members are the script: a test sets
/// what the host shall answer and reads what it was told.
class RecordingHost : public Vela::Interface
{
public:
    struct FileRequest
    {
        Vela::ProjectFile *file;
        int type;
    };
    struct OpenRequest
    {
        Vela::ProjectFile *file;
        unsigned int line;
        unsigned int column;
    };
    struct ControlRequest
    {
        QString key;
        int kind;
        int size;
    };

    RecordingHost();
    ~RecordingHost() override;

    using Interface::scaleToDPI;

    QString translate(int id) const override;
    QWidget *mainWindow() const override;
    QString userFolder() const override;
    QString libraryFolder() const override;
    QString dataFolder() const override;
    Vela::FileSaver *editorForFile(Vela::ProjectFile *file, int type) override;
    unsigned int parentProjectCount() const override;
    Vela::ParentProject *parentProject(unsigned int index) const override;
    int scaleToDPI(int length) const override;
    QIcon icon(const QString &name) const override;
    QVariant option(const QString &key, const QVariant &defaultValue) const override;
    void setOption(const QString &key, const QVariant &value) override;
    void refreshProjects() override;

    Vela::ProgressProvider *progress() const override;
    Vela::Engine *engine() const override;
    Vela::Editor *currentEditor() const override;
    Vela::Editor *editor(const char *name) const override;
    Vela::Project *currentProject() const override;
    QColor colorOption(const QString &key) const override;
    QTextCharFormat formatOption(const QString &key) const override;
    void status(int area, const QString &text) override;
    QWidget *createControl(const QString &key, const Vela::ControlDescriptor *descriptor) override;
    void addWidget(const QString &key, QWidget *widget) override;
    QWidget *controlWidget(const QString &key) const override;
    Vela::Menu *menu(const char *key) override;
    QAction *createAction(const char *scope, const char *key, Vela::Translator *translator,
                          int textId, bool checkable, QObject *receiver, const char *slot,
                          const char *enableSignal, Vela::Menu *menu) override;
    QAction *action(const char *key) const override;
    QAction *editorAction(const char *key, Vela::Translator *translator, int textId) override;
    Vela::OrganizerEditor *organizer(int index) const override;
    void switchEditor(Vela::Editor *editor) override;
    void showExtraEditor(Vela::ExtraEditor *editor, int side) override;
    void setWorkspace(Vela::Workspace *workspace) override;

    QString hostName() const override;
    QString hostVersion() const override;
    QString language() const override;
    Vela::ParentProject *currentParentProject() const override;
    Vela::Workspace *currentWorkspace() const override;
    void openFile(Vela::ProjectFile *file, unsigned int line, unsigned int column) override;
    void log(const QString &text) override;

    // What the host answers.
    QMap<QString, QVariant> options;
    QMap<int, QString> texts; ///< other ids translate to "text" and the number
    QMap<QString, QColor> colors;
    QMap<QString, QTextCharFormat> formats;
    QMap<QString, QIcon> icons;
    int dpiFactor = 1;
    QWidget *window = nullptr;
    Vela::FileSaver *saver = nullptr;
    QVector<Vela::ParentProject *> parentProjects;
    Vela::ParentProject *activeParentProject = nullptr;
    Vela::Project *project = nullptr;
    Vela::Engine *activeEngine = nullptr;
    Vela::Editor *activeEditor = nullptr;
    QMap<QString, Vela::Editor *> editors;
    Vela::OrganizerEditor *organizerPanel = nullptr;
    mutable RecordingProgress progressProvider;

    // What the host was told.
    mutable QStringList iconsAsked;
    QStringList optionsSet; ///< keys, in order
    QMap<int, QString> statusTexts;
    QVector<FileRequest> editorForFileCalls;
    QVector<OpenRequest> openFileCalls;
    QVector<ControlRequest> controls;
    QVector<Vela::Editor *> editorsSwitched; ///< in order
    int refreshProjectsCount = 0;
    Vela::ExtraEditor *extraEditor = nullptr;
    Vela::Workspace *workspace = nullptr;
    QStringList logged;

private:
    QString folder(const char *name) const;

    QTemporaryDir m_folders;
    /// Parent of the controls and menus that no test places elsewhere.
    std::unique_ptr<QWidget> m_widgets;
    QMap<QString, QWidget *> m_controls;
    QMap<QString, Vela::Menu *> m_menus;
    QObject m_actionOwner;
    QMap<QString, QAction *> m_actions;
};

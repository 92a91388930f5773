// SPDX-License-Identifier: MIT
#include "studio/window/projectcommands.h"

#include "frame/fileutils.h"
#include "frame/jobstats.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/host.h"
#include "studio/session/engineloader.h"
#include "studio/window/backupsdialog.h"
#include "studio/window/newprojectdialog.h"
#include "studio/window/recentprojects.h"
#include "studio/window/savefailures.h"

#include <QDir>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QScopedValueRollback>

namespace Studio {

namespace {

constexpr int LinesShown = 10;
const QString projectsFolderKey = QStringLiteral("projects_folder");

using Job = std::unique_ptr<Vela::ProgressJob>;

Job newJob(const Host &host, const QString &text)
{
    return Job(host.progress()->createJob(text, 0));
}

QString shortened(const QStringList &lines)
{
    QString text = QStringList(lines.mid(0, LinesShown)).join(QLatin1Char('\n'));
    if (lines.size() > LinesShown)
        text += QLatin1Char('\n')
            + ProjectCommands::tr("and %n more", nullptr, lines.size() - LinesShown);
    return text;
}

/// Keeps the closed projects of a session open while it lives.
class ClosedProjects
{
public:
    explicit ClosedProjects(ProjectSession &session)
        : m_parent(*session.parent())
        , m_open(m_parent.openedProjects())
        , m_errors(session.openAllProjects())
    {
    }

    ~ClosedProjects()
    {
        const QList<Vela::Project *> now = m_parent.openedProjects();
        for (Vela::Project *project : now) {
            if (!m_open.contains(project))
                project->release();
        }
    }

    /// Returns why projects could not be opened.
    const QStringList &errors() const
    {
        return m_errors;
    }

private:
    Q_DISABLE_COPY(ClosedProjects)

    const Vela::ParentProject &m_parent;
    const QList<Vela::Project *> m_open;
    const QStringList m_errors;
};

} // namespace

ProjectCommands::ProjectCommands(Host &host, RecentProjects &recent, QWidget *window)
    : QObject(window)
    , m_host(host)
    , m_recent(recent)
    , m_window(window)
    , m_autosave(host.userFolder() + QStringLiteral("/recovery"))
    , m_recovery(host, *this, m_autosave, window)
{
    connect(&m_autosave, &TextAutosave::failed, this,
            [this](const QString &reason) { m_host.log(reason); });
    connect(&m_recovery, &RecoveryOffer::recovered, this, [this](const QString &path) {
        Q_EMIT contentsChanged();
        Q_EMIT done(tr("%1 is recovered.").arg(path));
    });
    // A text is through only behind the end of its job.
    connect(
        &m_saveProgress, &SaveProgress::changed, this,
        [this] {
            if (m_saving && !m_busy && !m_session->isSaving())
                endSave();
        },
        Qt::QueuedConnection);
}

ProjectCommands::~ProjectCommands()
{
    m_saving.reset();
    if (m_session)
        m_host.removeParentProject(m_session->parent());
}

ProjectSession *ProjectCommands::session() const
{
    return m_session.get();
}

bool ProjectCommands::isBusy() const
{
    return m_busy;
}

bool ProjectCommands::open(const QString &path)
{
    QString error;
    const bool isOpen = open(path, &error);
    if (!error.isEmpty())
        warn(tr("Open Project"), error);
    return isOpen;
}

bool ProjectCommands::open(const QString &path, QString *error)
{
    error->clear();
    if (m_busy || !mayLeave())
        return false;
    const QScopedValueRollback<bool> busy(m_busy, true);
    std::unique_ptr<ProjectSession> session = ProjectSession::open(path, error);
    if (!session)
        return false;
    // A large project takes its time here and in the window: what waits is painted in between.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    adopt(std::move(session));
    return true;
}

void ProjectCommands::chooseAndOpen()
{
    const QString folder = Vela::getExistingDirectory(m_window, tr("Open Project"), startFolder());
    if (!folder.isEmpty())
        open(folder);
}

void ProjectCommands::createNew()
{
    const QList<Vela::Engine *> engines = EngineLoader::engines();
    if (engines.isEmpty()) {
        warn(tr("New Project"), tr("No engine is installed that could make a project."));
        return;
    }
    if (m_busy || !mayLeave())
        return;
    NewProjectDialog dialog(engines, startFolder(), m_window);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    QString error;
    std::unique_ptr<ProjectSession> session =
        ProjectSession::create(dialog.engine(), dialog.folder(), dialog.name(), &error);
    if (session)
        adopt(std::move(session));
    else
        warn(tr("New Project"), error);
}

bool ProjectCommands::save()
{
    return beginSave() && endSave();
}

void ProjectCommands::saveInBackground()
{
    if (beginSave() && !m_session->isSaving())
        endSave();
}

const SaveProgress &ProjectCommands::saveProgress() const
{
    return m_saveProgress;
}

bool ProjectCommands::mayBegin()
{
    if (m_busy || !m_session)
        return false;
    endSave();
    return true;
}

bool ProjectCommands::beginSave()
{
    if (!mayBegin())
        return false;
    const QScopedValueRollback<bool> busy(m_busy, true);
    m_saving = std::make_unique<SaveFailures>(*m_session->parent());
    m_saveCount = m_session->modifiedFiles().size();
    m_saveProgress.takeErrors();
    m_session->beginSave(&m_saveProgress);
    return true;
}

bool ProjectCommands::endSave()
{
    if (!m_saving)
        return true;
    const QScopedValueRollback<bool> busy(m_busy, true);
    const QStringList unsaved = m_session->finishSave();
    const std::unique_ptr<SaveFailures> failures = std::move(m_saving);
    Q_EMIT contentsChanged();
    const QStringList failed = failures->lines(unsaved, m_saveProgress.takeErrors());
    if (!failed.isEmpty()) {
        warn(tr("Save"), tr("These files could not be saved, and keep their changes:"), failed);
        return false;
    }
    Q_EMIT done(m_saveCount == 0 ? tr("There is nothing to save.") : tr("Saved."));
    return true;
}

void ProjectCommands::saveAs()
{
    if (!mayBegin())
        return;
    const QString folder =
        Vela::getExistingDirectory(m_window, tr("Save Project As"), startFolder());
    if (folder.isEmpty())
        return;
    if (!QDir(folder).isEmpty()
        && !askToOverwrite(tr("Save Project As"),
                           tr("%1 is not empty. Files of the same names will be overwritten. "
                              "Save there?")
                               .arg(QDir::toNativeSeparators(folder))))
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    const Job job = newJob(m_host, tr("Saving the project..."));
    const CopyResult result = m_session->saveAs(folder, job.get());
    m_recent.add(m_session->path());
    Q_EMIT contentsChanged();
    report(tr("Save Project As"), tr("Saved to %1.").arg(QDir::toNativeSeparators(folder)), result);
}

bool ProjectCommands::close()
{
    if (m_busy || !mayLeave())
        return false;
    drop();
    return true;
}

bool ProjectCommands::mayLeave()
{
    endSave();
    const QStringList files = m_session ? m_session->modifiedFiles() : QStringList();
    if (files.isEmpty())
        return true;
    QMessageBox box(QMessageBox::Warning, tr("Unsaved Changes"),
                    tr("There are unsaved changes. Save them?"),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, m_window);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(shortened(files));
    box.setDefaultButton(QMessageBox::Save);
    switch (box.exec()) {
    case QMessageBox::Save:
        return save();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

void ProjectCommands::backup()
{
    QString label = m_session ? QFileInfo(rootPath(*m_session->parent())).fileName() : QString();
    if (!mayBegin() || !askForLabel(label))
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    const Job job = newJob(m_host, tr("Backing up..."));
    // Closed projects are part of the game as well, but only open ones are backed up.
    const ClosedProjects closed(*m_session);
    CopyResult result = m_session->backup(label, job.get());
    result.errors += closed.errors();
    Q_EMIT contentsChanged();
    report(tr("Back Up"), tr("Backup %1 is made.").arg(result.name), result);
}

bool ProjectCommands::askForLabel(QString &label)
{
    const QString ask = tr("Name of the backup:");
    QString text = ask;
    bool ok = true;
    while (ok) {
        label = QInputDialog::getText(m_window, tr("Back Up"), text, QLineEdit::Normal, label, &ok);
        if (ok && Backups::isValidLabel(label))
            return true;
        text = tr("\"%1\" cannot be a name. %2").arg(label, ask);
    }
    return false;
}

void ProjectCommands::restore()
{
    if (!mayBegin())
        return;
    const Backups backups = m_session->backups();
    BackupsDialog dialog(backups.list(), Backups::folderOf(*m_session->parent()), m_window);
    if (dialog.exec() != QDialog::Accepted || dialog.chosen().name.isEmpty())
        return;
    const Backup backup = dialog.chosen();
    QString text =
        tr("The files of the project will be overwritten by those of %1.").arg(backup.name);
    if (m_session->isModified())
        text += QLatin1Char(' ') + tr("Unsaved changes will be lost.");
    if (!askToOverwrite(tr("Restore Backup"), text + QLatin1Char(' ') + tr("Restore it?")))
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    const Job job = newJob(m_host, tr("Restoring..."));
    const CopyResult result = m_session->restore(backup, job.get());
    Q_EMIT contentsChanged();
    report(tr("Restore Backup"), tr("Backup %1 is restored.").arg(backup.name), result);
}

void ProjectCommands::reload()
{
    if (!mayBegin())
        return;
    const QStringList modified = m_session->modifiedFiles();
    if (!modified.isEmpty()
        && !askToOverwrite(tr("Reload"),
                           tr("The unsaved changes of these files will be lost:")
                               + QLatin1Char('\n') + shortened(modified) + QLatin1Char('\n')
                               + tr("Reload the project?")))
        return;
    const QScopedValueRollback<bool> busy(m_busy, true);
    {
        const Job job = newJob(m_host, tr("Reading the files again..."));
        m_session->reload(job.get());
    }
    Q_EMIT contentsChanged();
    Q_EMIT done(tr("All files are read again."));
}

void ProjectCommands::openClosedProject(const QString &path)
{
    if (!mayBegin())
        return;
    QString error;
    if (!m_session->openClosedProject(path, &error))
        warn(tr("Open Project"), error);
    Q_EMIT contentsChanged();
}

void ProjectCommands::closeProject(const QString &path)
{
    if (!mayBegin())
        return;
    const Vela::ParentProject *parent = m_session->parent();
    const auto *root = parent->projectForFile(parent->filePath(path));
    const QString rootName = root ? relativeToRoot(*parent, root->fullPath()) : QString();
    const QList<Vela::Project *> projects = parent->openedProjects();
    for (Vela::Project *project : projects) {
        if (projectFolder(*project) != rootName
            && relativeToRoot(*parent, project->fileName()) != rootName)
            continue;
        if (projects.size() == 1) {
            close();
        } else if (!project->isModified() || mayLeave()) {
            project->release();
            Q_EMIT contentsChanged();
        }
        return;
    }
}

void ProjectCommands::offerRecovery()
{
    m_recovery.begin();
}

void ProjectCommands::adopt(std::unique_ptr<ProjectSession> session)
{
    drop();
    m_session = std::move(session);
    m_autosave.setParentProject(m_session->parent());
    m_host.addParentProject(m_session->parent());
    m_recent.add(m_session->path());
    m_host.setOption(projectsFolderKey, QFileInfo(m_session->path()).absolutePath());
    // Where dialogs for single files begin.
    m_host.setOption(QStringLiteral("project_path"), rootPath(*m_session->parent()));
    Q_EMIT opened(m_session->parent());
}

void ProjectCommands::drop()
{
    if (!m_session)
        return;
    endSave();
    Q_EMIT aboutToClose();
    m_autosave.setParentProject(nullptr);
    m_host.removeParentProject(m_session->parent());
    m_session.reset();
    Q_EMIT closed();
}

void ProjectCommands::warn(const QString &title, const QString &text, const QStringList &lines)
{
    for (const QString &line : lines)
        m_host.log(title + QStringLiteral(": ") + line);
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Ok, m_window);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(shortened(lines));
    if (lines.size() > LinesShown)
        box.setDetailedText(lines.join(QLatin1Char('\n')));
    box.exec();
}

void ProjectCommands::report(const QString &title, const QString &success, const CopyResult &result)
{
    for (const QString &warning : result.warnings)
        m_host.log(title + QStringLiteral(": ") + warning);
    if (!result.errors.isEmpty()) {
        warn(title, tr("Not everything could be done:"), result.errors);
        return;
    }
    m_host.log(success);
    Q_EMIT done(success);
}

bool ProjectCommands::askToOverwrite(const QString &title, const QString &text)
{
    QMessageBox box(QMessageBox::Warning, title, text, QMessageBox::Yes | QMessageBox::No,
                    m_window);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

QString ProjectCommands::startFolder() const
{
    return m_host.option(projectsFolderKey, QDir::homePath()).toString();
}

} // namespace Studio

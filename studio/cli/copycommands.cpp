// SPDX-License-Identifier: MIT
#include "frame/jobstats.h"
#include "project/parentproject.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/projectcall.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace Studio {

namespace {

/// Returns whether there are no errors.
bool reportFindings(const CopyResult &result, const Call &call)
{
    const QStringList warnings = call.options.testFlag(Quiet) ? QStringList() : result.warnings;
    for (const QString &warning : warnings)
        Console::report(QStringLiteral("warning: ") + warning);
    for (const QString &error : result.errors)
        Console::report(error);
    return result.errors.isEmpty();
}

/// Reports what came of a copy; \a done is printed where everything was copied.
int finish(const CopyResult &result, const Call &call, const QString &done)
{
    if (!reportFindings(result, call))
        return Failed;
    if (!call.options.testFlag(Quiet))
        Console::print(done + QLatin1Char('\n'));
    return Done;
}

void printPlan(const Call &call, const QStringList &files)
{
    if (!call.options.testFlag(Quiet) && !files.isEmpty())
        Console::print(files.join(QLatin1Char('\n')) + QLatin1Char('\n'));
}

/// Tells what a copy of the whole project would write, with the findings that the copy itself
/// would report.
int planCopy(const ProjectSession &session, const Call &call)
{
    const ContentList contents = contentList(*session.parent(), true);
    printPlan(call, contents.files);
    return reportFindings(ProjectSession::findings(contents), call) ? Done : Failed;
}

QJsonObject toJson(const Backup &backup)
{
    return {{QStringLiteral("name"), backup.name},
            {QStringLiteral("label"), backup.label},
            {QStringLiteral("time"), backup.time.toString(Qt::ISODate)},
            {QStringLiteral("size"), backup.size},
            {QStringLiteral("packed"), backup.packed}};
}

QString toText(const Backup &backup)
{
    return QStringLiteral("%1  %2  %3\n")
        .arg(backup.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")))
        .arg(backup.size, 12)
        .arg(backup.name);
}

} // namespace

int runBackup(const Call &call)
{
    const QString name = call.arguments.at(1);
    if (!Backups::isValidLabel(name))
        return Console::fail(QStringLiteral("\"%1\" cannot be the name of a backup").arg(name));
    const std::unique_ptr<ProjectSession> session = openProject(call.arguments.first());
    if (!session)
        return Failed;
    if (call.options.testFlag(DryRun))
        return planCopy(*session, call);
    const CopyResult result = session->backup(name, createJob("Backup").get());
    return finish(result, call, result.name);
}

int runBackups(const Call &call)
{
    const std::unique_ptr<ProjectSession> session = openProjectAsItIs(call.arguments.first());
    if (!session)
        return Failed;
    QString text;
    QJsonArray array;
    const QList<Backup> backups = session->backups().list();
    for (const Backup &backup : backups) {
        text += toText(backup);
        array.append(toJson(backup));
    }
    if (call.options.testFlag(Json))
        printJson({{QStringLiteral("path"), rootPath(*session->parent())},
                   {QStringLiteral("backups"), array}});
    else
        Console::print(text);
    return Done;
}

int runRestore(const Call &call)
{
    const std::unique_ptr<ProjectSession> session = openProject(call.arguments.first());
    if (!session)
        return Failed;
    Backup backup;
    QString error;
    if (!session->findBackup(call.arguments.at(1), &backup, &error))
        return Console::fail(error);
    const QStringList files = ProjectSession::backupFiles(backup, &error);
    if (files.isEmpty())
        return Console::fail(error);
    if (call.options.testFlag(DryRun)) {
        printPlan(call, files);
        return Done;
    }
    const CopyResult result = session->restore(backup, createJob("Restore").get());
    return finish(
        result, call,
        QStringLiteral("%1: restored, files: %2").arg(backup.name, QString::number(files.size())));
}

int runSaveAs(const Call &call)
{
    const std::unique_ptr<ProjectSession> session = openProjectAsItIs(call.arguments.first());
    // Outside a game only what is open is saved; of a game the closed projects are copied.
    if (!session)
        return Failed;
    const QStringList errors =
        session->parent()->isGame() ? QStringList() : session->openAllProjects();
    if (!errors.isEmpty())
        return Console::fail(errors.join(QLatin1Char('\n')));
    const QString folder = ProjectSession::normalizedPath(call.arguments.at(1));
    if (folder.isEmpty())
        return Console::fail(QStringLiteral("the name of the folder is empty"));
    const QFileInfo target(folder);
    if (target.exists() && !(target.isDir() && QDir(folder).isEmpty()))
        return Console::fail(QStringLiteral("%1: is not an empty folder").arg(folder));
    if (call.options.testFlag(DryRun))
        return planCopy(*session, call);
    return finish(session->saveAs(folder, createJob("Save as").get()), call, folder);
}

} // namespace Studio

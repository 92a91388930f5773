// SPDX-License-Identifier: MIT
#include "studio/cli/projectcall.h"

#include "frame/interface.h"
#include "frame/jobstats.h"
#include "studio/cli/console.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Studio {

std::unique_ptr<ProjectSession> openProject(const QString &path)
{
    std::unique_ptr<ProjectSession> session = openProjectAsItIs(path);
    if (!session)
        return nullptr;
    const auto job = createJob("Open");
    const QStringList errors = session->openAllProjects();
    for (const QString &error : errors)
        job->error(error);
    return session;
}

std::unique_ptr<ProjectSession> openProjectAsItIs(const QString &path)
{
    QString error;
    std::unique_ptr<ProjectSession> session = ProjectSession::open(path, &error);
    if (!session)
        Console::report(error);
    return session;
}

std::unique_ptr<Vela::ProgressJob> createJob(const char *text)
{
    return std::unique_ptr<Vela::ProgressJob>(
        Vela::Interface::instance()->progress()->createJob(QString::fromUtf8(text), 0));
}

void printJson(const QJsonObject &object)
{
    Console::print(QString::fromUtf8(QJsonDocument(object).toJson()));
}

} // namespace Studio

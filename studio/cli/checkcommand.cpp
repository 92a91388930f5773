// SPDX-License-Identifier: MIT
#include "frame/jobstats.h"
#include "project/parentproject.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/projectcall.h"
#include "studio/session/messagereport.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Studio {

namespace {

QJsonObject toJson(const MessageRecord &record)
{
    return {{QStringLiteral("file"), record.file},
            {QStringLiteral("line"), static_cast<qint64>(record.line)},
            {QStringLiteral("column"), static_cast<qint64>(record.column)},
            {QStringLiteral("type"), MessageReport::typeName(record.type)},
            {QStringLiteral("text"), record.text}};
}

void printReport(const MessageReport &report, const QString &root)
{
    QJsonArray messages;
    for (const MessageRecord &record : report.records())
        messages.append(toJson(record));
    printJson({{QStringLiteral("path"), root},
               {QStringLiteral("errors"), report.count(Vela::Message::Error)},
               {QStringLiteral("warnings"), report.count(Vela::Message::Warning)},
               {QStringLiteral("information"), report.count(Vela::Message::Information)},
               {QStringLiteral("messages"), messages}});
}

} // namespace

int runCheck(const Call &call)
{
    const std::unique_ptr<ProjectSession> session = openProject(call.arguments.first());
    if (!session)
        return Failed;
    MessageReport::loadAll(*session->parent());
    const QStringList unreadable =
        MessageReport::unreadableFiles(*session->parent(), createJob("Check").get());
    for (const QString &file : unreadable)
        Console::report(QStringLiteral("%1: cannot be read").arg(file));
    const MessageReport report(*session->parent());

    if (call.options.testFlag(Json))
        printReport(report, rootPath(*session->parent()));
    else if (!call.options.testFlag(Quiet))
        Console::print(report.text());
    if (!unreadable.isEmpty())
        return Failed;
    return report.count(Vela::Message::Error) > 0 ? ContentErrors : Done;
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "engine/engine.h"
#include "frame/filesystemarchive.h"
#include "frame/propertyitem.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/projectcall.h"
#include "studio/session/messagereport.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QMetaEnum>

namespace Studio {

namespace {

struct FileInfo
{
    QString path;
    QStringList types;
    QString encoding; ///< empty where the file has none
    bool exists = false;
    qint64 size = 0;
};

struct ProjectInfo
{
    QString folder; ///< empty for the root
    bool isOpen = false;
    QString name;
    QString typeName;
    QString version;
    QList<FileInfo> files;
};

QString typeName(int type)
{
    const char *name = QMetaEnum::fromType<Vela::Project::FileType>().valueToKey(type);
    return name ? QString::fromUtf8(name) : QString::number(type);
}

QString encodingOf(const Vela::ProjectFile *file)
{
    const auto *item = dynamic_cast<const Vela::PropertyItem *>(file);
    const QString encoding =
        item ? item->property(QStringLiteral("Encoding")).toString() : QString();
    const auto *document = dynamic_cast<const Vela::CodeDocument *>(file);
    return encoding.isEmpty() && document ? QString::fromLatin1(document->codecName()) : encoding;
}

/// Returns the bytes of a file; what an archive other than the disk holds can only be told by
/// opening it.
qint64 sizeOf(Vela::Archive &archive, const QString &name)
{
    if (&archive == &Vela::FileSystemArchive::instance())
        return QFileInfo(name).size();
    QIODevice *device = archive.openFile(name, QIODevice::ReadOnly);
    if (!device)
        return 0;
    const qint64 size = device->size();
    archive.closeFile(device);
    return size;
}

FileInfo fileInfo(const Vela::ParentProject &parent, const QString &path)
{
    const QString root = rootPath(parent);
    const QString name =
        root.isEmpty() || QDir::isAbsolutePath(path) ? path : root + QLatin1Char('/') + path;
    FileInfo info;
    info.path = path;
    info.exists = parent.archive().fileExists(name) && !parent.archive().directoryExists(name);
    info.size = info.exists ? sizeOf(parent.archive(), name) : 0;
    return info;
}

ProjectInfo describe(const Vela::Project &project)
{
    ProjectInfo info{projectFolder(project), true, project.name(), project.typeName(),
                     project.version(),      {}};
    QMap<QString, int> rows;
    const QList<ProjectEntry> entries = projectEntries(project);
    for (const ProjectEntry &entry : entries) {
        if (!rows.contains(entry.path)) {
            rows.insert(entry.path, info.files.size());
            info.files.append(fileInfo(*project.parent(), entry.path));
            info.files.last().encoding = encodingOf(entry.file);
        }
        info.files[rows.value(entry.path)].types.append(typeName(entry.type));
    }
    return info;
}

ProjectInfo describeClosed(const Vela::ParentProject &parent, const QString &project)
{
    ProjectInfo info;
    info.folder = project;
    const QStringList files = closedProjectFiles(parent, project);
    for (const QString &file : files)
        info.files.append(fileInfo(parent, file));
    return info;
}

QList<ProjectInfo> describe(const Vela::ParentProject &parent)
{
    QList<ProjectInfo> result;
    const QList<Vela::Project *> opened = sortedProjects(parent);
    for (const Vela::Project *project : opened)
        result.append(describe(*project));
    const QStringList closed = closedProjects(parent);
    for (const QString &project : closed)
        result.append(describeClosed(parent, project));
    std::stable_sort(result.begin(), result.end(), [](const ProjectInfo &a, const ProjectInfo &b) {
        return a.folder < b.folder;
    });
    return result;
}

QJsonObject toJson(const FileInfo &file)
{
    QJsonObject object{{QStringLiteral("path"), file.path},
                       {QStringLiteral("types"), QJsonArray::fromStringList(file.types)},
                       {QStringLiteral("exists"), file.exists}};
    if (file.exists)
        object.insert(QStringLiteral("size"), file.size);
    if (!file.encoding.isEmpty())
        object.insert(QStringLiteral("encoding"), file.encoding);
    return object;
}

QJsonObject toJson(const ProjectInfo &project)
{
    QJsonArray files;
    for (const FileInfo &file : project.files)
        files.append(toJson(file));
    QJsonObject object{{QStringLiteral("folder"), project.folder},
                       {QStringLiteral("open"), project.isOpen},
                       {QStringLiteral("files"), files}};
    if (project.isOpen) {
        object.insert(QStringLiteral("name"), project.name);
        object.insert(QStringLiteral("type"), project.typeName);
        object.insert(QStringLiteral("version"), project.version);
    }
    return object;
}

QString headline(const ProjectInfo &project)
{
    const QString folder = project.folder + QLatin1Char('/');
    if (!project.isOpen)
        return QStringLiteral("%1  (closed)\n").arg(folder);
    return QStringLiteral("%1  %2 (%3)\n").arg(folder, project.name, project.typeName);
}

QString toText(const ProjectInfo &project)
{
    int width = 0;
    for (const FileInfo &file : project.files)
        width = qMax(width, file.path.size());

    QString result = headline(project);
    for (const FileInfo &file : project.files) {
        QStringList columns{file.path.leftJustified(width)};
        if (!file.types.isEmpty())
            columns.append(file.types.join(QLatin1Char(',')));
        if (!file.encoding.isEmpty())
            columns.append(file.encoding);
        columns.append(file.exists ? QStringLiteral("%1 bytes").arg(file.size)
                                   : QStringLiteral("missing"));
        result += QStringLiteral("  ") + columns.join(QStringLiteral("  ")) + QLatin1Char('\n');
    }
    return result;
}

} // namespace

int runInfo(const Call &call)
{
    const std::unique_ptr<ProjectSession> session = openProjectAsItIs(call.arguments.first());
    if (!session)
        return Failed;
    const Vela::ParentProject &parent = *session->parent();
    MessageReport::loadAll(parent);
    const QList<ProjectInfo> projects = describe(parent);
    const QString engine = parent.engine()->queryString(Vela::Engine::DisplayName, 0);

    if (call.options.testFlag(Json)) {
        QJsonArray array;
        for (const ProjectInfo &project : projects)
            array.append(toJson(project));
        printJson({{QStringLiteral("path"), rootPath(parent)},
                   {QStringLiteral("engine"), engine},
                   {QStringLiteral("projects"), array}});
        return Done;
    }
    QString text = QStringLiteral("%1  (%2)\n").arg(rootPath(parent), engine);
    for (const ProjectInfo &project : projects)
        text += toText(project);
    Console::print(text);
    return Done;
}

} // namespace Studio

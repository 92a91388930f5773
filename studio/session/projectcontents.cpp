// SPDX-License-Identifier: MIT
#include "studio/session/projectcontents.h"

#include "frame/archive.h"
#include "frame/textcodecs.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSet>

namespace Studio {

namespace {

constexpr int TypeBits = 32;
constexpr qint64 BlockSize = 64 * 1024;
const QString workingNameKey = QStringLiteral("studio_working_name");

QString joined(const QString &folder, const QString &name)
{
    return folder.isEmpty() ? name : folder + QLatin1Char('/') + name;
}

QString cleanName(const Vela::Archive &archive, const QString &path)
{
    const QString clean = QDir::cleanPath(archive.absoluteFileName(path));
    return clean == QLatin1String(".") ? QString() : clean;
}

void collectRoots(const Vela::ParentProject::Path *node, const QString &folder, QStringList &roots)
{
    // A node that is neither stands for the folder that it is in.
    const QString path = node->isFolder() || node->isFile() ? joined(folder, node->name()) : folder;
    if (node->isProjectRoot())
        roots.append(path);
    for (int i = 0; i < node->childCount(); ++i)
        collectRoots(node->childAt(i), path, roots);
}

bool isOpen(const Vela::ParentProject &parent, const QString &root)
{
    const QList<Vela::Project *> projects = parent.openedProjects();
    for (const Vela::Project *project : projects) {
        if (root == projectFolder(*project) || root == relativeToRoot(parent, project->fileName()))
            return true;
    }
    return false;
}

/// Returns the main file and what it refers to.
QList<ProjectEntry> namedEntries(const Vela::Project &project)
{
    const Vela::ParentProject &parent = *project.parent();
    QList<ProjectEntry> result{
        {relativeToRoot(parent, project.fileName()), Vela::Project::Main, project.mainFile()}};
    QList<Vela::Project::Dependency> dependencies;
    project.dependencies(dependencies);
    for (const auto &[type, name] : qAsConst(dependencies)) {
        const QString path = joined(project.absolutePath(), name);
        result.append({relativeToRoot(parent, path), type, nullptr});
    }
    return result;
}

void sortIn(const Vela::Archive &archive, const QString &root, const QString &path,
            ContentList &list)
{
    if (path.startsWith(QLatin1String("../")) || QDir::isAbsolutePath(path))
        list.outside.append(path);
    else if (!archive.fileExists(joined(root, path)))
        list.missing.append(path);
    else
        list.files.append(path);
}

void append(QStringList &paths, const QString &folder, const QStringList &more)
{
    for (const QString &path : more)
        paths.append(QDir::cleanPath(joined(folder, path)));
}

/// Holds an opened device and gives it back unchanged.
class Reader
{
public:
    Reader(Vela::Archive &archive, const QString &name)
        : m_archive(archive)
        , m_device(archive.openFile(name, QIODevice::ReadOnly))
    {
    }
    ~Reader()
    {
        if (m_device)
            m_archive.closeFile(m_device);
    }
    Q_DISABLE_COPY(Reader)

    QIODevice *device() const
    {
        return m_device;
    }
    /// Reads a whole block where a device hands out less at a time.
    QByteArray block() const
    {
        QByteArray result;
        while (result.size() < BlockSize) {
            const QByteArray part = m_device->read(BlockSize - result.size());
            if (part.isEmpty())
                break;
            result += part;
        }
        return result;
    }

private:
    Vela::Archive &m_archive;
    QIODevice *m_device;
};

/// Returns whether two files hold the same text but for their line ends; false if either cannot be
/// read.
bool sameText(Vela::Archive &archive, const QString &name, Vela::Archive &other,
              const QString &otherName)
{
    const Reader first(archive, name);
    const Reader second(other, otherName);
    if (!first.device() || !second.device())
        return false;
    int codec = -1;
    const auto text = [&codec](const Reader &reader) {
        return Vela::TextCodecs::stringFromData(reader.device()->readAll(), &codec)
            .replace(QLatin1String("\r\n"), QLatin1String("\n"))
            .replace(QLatin1Char('\r'), QLatin1Char('\n'));
    };
    const QString original = text(first);
    return original == text(second);
}

} // namespace

QString rootPath(const Vela::ParentProject &parent)
{
    return cleanName(parent.archive(), parent.basePath());
}

QString relativeToRoot(const Vela::ParentProject &parent, const QString &path)
{
    const QString root = rootPath(parent);
    const QString name = cleanName(parent.archive(), path);
    if (name == root)
        return QString();
    const QString prefix = root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/');
    return name.startsWith(prefix) ? name.mid(prefix.size()) : name;
}

QString pathOf(const Vela::ParentProject &parent, const Vela::ProjectFile &file)
{
    const QString name = file.fileName();
    return name.isEmpty() ? file.option(workingNameKey).toString() : relativeToRoot(parent, name);
}

void setWorkingName(Vela::ProjectFile &file, const QString &name)
{
    file.setOption(workingNameKey, name.isEmpty() ? QVariant() : QVariant(name), false, false);
}

QString projectFolder(const Vela::Project &project)
{
    return relativeToRoot(*project.parent(), project.absolutePath());
}

QList<Vela::Project *> sortedProjects(const Vela::ParentProject &parent)
{
    QMap<QPair<QString, QString>, Vela::Project *> sorted;
    const QList<Vela::Project *> projects = parent.openedProjects();
    for (Vela::Project *project : projects)
        sorted.insert({projectFolder(*project), project->fileName()}, project);
    return sorted.values();
}

QList<int> typesOf(quint32 types)
{
    QList<int> result;
    for (int type = 0; type < TypeBits; ++type) {
        if (types & (1U << type))
            result.append(type);
    }
    return result;
}

QList<Vela::ProjectFile *> orderedFiles(const Vela::Project &project)
{
    QList<Vela::ProjectFile *> result;
    QSet<const Vela::ProjectFile *> seen;
    for (int type = 0; type < TypeBits; ++type) {
        const QList<Vela::ProjectFile *> files = project.filesByType(type);
        for (Vela::ProjectFile *file : files) {
            if (!seen.contains(file)) {
                seen.insert(file);
                result.append(file);
            }
        }
    }
    return result;
}

QList<ProjectEntry> projectEntries(const Vela::Project &project)
{
    const Vela::ParentProject &parent = *project.parent();
    QList<ProjectEntry> all = namedEntries(project);
    QMap<QString, Vela::ProjectFile *> opened;
    const QList<Vela::ProjectFile *> files = orderedFiles(project);
    for (Vela::ProjectFile *file : files) {
        const QString path = relativeToRoot(parent, file->fileName());
        opened.insert(path, file);
        const QList<int> types = typesOf(project.fileID(file));
        for (int type : types)
            all.append({path, type, file});
    }

    QList<ProjectEntry> result;
    QSet<QPair<QString, int>> known;
    for (ProjectEntry &entry : all) {
        if (entry.path.isEmpty() || known.contains({entry.path, entry.type}))
            continue;
        known.insert({entry.path, entry.type});
        if (!entry.file)
            entry.file = opened.value(entry.path);
        result.append(entry);
    }
    return result;
}

QStringList closedProjects(const Vela::ParentProject &parent)
{
    QStringList roots;
    for (int row = 0; row < parent.rowCount(); ++row)
        collectRoots(parent.itemPath(parent.index(row, 0)), QString(), roots);
    roots.removeDuplicates();

    QStringList result;
    for (const QString &root : qAsConst(roots)) {
        if (!isOpen(parent, root))
            result.append(root);
    }
    return result;
}

QStringList closedProjectFiles(const Vela::ParentProject &parent, const QString &project)
{
    QStringList files;
    parent.closedProjectFiles(project, files);
    return files;
}

ContentList contentList(const Vela::Project &project)
{
    const QString folder = cleanName(project.archive(), project.absolutePath());
    QList<Vela::Project::Dependency> dependencies;
    project.dependencies(dependencies);
    ContentList result;
    sortIn(project.archive(), folder, QFileInfo(project.fileName()).fileName(), result);
    for (const Vela::Project::Dependency &dependency : qAsConst(dependencies))
        sortIn(project.archive(), folder, QDir::cleanPath(dependency.second), result);
    return result;
}

ContentList contentList(const Vela::ParentProject &parent, bool withClosed)
{
    ContentList result;
    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects) {
        const ContentList list = contentList(*project);
        const QString folder = projectFolder(*project);
        append(result.files, folder, list.files);
        append(result.missing, folder, list.missing);
        append(result.outside, folder, list.outside);
    }
    ContentList closed;
    const QStringList roots = withClosed ? closedProjects(parent) : QStringList();
    for (const QString &root : roots) {
        const QStringList files = closedProjectFiles(parent, root);
        for (const QString &file : files)
            sortIn(parent.archive(), rootPath(parent), QDir::cleanPath(file), closed);
    }
    append(result.files, QString(), closed.files);
    append(result.missing, QString(), closed.missing);
    append(result.outside, QString(), closed.outside);
    for (QStringList *paths : {&result.files, &result.missing, &result.outside})
        paths->removeDuplicates();
    return result;
}

bool sameContent(Vela::Archive &archive, const QString &name, Vela::Archive &other,
                 const QString &otherName)
{
    const Reader first(archive, name);
    const Reader second(other, otherName);
    if (!first.device() || !second.device())
        return false;
    while (true) {
        const QByteArray block = first.block();
        if (block != second.block())
            return false;
        if (block.isEmpty())
            return true;
    }
}

QStringList failedCopies(const Place &from, const Place &to, const QStringList &files,
                         const QStringList &changed, const QStringList &texts)
{
    QStringList result;
    for (const QString &file : files) {
        const QString original = joined(from.root, file);
        const QString copy = joined(to.root, file);
        if (!to.archive.fileExists(copy))
            result.append(
                QCoreApplication::translate("ProjectSession", "%1: was not copied").arg(file));
        else if (!changed.contains(file) && !sameContent(from.archive, original, to.archive, copy)
                 && !(texts.contains(file) && sameText(from.archive, original, to.archive, copy)))
            result.append(
                QCoreApplication::translate("ProjectSession", "%1: the copy differs").arg(file));
    }
    return result;
}

QStringList filesBelow(const Place &place)
{
    constexpr QDir::Filters filters(QDir::Dirs | QDir::Files | QDir::NoSymLinks
                                    | QDir::NoDotAndDotDot | QDir::Readable);
    QStringList result;
    QStringList folders{QString()};
    while (!folders.isEmpty()) {
        const QString folder = folders.takeFirst();
        const QStringList names =
            place.archive.entries(joined(place.root, folder), filters, QDir::Name);
        for (const QString &name : names) {
            const QString path = joined(folder, name);
            const QString full = joined(place.root, path);
            // To the disk a folder is a file that exists.
            const bool isFile =
                place.archive.fileExists(full) && !place.archive.directoryExists(full);
            (isFile ? result : folders).append(path);
        }
    }
    result.sort();
    return result;
}

} // namespace Studio

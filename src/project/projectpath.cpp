// SPDX-License-Identifier: MIT
#include "project/projectpath_p.h"

#include "project/project.h"

#include <QDir>

namespace Vela {

namespace {

const QLatin1Char slash('/');

} // namespace

QString joinPath(const QString &folder, const QString &name)
{
    int start = 0;
    while (start < name.length() && name.at(start) == slash)
        ++start;
    const QString below = name.mid(start);
    if (folder.isEmpty() || below.isEmpty() || folder.endsWith(slash))
        return folder + below;
    return folder + slash + below;
}

QString withoutSlash(const QString &folder)
{
    return folder.length() > 1 && folder.endsWith(slash) ? folder.chopped(1) : folder;
}

QString pathBelow(const QString &folder, const QString &path)
{
    if (folder.isEmpty())
        return path;
    const QString start = folder.endsWith(slash) ? folder : folder + slash;
    return path.startsWith(start) ? path.mid(start.length()) : QString();
}

QStringList pathParts(const QString &path)
{
    return QDir::cleanPath(path).split(slash, Qt::SkipEmptyParts);
}

bool staysBelow(const QString &relative)
{
    const QString clean = QDir::cleanPath(relative);
    return clean != QLatin1String("..") && !clean.startsWith(QLatin1String("../"));
}

ParentProject::Path::~Path() = default;

BasePath::BasePath(const QString &name)
    : m_name(name)
{
}

BasePath::~BasePath()
{
    QVector<BasePath *> pending;
    pending.swap(m_nodes);
    while (!pending.isEmpty()) {
        BasePath *const node = pending.takeLast();
        pending += node->m_nodes;
        node->m_nodes.clear();
        delete node;
    }
}

QString BasePath::fullPath() const
{
    QStringList parts;
    const BasePath *node = this;
    for (; node->m_folder; node = node->m_folder)
        parts.prepend(node->m_name);
    const QString path = joinPath(node->m_name, parts.join(slash));
    return isFolder() && !path.isEmpty() && !path.endsWith(slash) ? path + slash : path;
}

QString BasePath::name() const
{
    return m_name;
}

bool BasePath::isFolder() const
{
    return false;
}

bool BasePath::isProjectRoot() const
{
    return false;
}

bool BasePath::isFile() const
{
    return false;
}

int BasePath::childIndex(const ParentProject::Path *child) const
{
    const auto *const node = static_cast<const BasePath *>(child);
    return node && node->m_folder == this ? node->m_row : -1;
}

ParentProject::Path *BasePath::childAt(int index) const
{
    return m_nodes.value(index);
}

int BasePath::childCount() const
{
    return m_nodes.size();
}

DirectoryPath *BasePath::folder() const
{
    return m_folder;
}

int BasePath::row() const
{
    return m_row;
}

const QVector<BasePath *> &BasePath::nodes() const
{
    return m_nodes;
}

bool BasePath::isWithin(const BasePath *other) const
{
    const BasePath *node = this;
    while (node && node != other)
        node = node->m_folder;
    return node;
}

void BasePath::setName(const QString &name)
{
    m_name = name;
}

FilePath::FilePath(const QString &name, int type)
    : BasePath(name)
    , m_type(type)
{
}

bool FilePath::isProjectRoot() const
{
    return m_type == Project::Main;
}

bool FilePath::isFile() const
{
    return true;
}

int FilePath::type() const
{
    return m_type;
}

void FilePath::setType(int type)
{
    m_type = type;
}

DummyPath::DummyPath()
    : BasePath(QString())
{
}

QString DummyPath::fullPath() const
{
    return folder()->fullPath();
}

QString DummyPath::name() const
{
    return folder()->name();
}

bool DummyPath::isProjectRoot() const
{
    return folder()->pathType() & ParentProject::ChildProjectRoot;
}

DirectoryPath::DirectoryPath(const QString &name)
    : BasePath(name)
{
}

bool DirectoryPath::isFolder() const
{
    return true;
}

bool DirectoryPath::isProjectRoot() const
{
    return m_type & ParentProject::ProjectRoot;
}

ParentProject::PathType DirectoryPath::pathType() const
{
    return m_type;
}

void DirectoryPath::setPathType(ParentProject::PathType type)
{
    m_type = type;
}

QStringList DirectoryPath::files() const
{
    return m_files;
}

void DirectoryPath::setFiles(const QStringList &files)
{
    m_files = files;
}

DirectoryPath *DirectoryPath::findFolder(const QString &name) const
{
    return m_folders.value(name);
}

FilePath *DirectoryPath::findFile(const QString &name) const
{
    return m_fileNodes.value(name);
}

BasePath *DirectoryPath::find(const QString &path)
{
    QStringList parts = pathParts(path);
    if (parts.isEmpty())
        return this;
    const QString last = parts.takeLast();
    DirectoryPath *node = this;
    for (const QString &part : qAsConst(parts)) {
        node = node->findFolder(part);
        if (!node)
            return nullptr;
    }
    FilePath *const file = path.endsWith(slash) ? nullptr : node->findFile(last);
    return file ? static_cast<BasePath *>(file) : node->findFolder(last);
}

void DirectoryPath::append(BasePath *node)
{
    node->m_folder = this;
    node->m_row = m_nodes.size();
    m_nodes.append(node);
    if (node->isFolder())
        m_folders.insert(node->m_name, static_cast<DirectoryPath *>(node));
    else if (node->isFile())
        m_fileNodes.insert(node->m_name, static_cast<FilePath *>(node));
}

QVector<BasePath *> DirectoryPath::take(int first, int last)
{
    const QVector<BasePath *> taken = m_nodes.mid(first, last - first + 1);
    m_nodes.remove(first, taken.size());
    number(first);
    for (BasePath *node : taken)
        detach(node);
    return taken;
}

QVector<BasePath *> DirectoryPath::takeMissing(const DirectoryPath &other)
{
    QVector<BasePath *> taken;
    QVector<BasePath *> kept;
    for (BasePath *node : qAsConst(m_nodes))
        (other.counterpart(node) ? kept : taken).append(node);
    m_nodes = kept;
    number(0);
    for (BasePath *node : qAsConst(taken))
        detach(node);
    return taken;
}

BasePath *DirectoryPath::counterpart(const BasePath *node) const
{
    if (node->isFolder())
        return findFolder(node->m_name);
    return node->isFile() ? findFile(node->m_name) : nullptr;
}

void DirectoryPath::detach(BasePath *node)
{
    node->m_folder = nullptr;
    if (node->isFolder())
        m_folders.remove(node->m_name);
    else if (node->isFile())
        m_fileNodes.remove(node->m_name);
}

void DirectoryPath::number(int first)
{
    for (int row = first; row < m_nodes.size(); ++row)
        m_nodes.at(row)->m_row = row;
}

void DirectoryPath::addFile(const QString &path, int type)
{
    QStringList parts = pathParts(path);
    if (parts.isEmpty())
        return;
    const QString last = parts.takeLast();
    DirectoryPath *const parent = addFolders(parts);
    if (!parent->findFile(last))
        parent->append(new FilePath(last, type));
}

DirectoryPath *DirectoryPath::addFolders(const QStringList &parts)
{
    DirectoryPath *node = this;
    for (const QString &part : parts) {
        DirectoryPath *next = node->findFolder(part);
        if (!next) {
            next = new DirectoryPath(part);
            node->append(next);
        }
        node = next;
    }
    return node;
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "engine/engineinstances.h"

#include "frame/interface.h"

#include <QDir>
#include <QIcon>
#include <QList>

namespace Vela {

class EngineInstancesPrivate
{
public:
    QString folder;
    QString configPath;
    QList<EngineInstances::Info> instances;
};

EngineInstances::EngineInstances(const QString &engineName)
    : d(new EngineInstancesPrivate)
{
    d->folder = QLatin1String("/engines/") + engineName;
    if (const Interface *host = Interface::instance()) {
        d->configPath =
            host->dataFolder() + QLatin1Char('/') + engineName + QLatin1String("_config.xml");
    }
}

EngineInstances::~EngineInstances() = default;

int EngineInstances::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : d->instances.size();
}

QVariant EngineInstances::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= d->instances.size())
        return QVariant();
    const Info &info = d->instances.at(index.row());
    if (role == Qt::DisplayRole)
        return info.name;
    if (role == Qt::DecorationRole) {
        if (!info.icon.isEmpty())
            return QIcon(info.icon);
        if (Interface::instance())
            return QIcon(installedPath() + QLatin1String("/icon.png"));
    }
    return QVariant();
}

void EngineInstances::add(const QString &name, const QString &exe, const QString &params,
                          const QString &icon)
{
    append({{name, exe, params, icon}});
}

void EngineInstances::append(const QList<Info> &instances)
{
    if (instances.isEmpty())
        return;
    const int first = d->instances.size();
    beginInsertRows(QModelIndex(), first, first + instances.size() - 1);
    d->instances += instances;
    endInsertRows();
}

void EngineInstances::edit(unsigned int row, const QString &name, const QString &exe,
                           const QString &params, const QString &icon)
{
    if (row >= unsigned(d->instances.size()))
        return;
    d->instances[int(row)] = {name, exe, params, icon};
    const QModelIndex changed = index(int(row));
    Q_EMIT dataChanged(changed, changed);
}

void EngineInstances::remove(unsigned int row)
{
    if (row >= unsigned(d->instances.size()))
        return;
    beginRemoveRows(QModelIndex(), int(row), int(row));
    d->instances.removeAt(int(row));
    endRemoveRows();
}

void EngineInstances::move(unsigned int from, unsigned int to)
{
    const unsigned int size = unsigned(d->instances.size());
    if (from >= size || to > size)
        return;
    if (!beginMoveRows(QModelIndex(), int(from), int(from), QModelIndex(), int(to)))
        return;
    // Taking the row out moves all behind it one up.
    d->instances.move(int(from), int(from < to ? to - 1 : to));
    endMoveRows();
}

void EngineInstances::clear()
{
    if (d->instances.isEmpty())
        return;
    beginRemoveRows(QModelIndex(), 0, d->instances.size() - 1);
    d->instances.clear();
    endRemoveRows();
}

EngineInstances::Info EngineInstances::at(unsigned int row) const
{
    return d->instances.value(int(row));
}

int EngineInstances::count() const
{
    return d->instances.size();
}

QString EngineInstances::engineFolder() const
{
    return d->folder;
}

QString EngineInstances::installedPath() const
{
    const Interface *host = Interface::instance();
    return (host ? host->libraryFolder() : QDir::currentPath()) + d->folder;
}

QString EngineInstances::configPath() const
{
    return d->configPath;
}

} // namespace Vela

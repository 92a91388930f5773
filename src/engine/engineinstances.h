// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QAbstractListModel>
#include <memory>

namespace Vela {

class EngineInstancesPrivate;

/// The installed instances of one engine that the user has registered, as a list model: one row
/// each, with its name and icon.
class VELA_EXPORT EngineInstances : public QAbstractListModel
{
    Q_OBJECT

public:
    struct Info
    {
        QString name;
        QString exe;
        QString params;
        QString icon;
    };

    explicit EngineInstances(const QString &engineName);
    ~EngineInstances() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    void add(const QString &name, const QString &exe, const QString &params, const QString &icon);
    /// Replaces all four fields; a row that does not exist is ignored.
    void edit(unsigned int row, const QString &name, const QString &exe, const QString &params,
              const QString &icon);
    void remove(unsigned int row);
    /// Moves a row in front of the row \a to, or to the end for count(). A move that changes
    /// nothing, onto the row itself or in front of the one behind it, is refused.
    void move(unsigned int from, unsigned int to);
    void clear();
    /// Returns an empty record for a row that does not exist.
    Info at(unsigned int row) const;
    int count() const;
    /// Returns the folder of what was installed with the program for the engine, such as its icon.
    QString installedPath() const;

protected:
    /// Returns "/engines/" with the engine's name behind.
    QString engineFolder() const;
    /// Returns the path of the configuration file; empty where no host is installed.
    QString configPath() const;
    /// Appends rows with one announcement for all.
    void append(const QList<Info> &instances);

private:
    std::unique_ptr<EngineInstancesPrivate> d;
};

} // namespace Vela

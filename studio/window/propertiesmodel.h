// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTableModel>
#include <QVariant>
#include <QVector>

namespace Vela {
class PropertyItem;
}

namespace Studio {

/// The named values of an item as rows of name and value. The item says nothing when a value
/// changes: whoever changes one calls refresh().
class PropertiesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { NameColumn, ValueColumn, ColumnCount };

    explicit PropertiesModel(QObject *parent = nullptr);

    /// Shows another item, which must live until the next call; null shows none.
    void setItem(Vela::PropertyItem *item);
    Vela::PropertyItem *item() const;
    QString name(int row) const;
    /// Reads the values anew.
    void refresh();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Returns false if the item did not take the value.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

Q_SIGNALS:
    /// A value was changed through this model.
    void edited();

private:
    struct Property
    {
        QString name;
        QVariant value;
    };

    QVector<Property> read() const;
    QVariant valueData(const QVariant &value, int role) const;

    Vela::PropertyItem *m_item = nullptr;
    QVector<Property> m_properties;
};

} // namespace Studio

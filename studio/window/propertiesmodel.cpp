// SPDX-License-Identifier: MIT
#include "studio/window/propertiesmodel.h"

#include "frame/propertyitem.h"

namespace Studio {

PropertiesModel::PropertiesModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void PropertiesModel::setItem(Vela::PropertyItem *item)
{
    beginResetModel();
    m_item = item;
    m_properties = read();
    endResetModel();
}

Vela::PropertyItem *PropertiesModel::item() const
{
    return m_item;
}

QString PropertiesModel::name(int row) const
{
    return m_properties.at(row).name;
}

void PropertiesModel::refresh()
{
    const QVector<Property> now = read();
    const auto sameName = [](const Property &a, const Property &b) { return a.name == b.name; };
    if (!std::equal(now.begin(), now.end(), m_properties.begin(), m_properties.end(), sameName))
        return setItem(m_item);
    m_properties = now;
    if (!now.isEmpty())
        Q_EMIT dataChanged(index(0, ValueColumn), index(now.size() - 1, ValueColumn));
}

int PropertiesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_properties.size();
}

int PropertiesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PropertiesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const Property &property = m_properties.at(index.row());
    if (index.column() == ValueColumn)
        return valueData(property.value, role);
    return role == Qt::DisplayRole || role == Qt::ToolTipRole ? QVariant(property.name)
                                                              : QVariant();
}

QVariant PropertiesModel::valueData(const QVariant &value, int role) const
{
    const bool isSwitch = value.userType() == QMetaType::Bool;
    if (role == Qt::CheckStateRole && isSwitch)
        return value.toBool() ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::DisplayRole && value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    if ((role == Qt::DisplayRole && !isSwitch) || role == Qt::EditRole)
        return value;
    return QVariant();
}

QVariant PropertiesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    return section == NameColumn ? tr("Property") : tr("Value");
}

Qt::ItemFlags PropertiesModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags result = QAbstractTableModel::flags(index);
    if (!index.isValid() || index.column() != ValueColumn)
        return result;
    const bool isSwitch = m_properties.at(index.row()).value.userType() == QMetaType::Bool;
    return result | (isSwitch ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

bool PropertiesModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!m_item || !index.isValid() || (role != Qt::EditRole && role != Qt::CheckStateRole))
        return false;
    const Property property = m_properties.at(index.row());
    QVariant wanted = role == Qt::CheckStateRole ? QVariant(value.toInt() == Qt::Checked) : value;
    if (property.value.isValid() && !wanted.convert(property.value.userType()))
        return false;
    if (wanted == property.value)
        return true;
    m_item->setProperty(property.name, wanted);
    refresh();
    Q_EMIT edited();
    return m_item->property(property.name) == wanted;
}

QVector<PropertiesModel::Property> PropertiesModel::read() const
{
    QVector<Property> properties;
    if (!m_item)
        return properties;
    const QStringList names = m_item->propertyNames();
    for (const QString &name : names)
        properties.append({name, m_item->property(name)});
    return properties;
}

} // namespace Studio

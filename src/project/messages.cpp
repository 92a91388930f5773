// SPDX-License-Identifier: MIT
#include "project/messages.h"

#include "frame/interface.h"
#include "project/messagelist.h"

#include <QIcon>

namespace Vela {

Messages::Messages(QObject *parent)
    : QAbstractListModel(parent)
{
}

Messages::~Messages()
{
    if (m_list)
        m_list->unregisterMessages(this);
}

int Messages::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count(Message::Any);
}

QVariant Messages::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= count(Message::Any))
        return QVariant();
    const Message message = at(static_cast<unsigned int>(index.row()), Message::Any);
    if (role == Qt::DisplayRole)
        return message.text;
    if (role == Qt::DecorationRole)
        return index.column() == 0 ? icon(message.type) : QIcon();
    return QVariant();
}

QIcon Messages::icon(Message::Type type)
{
    const Interface *const host = Interface::instance();
    switch (type) {
    case Message::Warning:
        return host ? host->icon(QStringLiteral("warning"))
                    : QIcon(QStringLiteral(":/vlib_icons/icons/warn.png"));
    case Message::Information:
        return host ? host->icon(QStringLiteral("information"))
                    : QIcon(QStringLiteral(":/vlib_icons/icons/info.png"));
    default:
        return host ? host->icon(QStringLiteral("error"))
                    : QIcon(QStringLiteral(":/vlib_icons/icons/error.png"));
    }
}

void Messages::notifyUpdate()
{
    if (m_list)
        m_list->sourceChanged(this);
}

} // namespace Vela

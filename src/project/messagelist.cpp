// SPDX-License-Identifier: MIT
#include "project/messagelist.h"

#include "project/messages.h"
#include "project/projectfile.h"

#include <QFileInfo>
#include <QIcon>

namespace Vela {

MessageList::MessageList(Project *project)
    : m_project(project)
{
}

MessageList::~MessageList()
{
    for (Messages *const source : qAsConst(m_sources)) {
        source->m_list = nullptr;
        discount(source);
    }
}

Project *MessageList::project() const
{
    return m_project;
}

int MessageList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rowCount;
}

int MessageList::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MessageList::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    // While a source changes, its rows here can lie past its end for a moment.
    const Messages *source = nullptr;
    const Message message = messageAt(index.row(), source);
    if (!source)
        return QVariant();
    if (role == Qt::DecorationRole)
        return index.column() == TextColumn ? Messages::icon(message.type) : QIcon();
    if (role != Qt::DisplayRole)
        return QVariant();

    switch (index.column()) {
    case TextColumn:
        return message.text;
    case FileColumn:
        return QFileInfo(source->file()->fileName()).fileName();
    default:
        return message.line + 1;
    }
}

void MessageList::registerMessages(Messages *messages)
{
    // A file that serves under several types is registered once for each.
    if (messages->m_list != this) {
        if (messages->m_list)
            messages->m_list->unregisterMessages(messages);
        messages->m_list = this;
        m_sources.append(messages);
    }
    sourceChanged(messages);
}

void MessageList::unregisterMessages(Messages *messages)
{
    if (messages->m_list != this)
        return;
    messages->m_list = nullptr;
    m_sources.removeOne(messages);
    discount(messages);
    resetRows();
}

void MessageList::sourceChanged(Messages *messages)
{
    recount(messages);
    resetRows();
}

void MessageList::recount(Messages *messages)
{
    discount(messages);
    for (const Message::Type type : {Message::Error, Message::Warning, Message::Information}) {
        messages->m_counted[type] = static_cast<unsigned int>(messages->count(type));
        m_counts[type] += messages->m_counted[type];
    }
}

void MessageList::discount(Messages *messages)
{
    for (const Message::Type type : {Message::Error, Message::Warning, Message::Information}) {
        m_counts[type] -= messages->m_counted[type];
        messages->m_counted[type] = 0;
    }
}

unsigned int MessageList::errorCount() const
{
    return m_counts[Message::Error];
}

unsigned int MessageList::warningCount() const
{
    return m_counts[Message::Warning];
}

Message MessageList::messageAt(int row, const Messages *&source) const
{
    if (row < 0)
        return Message();
    for (const Messages *const candidate : m_sources) {
        const int share = candidate->count(m_filter);
        if (row < share) {
            source = candidate;
            return candidate->at(static_cast<unsigned int>(row), m_filter);
        }
        row -= share;
    }
    return Message();
}

void MessageList::update()
{
    // A copy, because counting may run code of the file's own.
    const QList<Messages *> sources = m_sources;
    for (Messages *const source : sources)
        recount(source);
    resetRows();
}

void MessageList::resetRows()
{
    if (m_rowCount != 0) {
        beginRemoveRows(QModelIndex(), 0, m_rowCount - 1);
        m_rowCount = 0;
        endRemoveRows();
    }
    const unsigned int all =
        m_counts[Message::Error] + m_counts[Message::Warning] + m_counts[Message::Information];
    const int rows = static_cast<int>(m_filter == Message::Any ? all : m_counts[m_filter]);
    if (rows != 0) {
        beginInsertRows(QModelIndex(), 0, rows - 1);
        m_rowCount = rows;
        endInsertRows();
    }
    Q_EMIT updated();
}

} // namespace Vela

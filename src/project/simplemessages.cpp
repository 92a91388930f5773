// SPDX-License-Identifier: MIT
#include "project/simplemessages.h"

#include <algorithm>

namespace Vela {

SimpleMessages::SimpleMessages(ProjectFile *const file)
    : m_file(file)
{
}

ProjectFile *SimpleMessages::file() const
{
    return m_file;
}

int SimpleMessages::count(Message::Type type) const
{
    return type == Message::Any ? m_messages.size() : m_counts[type];
}

Message SimpleMessages::at(unsigned int index, Message::Type type) const
{
    if (type == Message::Any)
        return m_messages.value(static_cast<int>(index));
    for (const Message &message : m_messages) {
        if (message.type == type && index-- == 0)
            return message;
    }
    return Message();
}

void SimpleMessages::add(Message::Type type, const QString &text, unsigned int line,
                         unsigned int column)
{
    Q_ASSERT(type != Message::Any);
    beginInsertRows(QModelIndex(), m_messages.size(), m_messages.size());
    m_messages.append({type, line, column, text});
    ++m_counts[type];
    endInsertRows();
    changed();
}

void SimpleMessages::clear()
{
    std::fill(std::begin(m_counts), std::end(m_counts), 0);
    if (m_messages.isEmpty())
        return;
    beginRemoveRows(QModelIndex(), 0, m_messages.size() - 1);
    m_messages.clear();
    endRemoveRows();
    changed();
}

void SimpleMessages::beginChange()
{
    ++m_changeDepth;
}

void SimpleMessages::endChange()
{
    --m_changeDepth;
    changed();
}

void SimpleMessages::changed()
{
    if (m_changeDepth == 0)
        notifyUpdate();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "lantern/documentmessages.h"

#include <QCoreApplication>

#include <algorithm>

using Vela::Message;
using Vela::Messages;

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

bool isSame(const Message &a, const Message &b)
{
    return a.type == b.type && a.line == b.line && a.column == b.column && a.text == b.text;
}

} // namespace

DocumentMessages::DocumentMessages(Vela::ProjectFile *file, Messages *syntax)
    : m_file(file)
    , m_syntax(syntax)
{
    connect(syntax, &Messages::rowsAboutToBeInserted, this,
            [this](const QModelIndex &, int first, int last) {
                beginInsertRows(QModelIndex(), m_own.size() + first, m_own.size() + last);
            });
    connect(syntax, &Messages::rowsInserted, this, [this] { endInsertRows(); });
    connect(syntax, &Messages::rowsAboutToBeRemoved, this,
            [this](const QModelIndex &, int first, int last) {
                beginRemoveRows(QModelIndex(), m_own.size() + first, m_own.size() + last);
            });
    connect(syntax, &Messages::rowsRemoved, this, [this] { endRemoveRows(); });
    connect(syntax, &Messages::modelAboutToBeReset, this, [this] { beginResetModel(); });
    connect(syntax, &Messages::modelReset, this, [this] { endResetModel(); });
}

Vela::ProjectFile *DocumentMessages::file() const
{
    return m_file;
}

int DocumentMessages::ownCount(Message::Type type) const
{
    if (type == Message::Any)
        return m_own.size();
    return int(std::count_if(m_own.begin(), m_own.end(),
                             [type](const Message &message) { return message.type == type; }));
}

int DocumentMessages::count(Message::Type type) const
{
    return ownCount(type) + m_syntax->count(type);
}

Message DocumentMessages::at(unsigned int index, Message::Type type) const
{
    unsigned int behind = index;
    for (const Message &message : m_own) {
        if ((type == Message::Any || message.type == type) && behind-- == 0)
            return message;
    }
    return m_syntax->at(behind, type);
}

void DocumentMessages::setOwn(const QVector<Message> &messages)
{
    if (std::equal(messages.begin(), messages.end(), m_own.begin(), m_own.end(), isSame))
        return;
    if (!m_own.isEmpty()) {
        beginRemoveRows(QModelIndex(), 0, m_own.size() - 1);
        m_own.clear();
        endRemoveRows();
    }
    if (!messages.isEmpty()) {
        beginInsertRows(QModelIndex(), 0, messages.size() - 1);
        m_own = messages;
        endInsertRows();
    }
    notifyUpdate();
}

QString placedText(const QString &fileName, const Message &message)
{
    return QStringLiteral("%1:%2:%3: %4")
        .arg(fileName)
        .arg(message.line + 1)
        .arg(message.column + 1)
        .arg(message.text);
}

void limitMessages(QVector<Message> &messages)
{
    constexpr int most = 1000;
    if (messages.size() <= most)
        return;
    messages.resize(most);
    const Message &last = messages.constLast();
    messages.append({Message::Information, last.line, last.column,
                     Texts::tr("Further messages are left out.")});
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "project/message.h"

#include <QAbstractListModel>
#include <QList>

namespace Vela {

class MessageList;
class ProjectFile;

/// The messages about one file, as a list model of that file alone.
class VELA_EXPORT Messages : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit Messages(QObject *parent = nullptr);
    /// Takes itself out of the list that it is registered with.
    ~Messages() override;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /// Returns the file that the messages are about.
    virtual ProjectFile *file() const = 0;
    /// Returns the number of messages of a type; Message::Any counts all.
    virtual int count(Message::Type type) const = 0;
    /// Returns the message at \a index among those of a type.
    virtual Message at(unsigned int index, Message::Type type) const = 0;

protected:
    /// A subclass calls this behind its changes, so that the project's table follows.
    void notifyUpdate();

private:
    friend class MessageList;

    /// Returns the icon of a type: the host's, or without a host the library's own.
    static QIcon icon(Message::Type type);

    MessageList *m_list = nullptr;
    unsigned int m_counted[3] = {0, 0, 0}; ///< what the list has counted, by type
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "project/message.h"

#include <QAbstractTableModel>
#include <QList>

namespace Vela {

class Messages;
class Project;

/// The table of all messages of a project: text, file, and line from 1. It stores no message
/// itself, and asks its sources, in the order of their registration, for each cell.
class VELA_EXPORT MessageList : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TextColumn, FileColumn, LineColumn, ColumnCount };

    explicit MessageList(Project *project);
    ~MessageList() override;

    Project *project() const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

    /// Adds a source. It stays its file's, and leaves the list by itself when it is destroyed.
    void registerMessages(Messages *messages);
    void unregisterMessages(Messages *messages);

    unsigned int errorCount() const;
    unsigned int warningCount() const;
    /// Returns the message of a row and sets \a source to the list that holds it. A row past the
    /// end gives an empty message of type Message::Any and leaves \a source alone.
    Message messageAt(int row, const Messages *&source) const;

    /// Counts anew and resets all rows.
    void update();

Q_SIGNALS:
    /// The counts and rows have changed.
    void updated();

private:
    friend class Messages;

    /// Counts one source anew, which is enough when only that one has changed: a project of many
    /// files registers a source for each.
    void sourceChanged(Messages *messages);
    void recount(Messages *messages);
    void discount(Messages *messages);
    void resetRows();

    Project *m_project;
    QList<Messages *> m_sources;
    unsigned int m_counts[3] = {0, 0, 0}; ///< by type
    int m_rowCount = 0;
    Message::Type m_filter = Message::Any;
};

} // namespace Vela

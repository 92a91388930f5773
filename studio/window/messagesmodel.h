// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/messagereport.h"

#include <QAbstractTableModel>
#include <QPointer>
#include <QSortFilterProxyModel>
#include <QTimer>

namespace Vela {
class Interface;
class ParentProject;
} // namespace Vela

namespace Studio {

/// The messages of all opened projects as one table: the rows of MessageReport. Each project's
/// MessageList says when they are others; the rows are then taken anew, once for many changes that
/// follow each other, so that reading thousands of files stays linear.
class MessagesModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TextColumn, FileColumn, LineColumn, ColumnCount };
    /// The Vela::Message::Type of a row, as an int.
    static constexpr int TypeRole = Qt::UserRole;

    explicit MessagesModel(const Vela::Interface &host, QObject *parent = nullptr);

    /// Follows another parent project, which must live until the next call; null follows none.
    void setParentProject(const Vela::ParentProject *parent);
    const MessageRecord &record(int row) const;
    int count(Vela::Message::Type type) const;
    /// Returns the files that have messages, each once and sorted.
    QStringList files() const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

    /// Takes the rows anew, now.
    void update();
    /// Connects itself to projects that were opened since and takes the rows anew, soon.
    void followProjects();

Q_SIGNALS:
    /// The rows and counts have been taken anew.
    void updated();

private:
    void updateSoon();
    void take(const QList<MessageRecord> &records);

    const Vela::Interface &m_host;
    const Vela::ParentProject *m_parent = nullptr;
    QList<MessageRecord> m_records;
    int m_counts[3] = {0, 0, 0};
    QTimer m_updateLater;
};

/// Those of the messages that the user wants to see.
class MessagesFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit MessagesFilter(QObject *parent = nullptr);

    void setTypeShown(Vela::Message::Type type, bool shown);
    /// Shows only messages that hold \a text, whatever the case.
    void setText(const QString &text);
    /// Shows only messages of \a file; an empty one stands for all.
    void setFile(const QString &file);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    bool m_shown[3] = {true, true, true};
    QString m_text;
    QString m_file;
};

} // namespace Studio

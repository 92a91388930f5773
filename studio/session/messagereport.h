// SPDX-License-Identifier: MIT
#pragma once

#include "project/message.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace Vela {
class JobStats;
class ParentProject;
} // namespace Vela

namespace Studio {

/// One message of a parent project, as users read it.
struct MessageRecord
{
    QString file;            ///< relative to the root
    unsigned int line = 1;   ///< from 1
    unsigned int column = 1; ///< from 1
    Vela::Message::Type type = Vela::Message::Error;
    QString text;
};

/// All messages of a parent project at one time.
class MessageReport
{
public:
    /// Collects the messages of the opened projects. They are sorted by project, then as the
    /// project orders its files, then by line and column. Files that are not read yet say nothing:
    /// see loadAll().
    explicit MessageReport(const Vela::ParentProject &parent);

    /// Makes every file of the opened projects read its content and so know its messages. Engines
    /// may leave reading to the first need; whether a file is empty can only be told from there.
    static void loadAll(const Vela::ParentProject &parent);
    /// Reads the files that say nothing, but might not have been read, once more from their
    /// archives: those that can have no messages, and those that are empty. Returns those that
    /// cannot be read, relative to the root; \a job, which may be null, is told the reasons. Leaves
    /// modified files alone.
    static QStringList unreadableFiles(const Vela::ParentProject &parent, Vela::JobStats *job);

    const QList<MessageRecord> &records() const;
    int count(Vela::Message::Type type) const;

    /// Returns "error", "warning" or "information".
    static QString typeName(Vela::Message::Type type);
    /// Returns \a text on one line: control characters, which a terminal would obey, become
    /// replacement characters.
    static QString printable(QString text);
    /// Returns "file:line:column: type: text", as printable().
    static QString line(const MessageRecord &record);
    /// Returns a line for each record, each with a line end.
    QString text() const;

private:
    QList<MessageRecord> m_records;
};

} // namespace Studio

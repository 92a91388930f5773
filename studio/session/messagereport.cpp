// SPDX-License-Identifier: MIT
#include "studio/session/messagereport.h"

#include "code/codedocument.h"
#include "project/messages.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "project/projectfile.h"
#include "studio/session/documents.h"
#include "studio/session/projectcontents.h"

#include <QSet>

#include <algorithm>
#include <tuple>

namespace Studio {

namespace {

QList<MessageRecord> recordsOf(const QString &name, const Vela::Messages &messages)
{
    QList<MessageRecord> result;
    const int count = messages.count(Vela::Message::Any);
    for (int i = 0; i < count; ++i) {
        const Vela::Message message = messages.at(static_cast<unsigned int>(i), Vela::Message::Any);
        result.append({name, message.line + 1, message.column + 1, message.type, message.text});
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const MessageRecord &a, const MessageRecord &b) {
                         return std::tie(a.line, a.column) < std::tie(b.line, b.column);
                     });
    return result;
}

/// Returns the messages about what a file shows: those of the text for one that is a view of a
/// text.
const Vela::Messages *messagesOf(Vela::ProjectFile *file)
{
    const Vela::CodeDocument *document = documentOf(file);
    return document ? document->messages() : file->messages();
}

/// Returns whether a file says nothing because it could not be read, for all that can be told
/// without reading it.
bool mayBeUnread(Vela::ProjectFile *file)
{
    if (file->isModified() || !file->fileExists())
        return false;
    const Vela::Messages *const messages = messagesOf(file);
    return !messages || (messages->count(Vela::Message::Any) == 0 && file->isEmpty());
}

} // namespace

MessageReport::MessageReport(const Vela::ParentProject &parent)
{
    QSet<const Vela::Messages *> known;
    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = orderedFiles(*project);
        for (Vela::ProjectFile *file : files) {
            const Vela::Messages *const messages = messagesOf(file);
            if (!messages || known.contains(messages))
                continue;
            known.insert(messages);
            if (messages->count(Vela::Message::Any) > 0)
                m_records += recordsOf(pathOf(parent, *file), *messages);
        }
    }
}

void MessageReport::loadAll(const Vela::ParentProject &parent)
{
    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = orderedFiles(*project);
        for (const Vela::ProjectFile *file : files)
            file->isEmpty();
    }
}

QStringList MessageReport::unreadableFiles(const Vela::ParentProject &parent, Vela::JobStats *job)
{
    QStringList result;
    const QList<Vela::Project *> projects = sortedProjects(parent);
    for (const Vela::Project *project : projects) {
        const QList<Vela::ProjectFile *> files = orderedFiles(*project);
        for (Vela::ProjectFile *file : files) {
            if (mayBeUnread(file) && !file->fromFile(file->archive(), file->fileName(), 0, job))
                result.append(relativeToRoot(parent, file->fileName()));
        }
    }
    return result;
}

const QList<MessageRecord> &MessageReport::records() const
{
    return m_records;
}

int MessageReport::count(Vela::Message::Type type) const
{
    return static_cast<int>(
        std::count_if(m_records.begin(), m_records.end(), [type](const MessageRecord &record) {
            return type == Vela::Message::Any || record.type == type;
        }));
}

QString MessageReport::typeName(Vela::Message::Type type)
{
    switch (type) {
    case Vela::Message::Warning:
        return QStringLiteral("warning");
    case Vela::Message::Information:
        return QStringLiteral("information");
    default:
        return QStringLiteral("error");
    }
}

QString MessageReport::printable(QString text)
{
    text = text.simplified();
    for (QChar &c : text) {
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format)
            c = QChar::ReplacementCharacter;
    }
    return text;
}

QString MessageReport::line(const MessageRecord &record)
{
    return printable(QStringLiteral("%1:%2:%3: %4: %5")
                         .arg(record.file, QString::number(record.line),
                              QString::number(record.column), typeName(record.type), record.text));
}

QString MessageReport::text() const
{
    QString result;
    for (const MessageRecord &record : m_records)
        result += line(record) + QLatin1Char('\n');
    return result;
}

} // namespace Studio

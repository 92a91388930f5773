// SPDX-License-Identifier: MIT
#include "studio/window/messagesmodel.h"

#include "frame/interface.h"
#include "project/messagelist.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "studio/session/documents.h"

#include <QElapsedTimer>
#include <QSet>

namespace Studio {

namespace {

/// While a large project is read its messages change all the time; a table that follows four times
/// a second is fast enough for the eye.
constexpr int UpdateDelay = 250; // ms
constexpr int LargestShare = 10; // a tenth of the time at most goes into it

/// Returns whether two records are the same message, perhaps at another place of its file.
bool isSame(const MessageRecord &a, const MessageRecord &b)
{
    return a.type == b.type && a.file == b.file && a.text == b.text;
}

QString typeIcon(Vela::Message::Type type)
{
    return MessageReport::typeName(type);
}

} // namespace

MessagesModel::MessagesModel(const Vela::Interface &host, QObject *parent)
    : QAbstractTableModel(parent)
    , m_host(host)
{
    m_updateLater.setSingleShot(true);
    m_updateLater.setInterval(UpdateDelay);
    connect(&m_updateLater, &QTimer::timeout, this, [this] {
        // A file has no name while it is being saved.
        if (m_parent && isSaving(*m_parent))
            m_updateLater.start();
        else
            update();
    });
}

void MessagesModel::setParentProject(const Vela::ParentProject *parent)
{
    m_parent = parent;
    if (parent)
        followProjects();
    update();
}

void MessagesModel::followProjects()
{
    if (!m_parent)
        return;
    const QList<Vela::Project *> projects = m_parent->openedProjects();
    for (const Vela::Project *project : projects) {
        connect(project->messages(), &Vela::MessageList::updated, this, &MessagesModel::updateSoon,
                Qt::UniqueConnection);
    }
    updateSoon();
}

void MessagesModel::updateSoon()
{
    // Where the rows take their time they wait for a pause.
    if (!m_updateLater.isActive() || m_updateLater.interval() > UpdateDelay)
        m_updateLater.start();
}

const MessageRecord &MessagesModel::record(int row) const
{
    return m_records.at(row);
}

int MessagesModel::count(Vela::Message::Type type) const
{
    return type == Vela::Message::Any ? m_records.size() : m_counts[type];
}

QStringList MessagesModel::files() const
{
    QSet<QString> files;
    for (const MessageRecord &record : m_records)
        files.insert(record.file);
    QStringList sorted = files.values();
    sorted.sort();
    return sorted;
}

int MessagesModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_records.size();
}

int MessagesModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MessagesModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    const MessageRecord &record = m_records.at(index.row());
    if (role == TypeRole)
        return int(record.type);
    if (role == Qt::DecorationRole && index.column() == TextColumn)
        return m_host.icon(typeIcon(record.type));
    if (role == Qt::ToolTipRole)
        return MessageReport::line(record);
    if (role == Qt::TextAlignmentRole && index.column() == LineColumn)
        return int(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return QVariant();
    switch (index.column()) {
    case TextColumn:
        return record.text.simplified();
    case FileColumn:
        return record.file;
    default:
        return record.line;
    }
}

QVariant MessagesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    switch (section) {
    case TextColumn:
        return tr("Message");
    case FileColumn:
        return tr("File");
    default:
        return tr("Line");
    }
}

void MessagesModel::update()
{
    m_updateLater.stop();
    QElapsedTimer time;
    time.start();
    take(m_parent ? MessageReport(*m_parent).records() : QList<MessageRecord>());
    // Typing in a project of very many messages must not wait for their table.
    m_updateLater.setInterval(qMax(UpdateDelay, LargestShare * int(time.elapsed())));
    Q_EMIT updated();
}

/// Replaces the rows between those that stay at the top and at the bottom, so that the current row
/// and what is scrolled to survive.
void MessagesModel::take(const QList<MessageRecord> &records)
{
    const int shorter = qMin(records.size(), m_records.size());
    int top = 0;
    while (top < shorter && isSame(records.at(top), m_records.at(top)))
        ++top;
    int bottom = 0;
    while (bottom < shorter - top
           && isSame(records.at(records.size() - 1 - bottom),
                     m_records.at(m_records.size() - 1 - bottom)))
        ++bottom;
    const int gone = m_records.size() - top - bottom;
    const int come = records.size() - top - bottom;
    if (gone > 0) {
        beginRemoveRows(QModelIndex(), top, top + gone - 1);
        m_records.erase(m_records.begin() + top, m_records.begin() + top + gone);
        endRemoveRows();
    }
    if (come > 0)
        beginInsertRows(QModelIndex(), top, top + come - 1);
    m_records = records;
    std::fill(std::begin(m_counts), std::end(m_counts), 0);
    for (const MessageRecord &record : records)
        ++m_counts[record.type];
    if (come > 0)
        endInsertRows();
    // The rows that stay may stand on other lines.
    if (top + bottom > 0)
        Q_EMIT dataChanged(index(0, 0), index(records.size() - 1, ColumnCount - 1));
}

MessagesFilter::MessagesFilter(QObject *parent)
    : QSortFilterProxyModel(parent)
{
}

void MessagesFilter::setTypeShown(Vela::Message::Type type, bool shown)
{
    m_shown[type] = shown;
    invalidateFilter();
}

void MessagesFilter::setText(const QString &text)
{
    m_text = text;
    invalidateFilter();
}

void MessagesFilter::setFile(const QString &file)
{
    m_file = file;
    invalidateFilter();
}

bool MessagesFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    Q_UNUSED(parent)
    const MessageRecord &record = static_cast<MessagesModel *>(sourceModel())->record(row);
    return m_shown[record.type] && (m_file.isEmpty() || record.file == m_file)
        && record.text.contains(m_text, Qt::CaseInsensitive);
}

} // namespace Studio

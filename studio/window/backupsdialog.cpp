// SPDX-License-Identifier: MIT
#include "studio/window/backupsdialog.h"

#include "ui_backupsdialog.h"

#include <QDir>
#include <QLocale>
#include <QPushButton>

namespace Studio {

namespace {

enum Column { NameColumn, DateColumn, SizeColumn, FormColumn };

constexpr int IndexRole = Qt::UserRole;

/// A row that is sorted by dates and sizes, not by how they are written.
class BackupItem : public QTreeWidgetItem
{
public:
    BackupItem(const Backup &backup, int index)
        : m_backup(backup)
    {
        const QLocale locale;
        setText(NameColumn, backup.label.isEmpty() ? backup.name : backup.label);
        setText(DateColumn, locale.toString(backup.time, QLocale::ShortFormat));
        setText(SizeColumn, locale.formattedDataSize(backup.size));
        setText(FormColumn,
                backup.packed ? BackupsDialog::tr("packed") : BackupsDialog::tr("folder"));
        setTextAlignment(SizeColumn, Qt::AlignRight | Qt::AlignVCenter);
        setToolTip(NameColumn, QDir::toNativeSeparators(backup.path));
        setData(NameColumn, IndexRole, index);
    }

    bool operator<(const QTreeWidgetItem &other) const override
    {
        const Backup &second = static_cast<const BackupItem &>(other).m_backup;
        switch (treeWidget()->sortColumn()) {
        case DateColumn:
            return m_backup.time < second.time;
        case SizeColumn:
            return m_backup.size < second.size;
        default:
            return QTreeWidgetItem::operator<(other);
        }
    }

private:
    Backup m_backup;
};

} // namespace

BackupsDialog::BackupsDialog(const QList<Backup> &backups, const QString &folder, QWidget *parent)
    : QDialog(parent)
    , m_backups(backups)
    , m_ui(std::make_unique<Ui::BackupsDialog>())
{
    m_ui->setupUi(this);
    m_ui->folder->setText(tr("Folder: %1").arg(QDir::toNativeSeparators(folder)));
    QPushButton *restore = m_ui->buttons->addButton(tr("Restore"), QDialogButtonBox::AcceptRole);
    restore->setObjectName(QStringLiteral("restore"));
    restore->setDefault(true);
    for (int i = 0; i < backups.size(); ++i)
        m_ui->backups->addTopLevelItem(new BackupItem(backups.at(i), i));
    m_ui->backups->sortByColumn(DateColumn, Qt::DescendingOrder);
    for (int column = DateColumn; column <= FormColumn; ++column)
        m_ui->backups->resizeColumnToContents(column);
    m_ui->backups->setColumnWidth(NameColumn, 260);
    m_ui->backups->setCurrentItem(m_ui->backups->topLevelItem(0));
    restore->setEnabled(!backups.isEmpty());

    connect(m_ui->backups, &QTreeWidget::currentItemChanged, restore,
            [restore](const QTreeWidgetItem *item) { restore->setEnabled(item); });
    connect(m_ui->backups, &QTreeWidget::itemActivated, this, &QDialog::accept);
    connect(m_ui->buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

BackupsDialog::~BackupsDialog() = default;

Backup BackupsDialog::chosen() const
{
    const QTreeWidgetItem *item = m_ui->backups->currentItem();
    return item ? m_backups.at(item->data(NameColumn, IndexRole).toInt()) : Backup();
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/window/recoverydialog.h"

#include "frame/textcodecs.h"
#include "ui_recoverydialog.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>

namespace Studio {

namespace {

constexpr qint64 PreviewSize = 64 * 1024;

QString describe(const QDateTime &time, qint64 size)
{
    const QLocale locale;
    return RecoveryDialog::tr("%1, %2").arg(locale.toString(time, QLocale::ShortFormat),
                                            locale.formattedDataSize(size));
}

QString previewOf(const QString &name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return RecoveryDialog::tr("The file cannot be read.");
    const QByteArray data = file.read(PreviewSize);
    if (data.contains('\0'))
        return RecoveryDialog::tr("There is no preview of this kind of file.");
    int codec = -1;
    return Vela::TextCodecs::stringFromData(data, &codec);
}

} // namespace

RecoveryDialog::RecoveryDialog(const QList<InterruptedSave> &saves, QWidget *parent)
    : QDialog(parent)
    , m_saves(saves)
    , m_ui(std::make_unique<Ui::RecoveryDialog>())
{
    m_ui->setupUi(this);
    for (int i = 0; i < saves.size(); ++i)
        addRow(i);
    m_ui->saves->setColumnWidth(0, 300);
    m_ui->saves->resizeColumnToContents(1);
    connect(m_ui->saves, &QTreeWidget::currentItemChanged, this, &RecoveryDialog::showPreview);
    m_ui->saves->setCurrentItem(m_ui->saves->topLevelItem(0));

    QPushButton *recover = m_ui->buttons->addButton(tr("Recover"), QDialogButtonBox::ActionRole);
    QPushButton *discard =
        m_ui->buttons->addButton(tr("Clear Away"), QDialogButtonBox::DestructiveRole);
    m_ui->buttons->addButton(tr("Ask Again Later"), QDialogButtonBox::RejectRole);
    recover->setObjectName(QStringLiteral("recover"));
    discard->setObjectName(QStringLiteral("discard"));
    recover->setDefault(true);
    connect(recover, &QPushButton::clicked, this, &RecoveryDialog::recoverTicked);
    connect(discard, &QPushButton::clicked, this, &RecoveryDialog::discardTicked);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

RecoveryDialog::~RecoveryDialog() = default;

void RecoveryDialog::addRow(int index)
{
    const InterruptedSave &save = m_saves.at(index);
    auto *item = new QTreeWidgetItem(m_ui->saves);
    item->setText(0, QFileInfo(save.target).fileName());
    item->setToolTip(0, save.temporary);
    item->setText(1, describe(save.temporaryTime, save.temporarySize));
    item->setText(2,
                  !save.targetExists  ? tr("is gone")
                      : !save.differs ? tr("has the same content")
                                      : describe(save.targetTime, save.targetSize));
    item->setData(0, Qt::UserRole, index);
    item->setCheckState(0, Qt::Checked);
}

void RecoveryDialog::recoverTicked()
{
    forTicked([this](const InterruptedSave &save, QString *error) {
        QString kept;
        if (!Recovery::recover(save, &kept, error))
            return false;
        Q_EMIT recovered(save.target);
        return true;
    });
}

void RecoveryDialog::discardTicked()
{
    if (QMessageBox::question(this, tr("Clear away?"),
                              tr("What the interrupted saves had written will be lost. Clear it "
                                 "away?"),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        == QMessageBox::Yes)
        forTicked(&Recovery::discard);
}

template <typename Act>
void RecoveryDialog::forTicked(Act act)
{
    QStringList errors;
    for (int row = m_ui->saves->topLevelItemCount() - 1; row >= 0; --row) {
        QTreeWidgetItem *item = m_ui->saves->topLevelItem(row);
        if (item->checkState(0) != Qt::Checked)
            continue;
        QString error;
        if (act(m_saves.at(item->data(0, Qt::UserRole).toInt()), &error))
            delete item;
        else
            errors.append(error);
    }
    if (!errors.isEmpty())
        QMessageBox::warning(this, windowTitle(), errors.join(QLatin1Char('\n')));
    if (m_ui->saves->topLevelItemCount() == 0)
        accept();
}

void RecoveryDialog::showPreview()
{
    const QTreeWidgetItem *item = m_ui->saves->currentItem();
    m_ui->preview->setPlainText(
        item ? previewOf(m_saves.at(item->data(0, Qt::UserRole).toInt()).temporary) : QString());
}

} // namespace Studio

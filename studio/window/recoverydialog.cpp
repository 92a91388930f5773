// SPDX-License-Identifier: MIT
#include "studio/window/recoverydialog.h"

#include "studio/session/comparedlines.h"
#include "ui_recoverydialog.h"

#include <QFontDatabase>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>

#include <algorithm>

namespace Studio {

namespace {

constexpr int RowsShown = 3000; // of the comparison
constexpr int RowsAbove = 3;    // of the first difference that are in sight
constexpr double MarkStrength = 0.25;

QColor markColor(const QPalette &palette)
{
    const QColor base = palette.color(QPalette::Base);
    const QColor highlight = palette.color(QPalette::Highlight);
    const auto mixed = [](double a, double b) { return a + (b - a) * MarkStrength; };
    return QColor::fromRgbF(mixed(base.redF(), highlight.redF()),
                            mixed(base.greenF(), highlight.greenF()),
                            mixed(base.blueF(), highlight.blueF()));
}

/// Shows a column of the comparison. A line that differs is marked by a background, one that is
/// missing by a pattern.
void showColumn(QPlainTextEdit &view, const QVector<ComparedLine> &lines,
                QString ComparedLine::*text, bool ComparedLine::*isThere)
{
    QStringList texts;
    for (const ComparedLine &line : lines)
        texts.append(line.*text);
    view.setPlainText(texts.join(QLatin1Char('\n')));
    QList<QTextEdit::ExtraSelection> marks;
    QTextBlock block = view.document()->begin();
    for (int row = 0; row < lines.size(); ++row, block = block.next()) {
        if (!lines.at(row).differs)
            continue;
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(block);
        mark.format.setProperty(QTextFormat::FullWidthSelection, true);
        mark.format.setBackground(
            lines.at(row).*isThere ? QBrush(markColor(view.palette()))
                                   : QBrush(view.palette().color(QPalette::Mid), Qt::BDiagPattern));
        marks.append(mark);
    }
    view.setExtraSelections(marks);
}

} // namespace

RecoveryDialog::RecoveryDialog(const QList<RecoveryItem> &items, QWidget *parent)
    : QDialog(parent)
    , m_items(items)
    , m_ui(std::make_unique<Ui::RecoveryDialog>())
{
    m_ui->setupUi(this);
    const auto has = [&items](RecoveryItem::Kind kind) {
        return std::any_of(items.begin(), items.end(),
                           [kind](const RecoveryItem &item) { return item.kind == kind; });
    };
    m_ui->splitter->setStretchFactor(1, 1);
    for (QPlainTextEdit *column : {m_ui->present, m_ui->preview})
        column->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_ui->aboutTexts->setVisible(has(RecoveryItem::Text));
    m_ui->aboutSaves->setVisible(has(RecoveryItem::Save));
    for (int i = 0; i < items.size(); ++i)
        addRow(i);
    for (int column = 0; column < m_ui->items->columnCount(); ++column)
        m_ui->items->resizeColumnToContents(column);
    connect(m_ui->items, &QTreeWidget::itemChanged, this, &RecoveryDialog::untickOthers);
    connect(m_ui->items, &QTreeWidget::currentItemChanged, this, &RecoveryDialog::showPreview);
    connect(m_ui->present->verticalScrollBar(), &QScrollBar::valueChanged,
            m_ui->preview->verticalScrollBar(), &QScrollBar::setValue);
    connect(m_ui->preview->verticalScrollBar(), &QScrollBar::valueChanged,
            m_ui->present->verticalScrollBar(), &QScrollBar::setValue);
    m_ui->items->setCurrentItem(m_ui->items->topLevelItem(0));
    makeButtons();
}

RecoveryDialog::~RecoveryDialog() = default;

void RecoveryDialog::makeButtons()
{
    QPushButton *recover = m_ui->buttons->addButton(tr("Recover"), QDialogButtonBox::ActionRole);
    QPushButton *discard =
        m_ui->buttons->addButton(tr("Discard"), QDialogButtonBox::DestructiveRole);
    QPushButton *later = m_ui->buttons->addButton(tr("Later"), QDialogButtonBox::RejectRole);
    recover->setObjectName(QStringLiteral("recover"));
    discard->setObjectName(QStringLiteral("discard"));
    later->setObjectName(QStringLiteral("later"));
    recover->setDefault(true);
    connect(recover, &QPushButton::clicked, this, [this] { forTicked(&RecoveryItem::recover); });
    connect(discard, &QPushButton::clicked, this, &RecoveryDialog::discardTicked);
    connect(m_ui->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

// The first one of a file is ticked.
void RecoveryDialog::addRow(int index)
{
    const RecoveryItem &item = m_items.at(index);
    const bool isFirst =
        std::none_of(m_items.begin(), m_items.begin() + index,
                     [&item](const RecoveryItem &other) { return other.file == item.file; });
    auto *row = new QTreeWidgetItem(m_ui->items);
    row->setText(0, item.file);
    row->setToolTip(0, item.place);
    row->setText(1, item.kind == RecoveryItem::Text ? tr("Unsaved text") : tr("Interrupted save"));
    row->setText(2, QLocale().toString(item.time, QLocale::ShortFormat));
    row->setText(3, item.presentFile);
    row->setData(0, Qt::UserRole, index);
    row->setCheckState(0, isFirst ? Qt::Checked : Qt::Unchecked);
}

const RecoveryItem &RecoveryDialog::itemOf(const QTreeWidgetItem &row) const
{
    return m_items.at(row.data(0, Qt::UserRole).toInt());
}

void RecoveryDialog::untickOthers(const QTreeWidgetItem *row)
{
    if (row->checkState(0) != Qt::Checked)
        return;
    for (int i = 0; i < m_ui->items->topLevelItemCount(); ++i) {
        QTreeWidgetItem *other = m_ui->items->topLevelItem(i);
        if (other != row && itemOf(*other).file == itemOf(*row).file)
            other->setCheckState(0, Qt::Unchecked);
    }
}

void RecoveryDialog::discardTicked()
{
    if (QMessageBox::question(this, tr("Discard?"), tr("What is ticked will be lost. Discard it?"),
                              QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        == QMessageBox::Yes)
        forTicked(&RecoveryItem::discard);
}

void RecoveryDialog::forTicked(RecoveryItem::Act RecoveryItem::*act)
{
    QStringList errors;
    for (int i = m_ui->items->topLevelItemCount() - 1; i >= 0; --i) {
        QTreeWidgetItem *row = m_ui->items->topLevelItem(i);
        if (row->checkState(0) != Qt::Checked)
            continue;
        QString error;
        if ((itemOf(*row).*act)(&error))
            delete row;
        else
            errors.append(error);
    }
    if (!errors.isEmpty())
        QMessageBox::warning(this, windowTitle(), errors.join(QLatin1Char('\n')));
    if (m_ui->items->topLevelItemCount() == 0)
        accept();
}

void RecoveryDialog::showPreview()
{
    const QTreeWidgetItem *row = m_ui->items->currentItem();
    const RecoveryItem::Preview preview = row ? itemOf(*row).preview() : RecoveryItem::Preview();
    QVector<ComparedLine> lines = compareLines(preview.present, preview.left);
    const auto different = std::find_if(lines.constBegin(), lines.constEnd(),
                                        [](const ComparedLine &line) { return line.differs; });
    const int first = different == lines.constEnd() ? 0 : int(different - lines.constBegin());
    int top = qMax(0, first - RowsAbove);
    QStringList notes(preview.note);
    if (lines.size() > RowsShown) {
        notes.append(tr("Only a part is shown, from line %1.").arg(top + 1));
        lines = lines.mid(top, RowsShown);
        top = 0;
    }
    showColumn(*m_ui->present, lines, &ComparedLine::before, &ComparedLine::hasBefore);
    showColumn(*m_ui->preview, lines, &ComparedLine::after, &ComparedLine::hasAfter);
    m_ui->present->verticalScrollBar()->setValue(top);
    m_ui->preview->verticalScrollBar()->setValue(top);
    m_ui->note->setText(notes.join(QLatin1Char(' ')).trimmed());
}

} // namespace Studio

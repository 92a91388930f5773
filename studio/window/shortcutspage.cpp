// SPDX-License-Identifier: MIT
#include "studio/window/shortcutspage.h"

#include "studio/actionregistry.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Studio {

namespace {

enum Column { TextColumn, KeysColumn };

constexpr int KeyRole = Qt::UserRole;

QString plainText(QString text)
{
    return text.remove(QLatin1Char('&')).remove(QStringLiteral("..."));
}

} // namespace

ShortcutsPage::ShortcutsPage(ActionRegistry &actions, QWidget *parent)
    : QWidget(parent)
    , m_actions(actions)
    , m_search(new QLineEdit)
    , m_list(new QTreeWidget)
    , m_keys(new QKeySequenceEdit)
    , m_clear(new QPushButton(tr("&None")))
    , m_reset(new QPushButton(tr("&Default")))
    , m_conflict(new QLabel)
{
    m_search->setObjectName(QStringLiteral("shortcutSearch"));
    m_search->setPlaceholderText(tr("Search for a command or its keys"));
    m_search->setAccessibleName(m_search->placeholderText());
    m_search->setClearButtonEnabled(true);
    m_list->setObjectName(QStringLiteral("shortcuts"));
    m_list->setAccessibleName(tr("Shortcuts"));
    m_list->setHeaderLabels({tr("Command"), tr("Keys")});
    m_list->setRootIsDecorated(false);
    m_list->setAlternatingRowColors(true);
    m_list->setUniformRowHeights(true);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(TextColumn, QHeaderView::Stretch);
    m_list->header()->resizeSection(KeysColumn, 160);
    m_conflict->setObjectName(QStringLiteral("shortcutConflict"));
    m_conflict->setWordWrap(true);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_search);
    layout->addWidget(m_list);
    layout->addLayout(makeEditRow());
    layout->addWidget(m_conflict);
    connect(m_search, &QLineEdit::textChanged, this, &ShortcutsPage::filter);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &ShortcutsPage::showCurrent);
    fill();
}

QLayout *ShortcutsPage::makeEditRow()
{
    m_keys->setObjectName(QStringLiteral("shortcutKeys"));
    m_keys->setAccessibleName(tr("Keys of the command"));
    m_clear->setAutoDefault(false);
    m_reset->setAutoDefault(false);
    connect(m_keys, &QKeySequenceEdit::editingFinished, this, &ShortcutsPage::storeCurrent);
    connect(m_keys, &QKeySequenceEdit::keySequenceChanged, this, &ShortcutsPage::showConflicts);
    connect(m_clear, &QPushButton::clicked, this, [this] {
        m_keys->clear();
        storeCurrent();
    });
    connect(m_reset, &QPushButton::clicked, this, &ShortcutsPage::resetCurrent);
    auto *row = new QHBoxLayout;
    row->addWidget(new QLabel(tr("New keys:")));
    row->addWidget(m_keys, 1);
    row->addWidget(m_clear);
    row->addWidget(m_reset);
    return row;
}

void ShortcutsPage::fill()
{
    const QVector<ActionRegistry::Entry> entries = m_actions.actions();
    for (const ActionRegistry::Entry &entry : entries) {
        auto *item = new QTreeWidgetItem(m_list);
        item->setText(TextColumn, plainText(entry.spec.text));
        item->setIcon(TextColumn, entry.action->icon());
        item->setData(TextColumn, KeyRole, entry.spec.key);
        updateRow(item);
    }
    m_list->sortItems(TextColumn, Qt::AscendingOrder);
    m_list->setCurrentItem(m_list->topLevelItem(0));
}

void ShortcutsPage::filter()
{
    const QString wanted = m_search->text();
    for (int row = 0; row < m_list->topLevelItemCount(); ++row) {
        QTreeWidgetItem *item = m_list->topLevelItem(row);
        item->setHidden(!item->text(TextColumn).contains(wanted, Qt::CaseInsensitive)
                        && !item->text(KeysColumn).contains(wanted, Qt::CaseInsensitive));
    }
}

void ShortcutsPage::showCurrent()
{
    m_keys->setKeySequence(m_actions.shortcut(currentKey()));
    showConflicts();
}

void ShortcutsPage::storeCurrent()
{
    if (currentKey().isEmpty())
        return;
    m_actions.setShortcut(currentKey(), m_keys->keySequence());
    updateRow(m_list->currentItem());
}

void ShortcutsPage::resetCurrent()
{
    if (currentKey().isEmpty())
        return;
    m_actions.resetShortcut(currentKey());
    updateRow(m_list->currentItem());
    showCurrent();
}

void ShortcutsPage::showConflicts()
{
    QStringList names;
    const QStringList keys = m_actions.conflicts(currentKey(), m_keys->keySequence());
    for (const QString &key : keys)
        names.append(plainText(m_actions.action(key)->text()));
    m_conflict->setText(names.isEmpty() ? QString()
                                        : tr("These keys also belong to: %1. Neither will work.")
                                              .arg(names.join(QStringLiteral(", "))));
}

void ShortcutsPage::updateRow(QTreeWidgetItem *item)
{
    const QString key = item->data(TextColumn, KeyRole).toString();
    const QKeySequence keys = m_actions.shortcut(key);
    QFont changed = font();
    changed.setBold(keys != m_actions.defaultShortcut(key));
    item->setText(KeysColumn, keys.toString(QKeySequence::NativeText));
    item->setFont(KeysColumn, changed);
}

QString ShortcutsPage::currentKey() const
{
    const QTreeWidgetItem *item = m_list->currentItem();
    return item ? item->data(TextColumn, KeyRole).toString() : QString();
}

} // namespace Studio

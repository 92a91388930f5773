// SPDX-License-Identifier: MIT
#include "studio/window/commandpalette.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

namespace Studio {

namespace {

constexpr int ShortcutRole = Qt::UserRole + 1;
constexpr int ShownCommands = 12;

QString shownText(const CommandPalette::Command &command)
{
    QString text = command.action->text();
    if (!command.group.isEmpty())
        text = command.group + QStringLiteral(": ") + text;
    return text.remove(QLatin1Char('&')).remove(QStringLiteral("..."));
}

QIcon emptyIcon()
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    return QIcon(pixmap);
}

/// A row with the action's shortcut at its right end.
class CommandDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        const bool selected = option.state & QStyle::State_Selected;
        painter->save();
        painter->setPen(
            option.palette.color(selected ? QPalette::HighlightedText : QPalette::PlaceholderText));
        painter->drawText(option.rect.adjusted(0, 0, -8, 0), Qt::AlignRight | Qt::AlignVCenter,
                          index.data(ShortcutRole).toString());
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        return QStyledItemDelegate::sizeHint(option, index) + QSize(0, 8);
    }
};

} // namespace

CommandPalette::CommandPalette(const QList<Command> &commands, QWidget *parent)
    : QDialog(parent)
    , m_typed(new QLineEdit)
    , m_list(new QListWidget)
{
    setObjectName(QStringLiteral("commandPalette"));
    setWindowTitle(tr("Command Palette"));
    for (const Command &command : commands) {
        if (command.action->isEnabled() && !command.action->text().isEmpty())
            m_commands.append(command);
    }
    m_typed->setPlaceholderText(tr("Type a part of a command"));
    m_typed->setAccessibleName(tr("Command"));
    m_typed->installEventFilter(this);
    m_list->setAccessibleName(tr("Commands"));
    m_list->setItemDelegate(new CommandDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setIconSize(QSize(16, 16));
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setFrameShape(QFrame::NoFrame);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_typed);
    layout->addWidget(m_list);
    connect(m_typed, &QLineEdit::textChanged, this, &CommandPalette::list);
    connect(m_list, &QListWidget::itemClicked, this, &CommandPalette::choose);
    list();
    const int row = qMax(24, m_list->sizeHintForRow(0));
    resize(560, 72 + ShownCommands * row);
}

int CommandPalette::rank(const QString &text, const QString &typed)
{
    const int whole = text.indexOf(typed, 0, Qt::CaseInsensitive);
    if (whole >= 0) {
        const bool atWord = whole == 0 || !text.at(whole - 1).isLetterOrNumber();
        return whole + (atWord ? 0 : 100);
    }
    int from = 0;
    int gaps = 0;
    for (const QChar letter : typed) {
        const int place = text.indexOf(letter, from, Qt::CaseInsensitive);
        if (place < 0)
            return -1;
        gaps += place - from;
        from = place + 1;
    }
    return 200 + gaps;
}

QAction *CommandPalette::chosen() const
{
    return m_chosen;
}

bool CommandPalette::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    const int rows = m_list->count();
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Down:
    case Qt::Key_Up: {
        const int step = static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down ? 1 : rows - 1;
        if (rows > 0)
            m_list->setCurrentRow((m_list->currentRow() + step) % rows);
        return true;
    }
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose(m_list->currentItem());
        return true;
    default:
        return QDialog::eventFilter(watched, event);
    }
}

void CommandPalette::list()
{
    QList<QPair<int, Command>> found;
    for (const Command &command : qAsConst(m_commands)) {
        const int fit = command.action ? rank(shownText(command), m_typed->text().trimmed()) : -1;
        if (fit >= 0)
            found.append({fit, command});
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    m_list->clear();
    for (const auto &match : qAsConst(found)) {
        QAction *action = match.second.action;
        const QIcon icon = action->icon().isNull() ? emptyIcon() : action->icon();
        auto *item = new QListWidgetItem(icon, shownText(match.second), m_list);
        item->setData(ShortcutRole, action->shortcut().toString(QKeySequence::NativeText));
        item->setData(Qt::UserRole, QVariant::fromValue(action));
    }
    m_list->setCurrentRow(0);
}

void CommandPalette::choose(QListWidgetItem *item)
{
    if (!item)
        return;
    m_chosen = item->data(Qt::UserRole).value<QAction *>();
    accept();
}

} // namespace Studio

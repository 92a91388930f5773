// SPDX-License-Identifier: MIT
#include "studio/window/messagesdock.h"

#include "frame/interface.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

namespace Studio {

MessagesDock::MessagesDock(const Vela::Interface &host, QWidget *parent)
    : QDockWidget(tr("Messages"), parent)
    , m_model(host)
    , m_view(new QTreeView)
{
    setObjectName(QStringLiteral("messagesDock"));
    m_filter.setSourceModel(&m_model);
    m_view->setObjectName(QStringLiteral("messages"));
    m_view->setAccessibleName(tr("Messages"));
    m_view->setModel(&m_filter);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setAlternatingRowColors(true);
    m_view->setSortingEnabled(true);
    m_view->sortByColumn(-1, Qt::AscendingOrder);
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setSectionResizeMode(MessagesModel::TextColumn, QHeaderView::Stretch);
    m_view->header()->resizeSection(MessagesModel::FileColumn, 260);
    m_view->header()->resizeSection(MessagesModel::LineColumn, 70);
    connect(m_view, &QTreeView::activated, this, &MessagesDock::activate);

    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(makeFilterBar(host));
    layout->addWidget(m_view);
    setWidget(content);

    connect(&m_model, &MessagesModel::updated, this, &MessagesDock::showCounts);
    connect(&m_model, &MessagesModel::updated, this, &MessagesDock::listFiles);
    showCounts();
    listFiles();
}

MessagesModel *MessagesDock::model()
{
    return &m_model;
}

QTreeView *MessagesDock::view() const
{
    return m_view;
}

void MessagesDock::goOn(int step)
{
    const int rows = m_filter.rowCount();
    if (rows == 0)
        return;
    const QModelIndex current = m_view->currentIndex();
    const int from = current.isValid() ? current.row() : (step > 0 ? -1 : 0);
    const QModelIndex next = m_filter.index((from + step + rows) % rows, 0);
    m_view->setCurrentIndex(next);
    activate(next);
}

QWidget *MessagesDock::makeFilterBar(const Vela::Interface &host)
{
    auto *bar = new QWidget;
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(4, 3, 4, 3);
    layout->addWidget(makeTypeButton(host, Vela::Message::Error, tr("Errors")));
    layout->addWidget(makeTypeButton(host, Vela::Message::Warning, tr("Warnings")));
    layout->addWidget(makeTypeButton(host, Vela::Message::Information, tr("Information")));

    m_files = new QComboBox;
    m_files->setObjectName(QStringLiteral("messageFile"));
    m_files->setAccessibleName(tr("Show messages of this file"));
    m_files->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_files->setMinimumContentsLength(24);
    connect(m_files, qOverload<int>(&QComboBox::currentIndexChanged), this,
            [this] { m_filter.setFile(m_files->currentData().toString()); });
    layout->addWidget(m_files);

    m_text = new QLineEdit;
    m_text->setObjectName(QStringLiteral("messageText"));
    m_text->setAccessibleName(tr("Show messages with this text"));
    m_text->setPlaceholderText(tr("Filter by text"));
    m_text->setClearButtonEnabled(true);
    connect(m_text, &QLineEdit::textChanged, &m_filter, &MessagesFilter::setText);
    layout->addWidget(m_text, 1);
    return bar;
}

QToolButton *MessagesDock::makeTypeButton(const Vela::Interface &host, Vela::Message::Type type,
                                          const QString &name)
{
    auto *button = new QToolButton;
    button->setObjectName(QStringLiteral("message_") + MessageReport::typeName(type));
    button->setIcon(host.icon(MessageReport::typeName(type)));
    button->setToolTip(name);
    button->setAccessibleName(name);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setCheckable(true);
    button->setChecked(true);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    connect(button, &QToolButton::toggled, this,
            [this, type](bool shown) { m_filter.setTypeShown(type, shown); });
    m_types[type] = button;
    return button;
}

void MessagesDock::activate(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    const MessageRecord &record = m_model.record(m_filter.mapToSource(index).row());
    Q_EMIT placeWanted(record.file, record.line - 1, record.column - 1);
}

void MessagesDock::showCounts()
{
    for (int type = Vela::Message::Error; type <= Vela::Message::Information; ++type) {
        const int count = m_model.count(static_cast<Vela::Message::Type>(type));
        m_types[type]->setText(QString::number(count));
    }
    const int count = m_model.count(Vela::Message::Any);
    setWindowTitle(count == 0 ? tr("Messages") : tr("Messages (%1)").arg(count));
}

void MessagesDock::listFiles()
{
    const QString shown = m_files->currentData().toString();
    const QSignalBlocker blocker(m_files);
    m_files->clear();
    m_files->addItem(tr("All files"), QString());
    const QStringList files = m_model.files();
    for (const QString &file : files)
        m_files->addItem(file, file);
    m_files->setCurrentIndex(qMax(0, m_files->findData(shown)));
    m_filter.setFile(m_files->currentData().toString());
}

} // namespace Studio

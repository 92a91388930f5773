// SPDX-License-Identifier: MIT
#include "studio/window/structuredock.h"

#include "code/codedocument.h"
#include "studio/session/documents.h"
#include "studio/window/notelabel.h"

#include <QStackedLayout>
#include <QTreeView>
#include <memory>

namespace Studio {

namespace {

constexpr int FollowDelay = 40; // ms

} // namespace

StructureDock::StructureDock(QWidget *parent)
    : QDockWidget(tr("Structure"), parent)
    , m_view(new QTreeView)
    , m_nothing(new NoteLabel)
{
    setObjectName(QStringLiteral("structureDock"));
    m_view->setObjectName(QStringLiteral("structure"));
    m_view->setAccessibleName(tr("Structure of the text"));
    m_view->setHeaderHidden(true);
    m_view->setUniformRowHeights(true);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_nothing->setAlignment(Qt::AlignCenter);
    m_nothing->setWordWrap(true);
    m_followLater.setSingleShot(true);
    m_followLater.setInterval(FollowDelay);
    connect(&m_followLater, &QTimer::timeout, this, &StructureDock::follow);
    connect(m_view, &QTreeView::clicked, this, [this](const QModelIndex &index) {
        if (m_document)
            Q_EMIT lineChosen(m_document->lineNo(index));
    });
    connect(m_view, &QTreeView::activated, this, [this](const QModelIndex &index) {
        if (m_document)
            Q_EMIT lineActivated(m_document->lineNo(index));
    });

    connect(this, &QDockWidget::visibilityChanged, this, &StructureDock::onVisibilityChanged);

    auto *content = new QWidget;
    auto *layout = new QStackedLayout(content);
    layout->addWidget(m_nothing);
    layout->addWidget(m_view);
    setWidget(content);
    setFile(nullptr);
}

void StructureDock::setFile(Vela::ProjectFile *file)
{
    m_followLater.stop();
    QAbstractItemModel *old = m_view->model();
    m_document = documentOf(file);
    QAbstractItemModel *model = m_document ? m_document->model() : nullptr;
    if (model != old) {
        if (old)
            old->disconnect(this);
        const std::unique_ptr<QItemSelectionModel> selection(m_view->selectionModel());
        m_view->setModel(model);
    }
    if (model && model != old) {
        connect(model, &QAbstractItemModel::rowsInserted, this, &StructureDock::showContent);
        connect(model, &QAbstractItemModel::rowsRemoved, this, &StructureDock::showContent);
        connect(model, &QAbstractItemModel::modelReset, this, &StructureDock::showContent);
    }
    m_nothing->setText(model ? tr("The text is empty.") : tr("This file has no structure."));
    showContent();
}

void StructureDock::showContent()
{
    const QAbstractItemModel *model = m_view->model();
    const bool hasRows = model && model->rowCount() > 0;
    auto *layout = static_cast<QStackedLayout *>(widget()->layout());
    layout->setCurrentWidget(hasRows ? static_cast<QWidget *>(m_view) : m_nothing);
}

void StructureDock::followLine(int line)
{
    m_line = line;
    if (m_document && m_isSeen && !m_followLater.isActive())
        m_followLater.start();
}

void StructureDock::follow()
{
    const QModelIndex index =
        m_line < 0 ? QModelIndex() : m_document->indexInLine(unsigned(m_line));
    if (index == m_view->currentIndex())
        return;
    m_view->setCurrentIndex(index);
    if (index.isValid())
        m_view->scrollTo(index);
}

void StructureDock::onVisibilityChanged(bool seen)
{
    m_isSeen = seen;
    followLine(m_line);
}

QTreeView *StructureDock::view() const
{
    return m_view;
}

} // namespace Studio

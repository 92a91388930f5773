// SPDX-License-Identifier: MIT
#include "studio/window/structuredock.h"

#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codefileeditor.h"
#include "editor/codeworkspace.h"
#include "studio/session/documents.h"
#include "studio/window/notelabel.h"

#include <QStackedLayout>
#include <QTreeView>
#include <memory>

namespace Studio {

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
    connect(this, &QDockWidget::visibilityChanged, this, &StructureDock::onVisibilityChanged);

    auto *content = new QWidget;
    auto *layout = new QStackedLayout(content);
    layout->addWidget(m_nothing);
    layout->addWidget(m_view);
    setWidget(content);
    setFile(nullptr, nullptr);
}

void StructureDock::setFile(Vela::ProjectFile *file, Vela::CodeFileEditor *editor)
{
    if (m_editor)
        m_editor->setTreeView(nullptr);
    m_editor = editor;
    const Vela::CodeDocument *document = documentOf(file);
    QAbstractItemModel *model = document ? file->model() : nullptr;
    if (QAbstractItemModel *old = m_view->model())
        old->disconnect(this);
    if (model != m_view->model()) {
        const std::unique_ptr<QItemSelectionModel> selection(m_view->selectionModel());
        m_view->setModel(model);
    }
    if (model) {
        connect(model, &QAbstractItemModel::rowsInserted, this, &StructureDock::showContent);
        connect(model, &QAbstractItemModel::rowsRemoved, this, &StructureDock::showContent);
        connect(model, &QAbstractItemModel::modelReset, this, &StructureDock::showContent);
    }
    m_nothing->setText(model ? tr("The text is empty.") : tr("This file has no structure."));
    showContent();
    if (m_isSeen)
        attach();
}

// Also goes to the row of the cursor.
void StructureDock::attach()
{
    if (!m_editor || !m_editor->document())
        return;
    m_editor->setTreeView(m_view);
    const int line = m_editor->workspace()->editor()->currentLine().line;
    const QModelIndex index = m_editor->document()->indexInLine(unsigned(line));
    if (index.model() != m_view->model())
        return;
    m_view->setCurrentIndex(index);
    m_view->scrollTo(index);
}

void StructureDock::showContent()
{
    const QAbstractItemModel *model = m_view->model();
    const bool hasRows = model && model->rowCount() > 0;
    auto *layout = static_cast<QStackedLayout *>(widget()->layout());
    layout->setCurrentWidget(hasRows ? static_cast<QWidget *>(m_view) : m_nothing);
}

void StructureDock::onVisibilityChanged(bool seen)
{
    m_isSeen = seen;
    if (seen)
        attach();
    else if (m_editor)
        m_editor->setTreeView(nullptr);
}

QTreeView *StructureDock::view() const
{
    return m_view;
}

} // namespace Studio

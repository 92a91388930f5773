// SPDX-License-Identifier: MIT
#include "studio/window/projectdock.h"

#include "project/parentproject.h"
#include "studio/window/openfiles.h"

#include <QHeaderView>
#include <QMenu>
#include <QTreeView>

namespace Studio {

ProjectDock::ProjectDock(const OpenFiles &files, QWidget *parent)
    : QDockWidget(tr("Project"), parent)
    , m_files(files)
    , m_model(files)
    , m_view(new QTreeView)
{
    setObjectName(QStringLiteral("projectDock"));
    m_view->setObjectName(QStringLiteral("projectTree"));
    m_view->setAccessibleName(tr("Project tree"));
    m_view->setModel(&m_model);
    m_view->setHeaderHidden(true);
    m_view->setUniformRowHeights(true);
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    setWidget(m_view);
    connect(m_view, &QTreeView::customContextMenuRequested, this, &ProjectDock::showMenu);
    connect(m_view, &QTreeView::activated, this,
            [this](const QModelIndex &index) { Q_EMIT pathActivated(m_model.path(index)); });
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &index) {
                if (index.isValid())
                    Q_EMIT pathChosen(m_model.path(index));
            });
    // The file of the current row may have been closed.
    connect(m_view, &QTreeView::clicked, this,
            [this](const QModelIndex &index) { Q_EMIT pathChosen(m_model.path(index)); });
    connect(&files, &OpenFiles::filesChanged, m_view->viewport(), qOverload<>(&QWidget::update));
}

void ProjectDock::setParentProject(Vela::ParentProject *parent)
{
    m_model.setParentProject(parent);
    m_view->expandToDepth(0);
}

void ProjectDock::select(const QString &path)
{
    const QModelIndex index = m_model.indexOf(path);
    if (!index.isValid() || index == m_view->currentIndex())
        return;
    m_view->setCurrentIndex(index);
    m_view->scrollTo(index);
}

QStringList ProjectDock::expanded() const
{
    QStringList paths;
    collectExpanded(QModelIndex(), paths);
    return paths;
}

void ProjectDock::collectExpanded(const QModelIndex &folder, QStringList &paths) const
{
    for (int row = 0; row < m_model.rowCount(folder); ++row) {
        const QModelIndex child = m_model.index(row, 0, folder);
        if (!m_view->isExpanded(child))
            continue;
        paths.append(m_model.path(child));
        collectExpanded(child, paths);
    }
}

void ProjectDock::setExpanded(const QStringList &paths)
{
    m_view->collapseAll();
    for (const QString &path : paths) {
        const QModelIndex folder = m_model.indexOf(path);
        if (folder.isValid())
            m_view->expand(folder);
    }
}

QTreeView *ProjectDock::view() const
{
    return m_view;
}

const ProjectTreeModel &ProjectDock::model() const
{
    return m_model;
}

void ProjectDock::showMenu(const QPoint &place)
{
    const QModelIndex index = m_view->indexAt(place);
    // One in no folder of the project has no place to go to, and no project to close.
    if (!index.isValid() || m_model.isLoose(index))
        return;
    const QString path = m_model.path(index);
    const auto add = [this, path](QMenu &menu, const QString &text,
                                  void (ProjectDock::*wanted)(const QString &)) {
        connect(menu.addAction(text), &QAction::triggered, this, [this, path, wanted] {
            Q_EMIT(this->*wanted)(path);
        });
    };
    QMenu menu(this);
    if (m_files.isClosedProject(path))
        add(menu, tr("&Open Project"), &ProjectDock::openProjectWanted);
    else
        add(menu, tr("&Close Project"), &ProjectDock::closeProjectWanted);
    menu.addSeparator();
    add(menu, tr("Show in &File Manager"), &ProjectDock::showInFolderWanted);
    add(menu, tr("Copy &Path"), &ProjectDock::copyPathWanted);
    menu.exec(m_view->viewport()->mapToGlobal(place));
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/projecttreemodel.h"

#include <QDockWidget>
#include <QStringList>

class QTreeView;

namespace Studio {

class OpenFiles;

/// The tree of the parent project. All paths are relative to its root.
class ProjectDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit ProjectDock(const OpenFiles &files, QWidget *parent = nullptr);

    void setParentProject(Vela::ParentProject *parent);
    /// Makes a file current; does nothing for a path that is not shown.
    void select(const QString &path);
    /// Returns the expanded folders.
    QStringList expanded() const;
    /// Expands these folders and no others.
    void setExpanded(const QStringList &paths);
    QTreeView *view() const;
    const ProjectTreeModel &model() const;

Q_SIGNALS:
    /// Another node is current.
    void pathChosen(const QString &path);
    /// Enter was pressed on a node, or it was double clicked.
    void pathActivated(const QString &path);
    void openProjectWanted(const QString &path);
    void closeProjectWanted(const QString &path);
    void showInFolderWanted(const QString &path);
    void copyPathWanted(const QString &path);

private:
    void collectExpanded(const QModelIndex &folder, QStringList &paths) const;
    void showMenu(const QPoint &place);

    const OpenFiles &m_files;
    ProjectTreeModel m_model;
    QTreeView *m_view;
};

} // namespace Studio

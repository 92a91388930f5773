// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/projectsearch.h"
#include "studio/window/searchcontrols.h"

#include <QDockWidget>

class QLabel;
class QLineEdit;
class QModelIndex;
class QStandardItemModel;
class QToolButton;
class QTreeView;

namespace Studio {

class OpenFiles;

/// Lists every match in the files of a project, and replaces them.
class SearchDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit SearchDock(const OpenFiles &files, QWidget *parent = nullptr);

    /// Shows the dock with the focus on the words to find, which are those of \a term unless it has
    /// none.
    void open(const SearchTerm &term);
    /// Searches all files for \a term.
    void search(const SearchTerm &term);
    /// Stops a search and forgets its results.
    void clear();

Q_SIGNALS:
    /// The user chose a match; line and column are from 0.
    void matchWanted(const QString &path, int line, int column, int length);
    /// Files were changed.
    void replaced();
    /// The user wants to go back to the text.
    void left();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QLayout *makeFields();
    void start();
    void add(const QString &path, const ProjectSearch::Results &results);
    void finish();
    QString summary() const;
    void enterList();
    void replaceAll();
    void choose(const QModelIndex &index);
    void updateButtons();

    const OpenFiles &m_files;
    ProjectSearch m_search;
    QLineEdit *m_find;
    QLineEdit *m_replace;
    TermOptions m_options;
    QToolButton *m_start;
    QToolButton *m_stop;
    QToolButton *m_replaceAll;
    QLabel *m_note;
    QTreeView *m_view;
    QStandardItemModel *m_model;
    Vela::RegExp m_expression; ///< that the list shows the matches of
    int m_count = 0;
};

} // namespace Studio

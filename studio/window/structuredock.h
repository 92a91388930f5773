// SPDX-License-Identifier: MIT
#pragma once

#include <QDockWidget>
#include <QTimer>

class QLabel;
class QTreeView;

namespace Vela {
class CodeDocument;
class ProjectFile;
} // namespace Vela

namespace Studio {

/// The tree of what the current text says. Its current row follows the cursor of the text.
class StructureDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit StructureDock(QWidget *parent = nullptr);

    /// Shows the tree of \a file, which must live until the next call; null shows none.
    void setFile(Vela::ProjectFile *file);
    /// Makes the row of a line, from 0, the current one, soon: a cursor can move faster than a
    /// large tree can be looked through.
    void followLine(int line);
    QTreeView *view() const;

Q_SIGNALS:
    /// A row was clicked; \a line is its line from 0.
    void lineChosen(int line);
    /// Enter was pressed on a row.
    void lineActivated(int line);

private:
    void showContent();
    void follow();
    void onVisibilityChanged(bool seen);

    Vela::CodeDocument *m_document = nullptr;
    QTreeView *m_view;
    QLabel *m_nothing;
    QTimer m_followLater;
    int m_line = -1;
    bool m_isSeen = false; // false while another tab hides it, too
};

} // namespace Studio

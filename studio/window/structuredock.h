// SPDX-License-Identifier: MIT
#pragma once

#include <QDockWidget>
#include <QPointer>

class QLabel;
class QTreeView;

namespace Vela {
class CodeFileEditor;
class ProjectFile;
} // namespace Vela

namespace Studio {

/// The tree of what the current text says. While it is seen, the editor of the text has it as its
/// tree view: the current row follows the cursor, and the other way round.
class StructureDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit StructureDock(QWidget *parent = nullptr);

    /// Shows the tree of \a file, which must live until the next call, for \a editor. Null shows
    /// none.
    void setFile(Vela::ProjectFile *file, Vela::CodeFileEditor *editor);

    QTreeView *view() const;

private:
    void showContent();
    void attach();
    void onVisibilityChanged(bool seen);

    QPointer<Vela::CodeFileEditor> m_editor;
    QTreeView *m_view;
    QLabel *m_nothing;
    bool m_isSeen = false; // false while another tab hides it, too
};

} // namespace Studio

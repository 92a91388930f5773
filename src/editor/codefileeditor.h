// SPDX-License-Identifier: MIT
#pragma once

#include "editor/fileeditor.h"

#include <QPoint>
#include <memory>

class QAbstractItemModel;
class QModelIndex;
class QTreeView;

namespace Vela {

class CodeDocument;
class CodeFileEditorPrivate;
class CodeWorkspace;

/// The editor of definition texts in the CodeWorkspace, with an optional view of the tree of nodes.
class VELA_EXPORT CodeFileEditor : public FileEditor
{
    Q_OBJECT

public:
    /// \a name is the editor's key; the string must live as long. The workspace is shared and must
    /// outlive the editor.
    CodeFileEditor(CodeWorkspace *workspace, const char *name);
    ~CodeFileEditor() override;

    const char *name() const override;
    unsigned int areas() const override;
    /// Shows the workspace with the current file.
    void activate() override;
    void deactivate() override;
    void retranslate() override;
    /// Searches the text from the cursor on and shows the first match; with
    /// CodeDocument::FindAll all others are highlighted.
    QList<ProjectFile::SearchResult> find(const RegExp &expression, unsigned int flags) override;
    void replace(const QList<ProjectFile::SearchResult> &results, const QString &text) override;
    void navigateTo(unsigned int line, unsigned int column) override;
    /// Takes a CodeDocument or a CodeNodeFile; anything else stands for none.
    void setCurrentFile(ProjectFile *file) override;
    /// Saves once a save in the background has ended.
    void save() override;
    void cut() override;
    void copy() override;
    void paste() override;

    CodeWorkspace *workspace() const;
    /// Returns the current file's document, or null.
    CodeDocument *document() const;
    /// Uses \a view for the tree of nodes; the view stays its owner's. Null uses none.
    void setTreeView(QTreeView *view);
    QTreeView *treeView() const;
    /// Shows \a model in the tree view.
    void setCodeModel(QAbstractItemModel *model);

public Q_SLOTS:
    /// Saves in UTF-8 from now on, and saves now.
    void saveAsUTF8();

protected Q_SLOTS:
    virtual void currLineChanged(int line);
    virtual void cursorChanged(const QPoint &position);
    virtual void selectedItem(const QModelIndex &index);
    /// These act on the selected rows. Rows below another selected row go with it.
    void deleteNode();
    void copyNode();
    void cutNode();
    /// These act at the row under the last context click.
    void pasteBefore();
    void pasteAfter();

private:
    std::unique_ptr<CodeFileEditorPrivate> d;
};

} // namespace Vela

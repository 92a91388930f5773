// SPDX-License-Identifier: MIT
#pragma once

#include "editor/codefileeditor.h"

#include <memory>

namespace Lantern {

class NodePanel;

/// The editor of one type of Lantern's texts: main files, motion files or scripts. It shows the
/// properties of the cursor's line in a side panel.
class TextEditor : public Vela::CodeFileEditor
{
    Q_OBJECT

public:
    /// \a fileType is a Vela::Project::FileType of a text. The editors share the panel.
    TextEditor(Vela::CodeWorkspace *workspace, int fileType,
               const std::shared_ptr<NodePanel> &panel);
    ~TextEditor() override;

    QAction *action() const override;
    int canEditFileType() const override;
    void activate() override;
    void deactivate() override;
    void retranslate() override;
    void setCurrentFile(Vela::ProjectFile *file) override;

private:
    const std::shared_ptr<NodePanel> m_panel;
    const int m_fileType;
    QAction *m_action;
};

} // namespace Lantern

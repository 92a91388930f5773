// SPDX-License-Identifier: MIT
#include "studio/libraryactions.h"

#include <QVector>
#include <algorithm>

namespace Studio {

LibraryAction LibraryAction::of(const QString &key)
{
    static const QVector<LibraryAction> actions = {
        {"editor_code", "view", Qt::CTRL + Qt::Key_1},
        {"editor_anim", "view", Qt::CTRL + Qt::Key_2},
        {"editor_spr", "view", Qt::CTRL + Qt::Key_3},
        {"editor_snd", "view", Qt::CTRL + Qt::Key_4},
        {"editor_emul", "view", Qt::CTRL + Qt::Key_5},
        {"editor_script", "view", Qt::CTRL + Qt::Key_6},
        {"view_code_bar", "view", {}},
        {"code_snippet_insert", "edit", Qt::CTRL + Qt::Key_J},
        {"code_snippet_new", "edit", {}},
        {"code_snippet_edit", "edit", {}},
        {"code_goto", "edit", Qt::CTRL + Qt::Key_G},
        {"code_prev_error", "edit", Qt::SHIFT + Qt::Key_F4},
        {"code_next_error", "edit", Qt::Key_F4},
        {"code_prev_deprecation", "edit", Qt::SHIFT + Qt::Key_F9},
        {"code_next_deprecation", "edit", Qt::Key_F9},
        {"code_comment", "edit", Qt::CTRL + Qt::Key_Slash},
        {"code_fold_all", "edit", Qt::CTRL + Qt::ALT + Qt::Key_Minus},
        {"code_unfold_all", "edit", Qt::CTRL + Qt::ALT + Qt::Key_Plus},
        {"code_auto_indent", "edit", Qt::CTRL + Qt::Key_I},
        {"code_auto_format", "edit", Qt::CTRL + Qt::SHIFT + Qt::Key_I},
    };
    const auto found = std::find_if(actions.begin(), actions.end(), [&key](const auto &action) {
        return key == QLatin1String(action.key);
    });
    return found == actions.end() ? LibraryAction{nullptr, "", {}} : *found;
}

} // namespace Studio

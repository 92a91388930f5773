// SPDX-License-Identifier: MIT
#include "lantern/editortexts.h"

#include <QString>

namespace Lantern {

EditorTexts *EditorTexts::instance()
{
    static EditorTexts texts;
    return &texts;
}

QString EditorTexts::translate(int id) const
{
    switch (id) {
    case MainFiles:
        return tr("Text");
    case Scripts:
        return tr("Scripts");
    default:
        return QString();
    }
}

QString EditorTexts::toolTip(int id) const
{
    switch (id) {
    case MainFiles:
        return tr("Edit the main file of the project");
    case Scripts:
        return tr("Edit the scripts of the project");
    default:
        return QString();
    }
}

} // namespace Lantern

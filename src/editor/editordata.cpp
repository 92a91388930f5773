// SPDX-License-Identifier: MIT
#include "editor/editordata.h"

namespace Vela {

namespace {

constexpr unsigned int userDataId = 3;

} // namespace

// The user data of objects is deprecated, but it is where the data is looked for.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

EditorData &EditorData::of(QObject &animations)
{
    if (!animations.userData(userDataId))
        animations.setUserData(userDataId, new EditorData);
    return *static_cast<EditorData *>(animations.userData(userDataId));
}

QT_WARNING_POP

} // namespace Vela

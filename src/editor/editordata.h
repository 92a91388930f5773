// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QObject>

namespace Vela {

/// What the animation editor remembers of one list of animations between activations. The list owns
/// it.
class VELA_EXPORT EditorData : public QObjectUserData
{
public:
    /// Returns the data of \a animations, which are made at the first call.
    static EditorData &of(QObject &animations);

    bool onionSkin = false;
    unsigned int onionAnimation = 0;
    unsigned int onionFrame = 0;

private:
    EditorData() = default;
};

} // namespace Vela

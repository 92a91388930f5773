// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QMetaType>
#include <QString>

namespace Vela {

/// The two numbers by which an engine addresses a sprite.
struct VELA_EXPORT SubItem
{
    qint32 group = 0;
    qint32 image = 0;

    /// Reads two whole numbers with a comma between. Returns false for anything else; \a item may
    /// hold the first number then.
    static bool parse(const QString &text, SubItem &item);
};

inline bool operator==(SubItem a, SubItem b)
{
    return a.group == b.group && a.image == b.image;
}

inline bool operator!=(SubItem a, SubItem b)
{
    return !(a == b);
}

inline bool operator<(SubItem a, SubItem b)
{
    return a.group != b.group ? a.group < b.group : a.image < b.image;
}

} // namespace Vela

Q_DECLARE_METATYPE(Vela::SubItem)

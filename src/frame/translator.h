// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

class QString;

namespace Vela {

/// Turns numeric text identifiers into display strings in the user's language. Actions and
/// controls name their texts by such a number.
class VELA_EXPORT Translator
{
public:
    virtual ~Translator();

    /// Returns the text of \a id, or an empty string for an id that is not known.
    virtual QString translate(int id) const = 0;
    /// Returns the tool tip of \a id, or an empty string where there is none.
    virtual QString toolTip(int id) const = 0;
    /// Returns the status bar text of \a id; empty unless a subclass has such texts.
    virtual QString statusTip(int id) const;

protected:
    Translator() = default;
    Q_DISABLE_COPY(Translator)
};

} // namespace Vela

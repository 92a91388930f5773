// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "frame/translator.h"

#include <QObject>

namespace Vela {

/// The library's own texts by number: names of encodings and labels and tooltips of its editors.
///
/// Texts are looked up in the translation context "Vela::FTranslator" at each call, so a
/// QTranslator installed later takes effect with the next call. There is one object for the
/// process; it holds no state, so any thread may ask it.
class VELA_EXPORT FTranslator : public QObject, public Translator
{
    Q_OBJECT
    Q_DISABLE_COPY(FTranslator)

public:
    /// Returns the object of the process, which is made at the first call. Callers do not own it.
    static FTranslator *instance();

    /// Returns the text of \a id in the user's language, or an empty string for an unknown one.
    QString translate(int id) const override;

    /// Returns the tooltip of \a id, or an empty string if the id is unknown or has none.
    QString toolTip(int id) const override;

private:
    struct Entry;
    static const Entry entries[];

    FTranslator() = default;
    static Entry entry(int id);
};

} // namespace Vela

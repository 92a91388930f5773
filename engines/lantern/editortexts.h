// SPDX-License-Identifier: MIT
#pragma once

#include "frame/translator.h"

#include <QCoreApplication>

namespace Lantern {

/// The texts of the actions that Lantern's editors bring.
class EditorTexts : public Vela::Translator
{
    Q_DECLARE_TR_FUNCTIONS(EditorTexts)

public:
    enum Id { MainFiles, Scripts };

    static EditorTexts *instance();

    QString translate(int id) const override;
    QString toolTip(int id) const override;
};

} // namespace Lantern

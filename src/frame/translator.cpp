// SPDX-License-Identifier: MIT
#include "frame/translator.h"

#include <QString>

namespace Vela {

Translator::~Translator() = default;

QString Translator::statusTip(int) const
{
    return QString();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "studio/cli/spritename.h"

#include <QRegularExpression>

namespace Studio {

QString spriteName(Vela::SubItem identifier)
{
    return QStringLiteral("%1_%2").arg(identifier.group).arg(identifier.image);
}

bool readSpriteName(const QString &name, Vela::SubItem *identifier)
{
    static const QRegularExpression pattern(QStringLiteral("^(-?\\d+)_(-?\\d+)$"));
    const QRegularExpressionMatch match = pattern.match(name);
    return match.hasMatch()
        && Vela::SubItem::parse(match.captured(1) + QLatin1Char(',') + match.captured(2),
                                *identifier);
}

} // namespace Studio

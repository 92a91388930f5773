// SPDX-License-Identifier: MIT
#include "lantern/identifiers.h"

#include <QRegularExpression>

namespace Lantern {

bool readIdentifier(const QVariant &variant, Vela::SubItem &identifier)
{
    if (variant.userType() == qMetaTypeId<Vela::SubItem>()) {
        identifier = variant.value<Vela::SubItem>();
        return true;
    }
    static const QRegularExpression name(QStringLiteral("^(-?\\d+)_(-?\\d+)$"));
    QString text = variant.toString();
    const QRegularExpressionMatch match = name.match(text);
    if (match.hasMatch())
        text = match.captured(1) + QLatin1Char(',') + match.captured(2);
    Vela::SubItem read;
    if (!Vela::SubItem::parse(text, read))
        return false;
    identifier = read;
    return true;
}

QString identifierText(Vela::SubItem identifier)
{
    return QString::number(identifier.group) + QLatin1Char(',') + QString::number(identifier.image);
}

QString identifierName(Vela::SubItem identifier)
{
    return QString::number(identifier.group) + QLatin1Char('_') + QString::number(identifier.image);
}

QString spriteNameOf(const QVariant &identifier)
{
    const QString text = identifier.userType() == qMetaTypeId<Vela::SubItem>()
        ? identifierText(identifier.value<Vela::SubItem>())
        : identifier.toString();
    Vela::SubItem numbers;
    return Vela::SubItem::parse(text, numbers) ? identifierName(numbers) : text;
}

} // namespace Lantern

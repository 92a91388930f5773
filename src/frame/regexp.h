// SPDX-License-Identifier: MIT
#pragma once

#include <QRegularExpression>

namespace Vela {

/// The library's search expression.
class RegExp : public QRegularExpression
{
public:
    using QRegularExpression::QRegularExpression;
};

} // namespace Vela

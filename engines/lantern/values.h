// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/schema.h"

namespace Lantern {

class Report;
struct Token;

/// Reads whole numbers of at most 9 digits, and numbers with at most 6 more behind a point.
bool readInteger(QStringView text, int &number);
bool readNumber(QStringView text, double &number);
/// Return numbers as the above take them, cut to the digits that there are, without trailing zeros.
QString integerText(int number);
QString numberText(double number);
/// Reads "2" or "1.5 x 2". Returns whether \a text is one of them; \a isPair tells which.
bool readPair(QStringView text, QPointF &pair, bool &isPair);
QString pairText(QPointF pair);

/// Returns a path with "/" and without "." and "..", or an empty string for one that leaves the
/// folder that it is relative to.
QString insidePath(const QString &text);

/// Reads the value of a setting: \a text is what \a token says, without quotes. Returns false, with
/// an error in \a report, for a value that is none of the rule's.
bool readValue(const Rule &rule, QStringView text, const Token &token, QVariant &value,
               Report &report);
/// Returns a value as it stands in the text, without quotes.
QString valueText(const Rule &rule, const QVariant &value);

} // namespace Lantern

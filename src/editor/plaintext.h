// SPDX-License-Identifier: MIT
#pragma once

#include <QTextDocument>

namespace Vela {

/// Returns the text with "\n" between its lines. QTextDocument::toPlainText() would make plain
/// blanks of no-break spaces.
inline QString plainText(const QTextDocument *document)
{
    return document->toRawText()
        .replace(QChar::ParagraphSeparator, QLatin1Char('\n'))
        .replace(QChar::LineSeparator, QLatin1Char('\n'));
}

} // namespace Vela

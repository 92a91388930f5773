// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/parsercontext.h"

class QCompleter;
class QTextCursor;

namespace Lantern {

/// The words that fit at a place.
struct Completion
{
    int start = 0;     ///< column where the word to complete begins
    QString prefix;    ///< what stands of it up to the cursor
    QStringList words; ///< all that could stand there, whether they begin with the prefix or not
};

/// Returns the words for the place of a cursor in a document with the line parser.
Completion completionAt(const QTextCursor &cursor, const ParserContext &context);
/// Fills a completer for the place of a cursor and sets \a prefix. Returns whether there are words.
bool complete(const QTextCursor &cursor, QCompleter &completer, QString &prefix,
              const ParserContext &context);
/// Puts a chosen word in the place of the one that the cursor stands in or behind. Returns whether
/// it did.
bool insertCompletion(QTextCursor cursor, const QString &word, const ParserContext &context);

} // namespace Lantern

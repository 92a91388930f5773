// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Vela {

class Interface;
struct Snippet;

/// Tells the user where a snippet could not be read further; nothing if all could.
void showSnippetError(const Interface &host, const Snippet &snippet);

/// Asks for the values of the snippet's fields, if it has any, and returns its code with them.
/// Empty if the user gives up. An error is shown first. \a name is the snippet's, which its
/// translations belong to.
QString askSnippetValues(const Interface &host, const Snippet &snippet, const QString &name);

} // namespace Vela

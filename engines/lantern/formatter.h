// SPDX-License-Identifier: MIT
#pragma once

namespace Vela {
class CodeDocument;
}

namespace Lantern {

/// Formats lines, \a last included, as one step of undo. \a indentOnly goes for the blanks in front
/// of them alone. What the text means stays; formatting what was formatted changes nothing.
void formatLines(Vela::CodeDocument &document, int first, int last, bool indentOnly);

} // namespace Lantern

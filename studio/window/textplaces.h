// SPDX-License-Identifier: MIT
#pragma once

class QPlainTextEdit;

namespace Studio {

// Places in the text of a view. Lines and columns are from 0 and are kept inside the text.

/// Moves the cursor to a place in the middle of the view.
void goToPlace(QPlainTextEdit &view, int line, int column);

/// Selects characters from a place on. What is in sight already stays where the eye has it.
void selectText(QPlainTextEdit &view, int line, int column, int length);

} // namespace Studio

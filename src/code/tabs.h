// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Vela {

// The ways between tabs and blanks in a text whose tabs stand at every fourth column. Columns count
// from 0 in UTF-16 units, and begin anew behind a line feed or a carriage return.

/// Returns how many characters expandTabs() gives, up to three too many for each tab.
qint64 expandedSize(const QString &text);
/// Replaces each tab by the blanks up to the next tab stop.
QString expandTabs(const QString &text);
/// Replaces each run of two or more blanks that ends at a tab stop by a tab, wherever in the line
/// it stands. A run of one blank stays.
QString blanksToTabs(const QString &text);

} // namespace Vela

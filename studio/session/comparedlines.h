// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVector>

namespace Studio {

/// A line of one text beside one of another.
struct ComparedLine
{
    QString before;
    QString after;
    bool hasBefore = true; ///< otherwise the line is only in the other text
    bool hasAfter = true;
    bool differs = false;
};

/// Sets two texts side by side so that the lines that both have stand beside each other. Of very
/// different texts only what is the same at both ends is found.
QVector<ComparedLine> compareLines(const QString &before, const QString &after);

} // namespace Studio

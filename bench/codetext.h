// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Returns a text of animations in Lantern's grammar: headers, frames with options, boxes,
/// comments and blank lines.
inline QString motionText(int lines)
{
    QString text;
    text.reserve(lines * 30);
    for (int line = 0; line < lines; ++line) {
        const int animation = line / 16;
        switch (line % 16) {
        case 0:
            text += QStringLiteral("[animation walk-%1] \"Walking home\"\n").arg(animation);
            break;
        case 1:
            text += QStringLiteral("# How Rowan walks when nobody looks.\n");
            break;
        case 2:
        case 7:
            text += QStringLiteral("body -4 -%1 8 12\n").arg(animation % 30);
            break;
        case 3:
            text += QStringLiteral("attack 2 -9 %1 3 depth -2 2\n").arg(animation % 30);
            break;
        case 15:
            text += QLatin1Char('\n');
            break;
        case 5:
        case 9:
        case 13:
            text += QStringLiteral("frame walk-%1 : %2\n").arg(line % 9).arg(1 + line % 20);
            break;
        case 11:
            text += QStringLiteral("frame walk-%1 : %2, flip = h   # the other foot\n")
                        .arg(line % 9)
                        .arg(1 + line % 20);
            break;
        default:
            text += QStringLiteral("frame walk-%1 : %2, x = %3, y = -1\n")
                        .arg(line % 9)
                        .arg(1 + line % 20)
                        .arg(animation % 50);
        }
    }
    return text;
}

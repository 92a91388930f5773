// SPDX-License-Identifier: MIT
#include <QCoreApplication>

namespace {

/// Seeds the numbers that name temporary files, when the library is loaded.
void seedRandom()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    qsrand(uint(qrand()));
    QT_WARNING_POP
}

} // namespace

Q_CONSTRUCTOR_FUNCTION(seedRandom)

// SPDX-License-Identifier: MIT

// Makes the thread that loads the library aware of each monitor's DPI for as long as the library
// stays loaded, on the versions of Windows that know how.

#include <QLibrary>

#include <qt_windows.h>

namespace {

using SetAwareness = HANDLE(WINAPI *)(HANDLE context);

/// "Per monitor, version 2", which older headers do not name.
const HANDLE perMonitorV2 = reinterpret_cast<HANDLE>(INT_PTR(-4));

SetAwareness setAwareness = nullptr;
HANDLE previousAwareness = nullptr;

void enterAwareness()
{
    setAwareness = reinterpret_cast<SetAwareness>(
        QLibrary::resolve(QStringLiteral("user32"), "SetThreadDpiAwarenessContext"));
    if (setAwareness)
        previousAwareness = setAwareness(perMonitorV2);
}

void restoreAwareness()
{
    if (setAwareness && previousAwareness)
        setAwareness(previousAwareness);
}

} // namespace

Q_CONSTRUCTOR_FUNCTION(enterAwareness)
Q_DESTRUCTOR_FUNCTION(restoreAwareness)

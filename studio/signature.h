// SPDX-License-Identifier: MIT
#pragma once

#include <QMetaMethod>

namespace Studio {

/// Returns the signal or slot of \a object that a signature string names, as SIGNAL and SLOT write
/// them: "2done(bool)", "1start()". Warns in the name of \a owner and returns an invalid method if
/// the object is null or has none such. A null or empty string is no method, and no fault.
QMetaMethod methodOf(const QObject *object, const char *signature, const QString &owner);

/// Returns the first method of \a object called \a name that a connection from or to \a other
/// fits: as a signal for a slot \a other, as a slot for a signal.
QMetaMethod counterpart(const QObject *object, const char *name, const QMetaMethod &other);

} // namespace Studio

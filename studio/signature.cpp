// SPDX-License-Identifier: MIT
#include "studio/signature.h"

#include <QDebug>
#include <QObject>

namespace Studio {

namespace {

int indexOf(const QMetaObject *type, const char *signature)
{
    const QByteArray normalized = QMetaObject::normalizedSignature(signature + 1);
    switch (signature[0]) {
    case '1':
        return type->indexOfSlot(normalized.constData());
    case '2':
        return type->indexOfSignal(normalized.constData());
    default:
        return -1;
    }
}

} // namespace

QMetaMethod methodOf(const QObject *object, const char *signature, const QString &owner)
{
    if (!signature || !*signature)
        return QMetaMethod();
    const QMetaObject *type = object ? object->metaObject() : nullptr;
    const int index = type ? indexOf(type, signature) : -1;
    if (index >= 0)
        return type->method(index);
    qWarning("%s: %s has no signal or slot \"%s\"", qUtf8Printable(owner),
             type ? type->className() : "a null receiver", signature);
    return QMetaMethod();
}

QMetaMethod counterpart(const QObject *object, const char *name, const QMetaMethod &other)
{
    const QMetaObject *type = object->metaObject();
    for (int i = 0; i < type->methodCount(); ++i) {
        const QMetaMethod method = type->method(i);
        if (method.name() != name)
            continue;
        const bool fits = method.methodType() == QMetaMethod::Signal
            ? QMetaObject::checkConnectArgs(method, other)
            : QMetaObject::checkConnectArgs(other, method);
        if (fits)
            return method;
    }
    return QMetaMethod();
}

} // namespace Studio

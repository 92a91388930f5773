// SPDX-License-Identifier: MIT
#pragma once

#include "frame/object.h"

#include <QList>
#include <QObject>
#include <QTimer>

namespace Vela {

/// Spreads heavy deletions over time: one object goes every 10 ms, so that giving up a large tree
/// does not silence the window. What is left goes when the application ends. Main thread only.
class VELA_EXPORT ProgressiveDeleter : public QObject
{
    Q_OBJECT

public:
    /// What can be deleted later. One that is the parent of others goes behind all of them.
    class VELA_EXPORT Object
    {
    public:
        Object() = default;
        virtual ~Object();

    private:
        Q_DISABLE_COPY(Object)
        friend class ProgressiveDeleter;

        Object *m_parent = nullptr;
        int m_children = 0; // those that are yet to go
    };

    /// Stands in the list for an object that is given back with release().
    class VELA_EXPORT ProxyObject : public Object
    {
    public:
        explicit ProxyObject(Vela::Object *object);
        ~ProxyObject() override;

    private:
        Vela::Object *const m_object;
    };

    /// Takes \a object over. \a parent, which may be null, has to be enqueued too,
    /// and cannot be a descendant of \a object.
    static void enqueue(Object *object, Object *parent);
    /// Takes one claim on \a object over, and releases it when its turn has come.
    static void enqueue(Vela::Object *object, Object *parent);

    ~ProgressiveDeleter() override;

private Q_SLOTS:
    void deleteOne();

private:
    ProgressiveDeleter();
    static ProgressiveDeleter &instance();
    static void deleteAll();
    void deleteObject(Object *object);

    QList<Object *> m_objects;
    QTimer m_timer;
    bool m_atEnd = false; // deleteAll() is to run when the present application ends
};

} // namespace Vela

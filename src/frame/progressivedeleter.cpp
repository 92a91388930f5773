// SPDX-License-Identifier: MIT
#include "frame/progressivedeleter.h"

#include <QCoreApplication>

namespace Vela {

namespace {

constexpr int interval = 10; // milliseconds

} // namespace

ProgressiveDeleter::Object::~Object() = default;

ProgressiveDeleter::ProxyObject::ProxyObject(Vela::Object *object)
    : m_object(object)
{
}

ProgressiveDeleter::ProxyObject::~ProxyObject()
{
    m_object->release();
}

ProgressiveDeleter::ProgressiveDeleter()
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &ProgressiveDeleter::deleteOne);
}

ProgressiveDeleter::~ProgressiveDeleter()
{
    deleteAll();
}

ProgressiveDeleter &ProgressiveDeleter::instance()
{
    static ProgressiveDeleter deleter;
    return deleter;
}

void ProgressiveDeleter::enqueue(Object *object, Object *parent)
{
    ProgressiveDeleter &deleter = instance();
    if (parent) {
        object->m_parent = parent;
        ++parent->m_children;
    }
    deleter.m_objects.append(object);
    if (!QCoreApplication::instance())
        return;
    if (!deleter.m_atEnd) {
        qAddPostRoutine(deleteAll);
        deleter.m_atEnd = true;
    }
    if (!deleter.m_timer.isActive())
        deleter.m_timer.start();
}

void ProgressiveDeleter::enqueue(Vela::Object *object, Object *parent)
{
    enqueue(new ProxyObject(object), parent);
}

void ProgressiveDeleter::deleteOne()
{
    if (m_objects.isEmpty())
        m_timer.stop();
    else
        deleteObject(m_objects.takeFirst());
}

void ProgressiveDeleter::deleteAll()
{
    ProgressiveDeleter &deleter = instance();
    while (!deleter.m_objects.isEmpty())
        deleter.deleteObject(deleter.m_objects.takeFirst());
    // A destructor may have started the timer again.
    deleter.m_timer.stop();
    deleter.m_atEnd = false;
}

void ProgressiveDeleter::deleteObject(Object *object)
{
    // A loop, as a deep tree may stand in the list from its root on.
    QList<Object *> waiting;
    while (object->m_children > 0 && !m_objects.isEmpty()) {
        waiting.prepend(object);
        object = m_objects.takeFirst();
    }
    if (object->m_children <= 0) {
        if (object->m_parent)
            --object->m_parent->m_children;
        delete object;
    } else {
        waiting.prepend(object);
    }
    m_objects += waiting;
}

} // namespace Vela

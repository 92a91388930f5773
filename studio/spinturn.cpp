// SPDX-License-Identifier: MIT
#include "studio/spinturn.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace Studio {

namespace {

constexpr int wheelRest = 250; // milliseconds

bool isStepKey(const QEvent *event)
{
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease
        && event->type() != QEvent::ShortcutOverride)
        return false;
    switch (static_cast<const QKeyEvent *>(event)->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    default:
        return false;
    }
}

bool isInput(const QEvent *event)
{
    return event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress
        || event->type() == QEvent::ShortcutOverride || event->type() == QEvent::Shortcut;
}

} // namespace

SpinTurn::SpinTurn(QWidget *box)
    : QObject(box)
    , m_box(box)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(wheelRest);
    connect(&m_rest, &QTimer::timeout, this, &SpinTurn::end);
    box->installEventFilter(this);
}

void SpinTurn::step()
{
    if (!m_active)
        qApp->installEventFilter(this);
    m_active = true;
    if (m_held)
        m_rest.stop();
    else
        m_rest.start();
}

bool SpinTurn::isActive() const
{
    return m_active;
}

void SpinTurn::cancel()
{
    if (m_active)
        qApp->removeEventFilter(this);
    m_active = false;
    m_rest.stop();
}

bool SpinTurn::eventFilter(QObject *watched, QEvent *event)
{
    // A key that the field leaves to shortcuts passes through the widgets around it, too.
    const bool ownKey = isStepKey(event) && m_box->hasFocus();
    if (watched == m_box)
        ownEvent(event);
    else if (watched->isWidgetType() && isInput(event) && !ownKey)
        end();
    return false;
}

void SpinTurn::ownEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        m_held = true;
        break;
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
        if (!isStepKey(event))
            end();
        else if (event->type() == QEvent::KeyPress)
            m_held = true;
        break;
    case QEvent::KeyRelease:
        if (static_cast<QKeyEvent *>(event)->isAutoRepeat() || !isStepKey(event))
            break;
        Q_FALLTHROUGH();
    case QEvent::MouseButtonRelease:
    case QEvent::FocusOut:
    case QEvent::Hide:
        m_held = false;
        end();
        break;
    default:
        break;
    }
}

void SpinTurn::end()
{
    if (!m_active)
        return;
    cancel();
    Q_EMIT ended();
}

} // namespace Studio

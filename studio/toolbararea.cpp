// SPDX-License-Identifier: MIT
#include "studio/toolbararea.h"

#include <QEvent>
#include <QHBoxLayout>

namespace Studio {

ToolBarArea::ToolBarArea(const QString &name, QWidget *parent)
    : QToolBar(parent)
{
    setObjectName(name);
}

ToolBarArea::~ToolBarArea()
{
    // The base deletes the controls, when this class no longer takes part in their events.
    for (auto place = m_places.cbegin(); place != m_places.cend(); ++place) {
        place.key()->removeEventFilter(this);
        disconnect(place.key(), nullptr, this, nullptr);
    }
}

void ToolBarArea::addControl(QWidget *control)
{
    auto *frame = new QWidget;
    auto *layout = new QHBoxLayout(frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(control);
    QAction *place = addWidget(frame);
    place->setVisible(
        !(control->isHidden() && control->testAttribute(Qt::WA_WState_ExplicitShowHide)));
    m_places.insert(control, place);
    control->installEventFilter(this);
    connect(control, &QObject::destroyed, this, [this, control] { release(control); });
}

bool ToolBarArea::eventFilter(QObject *watched, QEvent *event)
{
    auto *control = static_cast<QWidget *>(watched);
    QAction *place = m_places.value(control);
    if (!place)
        return QToolBar::eventFilter(watched, event);
    if (event->type() == QEvent::ShowToParent)
        place->setVisible(true);
    else if (event->type() == QEvent::HideToParent)
        place->setVisible(false);
    else if (event->type() == QEvent::ParentChange
             && control->parentWidget() != widgetForAction(place))
        release(control);
    return false;
}

void ToolBarArea::release(QWidget *control)
{
    QAction *place = m_places.take(control);
    if (!place)
        return;
    control->removeEventFilter(this);
    disconnect(control, &QObject::destroyed, this, nullptr);
    removeAction(place);
    place->deleteLater();
}

} // namespace Studio

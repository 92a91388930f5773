// SPDX-License-Identifier: MIT
#include "studio/window/sidepanel.h"

#include "editor/extraeditor.h"
#include "studio/window/notelabel.h"

#include <QStackedLayout>
#include <QVariant>

namespace Studio {

SidePanel::SidePanel(QWidget *parent)
    : QDockWidget(parent)
{
    setObjectName(QStringLiteral("sidePanel"));
    auto *nothing = new NoteLabel;
    nothing->setText(tr("The current editor has no panel."));
    nothing->setAlignment(Qt::AlignCenter);
    nothing->setWordWrap(true);
    auto *content = new QWidget;
    m_pages = new QStackedLayout(content);
    m_pages->addWidget(nothing);
    setWidget(content);
    retranslate();
}

SidePanel::~SidePanel()
{
    removeWidget();
}

void SidePanel::setPanel(Vela::ExtraEditor *panel)
{
    if (panel == m_panel)
        return;
    if (m_panel)
        m_panel->deactivate();
    removeWidget();
    m_panel = panel;
    if (panel) {
        panel->activate();
        m_widget = panel->property("widget").value<QWidget *>();
    }
    if (m_widget) {
        m_pages->addWidget(m_widget);
        m_pages->setCurrentWidget(m_widget);
    }
    retranslate();
}

void SidePanel::retranslate()
{
    setWindowTitle(m_panel ? m_panel->displayName() : tr("Panel"));
}

// The widget is the panel's own.
void SidePanel::removeWidget()
{
    if (!m_widget)
        return;
    m_pages->removeWidget(m_widget);
    m_widget->setParent(nullptr);
    m_widget = nullptr;
}

} // namespace Studio

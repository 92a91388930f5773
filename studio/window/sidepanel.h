// SPDX-License-Identifier: MIT
#pragma once

#include <QDockWidget>
#include <QPointer>

class QStackedLayout;

namespace Vela {
class ExtraEditor;
}

namespace Studio {

/// The dock of the panel that the current editor shows beside itself. The panel names its widget in
/// its dynamic property "widget", a QWidget pointer, and keeps it.
class SidePanel : public QDockWidget
{
    Q_OBJECT

public:
    explicit SidePanel(QWidget *parent = nullptr);
    ~SidePanel() override;

    /// Activates \a panel and shows it instead of the one before; null shows none.
    void setPanel(Vela::ExtraEditor *panel);
    /// Takes the title anew.
    void retranslate();

private:
    void removeWidget();

    QStackedLayout *m_pages;
    QPointer<Vela::ExtraEditor> m_panel;
    QPointer<QWidget> m_widget;
};

} // namespace Studio

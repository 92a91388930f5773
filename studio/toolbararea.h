// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QToolBar>

namespace Studio {

/// The tool bar of one editor: its controls in the order in which it asked for them. What does not
/// fit waits behind the bar's extension button; for that the bar has to be added to the main
/// window itself.
///
/// A control keeps its own visibility: one that its editor hides leaves the bar without a gap, and
/// one that is given another parent leaves the bar for good.
class ToolBarArea : public QToolBar
{
    Q_OBJECT

public:
    explicit ToolBarArea(const QString &name, QWidget *parent = nullptr);
    ~ToolBarArea() override;

    /// Takes the widget over.
    void addControl(QWidget *control);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void release(QWidget *control);

    // A tool bar shows and hides its widgets as there is room; so each control stands in a frame
    // of its own that the bar may do this with.
    QHash<QWidget *, QAction *> m_places;
};

} // namespace Studio

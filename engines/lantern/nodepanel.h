// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/nodeproperties.h"

#include "editor/extraeditor.h"

#include <QPointer>
#include <QTimer>

class QLabel;
class QScrollArea;

namespace Vela {
class CodeEditor;
class PropertyEdit;
} // namespace Vela

namespace Lantern {

/// The side panel with the properties of the line that the cursor stands in. What is changed there
/// goes into the text; the panel follows typing and the cursor with a short delay.
///
/// The host finds its widget in the dynamic property "widget". The widget is the panel's own, as
/// long as no parent deletes it before.
class NodePanel : public Vela::ExtraEditor
{
    Q_OBJECT

public:
    explicit NodePanel(QObject *parent = nullptr);
    ~NodePanel() override;

    const char *name() const override;
    QString displayName() const override;
    void activate() override;
    void deactivate() override;
    void retranslate() override;

    /// Follows the cursor of an editor; null empties the panel.
    void follow(Vela::CodeEditor *editor);

private:
    void schedule();
    void watchDocument();
    void refresh();

    QPointer<Vela::CodeEditor> m_editor;
    QPointer<Vela::CodeDocument> m_document;
    LineProperties m_properties;
    QTimer m_timer;
    QPointer<QWidget> m_widget;
    QPointer<QLabel> m_note;
    QPointer<QScrollArea> m_area;
    QPointer<Vela::PropertyEdit> m_form;
};

} // namespace Lantern

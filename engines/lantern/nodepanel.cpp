// SPDX-License-Identifier: MIT
#include "lantern/nodepanel.h"

#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/propertyedit.h"

#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace Lantern {

namespace {

constexpr int delay = 100; // ms behind the first change that is not shown yet

} // namespace

NodePanel::NodePanel(QObject *parent)
    : ExtraEditor(parent)
    , m_widget(new QWidget)
    , m_note(new QLabel)
    , m_area(new QScrollArea)
    , m_form(new Vela::PropertyEdit)
{
    m_note->setAlignment(Qt::AlignCenter);
    m_note->setWordWrap(true);
    m_area->setWidgetResizable(true);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setFocusPolicy(Qt::NoFocus); // its fields take it
    m_area->setWidget(m_form);
    auto *const column = new QVBoxLayout(m_widget);
    column->addWidget(m_note);
    column->addWidget(m_area);
    m_area->hide();
    NodePanel::retranslate();
    setProperty("widget", QVariant::fromValue<QWidget *>(m_widget));
    m_timer.setSingleShot(true);
    m_timer.setInterval(delay);
    connect(&m_timer, &QTimer::timeout, this, &NodePanel::refresh);
}

NodePanel::~NodePanel()
{
    delete m_widget;
}

const char *NodePanel::name() const
{
    return "lantern_properties";
}

QString NodePanel::displayName() const
{
    return tr("Properties");
}

void NodePanel::activate()
{
    ExtraEditor::activate();
    refresh();
}

void NodePanel::deactivate()
{
    ExtraEditor::deactivate();
    m_timer.stop();
}

void NodePanel::retranslate()
{
    if (m_note)
        m_note->setText(tr("This line has no properties."));
    schedule();
}

void NodePanel::follow(Vela::CodeEditor *editor)
{
    if (editor != m_editor) {
        if (m_editor)
            m_editor->disconnect(this);
        m_editor = editor;
        if (editor)
            connect(editor, &Vela::CodeEditor::cursorChanged, this, &NodePanel::schedule);
    }
    schedule();
}

// Each change waits for its turn but holds none back: the panel also follows somebody who types
// without a rest.
void NodePanel::schedule()
{
    if (isActive() && !m_timer.isActive())
        m_timer.start();
}

void NodePanel::watchDocument()
{
    Vela::CodeDocument *const document = m_editor ? m_editor->codeDocument() : nullptr;
    if (document == m_document)
        return;
    if (m_document)
        m_document->disconnect(this);
    m_document = document;
    if (!document)
        return;
    connect(document, &QTextDocument::contentsChanged, this, &NodePanel::schedule);
    connect(document, &QObject::destroyed, this, &NodePanel::schedule);
}

void NodePanel::refresh()
{
    if (!m_form || !m_note || !m_area)
        return;
    watchDocument();
    if (m_document && m_document->isCodeBeingChanged()) {
        schedule();
        return;
    }
    if (m_properties.setLine(m_document ? m_editor->textCursor() : QTextCursor()))
        m_form->setProvider(nullptr);
    const bool isEmpty = m_properties.count() == 0;
    m_form->setProvider(isEmpty ? nullptr : &m_properties);
    m_form->setEnabled(m_editor && !m_editor->isReadOnly());
    m_area->setVisible(!isEmpty);
    m_note->setVisible(isEmpty);
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "editor/workspace.h"

#include <memory>

class QAction;
class QPoint;

namespace Vela {

class CodeDocument;
class CodeEditor;
class CodeWorkspacePrivate;
class Interface;

/// The one workspace of all text editing: a tool bar of snippets and messages, the CodeEditor, and
/// the menus "Code" and "Encoding". It remembers where the user was in each document.
///
/// All commands do nothing without a document or while the editor is read-only. Once a parent has
/// deleted the widget, nothing but the destructor may be called.
class VELA_EXPORT CodeWorkspace : public Workspace
{
    Q_OBJECT

public:
    /// Makes its actions, menus and controls at \a host, which must outlive it.
    explicit CodeWorkspace(Interface &host);
    /// Deletes the widget, unless a parent has deleted it before.
    ~CodeWorkspace() override;

    const char *name() const override;
    QWidget *widget() const override;
    void engineSwitched(bool hasEngine) override;
    void activate() override;
    void deactivate() override;
    void reconfig() override;
    void retranslate() override;

    Interface &interfaceObject() const;
    CodeEditor *editor() const;
    /// Shows \a document where the user left it; null shows the words for none. It stays its
    /// owner's and must live until the next call.
    void setDocument(CodeDocument *document);
    CodeDocument *document() const;
    /// Places a widget beside tool bar and text, and takes it over.
    void addWidget(QWidget *widget);
    /// Goes to a place in the document, both from 0 and kept inside the text.
    void goTo(unsigned int line, unsigned int column);
    /// Checks the document's encoding in the menu and tells it to the host.
    void showEncoding();

public Q_SLOTS:
    /// Asks for the encoding of the document.
    void statusClicked() override;
    void zoomActual() override;
    void zoomFit() override;
    void zoomIn() override;
    void zoomOut() override;

    void showTextBar(bool show);
    void showContextMenu(const QPoint &position);
    void snipInsert();
    void snipActivated(int index);
    void snipNew();
    void snipEdit();
    /// Goes to the message in a row of the document's messages.
    void errorActivated(int row);
    void goToLine();
    void prevError();
    void nextError();
    void prevDepr();
    void nextDepr();
    void comment();
    void foldAll();
    /// Unfolds the blocks of the outermost level; those in them stay as they are.
    void unfoldAll();
    void autoIndent();
    void autoFormat();
    /// Sets the encoding whose index in TextCodecs is the action's object name.
    void encTriggered(QAction *action);

Q_SIGNALS:
    /// Enables the actions that need a document.
    void enabled(bool enable);

private:
    std::unique_ptr<CodeWorkspacePrivate> d;
};

} // namespace Vela

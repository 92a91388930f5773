// SPDX-License-Identifier: MIT
#pragma once

#include "code/codeblockdata.h"
#include "frame/menu.h"

#include <QActionGroup>
#include <QPointer>
#include <QStandardItemModel>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QToolBar;

namespace Vela {

class CodeDocument;
class CodeEditor;
class CodeWorkspace;
class Interface;

class CodeWorkspacePrivate
{
public:
    CodeWorkspacePrivate(CodeWorkspace *workspace, Interface &host);
    ~CodeWorkspacePrivate();

    void createWidgets();
    void createActions();
    void createEncodings();
    void translateMenus();

    /// Returns the document, or null where a command must do nothing.
    CodeDocument *target() const;
    /// Changes the font of the editor, which passes it to its document.
    void zoom(int points);
    void insertSnippet(int index);
    void setEncoding(int codec);

    // codeworkspace_commands.cpp
    using MessageKind = CodeBlockData::SyntaxMessage::Kind;
    void goToNext(MessageKind kind);
    void goToPrevious(MessageKind kind);
    void format(bool indentOnly);

    CodeWorkspace *const workspace;
    Interface &host;

    /// The host may place it in a window, which then owns it.
    QPointer<QWidget> container;
    QHBoxLayout *columns = nullptr; ///< of the container
    QToolBar *toolBar = nullptr;
    CodeEditor *editor = nullptr;
    QLabel *label = nullptr;
    QComboBox *snippets = nullptr;
    QComboBox *messages = nullptr;
    Menu codeMenu;
    Menu encodingMenu;
    QActionGroup encodings; ///< one action for each record of TextCodecs, in their order
    QPointer<QAction> viewBar;
    QStandardItemModel noMessages;
    QMetaObject::Connection documentEnd;
};

} // namespace Vela

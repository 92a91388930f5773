// SPDX-License-Identifier: MIT
#include "editor/codeworkspace.h"

#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codeworkspace_p.h"
#include "editor/encdlg.h"
#include "editor/snipdlg.h"
#include "editor/snippetmanager.h"
#include "engine/engine.h"
#include "frame/controldescriptor.h"
#include "frame/ftranslator.h"
#include "frame/interface.h"
#include "frame/textcodecs.h"
#include "project/messages.h"

#include <QAction>
#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QTextBlock>
#include <QToolBar>

namespace Vela {

namespace {

// Numbers of texts of FTranslator.
constexpr int noDocumentId = 78;
constexpr int reloadTitleId = 79;
constexpr int reloadTextId = 80;
constexpr int viewBarId = 81;
constexpr int snippetsId = 90;
constexpr int codeMenuId = 94;
constexpr int encodingMenuId = 105;

constexpr int snippetsWidth = 200; // pixels
constexpr int messagesWidth = 20;  // characters, at least
constexpr int labelSize = 12;      // points
constexpr int defaultFontSize = 10;
constexpr int zoomStep = 2;
constexpr int encodingField = 2; // of the host's status

enum class Place { ToolBar, CodeMenu, CodeMenuBehindSeparator };

struct ActionRow
{
    const char *key;
    int textId;
    const char *slot;
    Place place;
    bool needsDocument;
};

QString showBarKey()
{
    return QStringLiteral("show_code_bar");
}

QString text(int id)
{
    return FTranslator::instance()->translate(id);
}

QString positionText(const CodeEditor::LinePos &position)
{
    return QStringLiteral("%1,%2,%3").arg(position.line).arg(position.column).arg(position.scroll);
}

/// Goes back to where the user left the document that \a editor shows.
void restorePosition(CodeEditor &editor)
{
    const QString stored = editor.codeDocument()->objectName();
    if (stored.isEmpty()) {
        editor.setCurrentLine(CodeEditor::LinePos());
        return;
    }
    const QStringList parts = stored.split(QLatin1Char(','));
    if (parts.size() == 3)
        editor.setCurrentLine({parts.at(0).toInt(), parts.at(1).toInt(), parts.at(2).toInt()});
}

} // namespace

CodeWorkspacePrivate::CodeWorkspacePrivate(CodeWorkspace *owner, Interface &owningHost)
    : workspace(owner)
    , host(owningHost)
    , encodings(nullptr)
{
    createWidgets();
    createActions();
    createEncodings();
}

CodeWorkspacePrivate::~CodeWorkspacePrivate()
{
    delete container;
}

void CodeWorkspacePrivate::createWidgets()
{
    toolBar = new QToolBar;
    snippets = new QComboBox;
    snippets->setMinimumWidth(snippetsWidth);
    snippets->setModel(SnippetManager::instance());
    messages = new QComboBox;
    // A long message must not make the window wide.
    messages->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    messages->setMinimumContentsLength(messagesWidth);
    messages->setSizePolicy(QSizePolicy::Expanding, messages->sizePolicy().verticalPolicy());
    messages->setModel(&noMessages);
    QObject::connect(snippets, QOverload<int>::of(&QComboBox::activated), workspace,
                     &CodeWorkspace::snipActivated);
    QObject::connect(messages, QOverload<int>::of(&QComboBox::activated), workspace,
                     &CodeWorkspace::errorActivated);

    editor = new CodeEditor;
    editor->setLineWrapMode(QPlainTextEdit::NoWrap);
    editor->setContextMenuPolicy(Qt::CustomContextMenu);
    editor->hide();
    QObject::connect(editor, &QWidget::customContextMenuRequested, workspace,
                     &CodeWorkspace::showContextMenu);
    label = new QLabel;
    label->setAlignment(Qt::AlignCenter);
    QFont font = label->font();
    font.setPointSize(labelSize);
    label->setFont(font);

    container = new QWidget;
    columns = new QHBoxLayout(container);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    auto *const rows = new QVBoxLayout;
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(toolBar);
    rows->addWidget(editor);
    rows->addWidget(label, 1);
    columns->addLayout(rows, 1);
}

void CodeWorkspacePrivate::createActions()
{
    const ActionRow rows[] = {
        {"code_snippet_insert", 91, SLOT(snipInsert()), Place::ToolBar, true},
        {"code_snippet_new", 92, SLOT(snipNew()), Place::ToolBar, false},
        {"code_snippet_edit", 93, SLOT(snipEdit()), Place::ToolBar, false},
        {"code_goto", 95, SLOT(goToLine()), Place::CodeMenu, true},
        {"code_prev_error", 96, SLOT(prevError()), Place::CodeMenu, true},
        {"code_next_error", 97, SLOT(nextError()), Place::CodeMenu, true},
        {"code_prev_deprecation", 98, SLOT(prevDepr()), Place::CodeMenu, true},
        {"code_next_deprecation", 99, SLOT(nextDepr()), Place::CodeMenu, true},
        {"code_comment", 100, SLOT(comment()), Place::CodeMenuBehindSeparator, true},
        {"code_fold_all", 101, SLOT(foldAll()), Place::CodeMenu, true},
        {"code_unfold_all", 102, SLOT(unfoldAll()), Place::CodeMenu, true},
        {"code_auto_indent", 103, SLOT(autoIndent()), Place::CodeMenuBehindSeparator, true},
        {"code_auto_format", 104, SLOT(autoFormat()), Place::CodeMenu, true},
    };
    const char *const controls[] = {"view_code_bar",         "code_goto",
                                    "code_next_error",       "code_prev_error",
                                    "code_next_deprecation", "code_prev_deprecation",
                                    "code_comment"};
    FTranslator *const texts = FTranslator::instance();

    Menu *const viewMenu = host.menu("view");
    viewMenu->addSeparator();
    viewBar = host.createAction("view_code_bar", "view_code_bar", texts, viewBarId, true, workspace,
                                SLOT(showTextBar(bool)), nullptr, viewMenu);
    viewBar->setEnabled(false);

    Menu *const editMenu = host.menu("edit");
    editMenu->addSeparator();
    editMenu->addMenu(&codeMenu);
    editMenu->addMenu(&encodingMenu);
    codeMenu.setEnabled(false);
    encodingMenu.setEnabled(false);

    toolBar->addWidget(snippets);
    for (const ActionRow &row : rows) {
        const bool inMenu = row.place != Place::ToolBar;
        if (row.place == Place::CodeMenuBehindSeparator)
            codeMenu.addSeparator();
        QAction *const action = host.createAction(
            row.key, row.key, texts, row.textId, false, workspace, row.slot,
            row.needsDocument ? SIGNAL(enabled(bool)) : nullptr, inMenu ? &codeMenu : nullptr);
        if (!inMenu)
            toolBar->addAction(action);
    }
    toolBar->addWidget(messages);

    for (const char *const key : controls) {
        const ActionControl control(host.action(key));
        host.createControl(QLatin1String(key), &control);
    }
}

void CodeWorkspacePrivate::createEncodings()
{
    for (int i = 0; i < TextCodecs::count(); ++i) {
        auto *const action = new QAction(&encodings);
        action->setCheckable(true);
        action->setObjectName(QString::number(i));
        encodingMenu.addAction(action);
    }
    QObject::connect(&encodings, &QActionGroup::triggered, workspace, &CodeWorkspace::encTriggered);
}

void CodeWorkspacePrivate::translateMenus()
{
    codeMenu.setTitle(text(codeMenuId));
    encodingMenu.setTitle(text(encodingMenuId));
    encodingMenu.menuAction()->setToolTip(FTranslator::instance()->toolTip(encodingMenuId));
    const QList<QAction *> actions = encodings.actions();
    for (int i = 0; i < actions.size(); ++i) {
        actions.at(i)->setText(TextCodecs::displayName(i) + QLatin1Char('\t')
                               + TextCodecs::aliases(i));
        actions.at(i)->setToolTip(TextCodecs::languages(i));
    }
}

CodeDocument *CodeWorkspacePrivate::target() const
{
    return editor->isReadOnly() ? nullptr : editor->codeDocument();
}

void CodeWorkspacePrivate::zoom(int points)
{
    QFont font = editor->font();
    font.setPointSize(qMax(1, font.pointSize() + points));
    editor->setFont(font);
}

void CodeWorkspacePrivate::insertSnippet(int index)
{
    const QPointer<CodeDocument> document = target();
    if (!document)
        return;
    QString code = SnippetManager::instance()->text(host, unsigned(index));
    // The document may have gone while the user gave the values.
    if (code.isEmpty() || !document || document != target())
        return;
    const QString mark = QStringLiteral("CURSOR");
    const int place = code.indexOf(mark);
    code.remove(mark);
    editor->insertPlainText(code);
    if (place >= 0) {
        QTextCursor cursor = editor->textCursor();
        cursor.setPosition(cursor.position() - (code.size() - place));
        editor->setTextCursor(cursor);
    }
    editor->setFocus();
}

void CodeWorkspacePrivate::setEncoding(int codec)
{
    const QPointer<CodeDocument> document = target();
    if (!document) {
        workspace->showEncoding(); // The menu has checked the user's choice.
        return;
    }
    const int before = document->codecId();
    document->setCodecId(codec);
    if (document->fileExists()) {
        const bool reload =
            Interface::yesNoOption(text(reloadTitleId), text(reloadTextId),
                                   QStringLiteral("showmsg_enc_reload"), 0, Interface::YesButton);
        if (document && reload)
            document->reload();
        else if (document && document->codecId() != before)
            document->setModified(true); // The file is still in the old encoding.
    }
    workspace->showEncoding();
}

CodeWorkspace::CodeWorkspace(Interface &host)
    : d(std::make_unique<CodeWorkspacePrivate>(this, host))
{
    CodeWorkspace::retranslate();
    Q_EMIT enabled(false);
}

CodeWorkspace::~CodeWorkspace() = default;

const char *CodeWorkspace::name() const
{
    return "code";
}

QWidget *CodeWorkspace::widget() const
{
    return d->container;
}

void CodeWorkspace::engineSwitched(bool hasEngine)
{
    const Engine *const engine = d->host.engine();
    if (!hasEngine || !engine)
        return;
    d->editor->completerFromFile(engine->installedPath() + QLatin1String("/completer.xml"));
    SnippetManager::instance()->load(engine->installedPath() + QLatin1String("/snippets"));
}

void CodeWorkspace::activate()
{
    Workspace::activate();
    const bool isShown = d->host.option(showBarKey(), true).toBool();
    d->toolBar->setVisible(isShown);
    if (d->viewBar) {
        d->viewBar->setChecked(isShown);
        d->viewBar->setEnabled(true);
    }
    d->codeMenu.setEnabled(true);
    d->encodingMenu.setEnabled(true);
    Q_EMIT enabled(document());
    showEncoding();
}

void CodeWorkspace::deactivate()
{
    Workspace::deactivate();
    if (d->viewBar)
        d->viewBar->setEnabled(false);
    d->codeMenu.setEnabled(false);
    d->encodingMenu.setEnabled(false);
    Q_EMIT enabled(false);
}

void CodeWorkspace::reconfig()
{
    const Interface &host = d->host;
    const auto isSet = [&host](const char *key) {
        return host.option(QLatin1String(key), true).toBool();
    };
    const auto color = [&host](const char *key) { return host.colorOption(QLatin1String(key)); };

    CodeEditor::SyntaxFormatting formatting = d->editor->syntaxFormatting();
    formatting.lineNumbers = isSet("code_line_numbers");
    formatting.highlightLine = isSet("code_highlight_line");
    formatting.highlightBlocks = isSet("code_highlight_blocks");
    formatting.foldingMarkers = isSet("code_folding_markers");
    formatting.parenMatching = isSet("code_paren_matching");
    formatting.lineColor = color("line");
    formatting.blockColor = color("block_range");
    formatting.rangeFormat.setBackground(color("paren_range"));
    formatting.matchFormat = host.formatOption(QStringLiteral("paren"));
    d->editor->setSyntaxFormatting(formatting);
    d->editor->setStyleSheet(QStringLiteral("QPlainTextEdit { background-color: %1; color: %2; }")
                                 .arg(color("background").name(), color("foreground").name()));
    zoomActual();
}

void CodeWorkspace::retranslate()
{
    d->snippets->setToolTip(text(snippetsId));
    d->snippets->setAccessibleName(text(snippetsId));
    d->messages->setAccessibleName(tr("Messages"));
    d->editor->setAccessibleName(tr("Code"));
    d->label->setText(text(noDocumentId));
    if (d->viewBar)
        d->viewBar->setText(text(viewBarId));
    d->translateMenus();
}

Interface &CodeWorkspace::interfaceObject() const
{
    return d->host;
}

CodeEditor *CodeWorkspace::editor() const
{
    return d->editor;
}

void CodeWorkspace::setDocument(CodeDocument *document)
{
    QAbstractItemModel *const messages = document ? document->messages() : nullptr;
    d->messages->setModel(messages ? messages : &d->noMessages);
    if (CodeDocument *const old = d->editor->codeDocument())
        old->setObjectName(positionText(d->editor->currentLine()));
    d->editor->setDocument(document);
    d->label->setVisible(!document);
    d->editor->setVisible(document);
    if (document)
        restorePosition(*d->editor);
    Q_EMIT enabled(document);
    if (isActive())
        showEncoding();

    // A document ends its messages while its text is still whole, so that the editor can leave it.
    disconnect(d->documentEnd);
    if (messages)
        d->documentEnd =
            connect(messages, &QObject::destroyed, d->container, [this] { setDocument(nullptr); });
}

CodeDocument *CodeWorkspace::document() const
{
    return d->editor->codeDocument();
}

void CodeWorkspace::addWidget(QWidget *widget)
{
    d->columns->addWidget(widget);
}

void CodeWorkspace::goTo(unsigned int line, unsigned int column)
{
    if (!document())
        return;
    d->editor->setCurrentLine(line, CodeEditor::MiddlePlace);
    QTextCursor cursor = d->editor->textCursor();
    const QTextBlock block = cursor.block();
    cursor.setPosition(block.position() + int(qMin(column, unsigned(block.length() - 1))));
    d->editor->setTextCursor(cursor);
}

void CodeWorkspace::showEncoding()
{
    const CodeDocument *const shown = document();
    if (QAction *const checked = d->encodings.checkedAction())
        checked->setChecked(false);
    if (!shown) {
        d->host.status(encodingField, QString());
        return;
    }
    if (QAction *const action = d->encodings.actions().value(shown->codecId()))
        action->setChecked(true);
    d->host.status(encodingField,
                   text(encodingMenuId) + QLatin1String(": ")
                       + QString::fromLatin1(shown->codecName()));
}

void CodeWorkspace::statusClicked()
{
    const CodeDocument *const document = d->target();
    if (!document)
        return;
    EncDlg dialog(document->codecId(), d->host.mainWindow());
    if (dialog.exec() == QDialog::Accepted)
        d->setEncoding(dialog.codec());
}

void CodeWorkspace::encTriggered(QAction *action)
{
    d->setEncoding(action->objectName().toInt());
}

void CodeWorkspace::zoomActual()
{
    const QTextCharFormat format = d->host.formatOption(QStringLiteral("foreground"));
    QFont font(d->host.option(QStringLiteral("font_name"), QStringLiteral("Courier")).toString());
    font.setPointSize(
        qMax(1, d->host.option(QStringLiteral("font_size"), defaultFontSize).toInt()));
    font.setFixedPitch(true);
    font.setStyleHint(QFont::Monospace);
    font.setWeight(format.fontWeight());
    font.setItalic(format.fontItalic());
    d->editor->setFont(font);
}

void CodeWorkspace::zoomFit()
{
    zoomActual();
}

void CodeWorkspace::zoomIn()
{
    d->zoom(zoomStep);
}

void CodeWorkspace::zoomOut()
{
    d->zoom(-zoomStep);
}

void CodeWorkspace::showTextBar(bool show)
{
    d->toolBar->setVisible(show);
    d->host.setOption(showBarKey(), show);
}

void CodeWorkspace::showContextMenu(const QPoint &position)
{
    QMenu *const menu = d->editor->createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addSeparator();
    menu->addMenu(&d->codeMenu);
    menu->popup(d->editor->viewport()->mapToGlobal(position));
}

void CodeWorkspace::snipInsert()
{
    d->insertSnippet(d->snippets->currentIndex());
}

void CodeWorkspace::snipActivated(int index)
{
    d->insertSnippet(index);
}

void CodeWorkspace::snipNew()
{
    QString selection = d->editor->textCursor().selectedText();
    SnipDlg(d->host, selection.replace(QChar::ParagraphSeparator, QLatin1Char('\n'))).exec();
}

void CodeWorkspace::snipEdit()
{
    const SnippetManager *const manager = SnippetManager::instance();
    const QString name = manager->name(unsigned(d->snippets->currentIndex()));
    if (!name.isEmpty())
        SnipDlg(d->host, manager->folder() + QLatin1Char('/') + name + QLatin1String(".xml"))
            .exec();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "code/codedocument.h"

#include "code/codeblockdata.h"
#include "code/codedocument_p.h"
#include "code/codelayout.h"
#include "code/codemark.h"
#include "code/codenodefile.h"
#include "code/valuecode.h"
#include "engine/engine.h"
#include "frame/archive.h"
#include "frame/interface.h"
#include "frame/jobstats.h"
#include "project/parentproject.h"
#include "project/project.h"

#include <QFileInfo>
#include <QFont>

Q_DECLARE_METATYPE(Vela::JobStats *)

namespace Vela {

namespace {

constexpr int fontSize = 10; // points

QString iconName(ValueCode::Type type)
{
    switch (type) {
    case ValueCode::String:
        return QStringLiteral("code_string");
    case ValueCode::Bool:
        return QStringLiteral("code_bool");
    case ValueCode::File:
        return QStringLiteral("code_file");
    case ValueCode::Date:
        return QStringLiteral("code_date");
    case ValueCode::Keyword:
    case ValueCode::KeywordVector:
        return QStringLiteral("code_keyword");
    case ValueCode::Float:
    case ValueCode::FloatVec2:
    case ValueCode::FloatVec3:
    case ValueCode::FloatVec4:
    case ValueCode::FloatVector:
        return QStringLiteral("code_float");
    case ValueCode::Int:
    case ValueCode::IntVec2:
    case ValueCode::IntVec3:
    case ValueCode::IntVec4:
    case ValueCode::IntVector:
        return QStringLiteral("code_int");
    case ValueCode::Unknown:
        break;
    }
    return QString();
}

bool isIn(const CodeDocument &document, const QTextCursor &cursor)
{
    return !cursor.isNull() && cursor.document() == &document;
}

/// Returns a line to put behind another, or else in front of it.
QString asLine(const QString &code, bool behind)
{
    QString line = code;
    return line.insert(behind ? 0 : line.size(), QLatin1Char('\n'));
}

/// Returns the row of the last child that does not stand below a line; -1 if there is none.
/// Children stand in the order of the text.
int lastRowDownTo(const ParentCode *parent, int line)
{
    int first = 0;
    int count = int(parent->childCount());
    while (count > 0) {
        const int half = count / 2;
        if (parent->childAt(unsigned(first + half))->lineNo() <= line) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first - 1;
}

/// Returns the row of the child that stands on a line, or else of the last one above it that
/// covers lines of its own; -1 if there is neither.
int rowOfLine(const ParentCode *parent, int line)
{
    int row = lastRowDownTo(parent, line);
    if (row < 0 || parent->childAt(unsigned(row))->lineNo() == line)
        return row;
    constexpr int covering = CodeNode::Group | CodeNode::Animation;
    while (row >= 0 && !(parent->childAt(unsigned(row))->type() & covering))
        --row;
    return row;
}

} // namespace

CodeDocument::CodeDocument(short fileType)
{
    setDocumentLayout(new CodeLayout(this));
    QFont font(QStringLiteral("Courier"), fontSize);
    font.setFixedPitch(true);
    font.setStyleHint(QFont::Monospace);
    setDefaultFont(font);
    // From here on it hears of changes, each of which is a pass over the text.
    d = std::make_unique<CodeDocumentPrivate>(this, fileType);
    setCodec("UTF-8");

    qRegisterMetaType<Archive *>();
    qRegisterMetaType<JobStats *>();
    connect(d.get(), &CodeDocumentPrivate::callDocSaveFinished, d.get(),
            &CodeDocumentPrivate::saveFinished, Qt::QueuedConnection);
}

CodeDocument::~CodeDocument()
{
    waitForSave();
    const QSet<CodeNodeFile *> files = d->distinctNodeFiles();
    d->nodeFiles.clear();
    d->parser = nullptr;
    d->lockModel();
    d->destroying = true;
    QTextDocument::clear();
    d->destroying = false;
    d->unlockModel();
    for (CodeNodeFile *const file : files)
        file->release();
}

void CodeDocument::free()
{
    delete this;
}

Messages *CodeDocument::fileMessages() const
{
    return d.get();
}

QAbstractItemModel *CodeDocument::model()
{
    return &d->root;
}

ProjectFile::Capabilities CodeDocument::capabilities() const
{
    return SavesSlowly | HasText;
}

bool CodeDocument::canSave() const
{
    return true;
}

bool CodeDocument::isModified() const
{
    return QTextDocument::isModified();
}

bool CodeDocument::isEmpty() const
{
    return QTextDocument::isEmpty();
}

void CodeDocument::undo()
{
    QTextDocument::undo();
}

void CodeDocument::redo()
{
    QTextDocument::redo();
}

bool CodeDocument::autoComplete(QTextCursor &, QCompleter *, int, QString &)
{
    return false;
}

bool CodeDocument::insertCompletion(CodeEditor *, QTextCursor, const QString &)
{
    return false;
}

void CodeDocument::autoCompleteDone()
{
}

void CodeDocument::codeUpdated()
{
}

QIcon CodeDocument::nodeIcon(const CodeNode *node) const
{
    const Interface *const host = Interface::instance();
    if (!host || !node || node->type() != CodeNode::Value)
        return QIcon();
    const QString name = iconName(static_cast<const ValueCode *>(node)->valueType());
    return name.isEmpty() ? QIcon() : host->icon(name);
}

QString CodeDocument::toString() const
{
    // As toPlainText() has it, which makes a blank of a no-break space, too: the file would lose
    // it.
    QString text = toRawText();
    for (QChar &character : text) {
        switch (character.unicode()) {
        case 0xfdd0: // the marks of a frame in a QTextDocument
        case 0xfdd1:
        case QChar::ParagraphSeparator:
        case QChar::LineSeparator:
            character = QLatin1Char('\n');
            break;
        default:
            break;
        }
    }
    return text;
}

QString CodeDocument::title() const
{
    return metaInformation(DocumentTitle);
}

void CodeDocument::setTitle(const QString &title)
{
    setMetaInformation(DocumentTitle, title);
}

QString CodeDocument::fileName() const
{
    return metaInformation(DocumentUrl);
}

void CodeDocument::setFileName(const QString &name)
{
    const QFileInfo file(name);
    setTitle(file.fileName());
    setMetaInformation(DocumentUrl, file.filePath());
}

QTextCursor CodeDocument::cursor() const
{
    return d->cursor;
}

void CodeDocument::setCursor(const QTextCursor &cursor)
{
    // A bracket is closed on the cursor, so it must not leave the document.
    if (isIn(*this, cursor))
        d->cursor = cursor;
}

void CodeDocument::insert(const QString &text)
{
    d->cursor.movePosition(QTextCursor::End);
    insertOnCursor(text, d->cursor);
}

void CodeDocument::insertOnCursor(const QString &text, QTextCursor cursor)
{
    if (!isIn(*this, cursor))
        return;
    const int start = cursor.selectionStart();
    const QTextBlock end = findBlock(cursor.selectionEnd()).next();
    cursor.insertText(text);
    d->cursor = cursor;
    if (d->changeDepth > 0 && d->parser && option(QStringLiteral("parseCode")).toBool())
        d->parseInChange(findBlock(start), end);
}

void CodeDocument::insertAfter(const CodeNode *node, const QString &code, bool single)
{
    QTextBlock block;
    if (node)
        block = findBlockByNumber(single ? node->lineNo() : node->lastLine());
    QTextCursor cursor(this);
    if (block.isValid())
        cursor.setPosition(block.position());
    cursor.movePosition(block.isValid() ? QTextCursor::EndOfBlock : QTextCursor::End);
    insertOnCursor(asLine(code, node), cursor);
}

void CodeDocument::insertBefore(const CodeNode *node, const QString &code, bool single)
{
    QTextBlock block;
    if (node)
        block = findBlockByNumber(single ? node->lineNo() : node->firstLine());
    const QTextBlock above = block.previous();
    QTextCursor cursor(this);
    if (above.isValid()) {
        cursor.setPosition(above.position());
        cursor.movePosition(QTextCursor::EndOfBlock);
    }
    insertOnCursor(asLine(code, above.isValid()), cursor);
}

void CodeDocument::beginChange()
{
    d->cursor.beginEditBlock();
    ++d->changeDepth;
}

void CodeDocument::endChange()
{
    if (d->changeDepth == 0)
        return;
    --d->changeDepth;
    d->cursor.endEditBlock();
}

bool CodeDocument::isCodeBeingChanged() const
{
    return d->changeDepth > 0;
}

QString CodeDocument::commentString() const
{
    const Project *const owner = project();
    const ParentProject *const parent = owner ? owner->parent() : nullptr;
    const Engine *const engine = parent ? parent->engine() : nullptr;
    return engine ? engine->queryString(Engine::CommentString, 0) : QString();
}

RootCode *CodeDocument::root() const
{
    return &d->root;
}

CodeNode *CodeDocument::nodeFromIndex(const QModelIndex &index) const
{
    return static_cast<CodeNode *>(index.internalPointer());
}

int CodeDocument::lineNo(const QModelIndex &index) const
{
    const CodeNode *const node = nodeFromIndex(index);
    return node && CodeNode::isValid(node) ? node->lineNo() : 0;
}

QModelIndex CodeDocument::indexInLine(unsigned int line) const
{
    QModelIndex index;
    const ParentCode *parent = &d->root;
    for (int row = rowOfLine(parent, int(line)); row >= 0; row = rowOfLine(parent, int(line))) {
        const CodeNode *const child = parent->childAt(unsigned(row));
        index = d->root.index(row, 0, index);
        if (!index.isValid() || child->lineNo() == int(line))
            return index;
        parent = static_cast<const ParentCode *>(child);
    }
    return index;
}

int CodeDocument::fileType() const
{
    return d->root.fileType();
}

void CodeDocument::setFileType(int fileType, bool notify)
{
    d->root.setFileType(fileType, notify);
}

unsigned int CodeDocument::version() const
{
    return d->root.version();
}

void CodeDocument::setVersion(unsigned int version)
{
    d->root.setVersion(version, true);
}

bool CodeDocument::addMark(CodeMark *mark, int line)
{
    const QTextBlock block = line < 1 ? QTextBlock() : findBlockByNumber(line - 1);
    if (!mark || !block.isValid())
        return false;
    CodeBlockData::blockData(block, d.get())->m_marks.append(mark);
    mark->setLine(line);
    mark->setBlock(block);
    updateMark(mark);
    return true;
}

bool CodeDocument::hasMark(CodeMark *mark) const
{
    for (QTextBlock block = begin(); block.isValid(); block = block.next()) {
        const CodeBlockData *const data = CodeBlockData::testBlockData(block);
        if (data && data->m_marks.contains(mark))
            return true;
    }
    return false;
}

QList<CodeMark *> CodeDocument::marksAt(int line) const
{
    const CodeBlockData *const data = CodeBlockData::testBlockData(findBlockByNumber(line - 1));
    return data ? data->m_marks : QList<CodeMark *>();
}

void CodeDocument::removeMark(CodeMark *mark)
{
    bool isFound = false;
    for (QTextBlock block = begin(); block.isValid(); block = block.next()) {
        if (CodeBlockData *const data = CodeBlockData::testBlockData(block))
            isFound |= data->m_marks.removeAll(mark) > 0;
    }
    if (isFound)
        updateMark(mark);
}

void CodeDocument::updateMark(CodeMark *)
{
    static_cast<CodeLayout *>(documentLayout())->requestUpdate();
}

} // namespace Vela

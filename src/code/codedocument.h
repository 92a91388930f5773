// SPDX-License-Identifier: MIT
#pragma once

#include "code/codenode.h"
#include "code/codeparsersyntax.h"
#include "project/filewatchobject.h"
#include "project/projectfile.h"

#include <QIcon>
#include <QModelIndex>
#include <QTextDocument>
#include <memory>

class QCompleter;
class QTextCharFormat;

namespace Vela {

class CodeDocumentPrivate;
class CodeEditor;
class CodeMark;
class CodeNodeFile;
class CodeParser;
class RootCode;

/// A definition text as a file of a project. The text is what counts: a parser keeps the tree of
/// nodes, the highlight, the messages and the levels of folding in step with every change, line by
/// line. Main thread only; a save may write on another thread, from a copy of the text.
///
/// The file's options "parseCode" (parse at once what changes between beginChange() and
/// endChange()), "highlightCode" and "modelCode" (whether the tree shows rows) govern it, and
/// "open_tabToSpace" and "save_spaceToTab" turn blanks when it is read and written.
class VELA_EXPORT CodeDocument : public QTextDocument, public ProjectFile, public FileWatchObject
{
    Q_OBJECT

public:
    /// The flags of search(). Their bits are not those of SearchableProjectFile's.
    enum SearchFlag : unsigned int {
        Backward = 1,
        WrapAround = 2,
        FromStart = 4, ///< from where the text begins, or with Backward from where it ends
        FindAll = 8
    };

    /// Makes an empty document in UTF-8.
    explicit CodeDocument(short fileType);
    /// Waits for a save, and releases the node files.
    ~CodeDocument() override;

    // What extensions take part in.
    virtual void setVersion(unsigned int version);
    /// Replaces the whole content by a text that belongs to no file.
    virtual void fromString(const QString &text);
    /// Called when a key was typed; may complete the text, or fill the completer's model, and set
    /// the prefix. Returns whether it did.
    virtual bool autoComplete(QTextCursor &cursor, QCompleter *completer, int key, QString &prefix);
    /// Puts a chosen completion into the text. Returns whether it did.
    virtual bool insertCompletion(CodeEditor *editor, QTextCursor cursor, const QString &text);
    virtual void autoCompleteDone();
    /// Reformats lines in the engine's way, from 0 and \a lastLine included.
    virtual void formatLines(int firstLine, int lastLine, bool indentOnly) = 0;
    virtual QIcon nodeIcon(const CodeNode *node) const;

protected:
    /// Called at the end of each pass of parsing.
    virtual void codeUpdated();
    /// The root calls these for a child that came, goes or changed; they pass it to the node file.
    virtual void insertChild(CodeNode *node, unsigned int index);
    virtual void removeChild(CodeNode *node);
    virtual void childChanged(CodeNode *node);

public:
    // The file.
    void release() override;
    QAbstractItemModel *model() override;
    Capabilities capabilities() const override;
    bool canSave() const override;
    bool isModified() const override;
    bool isEmpty() const override;
    void reset() override;
    bool toFile(Archive &archive, const QString &name, unsigned int flags,
                JobStats *stats) override;
    bool fromFile(Archive &archive, const QString &name, unsigned int flags,
                  JobStats *stats) override;
    QString fileName() const override;
    void beginChange() override;
    void endChange() override;
    void undo() override;
    void redo() override;
    /// Searches the text for one match from the document's cursor, or for all. \a flags are of
    /// SearchFlag.
    QList<SearchResult> search(const RegExp &expression, unsigned int flags) const override;
    /// Replaces matches from the last to the first, with their captures filled into \a text.
    void replace(const QList<SearchResult> &results, const QString &text) override;
    QString watchedFileName() const override;
    void reload() override;

    // Text and cursor.
    QString toString() const;
    QString title() const;
    void setTitle(const QString &title);
    /// Returns a copy of the document's own cursor.
    QTextCursor cursor() const;
    void setCursor(const QTextCursor &cursor);
    /// Inserts at the end of the text.
    void insert(const QString &text);
    /// Replaces the selection of the cursor. All code that works through nodes changes text by it.
    void insertOnCursor(const QString &text, QTextCursor cursor);
    /// Inserts \a code on a line of its own behind a node's line, or with \a single unset behind
    /// all that the node covers; at the end of the text for null.
    void insertAfter(const CodeNode *node, const QString &code, bool single);
    /// The same in front of the node; at the start of the text for null.
    void insertBefore(const CodeNode *node, const QString &code, bool single);
    bool isCodeBeingChanged() const;
    /// Returns what begins a comment, as the engine of the document's project has it; empty without
    /// one.
    QString commentString() const;

    // The tree.
    RootCode *root() const;
    CodeNode *nodeFromIndex(const QModelIndex &index) const;
    CodeNode *nodeInBlock(const QTextBlock &block) const;
    /// Returns the line of a row of the tree, from 0.
    int lineNo(const QModelIndex &index) const;
    /// Returns the row of the deepest node that covers a line.
    QModelIndex indexInLine(unsigned int line) const;
    int fileType() const;
    void setFileType(int fileType, bool notify);
    unsigned int version() const;

    // Parsing.
    /// The parser stays the caller's and must outlive the document or its next setParser().
    void setParser(CodeParser *parser);
    CodeParser *parser() const;
    bool hasSyntaxHighlight() const;
    void setSyntaxHighlight(bool highlight);
    /// Parses all lines again. The nodes survive where the parser keeps them.
    void rehighlight();
    /// Sets the format of a kind of token, for all documents. What is highlighted keeps its look
    /// until it is highlighted again.
    static void setSyntaxFormat(CodeParserSyntax::TokenType type, const QTextCharFormat &format);
    static QTextCharFormat syntaxFormat(CodeParserSyntax::TokenType type);

    // The encoding, by its index in TextCodecs. The setters wait for a save.
    int codecId() const;
    void setCodecId(int codec);
    void setCodec(const char *name);
    QByteArray codecName() const;

    // Marks beside lines, which count from 1.
    /// Returns false for a line that does not exist.
    bool addMark(CodeMark *mark, int line);
    bool hasMark(CodeMark *mark) const;
    QList<CodeMark *> marksAt(int line) const;
    void removeMark(CodeMark *mark);
    void updateMark(CodeMark *mark);

    // Node files.
    /// Makes \a file the one for root children of a type, and of a sub-type for groups, and gives
    /// it those that there are. The file takes a reference on the document.
    void registerNodeFile(CodeNodeFile *file, CodeNode::Type type, unsigned int subType);
    CodeNodeFile *nodeFile(CodeNode::Type type, unsigned int subType) const;

    /// Returns the revision of the last load or save; a block with another has changed since, and
    /// one with its complement was saved since it changed.
    int savedRevision() const;
    /// Returns whether a save is being written.
    bool isSaving() const;
    /// Waits for the save in the background and brings it to its end: the file is in its place,
    /// or the document is modified again.
    void waitForSave() const;

protected:
    void free() override;
    Messages *fileMessages() const override;
    /// Releases all nodes and parses the whole text.
    void reparse();
    /// Sets name and title; an empty name clears both.
    void setFileName(const QString &name);
    /// Says whether a save in UTF-8 begins with a byte-order mark; at first it does not.
    void setUtf8Mark(bool mark);

private:
    friend class CodeDocumentPrivate;
    friend class CodeDocumentRoot;
    friend class CodeNodeFile;

    std::unique_ptr<CodeDocumentPrivate> d;
};

} // namespace Vela

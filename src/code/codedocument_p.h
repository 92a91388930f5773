// SPDX-License-Identifier: MIT
#pragma once

#include "code/codeblockdata.h"
#include "code/codedocumentroot.h"
#include "code/codenode.h"
#include "code/codeparsersyntax.h"
#include "code/formatruns.h"
#include "code/syntaxmessageindex.h"
#include "project/messages.h"

#include <QFuture>
#include <QHash>
#include <QMap>
#include <QSet>
#include <QTextCursor>
#include <QVector>
#include <mutex>

class QIODevice;

namespace Vela {

class Archive;
class CodeDocument;
class CodeNodeFile;
class CodeParser;
class JobStats;

/// What a parser reported of a line beyond its formats.
struct CodeBlockData::Reports
{
    Reports() = default;
    ~Reports();

    QVector<Parenthesis> parenthesis;
    QList<CodeLink *> links;
    std::unique_ptr<SyntaxMessageLine> messages;

private:
    Q_DISABLE_COPY(Reports)
};

/// What keeps tree, highlight, messages and folding of a document in step with its text. It is the
/// list of the syntax messages, and takes the parser's reports.
class CodeDocumentPrivate : public Messages, public CodeParserSyntax
{
    Q_OBJECT

public:
    CodeDocumentPrivate(CodeDocument *document, int fileType);
    ~CodeDocumentPrivate() override;

    // The messages.
    ProjectFile *file() const override;
    int count(Message::Type type) const override;
    Message at(unsigned int index, Message::Type type) const override;

    // The parser's reports about the current line.
    void setToken(TokenType type, int start, int end) override;
    void addError(TokenType type, const QString &message, int start, int end) override;
    void addDeprecation(TokenType type, const QString &message, int start, int end) override;
    void addWarning(TokenType type, const QString &message, int start, int end) override;
    void addParenthesis(bool opening, QChar character, int position) override;
    void addLink(CodeLink *link) override;

    // Passes over the text (codedocument_parse.cpp).
    void onContentsChange(int from, int charsRemoved, int charsAdded);
    /// Parses the whole text again; put off to the end of a pass that is running.
    void rehighlight();
    /// Releases all nodes first; put off in the same way.
    void reparse();
    /// Parses the lines from \a first up to \a end, without it, for the tree alone.
    void parseInChange(const QTextBlock &first, const QTextBlock &end);
    /// Called by a line's data that goes away.
    void forgetBlock(CodeBlockData *data);

    // The item model is held back while locked; locks nest.
    void lockModel();
    void unlockModel();
    void readModelOption();

    // Updates of the project's message table are held back while locked; locks nest.
    void lockUpdates();
    void unlockUpdates();

    // Node files (nodefiles.cpp).
    static unsigned int nodeKey(CodeNode::Type type, unsigned int subType);
    unsigned int nodeKey(const CodeNode *node) const;
    QSet<CodeNodeFile *> distinctNodeFiles() const;
    void populate(CodeNodeFile *file, unsigned int key);
    unsigned int indexInFile(unsigned int key, int row);
    void rootChildInserted(CodeNode *node, int row);
    void rootChildRemoved(CodeNode *node);
    void rootChildChanged(CodeNode *node);
    void shiftFileRows(unsigned int key, int row, int delta);

    // Reading and writing (codedocument_file.cpp).
    bool fromFile(Archive &archive, const QString &name, int codec, unsigned int flags,
                  JobStats *stats);
    void setContent(const QString &text);
    void resetRevisions();
    void becomeNew();
    void markLinesSaved(int revision);
    /// Takes the end of a save in when the worker has let go of this object.
    bool event(QEvent *event) override;
    bool saveFinished(Archive *archive, QIODevice *device, const QString &name, unsigned int flags,
                      JobStats *stats);

Q_SIGNALS:
    /// Crosses from the save worker to the document's thread.
    void callDocSaveFinished(Vela::Archive *archive, QIODevice *device, QString name,
                             unsigned int flags, Vela::JobStats *stats);

private:
    struct Pass;

    void reformatBlocks(int from, int charsRemoved, int charsAdded);
    QString textFrom(int position, int end);
    void reformatLines(Pass &pass, int end);
    void reformatDocument();
    bool isPassAskedFor() const;
    bool runPassAskedFor();
    bool highlightBlock(Pass &pass, CodeParserSyntax *syntax);
    CodeNode *parseBlock(const QString &line, const QTextBlock &block, CodeNode *previous,
                         CodeParserSyntax *syntax);
    void parseLines(const QTextBlock &first, const QTextBlock &end);
    CodeBlockData *findPrevious(const QTextBlock &block, CodeNode *&previous);
    void indentLine(Pass &pass, const CodeNode *node);
    unsigned int foldingIndent(Pass &pass, const CodeNode *node) const;
    unsigned int closedLevels(Pass &pass, const CodeNode *header) const;
    const CodeNode *parentWithLine(const CodeNode *node) const;
    static void passIndentUp(const QTextBlock &line);
    void applyFormats(Pass &pass);
    void releaseNodes();

    void addMessage(CodeBlockData::SyntaxMessage::Kind kind, TokenType type, const QString &message,
                    int start, int end);
    void insertMessages(Pass &pass);
    void removeReports(CodeBlockData *data);

public:
    CodeDocument *const document;
    CodeDocumentRoot root;
    CodeParser *parser = nullptr;
    CodeBlockData *currentData = nullptr; ///< of the line being parsed
    bool linesGone = false;               ///< whether lines went away since its parsing began
    QString givenText;                    ///< what setPlainText() is called with; null else
    // The last search for the node above a line, kept until a line goes.
    const CodeBlockData *searchedLine = nullptr;
    CodeNode *searchedNode = nullptr;

    QTextCursor cursor;
    int changeDepth = 0;
    QMap<unsigned int, CodeNodeFile *> nodeFiles;

    /// The number of root children of a kind in front of a row: the last one that was asked for.
    struct FileRow
    {
        int row = 0;
        unsigned int count = 0;
    };
    QMap<unsigned int, FileRow> fileRows; ///< by the kind's key
    /// The keys that the root's groups came with: a group that stays may change its sub-type.
    QHash<const CodeNode *, unsigned int> groupKeys;

    QFuture<void> saveFuture;
    std::mutex saveHandover; ///< the worker holds it while it posts the end of a save
    bool saving = false;
    int savedRevision = 0;
    bool utf8Mark = false;
    /// The document at the start of the save that runs.
    struct SaveStart
    {
        QString title;
        QString fileName;
        QString text;
        int revision = 0;
    };
    SaveStart saveStart;

    QVector<CodeBlockData::SyntaxMessage> pendingMessages;
    SyntaxMessageIndex messageIndex;
    FormatRuns formatChanges; ///< the formats of the current line

    bool inRehighlight = false;
    bool inReformat = false;
    bool reparsePending = false;
    bool rehighlightPending = false;
    int passesAskedFor = 0; ///< passes that run because the one before asked for them

    bool modelEnabled = true;
    int modelLock = 0;
    int visibleRootRows = 0;
    int updateLock = 0;
    bool destroying = false;
};

} // namespace Vela

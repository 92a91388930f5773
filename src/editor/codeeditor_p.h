// SPDX-License-Identifier: MIT
#pragma once

#include "editor/codecompletion_p.h"
#include "editor/codeeditor.h"

#include <QBasicTimer>
#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QTextBlock>
#include <QTextCursor>
#include <QTimer>
#include <QVector>

namespace Vela {

class CodeDocument;
class CodeEditorExtraArea;
class CodeLink;

/// Returns the level of folding of a line; 0 for one that nothing is known of.
unsigned int foldingLevel(const QTextBlock &block);
/// Returns whether a line has folded what stands behind it on deeper levels.
bool isFolded(const QTextBlock &block);
/// Returns the nearest line above that is on a lower level, or an invalid block.
QTextBlock headerOf(const QTextBlock &block);
/// Returns the last line from \a block on before one that is on a lower level than \a level.
QTextBlock lastInLevel(QTextBlock block, unsigned int level);
/// Returns the next line that is not hidden, or an invalid block.
QTextBlock nextShown(const QTextBlock &block);

class CodeEditorPrivate : public QObject
{
    Q_OBJECT

public:
    /// One code block round the cursor; all are line numbers.
    struct BlockRange
    {
        int open;
        int close;
        int firstVisible;

        bool operator==(const BlockRange &other) const
        {
            return open == other.open && close == other.close && firstVisible == other.firstVisible;
        }
    };

    /// A line in sight.
    struct ShownLine
    {
        QTextBlock block;
        qreal top; ///< in the viewport
        qreal height;
    };

    /// The groups of extra selections, in the order in which they are painted.
    enum SelectionGroup {
        LineSelection,
        SearchSelection,
        ParenSelection,
        LinkSelection,
        GroupCount
    };

    explicit CodeEditorPrivate(CodeEditor *owner);
    ~CodeEditorPrivate() override;

    void setSelections(SelectionGroup group, const QList<QTextEdit::ExtraSelection> &selections);
    void clearSelections();

    // Side area and margin: codeeditor.cpp.
    /// Gives the text the editor's font and its tab stops, and the cursor its width.
    void applyFont();
    void updateMargin();
    /// Makes room for the side area of a text with so many lines.
    void setMargin(int lineCount);
    void placeSideArea();
    void updateSideArea(const QRect &rect, int dy);
    void onCursorMoved();
    void onContentsChange(int from, int charsRemoved, int charsAdded);
    void onContentsChanged();
    void highlightLine();
    /// Returns the lines that touch the part of the viewport from \a top to \a bottom.
    QVector<ShownLine> shownLines(int top, int bottom) const;
    /// Returns the line at a height of the viewport; invalid beyond the text.
    QTextBlock shownLineAt(int y) const;

    // Folding and the panel of what is hidden: codeeditor_folding.cpp.
    bool isFoldable(const QTextBlock &block) const;
    /// Folds or unfolds a line, if it can be. foldingChanged() is to follow.
    void toggleFolded(const QTextBlock &block);
    /// Unfolds what hides a line. foldingChanged() is to follow. Returns whether lines came to
    /// sight.
    bool reveal(const QTextBlock &block);
    /// Brings the view in step with the lines that came to sight or went out of it.
    void foldingChanged();
    /// Moves the cursor up to the next line in sight.
    void leaveHiddenLine();
    /// Moves a cursor that a key brought among hidden lines to what is behind them.
    void passHiddenLines();
    /// Returns the rectangle of " ... " behind a folded line, in the viewport; null for none.
    QRectF foldBoxRect(const QTextBlock &block) const;
    QTextBlock foldedBlockAt(const QPoint &position) const;
    void paintFoldBoxes(QPainter &painter);
    void paintHoverPanel(QPainter &painter);
    /// Follows the mouse; an invalid block leaves.
    void hoverFolded(const QTextBlock &block);
    void showHovered();
    /// Shows the lines that hide a line which the cursor was put on.
    void revealCursor();

    // Highlight of code blocks: codeeditor_blocks.cpp.
    QVector<BlockRange> blockRanges() const;
    void startBlockTimer();
    void updateBlocks();
    void paintBands(QPainter &painter, const QRect &rect);
    /// Returns the colour behind a line while there are ranges of blocks, by how many of them it is
    /// in: the base colour for all, and the darkest or lightest one for none.
    QColor bandColor(int line) const;

    // Parentheses: codeeditor_parens.cpp.
    /// The cursor moved: matches the parentheses beside it soon.
    void updateParen();
    void startParenTimer(int milliseconds);
    /// What parenTimer runs.
    void matchParens();

    // Links and tool tips: codeeditor_links.cpp.
    /// Returns the column of the character under a position of the viewport, or -1, and its line.
    int columnAt(const QPoint &position, QTextBlock *block) const;
    /// Returns the link under a position of the viewport and its line, or null.
    CodeLink *linkAt(const QPoint &position, QTextBlock *block) const;
    /// Underlines the link under a position of the viewport, or none.
    void showLink(const QPoint &position);
    void hideLink();
    /// Returns the message under a position of the viewport; empty for none.
    QString messageAt(const QPoint &position) const;

    // Keys: codeeditor_events.cpp.
    /// Makes the text cursor as wide as a character in overwrite mode.
    void updateCursorWidth();
    /// Begins a line below the cursor's with the same blanks.
    void breakLine();

    CodeEditor *const editor;
    QPointer<CodeDocument> document;
    CodeCompletion completion;
    CodeEditor::SyntaxFormatting formatting;
    QColor baseColor; ///< base of the bands where the formatting has none

    QTimer parenTimer;
    QTimer blockTimer;
    QVector<BlockRange> blocks; ///< from the innermost outwards

    QTextBlock hoveredBlock;        ///< whose hidden lines are shown
    QTextBlock pendingHoveredBlock; ///< whose hidden lines are shown soon
    QBasicTimer hoverTimer;
    int markedLine = -1;
    int lastLine = -1;              ///< that currentLineChanged() told
    int lastPosition = 0;           ///< of the cursor on a line in sight
    bool passesHiddenLines = false; ///< whether a key of navigation moves the cursor
    bool isOnTheWay = false;        ///< whether the cursor only passes the line that it is on
    QMetaObject::Connection documentEnd;
    CodeEditorExtraArea *extraArea;

    static QIcon lineMarkIcon;

private:
    friend class CodeEditor;

    bool isCovered(const QTextBlock &block) const;
    bool settleLines(const QTextBlock &first, const QTextBlock &last);

    QList<QTextEdit::ExtraSelection> m_selections[GroupCount];
    // What changed in the text since the last contentsChanged(), as positions; -1 for nothing.
    int m_changeStart = -1;
    int m_changeEnd = -1;
};

} // namespace Vela

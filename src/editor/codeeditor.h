// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QColor>
#include <QPlainTextEdit>
#include <QTextCharFormat>
#include <memory>

class QIcon;
class QTextBlock;

namespace Vela {

class CodeDocument;
class CodeEditorPrivate;

/// The widget in which a CodeDocument is edited: line numbers, marks, folding, highlight of the
/// code block round the cursor, matching parentheses, completion, links and the tool tips of syntax
/// messages. It knows nothing of the grammar: all comes from the document's CodeBlockData.
///
/// Every operation does nothing while there is no document.
/// Its tab stops are four blanks of its font apart.
class VELA_EXPORT CodeEditor : public QPlainTextEdit
{
    Q_OBJECT

public:
    /// What an editor shows, and in which colours.
    struct SyntaxFormatting
    {
        SyntaxFormatting();

        bool lineNumbers = true;
        bool marks = true; ///< the column of marks
        bool foldingMarkers = true;
        bool highlightLine = true;
        bool highlightBlocks = true;
        bool parenMatching = true;
        QColor lineColor;            ///< behind the line of the cursor
        QColor blockColor;           ///< base of the bands; invalid for the palette's own
        QTextCharFormat matchFormat; ///< of the two parentheses
        QTextCharFormat rangeFormat; ///< of what is between them, and of them
        QTextCharFormat linkFormat;
    };

    /// Where the user stands in a text; line and column from 0.
    struct LinePos
    {
        int line = 0;
        int column = 0;
        int scroll = 0; ///< value of the vertical scroll bar
    };

    /// Where setCurrentLine() brings a line to in the view.
    enum LineType { NearestPlace = 0, TopPlace = 1, MiddlePlace = 2 };

    explicit CodeEditor(QWidget *parent = nullptr);
    ~CodeEditor() override;

    /// Shows \a document, which stays its owner's and must live until the next call. Null shows
    /// none.
    void setDocument(CodeDocument *document);
    /// Returns the document shown, or null.
    CodeDocument *codeDocument() const;

    const SyntaxFormatting &syntaxFormatting() const;
    void setSyntaxFormatting(const SyntaxFormatting &formatting);
    /// Finds the code blocks round the cursor anew.
    void updateBlockHighlight();

    /// Moves the cursor to the start of a line, from 0, which is kept inside the text.
    void setCurrentLine(unsigned int line, LineType type = NearestPlace);
    void setCurrentLine(const LinePos &position);
    LinePos currentLine() const;
    /// Returns how many lines of the font the view has room for.
    int displayedLineCount() const;
    /// Marks the line of the cursor with the icon of setLineMarkIcon(), or takes the mark away.
    void markCurrentLine(bool mark);
    static void setLineMarkIcon(const QIcon &icon);

    /// Reads the words that complete a prefix from an XML file: elements "model" with the attribute
    /// "prefix", and in them elements "word" with the attribute "value". Returns false if the file
    /// cannot be opened, or if there is an error in it: the words read before it count.
    bool completerFromFile(const QString &fileName);

    /// Folds or unfolds what stands behind \a block on deeper levels. The last line of the text
    /// stays in sight, and a cursor that would be hidden goes up to the line that folds.
    void toggleBlockVisible(const QTextBlock &block);
    /// Folds all that is in sight, or unfolds what is folded on the outermost level, with one
    /// update of the view.
    void foldAll();
    void unfoldAll();

    /// Shows matches of a search as extra selections beside those of the editor's own.
    void setSearchSelections(const QList<QTextEdit::ExtraSelection> &matches);

Q_SIGNALS:
    /// The cursor stands on another line, from 0.
    void currentLineChanged(int line);
    /// The cursor moved; x is its column and y its line, both from 0.
    void cursorChanged(const QPoint &position);
    /// The user clicked into the column of marks beside a line, from 1.
    void markRequested(int line);

protected:
    bool viewportEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    friend class CodeEditorExtraArea;
    friend class CodeEditorPrivate;

    std::unique_ptr<CodeEditorPrivate> d;
};

} // namespace Vela

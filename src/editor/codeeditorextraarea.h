// SPDX-License-Identifier: MIT
#pragma once

#include <QBasicTimer>
#include <QPixmap>
#include <QWidget>

class QTextBlock;

namespace Vela {

class CodeEditor;

/// The area beside the text of a CodeEditor: line numbers, marks, bars of changed lines and boxes
/// that fold.
class CodeEditorExtraArea : public QWidget
{
    Q_OBJECT

public:
    explicit CodeEditorExtraArea(CodeEditor *editor);

    /// Returns the width that the area needs for a text, in pixels.
    int neededWidth(int lineCount) const;
    /// Ends the selecting of lines, also while the mouse is still down.
    void endSelecting();

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    int numbersWidth(int lineCount) const;
    int numbersWidth() const;
    int marksWidth() const;
    int foldingWidth() const;
    int foldingStart() const;
    QRect column(int start, int width) const;
    void paintLine(QPainter &painter, const QTextBlock &block, int top, int height);
    void paintMarks(QPainter &painter, const QTextBlock &block, int top);
    void paintChangeBar(QPainter &painter, const QTextBlock &block, int top, int height);
    void paintFolding(QPainter &painter, const QTextBlock &block, int top, int height);
    void selectLinesTo(int y);
    void scrollBeyond(int y);

    CodeEditor *m_editor;
    QPixmap m_openBox;
    QPixmap m_foldedBox;
    int m_selectionStart = -1; ///< the line at which selecting began, -1 while nothing is selected
    int m_mouseY = 0;          ///< of the mouse while it selects beyond the area
    QBasicTimer m_scrollTimer;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextDocumentLayout>

namespace Vela {

/// The layout of a document's text for QPlainTextEdit. A change costs the lines that it touches,
/// and many lines that change at once are laid out only when they are shown.
///
/// The width of the document is that of the widest line laid out since the text was replaced as a
/// whole or the view's width changed. It grows at once and does not shrink with its line: to find
/// the next widest one would be a walk over all lines for a character typed.
class CodeLayout : public QPlainTextDocumentLayout
{
    Q_OBJECT

public:
    explicit CodeLayout(QTextDocument *document);

    QSizeF documentSize() const override;
    QRectF blockBoundingRect(const QTextBlock &block) const override;

protected:
    void documentChanged(int from, int charsRemoved, int charsAdded) override;

private:
    QTextBlock lineAt(int position) const;
    void layOut(QTextBlock block);
    void relayOut(const QTextBlock &block);
    static bool takeNew(const QTextBlock &block);
    static bool clearLayouts(const QTextBlock &first, const QTextBlock &last);
    void announceSize();

    qreal m_maximumWidth = 0;
    qreal m_maximumViewWidth = 0; ///< the view's width that m_maximumWidth belongs to
    int m_blockCount = 1;
    bool m_isAsked = false;    ///< whether anybody has asked for a layout yet
    int m_changedLine = -1;    ///< the last line that changed alone; -1 for none
    qreal m_changedHeight = 0; ///< of that line's layout
    bool m_announcing = false;
    bool m_sizeChanged = false;
};

} // namespace Vela

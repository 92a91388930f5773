// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

namespace Studio {

class Colors;

/// A text with the numbers of its lines and a mark on the current one: either one of the view's
/// own, to be read, or a document of a project, to be edited.
class TextView : public QPlainTextEdit
{
    Q_OBJECT

public:
    /// Where the user stands in a text: the ends of the selection as positions in it, and what is
    /// scrolled to.
    struct Place
    {
        int anchor = 0;
        int position = 0;
        int top = 0;
        int left = 0;
    };

    explicit TextView(const Colors &colors, QWidget *parent = nullptr);

    /// Shows \a document live, with the layout of a plain text; it must live until the next call.
    /// Null shows the view's own text, which setPlainText() sets.
    void setLiveDocument(QTextDocument *document, bool editable);

    Place place() const;
    /// Goes back to a place, as far as the text still reaches.
    void setPlace(const Place &place);
    /// Moves the cursor; \a line and \a column are from 0 and kept inside the text.
    void goTo(int line, int column);
    /// Selects characters from a place on, which are kept inside the text, and shows them.
    void select(int line, int column, int length);
    /// Selects what a line says, without the blanks in front of it.
    void selectLine(int line);
    /// Takes the colours anew.
    void updateColors();

protected:
    /// Files that are dragged here are the window's to open, and no text.
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QTextCursor cursorAt(int line, int column) const;
    void reveal(const QTextCursor &cursor);
    int marginWidth() const;
    void placeMargin();
    void scrollMargin(const QRect &rect, int dy);
    void paintMargin(const QRect &rect);
    void markLine();

    const Colors &m_colors;
    QTextDocument *m_own;
    QWidget *m_margin;
};

} // namespace Studio

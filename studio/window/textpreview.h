// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

namespace Studio {

class Colors;

/// A text to read, with the numbers of its lines and a mark on the current one.
class TextPreview : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit TextPreview(const Colors &colors, QWidget *parent = nullptr);

    /// Moves the cursor; \a line and \a column are from 0 and kept inside the text.
    void goTo(int line, int column);
    /// Takes the colours anew.
    void updateColors();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    int marginWidth() const;
    void placeMargin();
    void scrollMargin(const QRect &rect, int dy);
    void paintMargin(const QRect &rect);
    void markLine();

    const Colors &m_colors;
    QWidget *m_margin;
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>

namespace Studio {

class Colors;

/// A text to be read, with the numbers of its lines and a mark on the current one.
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

    Place place() const;
    /// Goes back to a place, as far as the text still reaches.
    void setPlace(const Place &place);
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

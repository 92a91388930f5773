// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/searchcontrols.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;

namespace Studio {

class Colors;

/// The line below a text that says what to find and to replace there.
class FindBar : public QWidget
{
    Q_OBJECT

public:
    explicit FindBar(const Colors &colors, QWidget *parent = nullptr);

    /// Shows the bar with the focus on the words to find, which are \a text unless that is empty.
    void open(const QString &text, bool withReplace);
    /// Returns what is typed; empty text stands for nothing.
    SearchTerm term() const;
    QString replacement() const;
    /// Returns the flags that are chosen, as for a CodeDocument's search. The one to begin at the
    /// text's start holds for one search.
    unsigned int takeFlags();
    /// Says how a search went.
    void showNote(const QString &text, bool isFailure);
    /// Takes the colours anew.
    void updateColors();

Q_SIGNALS:
    void findWanted(bool backward);
    void replaceWanted();
    void replaceAllWanted();
    /// All matches in all files are asked for.
    void findEverywhereWanted();
    void closeWanted();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void checkTerm();

    const Colors &m_colors;
    QLineEdit *m_find;
    QLineEdit *m_replace;
    TermOptions m_options;
    QToolButton *m_wrap;
    QToolButton *m_edge;
    QWidget *m_replaceRow;
    QLabel *m_note;
    bool m_noteIsFailure = false;
};

} // namespace Studio

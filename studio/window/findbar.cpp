// SPDX-License-Identifier: MIT
#include "studio/window/findbar.h"

#include "code/codedocument.h"
#include "studio/colors.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

namespace Studio {

FindBar::FindBar(const Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_colors(colors)
    , m_find(makeSearchEdit("findText", tr("Find")))
    , m_replace(makeSearchEdit("replaceText", tr("Replace with")))
    , m_options("find")
    , m_wrap(makeSearchOption("findWrap", tr("Wrap"), tr("Go on at the other end of the text")))
    , m_edge(
          makeSearchOption("findEdge", tr("From start"),
                           tr("Begin the next search at the start of the text, or backward at its "
                              "end")))
    , m_replaceRow(new QWidget)
    , m_note(new QLabel)
{
    setObjectName(QStringLiteral("findBar"));
    m_wrap->setChecked(true);
    m_replace->setToolTip(tr("%1, %2 and so on stand for what brackets of a regular expression "
                             "matched"));
    m_note->setObjectName(QStringLiteral("findNote"));
    m_note->setTextFormat(Qt::PlainText);
    m_note->setWordWrap(true);

    auto *previous = makeSearchButton("findPrevious", tr("Previous"), tr("Find the match before"));
    auto *next = makeSearchButton("findNext", tr("Next"), tr("Find the next match"));
    auto *everywhere =
        makeSearchButton("findEverywhere", tr("All Files"), tr("List the matches in all files"));
    auto *close = makeSearchButton("findClose", tr("Close"), tr("Close the find bar"));
    auto *findRow = new QHBoxLayout;
    findRow->addWidget(m_find, 1);
    for (QWidget *button : {previous, next, everywhere, close})
        findRow->addWidget(button);
    auto *replace =
        makeSearchButton("replaceOne", tr("Replace"), tr("Replace this match, find the next"));
    auto *all =
        makeSearchButton("replaceAll", tr("Replace All"), tr("Replace every match in the text"));
    auto *replaceRow = new QHBoxLayout(m_replaceRow);
    replaceRow->setContentsMargins(0, 0, 0, 0);
    replaceRow->addWidget(m_replace, 1);
    replaceRow->addWidget(replace);
    replaceRow->addWidget(all);
    // In one row with the line they would make the window wide.
    auto *optionsRow = new QHBoxLayout;
    for (QWidget *option :
         {m_options.matchesCase, m_options.isWholeWords, m_options.isExpression, m_wrap, m_edge})
        optionsRow->addWidget(option);
    optionsRow->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(10, 4, 10, 4);
    layout->setSpacing(4);
    layout->addLayout(findRow);
    layout->addWidget(m_replaceRow);
    layout->addLayout(optionsRow);
    layout->addWidget(m_note);

    connect(next, &QToolButton::clicked, this, [this] { Q_EMIT findWanted(false); });
    connect(previous, &QToolButton::clicked, this, [this] { Q_EMIT findWanted(true); });
    connect(everywhere, &QToolButton::clicked, this, &FindBar::findEverywhereWanted);
    connect(close, &QToolButton::clicked, this, &FindBar::closeWanted);
    connect(replace, &QToolButton::clicked, this, &FindBar::replaceWanted);
    connect(all, &QToolButton::clicked, this, &FindBar::replaceAllWanted);
    connect(m_find, &QLineEdit::textChanged, this, &FindBar::checkTerm);
    connect(m_options.isExpression, &QToolButton::toggled, this, &FindBar::checkTerm);
    hide();
}

void FindBar::open(const QString &text, bool withReplace)
{
    m_replaceRow->setVisible(withReplace);
    if (!text.isEmpty())
        m_find->setText(text);
    showNote(QString(), false);
    checkTerm();
    show();
    m_find->setFocus();
    m_find->selectAll();
}

SearchTerm FindBar::term() const
{
    return m_options.term(*m_find);
}

QString FindBar::replacement() const
{
    return m_replace->text();
}

unsigned int FindBar::takeFlags()
{
    unsigned int flags = 0;
    if (m_wrap->isChecked())
        flags |= Vela::CodeDocument::WrapAround;
    if (m_edge->isChecked())
        flags |= Vela::CodeDocument::FromStart;
    m_edge->setChecked(false);
    return flags;
}

void FindBar::showNote(const QString &text, bool isFailure)
{
    m_noteIsFailure = isFailure;
    updateColors();
    m_note->setText(text);
    m_note->setVisible(!text.isEmpty());
}

void FindBar::updateColors()
{
    QPalette look;
    if (m_noteIsFailure)
        look.setColor(QPalette::WindowText, m_colors.color(QStringLiteral("error")));
    m_note->setPalette(look);
}

// An expression is told to be wrong while it is typed.
void FindBar::checkTerm()
{
    const Vela::RegExp expression = term().expression();
    if (expression.isValid())
        showNote(QString(), false);
    else
        showNote(tr("The expression is not valid: %1.").arg(expression.errorString()), true);
}

void FindBar::keyPressEvent(QKeyEvent *event)
{
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && m_replace->hasFocus())
        Q_EMIT replaceWanted();
    else if (isEnter && m_find->hasFocus())
        Q_EMIT findWanted(event->modifiers() & Qt::ShiftModifier);
    else
        QWidget::keyPressEvent(event);
}

} // namespace Studio

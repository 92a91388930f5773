// SPDX-License-Identifier: MIT
// How the view of a file finds and replaces in texts.
#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "studio/colors.h"
#include "studio/window/fileview.h"
#include "studio/window/findbar.h"
#include "studio/window/textplaces.h"

namespace Studio {

void FileView::connectFindBar()
{
    connect(m_findBar, &FindBar::findWanted, this, &FileView::findNext);
    connect(m_findBar, &FindBar::replaceWanted, this, &FileView::replaceOne);
    connect(m_findBar, &FindBar::replaceAllWanted, this, &FileView::replaceAll);
    connect(m_findBar, &FindBar::findEverywhereWanted, this, &FileView::findEverywhereWanted);
    connect(m_findBar, &FindBar::closeWanted, this, [this] {
        m_findBar->hide();
        m_editor->setSearchSelections({});
        focusText();
    });
}

void FileView::openFindBar(bool replacing)
{
    if (!m_document)
        return;
    m_findBar->open(selectedWords(), replacing && !textEdit()->isReadOnly());
}

QString FileView::selectedWords() const
{
    const QString selected = textEdit() ? textEdit()->textCursor().selectedText() : QString();
    return selected.contains(QChar::ParagraphSeparator) ? QString() : selected;
}

SearchTerm FileView::searchTerm() const
{
    if (m_findBar->isVisible())
        return m_findBar->term();
    return {selectedWords(), false, false, false};
}

void FileView::showMatch(int line, int column, int length)
{
    if (!textEdit())
        return;
    selectText(*textEdit(), line, column, length);
    focusText();
}

void FileView::findNext(bool backward)
{
    const SearchTerm term = m_findBar->term();
    if (!m_document || term.text.isEmpty())
        return openFindBar(false);
    const Vela::RegExp expression = term.expression();
    if (!expression.isValid())
        return;
    const unsigned int flags =
        m_findBar->takeFlags() | (backward ? Vela::CodeDocument::Backward : 0u);
    tellOutcome(TextSearch(*m_document, *m_editor).find(expression, flags));
    if (m_findBar->isVisible())
        highlightMatches(expression);
}

void FileView::replaceOne()
{
    const Vela::RegExp expression = m_findBar->term().expression();
    if (!canReplace(expression))
        return;
    TextSearch(*m_document, *m_editor).replace(expression, m_findBar->replacement());
    findNext(false);
}

void FileView::replaceAll()
{
    const Vela::RegExp expression = m_findBar->term().expression();
    if (!canReplace(expression))
        return;
    const int count =
        TextSearch(*m_document, *m_editor).replaceAll(expression, m_findBar->replacement());
    m_findBar->showNote(count == 0 ? tr("Not found.") : tr("Replaced: %1").arg(count), count == 0);
    m_editor->setSearchSelections({});
}

bool FileView::canReplace(const Vela::RegExp &expression) const
{
    return m_document && !m_editor->isReadOnly() && expression.isValid()
        && !m_findBar->term().text.isEmpty();
}

void FileView::tellOutcome(TextSearch::Outcome outcome)
{
    switch (outcome) {
    case TextSearch::Found:
        return m_findBar->showNote(QString(), false);
    case TextSearch::FoundAround:
        return m_findBar->showNote(tr("Went on at the other end of the text."), false);
    default:
        return m_findBar->showNote(tr("Not found."), true);
    }
}

void FileView::highlightMatches(const Vela::RegExp &expression)
{
    const QTextCharFormat format = m_colors.format(QStringLiteral("search"));
    QList<QTextEdit::ExtraSelection> marks;
    const QList<QTextCursor> matches = TextSearch(*m_document, *m_editor).matchesNearby(expression);
    for (const QTextCursor &match : matches)
        marks.append({match, format});
    m_editor->setSearchSelections(marks);
}

} // namespace Studio

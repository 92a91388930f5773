// SPDX-License-Identifier: MIT
#include "studio/window/fileview.h"

#include "code/codedocument.h"
#include "frame/archive.h"
#include "studio/session/documents.h"
#include "studio/window/filecontent.h"
#include "studio/window/findbar.h"
#include "studio/window/imagepreview.h"
#include "studio/window/notelabel.h"

#include <QDir>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Studio {

namespace {

/// Returns whether an empty text is one that could not be read: typing into it would hide that.
bool isUnreadable(const Vela::CodeDocument &document)
{
    if (!document.isEmpty() || document.isModified() || document.isSaving())
        return false;
    Vela::Archive &archive = document.archive();
    QIODevice *device = archive.openFile(document.fileName(), QIODevice::ReadOnly);
    if (device)
        archive.closeFile(device);
    return !device;
}

} // namespace

FileView::FileView(const Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_title(new QLabel)
    , m_note(new NoteLabel)
    , m_pages(new QStackedWidget)
    , m_text(new TextView(colors))
    , m_image(new ImagePreview)
    , m_words(new NoteLabel)
    , m_findBar(new FindBar(colors))
    , m_syntax(colors)
{
    m_text->setObjectName(QStringLiteral("textView"));
    m_text->setAccessibleName(tr("Text of the file"));
    m_image->setObjectName(QStringLiteral("imagePreview"));
    m_image->setAccessibleName(tr("Image of the file"));
    m_words->setObjectName(QStringLiteral("noPreview"));
    m_words->setAlignment(Qt::AlignCenter);
    m_pages->addWidget(m_words);
    m_pages->addWidget(m_text);
    m_pages->addWidget(m_image);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(makeHeader());
    layout->addWidget(m_pages);
    layout->addWidget(m_findBar);
    connectText();
    connectFindBar();
    setFile(nullptr, QString());
}

QLayout *FileView::makeHeader()
{
    m_title->setObjectName(QStringLiteral("fileTitle"));
    m_title->setTextFormat(Qt::PlainText);
    QFont bold = font();
    bold.setBold(true);
    m_title->setFont(bold);
    auto *header = new QHBoxLayout;
    header->setContentsMargins(10, 6, 10, 6);
    header->addWidget(m_title);
    header->addStretch();
    header->addWidget(m_note);
    return header;
}

void FileView::connectText()
{
    connect(m_text, &QPlainTextEdit::cursorPositionChanged, this, &FileView::tellPosition);
    connect(m_text, &QPlainTextEdit::undoAvailable, this, &FileView::historyChanged);
    connect(m_text, &QPlainTextEdit::redoAvailable, this, &FileView::historyChanged);
    connect(m_text, &QPlainTextEdit::textChanged, this, [this] {
        if (m_document)
            Q_EMIT edited();
    });
}

void FileView::connectFindBar()
{
    connect(m_findBar, &FindBar::findWanted, this, &FileView::findNext);
    connect(m_findBar, &FindBar::replaceWanted, this, &FileView::replaceOne);
    connect(m_findBar, &FindBar::replaceAllWanted, this, &FileView::replaceAll);
    connect(m_findBar, &FindBar::closeWanted, this, [this] {
        m_findBar->hide();
        m_pages->currentWidget()->setFocus();
    });
}

void FileView::setFile(Vela::ProjectFile *file, const QString &path)
{
    if (textView())
        m_places.insert(m_path, m_text->place());
    m_file = file;
    m_path = path;
    // A file may have left its reading to the first need.
    if (file)
        file->isEmpty();
    m_document = documentOf(file);
    if (m_document && isUnreadable(*m_document))
        m_document = nullptr;
    m_text->setLiveDocument(m_document, m_document && m_document->canSave());
    if (m_document)
        m_syntax.refresh(*m_document);
    else
        m_text->clear();
    showContent();
    if (textView())
        m_text->setPlace(m_places.value(path));
    else
        m_findBar->hide();
    setModifiedMark(file && file->isModified());
}

Vela::ProjectFile *FileView::file() const
{
    return m_file;
}

Vela::CodeDocument *FileView::document() const
{
    return m_document;
}

void FileView::forgetPlaces()
{
    m_places.clear();
}

void FileView::refresh()
{
    // What could not be read may be there now.
    if (!m_document && documentOf(m_file))
        return setFile(m_file, m_path);
    const TextView::Place place = m_text->place();
    showContent();
    if (textView() && !m_document)
        m_text->setPlace(place);
}

void FileView::setModifiedMark(bool modified)
{
    m_modified = modified;
    const QString name = QDir::toNativeSeparators(m_path);
    m_title->setText(modified ? QString(name + QStringLiteral(" \u25CF")) : name);
    m_title->setAccessibleName(modified ? tr("%1, modified").arg(name) : name);
}

void FileView::goTo(int line, int column)
{
    if (textView())
        m_text->goTo(line, column);
}

TextView *FileView::textView() const
{
    return m_pages->currentWidget() == m_text ? m_text : nullptr;
}

void FileView::updateColors()
{
    m_text->updateColors();
    m_findBar->updateColors();
    m_syntax.update();
    if (m_document)
        m_syntax.refresh(*m_document);
}

void FileView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        updateColors();
}

void FileView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_findBar->isVisible())
        Q_EMIT m_findBar->closeWanted();
    else
        QWidget::keyPressEvent(event);
}

void FileView::showContent()
{
    if (m_document) {
        m_note->setText(m_text->isReadOnly() ? tr("Read-only view") : QString());
        m_pages->setCurrentWidget(m_text);
    } else {
        showPreview();
    }
    tellPosition();
}

void FileView::showPreview()
{
    const FileContent content = m_file ? FileContent::of(*m_file) : FileContent();
    const QString size = QLocale().formattedDataSize(content.size);
    m_note->setText(m_file && content.kind != FileContent::Missing ? size : QString());
    switch (content.kind) {
    case FileContent::Text:
        if (m_text->toPlainText() != content.text)
            m_text->setPlainText(content.text);
        m_note->setText(content.cut ? tr("%1, the beginning only").arg(size)
                                    : tr("%1, read-only view").arg(size));
        m_pages->setCurrentWidget(m_text);
        break;
    case FileContent::Image:
        m_image->setImage(content.image);
        m_note->setText(tr("%1 by %2 pixels, %3")
                            .arg(content.image.width())
                            .arg(content.image.height())
                            .arg(size));
        m_pages->setCurrentWidget(m_image);
        break;
    default:
        m_words->setText(!m_file ? tr("Choose a file in the project tree.")
                             : content.kind == FileContent::Other
                             ? tr("There is no preview of this kind of file.")
                             : tr("The file cannot be read."));
        m_pages->setCurrentWidget(m_words);
    }
}

void FileView::tellPosition()
{
    const QTextCursor cursor = m_text->textCursor();
    if (textView())
        Q_EMIT positionChanged(cursor.blockNumber(), cursor.positionInBlock());
    else
        Q_EMIT positionChanged(-1, -1);
}

void FileView::openFindBar(bool replacing)
{
    if (!textView())
        return;
    const QString selected = m_text->textCursor().selectedText();
    m_findBar->open(selected.contains(QChar::ParagraphSeparator) ? QString() : selected,
                    replacing && !m_text->isReadOnly());
}

void FileView::findNext(bool backward)
{
    const SearchTerm term = m_findBar->term();
    if (!textView() || term.text.isEmpty())
        return openFindBar(false);
    const Vela::RegExp expression = term.expression();
    if (!expression.isValid())
        return;
    const unsigned int flags =
        m_findBar->takeFlags() | (backward ? Vela::CodeDocument::Backward : 0u);
    tellOutcome(TextSearch(*m_file, *m_text).find(expression, flags));
}

void FileView::replaceOne()
{
    const Vela::RegExp expression = m_findBar->term().expression();
    if (!canReplace(expression))
        return;
    TextSearch(*m_file, *m_text).replace(expression, m_findBar->replacement());
    findNext(false);
}

void FileView::replaceAll()
{
    const Vela::RegExp expression = m_findBar->term().expression();
    if (!canReplace(expression))
        return;
    const int count = TextSearch(*m_file, *m_text).replaceAll(expression, m_findBar->replacement());
    m_findBar->showNote(count == 0 ? tr("Not found.") : tr("Replaced: %1").arg(count), count == 0);
}

bool FileView::canReplace(const Vela::RegExp &expression) const
{
    return m_document && !m_text->isReadOnly() && expression.isValid()
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

} // namespace Studio

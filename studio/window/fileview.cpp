// SPDX-License-Identifier: MIT
#include "studio/window/fileview.h"

#include "project/projectfile.h"
#include "studio/window/filecontent.h"
#include "studio/window/imagepreview.h"
#include "studio/window/notelabel.h"
#include "studio/window/textpreview.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Studio {

FileView::FileView(const Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_title(new QLabel)
    , m_note(new NoteLabel)
    , m_pages(new QStackedWidget)
    , m_text(new TextPreview(colors))
    , m_image(new ImagePreview)
    , m_words(new NoteLabel)
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

    m_text->setObjectName(QStringLiteral("textPreview"));
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
    layout->addLayout(header);
    layout->addWidget(m_pages);
    connect(m_text, &QPlainTextEdit::cursorPositionChanged, this, &FileView::tellPosition);
    setFile(nullptr, QString());
}

void FileView::setFile(Vela::ProjectFile *file, const QString &path)
{
    m_file = file;
    m_path = path;
    m_text->clear();
    showContent();
    setModifiedMark(file && file->isModified());
}

Vela::ProjectFile *FileView::file() const
{
    return m_file;
}

void FileView::refresh()
{
    const QTextCursor cursor = m_text->textCursor();
    const int line = cursor.blockNumber();
    const int column = cursor.positionInBlock();
    const int scroll = m_text->verticalScrollBar()->value();
    showContent();
    if (textPreview()) {
        m_text->goTo(line, column);
        m_text->verticalScrollBar()->setValue(scroll);
    }
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
    if (textPreview())
        m_text->goTo(line, column);
}

TextPreview *FileView::textPreview() const
{
    return m_pages->currentWidget() == m_text ? m_text : nullptr;
}

void FileView::updateColors()
{
    m_text->updateColors();
}

void FileView::showContent()
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
    tellPosition();
}

void FileView::tellPosition()
{
    const QTextCursor cursor = m_text->textCursor();
    if (textPreview())
        Q_EMIT positionChanged(cursor.blockNumber(), cursor.positionInBlock());
    else
        Q_EMIT positionChanged(-1, -1);
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/window/fileview.h"

#include "code/codedocument.h"
#include "editor/codeeditor.h"
#include "editor/codefileeditor.h"
#include "editor/codeworkspace.h"
#include "frame/archive.h"
#include "frame/propertyitem.h"
#include "image/palettes.h"
#include "image/sprite.h"
#include "image/sprites.h"
#include "sound/sound.h"
#include "sound/sounds.h"
#include "sound/soundsample.h"
#include "studio/session/documents.h"
#include "studio/window/editors.h"
#include "studio/window/filecontent.h"
#include "studio/window/findbar.h"
#include "studio/window/imagepreview.h"
#include "studio/window/notelabel.h"
#include "studio/window/soundfileview.h"
#include "studio/window/soundsview.h"
#include "studio/window/soundwaveform.h"
#include "studio/window/soundwords.h"
#include "studio/window/spritesview.h"
#include "studio/window/textplaces.h"

#include <QDir>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QLocale>
#include <QMimeData>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTreeView>
#include <QVBoxLayout>
#include <QWheelEvent>

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

FileView::FileView(Editors &editors, Settings &settings, const Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_editors(editors)
    , m_colors(colors)
    , m_title(new QLabel)
    , m_note(new NoteLabel)
    , m_pages(new QStackedWidget)
    , m_editor(editors.code().editor())
    , m_text(new TextView(colors))
    , m_image(new ImagePreview)
    , m_sprites(new SpritesView)
    , m_sounds(new SoundsView(settings, colors))
    , m_sound(new SoundFileView(settings, colors))
    , m_words(new NoteLabel)
    , m_findBar(new FindBar(colors))
    , m_syntax(colors)
{
    m_editor->setObjectName(QStringLiteral("codeEditor"));
    m_editor->setAccessibleName(tr("Text of the file"));
    m_editor->viewport()->installEventFilter(this);
    m_text->setObjectName(QStringLiteral("textView"));
    m_text->setAccessibleName(tr("Text of the file"));
    m_image->setObjectName(QStringLiteral("imagePreview"));
    m_image->setAccessibleName(tr("Image of the file"));
    m_words->setObjectName(QStringLiteral("noPreview"));
    m_words->setAlignment(Qt::AlignCenter);
    m_pages->addWidget(m_words);
    m_pages->addWidget(m_editors.code().widget());
    m_pages->addWidget(m_text);
    m_pages->addWidget(m_image);
    m_pages->addWidget(m_sprites);
    m_pages->addWidget(m_sounds);
    m_pages->addWidget(m_sound);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(makeHeader());
    layout->addWidget(m_pages);
    layout->addWidget(m_findBar);
    connectText(*m_editor);
    connectText(*m_text);
    connect(m_sprites, &SpritesView::edited, this, &FileView::edited);
    connect(m_sprites, &SpritesView::currentChanged, this, &FileView::propertyItemChanged);
    connectSounds();
    connectFindBar();
    setFile(nullptr, QString());
}

FileView::~FileView()
{
    m_editors.code().widget()->setParent(nullptr);
}

QLayout *FileView::makeHeader()
{
    m_title->setObjectName(QStringLiteral("fileTitle"));
    m_note->setObjectName(QStringLiteral("fileNote"));
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

void FileView::connectText(QPlainTextEdit &text)
{
    connect(&text, &QPlainTextEdit::cursorPositionChanged, this, &FileView::tellPosition);
    connect(&text, &QPlainTextEdit::undoAvailable, this, &FileView::historyChanged);
    connect(&text, &QPlainTextEdit::redoAvailable, this, &FileView::historyChanged);
    connect(&text, &QPlainTextEdit::textChanged, this, [this] {
        if (m_document)
            Q_EMIT edited();
    });
}

void FileView::connectSounds()
{
    connect(m_sounds, &SoundsView::edited, this, &FileView::edited);
    connect(m_sounds, &SoundsView::currentChanged, this, &FileView::propertyItemChanged);
    connect(m_sounds->sound(), &SoundView::changed, this, &FileView::soundChanged);
    connect(m_sound, &SoundView::changed, this, &FileView::soundChanged);
    connect(m_sound, &SoundFileView::infoChanged, this, [this] {
        if (m_pages->currentWidget() == m_sound)
            showSoundNote();
    });
}

void FileView::setFile(Vela::ProjectFile *file, const QString &path)
{
    if (textEdit() == m_text)
        m_places.insert(m_path, m_text->place());
    m_file = file;
    m_path = path;
    m_sound->clear();
    // A file may have left its reading to the first need. Sounds are read in the background.
    if (file && FileContent::soundFormat(*file).isEmpty())
        file->isEmpty();
    m_document = documentOf(file);
    if (!m_document || isUnreadable(*m_document) || !edit()) {
        m_document = nullptr;
        m_editors.leave();
        m_text->clear();
    }
    showContent();
    if (!m_document)
        m_findBar->hide();
    if (textEdit() == m_text)
        m_text->setPlace(m_places.value(path));
    setModifiedMark(file && file->isModified());
}

// Returns false if there is no editor for the definition text.
bool FileView::edit()
{
    Vela::CodeFileEditor *editor = m_editors.editorOf(*m_file);
    if (!editor)
        return false;
    m_syntax.refresh(*m_document);
    m_editors.show(*editor, *m_file);
    m_editor->setReadOnly(!m_document->canSave());
    return true;
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
    if (textEdit() == m_text)
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
    if (textEdit())
        goToPlace(*textEdit(), line, column);
}

QPlainTextEdit *FileView::textEdit() const
{
    if (m_pages->currentWidget() == m_text)
        return m_text;
    return m_document ? m_editor : nullptr;
}

SoundView *FileView::soundView() const
{
    if (m_pages->currentWidget() == m_sounds)
        return m_sounds->sound();
    return m_pages->currentWidget() == m_sound ? m_sound : nullptr;
}

Vela::PropertyItem *FileView::propertyItem() const
{
    const QWidget *const page = m_pages->currentWidget();
    Vela::PropertyItem *chosen = nullptr;
    if (page == m_sprites)
        chosen = m_sprites->currentSprite();
    else if (page == m_sounds)
        chosen = m_sounds->currentSound();
    return chosen ? chosen : dynamic_cast<Vela::PropertyItem *>(m_file);
}

void FileView::focusText()
{
    const QWidget *const page = m_pages->currentWidget();
    if (textEdit())
        textEdit()->setFocus();
    else if (page == m_sprites)
        m_sprites->list()->setFocus();
    else if (page == m_sounds)
        m_sounds->list()->setFocus();
    else if (page == m_sound)
        m_sound->setFocus();
}

void FileView::updateColors()
{
    m_text->updateColors();
    m_findBar->updateColors();
    for (const SoundView *sound : {m_sounds->sound(), static_cast<SoundView *>(m_sound)})
        sound->waveform()->viewport()->update();
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

// Over the text the wheel zooms with Ctrl, and what is dragged in from outside is the window's to
// open, and no text.
bool FileView::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Wheel: {
        const auto *wheel = static_cast<QWheelEvent *>(event);
        if (!(wheel->modifiers() & Qt::ControlModifier))
            break;
        zoom(wheel->angleDelta().y());
        return true;
    }
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        if (!static_cast<QDropEvent *>(event)->mimeData()->hasUrls())
            break;
        event->ignore();
        return true;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

// A touchpad turns the wheel by many small parts of a step.
void FileView::zoom(int turn)
{
    m_wheelTurn += turn;
    for (; m_wheelTurn >= QWheelEvent::DefaultDeltasPerStep;
         m_wheelTurn -= QWheelEvent::DefaultDeltasPerStep)
        m_editors.code().zoomIn();
    for (; m_wheelTurn <= -QWheelEvent::DefaultDeltasPerStep;
         m_wheelTurn += QWheelEvent::DefaultDeltasPerStep)
        m_editors.code().zoomOut();
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
    auto *const sprites = dynamic_cast<Vela::Sprites *>(m_file);
    auto *const sounds = dynamic_cast<Vela::Sounds *>(m_file);
    m_sprites->setSprites(sprites);
    m_sounds->setSounds(sounds);
    if (sprites) {
        m_note->setText(tr("Sprites: %1, palettes: %2")
                            .arg(sprites->count())
                            .arg(sprites->palettes()->count()));
        m_pages->setCurrentWidget(m_sprites);
    } else if (sounds) {
        m_note->setText(tr("Sounds: %1").arg(sounds->count()));
        m_pages->setCurrentWidget(m_sounds);
    } else if (m_document) {
        m_note->setText(m_editor->isReadOnly() ? tr("Read-only view") : QString());
        m_pages->setCurrentWidget(m_editors.code().widget());
    } else {
        showPreview();
    }
    Q_EMIT soundChanged();
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
    case FileContent::Sound:
        m_soundSize = size;
        m_sound->setFile(content.device, content.format);
        showSoundNote();
        m_pages->setCurrentWidget(m_sound);
        break;
    default:
        m_words->setText(!m_file ? tr("Choose a file in the project tree.")
                             : content.kind == FileContent::Other
                             ? tr("There is no preview of this kind of file.")
                             : tr("The file cannot be read."));
        m_pages->setCurrentWidget(m_words);
    }
}

void FileView::showSoundNote()
{
    const Vela::SampleInfo &info = m_sound->info();
    m_note->setText(
        info.samples == 0
            ? m_soundSize
            : tr("%1, %2, %3").arg(timeWords(info, info.samples), formatWords(info), m_soundSize));
}

void FileView::tellPosition()
{
    const QTextCursor cursor = textEdit() ? textEdit()->textCursor() : QTextCursor();
    if (cursor.isNull())
        Q_EMIT positionChanged(-1, -1);
    else
        Q_EMIT positionChanged(cursor.blockNumber(), cursor.positionInBlock());
}

} // namespace Studio

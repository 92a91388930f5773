// SPDX-License-Identifier: MIT
#include "studio/session/textautosave.h"

#include "code/codedocument.h"
#include "frame/filesystemarchive.h"
#include "project/parentproject.h"
#include "studio/session/documents.h"
#include "studio/session/projectcontents.h"

#include <QDir>
#include <QTextCursor>

#include <algorithm>
#include <utility>

namespace Studio {

namespace {

constexpr int SliceLength = 8; // ms in which texts are copied before events have their turn
constexpr int BusyDelay = 100; // ms to the next look whether the thread is through

/// Replaces what differs as one step of undo. Both texts have the lines apart by "\n".
void replaceText(Vela::CodeDocument &document, const QString &text)
{
    const QString before = document.toString();
    const auto differing = std::mismatch(before.begin(), before.end(), text.begin(), text.end());
    int first = int(differing.first - before.begin());
    // No half of a surrogate pair stays behind.
    if (first > 0 && before.at(first - 1).isHighSurrogate())
        --first;
    const int most = qMin(before.size(), text.size()) - first;
    const auto end = std::mismatch(before.rbegin(), before.rbegin() + most, text.rbegin());
    int same = int(end.first - before.rbegin());
    if (same > 0 && before.at(before.size() - same).isLowSurrogate())
        --same;
    if (before.size() == text.size() && same + first == text.size())
        return;
    QTextCursor cursor(&document);
    cursor.setPosition(first);
    cursor.setPosition(before.size() - same, QTextCursor::KeepAnchor);
    document.insertOnCursor(text.mid(first, text.size() - same - first), cursor);
}

} // namespace

TextAutosave::TextAutosave(const QString &folder, int rest, int longest)
    : m_folder(folder)
    , m_rest(rest)
    , m_longest(longest)
    , m_store(folder)
{
    m_pool.setMaxThreadCount(1);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &TextAutosave::writeSome);
}

TextAutosave::~TextAutosave()
{
    m_pool.waitForDone();
}

QString TextAutosave::folder() const
{
    return m_folder;
}

QString TextAutosave::projectName(const Vela::ParentProject &parent)
{
    const QString root = rootPath(parent);
    const QString canonical = QDir(root).canonicalPath();
    return canonical.isEmpty() ? root : canonical;
}

void TextAutosave::setParentProject(Vela::ParentProject *parent)
{
    if (m_parent)
        m_parent->disconnect(this);
    const QList<Vela::CodeDocument *> known = m_texts.keys();
    for (Vela::CodeDocument *document : known)
        unfollow(document);
    m_parent = parent;
    if (!parent || &parent->archive() != &Vela::FileSystemArchive::instance())
        return;
    connect(parent, &Vela::ParentProject::fileAdded, this, &TextAutosave::follow);
    connect(parent, &Vela::ParentProject::fileOpened, this, &TextAutosave::onRead);
    connect(parent, &Vela::ParentProject::fileSaved, this, &TextAutosave::onRead);
    connect(parent, &Vela::ParentProject::fileClosed, this, &TextAutosave::onClosed);
    const QList<Vela::CodeDocument *> documents = openDocuments(*parent);
    for (Vela::CodeDocument *document : documents)
        follow(document);
}

void TextAutosave::follow(Vela::ProjectFile *file)
{
    Vela::CodeDocument *document = documentOf(file);
    if (!document || m_texts.contains(document))
        return;
    m_texts.insert(document, {});
    connect(document, &QTextDocument::contentsChanged, this,
            [this, document] { onChanged(document); });
    connect(document, &QTextDocument::modificationChanged, this,
            [this, document](bool modified) { onModificationChanged(document, modified); });
    connect(document, &QObject::destroyed, this, [this, document] {
        forget(document);
        m_texts.remove(document);
    });
    // One that is read late says so then.
    if (!document->QTextDocument::isEmpty())
        noteDisk(document);
    if (document->isModified())
        onChanged(document);
}

// The file was read, or written, and the content of the text is its own.
void TextAutosave::onRead(Vela::ProjectFile *file)
{
    follow(file);
    Vela::CodeDocument *document = documentOf(file);
    if (document && !document->QTextDocument::isEmpty())
        noteDisk(document);
}

void TextAutosave::onClosed(Vela::ProjectFile *file)
{
    if (auto *document = dynamic_cast<Vela::CodeDocument *>(file))
        unfollow(document);
}

void TextAutosave::onChanged(Vela::CodeDocument *document)
{
    if (!document->isModified())
        return;
    if (m_changed.isEmpty())
        m_firstChange.start();
    m_changed.insert(document);
    m_timer.start(int(qBound<qint64>(0, m_longest - m_firstChange.elapsed(), m_rest)));
}

void TextAutosave::onModificationChanged(Vela::CodeDocument *document, bool isModified)
{
    if (isModified) {
        if (m_texts[document].disk == FileState())
            noteDisk(document);
        return onChanged(document);
    }
    forget(document);
    // Without steps of undo the text was read just now.
    if (!document->isUndoAvailable() && !document->isRedoAvailable())
        noteDisk(document);
}

void TextAutosave::noteDisk(Vela::CodeDocument *document)
{
    m_texts[document].disk = FileState::of(document->fileName());
}

void TextAutosave::writeSome()
{
    // Texts shall not pile up before a slow disk.
    if (m_pool.activeThreadCount() > 0)
        return m_timer.start(BusyDelay);
    QElapsedTimer time;
    time.start();
    while (!m_changed.isEmpty() && time.elapsed() < SliceLength) {
        Vela::CodeDocument *document = *m_changed.begin();
        m_changed.remove(document);
        write(document);
    }
    if (!m_changed.isEmpty())
        m_timer.start(0);
}

void TextAutosave::write(Vela::CodeDocument *document)
{
    Followed &followed = m_texts[document];
    // A text has no name while it is being saved.
    const QString path = pathOf(*m_parent, *document);
    if (!path.isEmpty())
        followed.file = path;
    if (followed.file.isEmpty())
        return;
    followed.project = projectName(*m_parent);
    const UnsavedText text{followed.project,
                           followed.file,
                           document->codecName(),
                           followed.disk,
                           document->toString(),
                           {},
                           {}};
    m_pool.start([this, text] {
        QString error;
        if (!m_store.write(text, &error))
            QMetaObject::invokeMethod(
                this, [this, error] { tell(error); }, Qt::QueuedConnection);
    });
}

void TextAutosave::forget(Vela::CodeDocument *document)
{
    m_changed.remove(document);
    Followed &followed = m_texts[document];
    if (followed.project.isEmpty())
        return;
    m_pool.start([this, project = std::exchange(followed.project, {}), file = followed.file] {
        m_store.remove(project, file);
    });
}

void TextAutosave::unfollow(Vela::CodeDocument *document)
{
    if (!m_texts.contains(document))
        return;
    document->disconnect(this);
    forget(document);
    m_texts.remove(document);
}

void TextAutosave::recover(const UnsavedText &left, Vela::CodeDocument &document)
{
    document.isEmpty(); // it is read by then
    replaceText(document, left.text);
    if (left.codec() >= 0)
        document.setCodecId(left.codec());
    if (!document.isModified())
        document.setModified(true);
    follow(&document);
    m_pool.waitForDone();
    QString error;
    if (!m_store.adopt(left, &error))
        return tell(error);
    m_texts[&document].file = left.file;
    m_texts[&document].project = left.project;
}

void TextAutosave::tell(const QString &reason)
{
    if (!m_isToldOf)
        Q_EMIT failed(reason);
    m_isToldOf = true;
}

} // namespace Studio

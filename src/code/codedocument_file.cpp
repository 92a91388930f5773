// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "code/codedocument_p.h"
#include "code/tabs.h"
#include "frame/filesystemarchive.h"
#include "frame/fileutils.h"
#include "frame/jobstats.h"
#include "frame/textcodecs.h"

#include <QCoreApplication>
#include <QFileDevice>
#include <QtConcurrent>

#include <utility>

namespace Vela {

namespace {

/// Most that a file or its text may have, in bytes and in characters: a QTextDocument counts its
/// characters in an int, and a QString holds fewer than that many.
constexpr qint64 largestSize = 1000 * 1000 * 1000;

// Bits of a save's flags beside those of ProjectFile::FileFlag.
constexpr unsigned int blanksToTabsFlag = 1u << 15;
constexpr unsigned int writeFailedFlag = 1u << 16;
constexpr unsigned int utf8MarkFlag = 1u << 17;

constexpr uint codecDataId = 0xC0DE;

/// The encoding of a document, by its index in TextCodecs. Qt keeps a table with a place for each
/// number up to this one's, some 400 KB, for every object that has such data: a document in UTF-8
/// has none.
class CodeDocumentUserData : public QObjectUserData
{
public:
    int codec = 0;
};

// The user data of objects is deprecated, but it is where the codec is looked for.
QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

CodeDocumentUserData *codecData(const CodeDocument &document)
{
    return static_cast<CodeDocumentUserData *>(document.userData(codecDataId));
}

void addCodecData(CodeDocument &document)
{
    document.setUserData(codecDataId, new CodeDocumentUserData);
}

QT_WARNING_POP

/// Hides the tree of a document for its own lifetime. The option for the tree is read anew then.
class TreeReplacement
{
public:
    explicit TreeReplacement(CodeDocumentPrivate &document)
        : m_document(document)
    {
        m_document.lockModel();
    }

    ~TreeReplacement()
    {
        m_document.readModelOption();
        m_document.unlockModel();
    }

private:
    Q_DISABLE_COPY(TreeReplacement)

    CodeDocumentPrivate &m_document;
};

bool readAll(Archive &archive, QIODevice *device, QByteArray &data)
{
    // One byte more than is allowed tells a file that is too large, whatever it says of its size.
    bool isRead = device->size() <= largestSize;
    if (isRead)
        data = device->isSequential() ? device->read(largestSize + 1) : device->readAll();
    const auto *const file = qobject_cast<QFileDevice *>(device);
    isRead =
        isRead && data.size() <= largestSize && (!file || file->error() == QFileDevice::NoError);
    archive.closeFile(device);
    return isRead;
}

/// Returns whether the text with its tabs as blanks, if the option is set, is of a size that a
/// document takes.
bool takeTabs(const CodeDocument &document, QString &text)
{
    if (!document.option(QStringLiteral("open_tabToSpace"), false).toBool())
        return true;
    if (expandedSize(text) > largestSize)
        return false;
    text = expandTabs(text);
    return true;
}

QString withFileLineEnds(const QString &text)
{
    QString result;
    result.reserve(text.size() + text.count(QLatin1Char('\n')));
    for (const QChar character : text) {
        if (character == QLatin1Char('\n'))
            result += QLatin1Char('\r');
        result += character;
    }
    return result;
}

/// Writes a text as a file has it, on any thread. Returns the flags, with writeFailedFlag if the
/// device did not take all.
unsigned int write(QIODevice *device, QString text, int codec, unsigned int flags)
{
    text = withFileLineEnds(text);
    if (flags & blanksToTabsFlag)
        text = blanksToTabs(text);
    QByteArray data = TextCodecs::stringToData(text, codec);
    if (flags & utf8MarkFlag)
        data.prepend("\xEF\xBB\xBF");
    bool isWritten = device->write(data) == data.size();
    if (auto *const file = qobject_cast<QFileDevice *>(device))
        isWritten = flushFile(*file) && isWritten;
    return isWritten ? flags : flags | writeFailedFlag;
}

/// Returns whether the new content is in its place; else \a reason says why, as far as it is known.
bool commit(Archive &archive, QIODevice *device, unsigned int flags, QString &reason)
{
    if (flags & writeFailedFlag) {
        reason = device->errorString();
        archive.discardFile(device);
        return false;
    }
    reason = CodeDocument::tr("it cannot be opened or replaced");
    return archive.commitFile(device);
}

/// Tells a job its end, and deletes it where the save has taken it over.
void endJob(JobStats *stats, unsigned int flags)
{
    if (stats)
        stats->setValue(1);
    if (flags & ProjectFile::WithJob)
        delete stats;
}

/// Makes \a text the state that undo and redo call not modified. A document that was edited while
/// the worker wrote has left that state, even if undo has brought it back to the one before.
void takeAsSaved(CodeDocument &document, const QString &text, unsigned int flags)
{
    const bool isEdited = (flags & ProjectFile::WithJob) && document.toString() != text;
    if (isEdited) {
        // Only one that is not modified forgets the state before when it becomes modified.
        const QSignalBlocker quiet(document);
        document.setModified(false);
    }
    document.setModified(isEdited);
}

void reportFailure(JobStats *stats, const QString &name, const QString &reason)
{
    if (stats)
        stats->error(CodeDocument::tr("The file '%1' cannot be written: %2.").arg(name, reason));
}

} // namespace

int CodeDocument::codecId() const
{
    const CodeDocumentUserData *const data = codecData(*this);
    return data ? data->codec : TextCodecs::index("UTF-8");
}

void CodeDocument::setCodecId(int codec)
{
    waitForSave();
    if (codec == codecId())
        return;
    if (!codecData(*this))
        addCodecData(*this);
    codecData(*this)->codec = codec;
}

void CodeDocument::setCodec(const char *name)
{
    setCodecId(TextCodecs::index(name));
}

QByteArray CodeDocument::codecName() const
{
    return TextCodecs::name(codecId());
}

void CodeDocument::setUtf8Mark(bool mark)
{
    d->utf8Mark = mark;
}

int CodeDocument::savedRevision() const
{
    return d->savedRevision;
}

bool CodeDocument::isSaving() const
{
    return d->saving;
}

void CodeDocument::waitForSave() const
{
    d->saveFuture.waitForFinished();
    if (!d->saving)
        return;
    // What the worker has posted then would come too late: to a document that has another content,
    // or to none at all.
    QCoreApplication::sendPostedEvents(d.get(), QEvent::MetaCall);
}

QString CodeDocument::watchedFileName() const
{
    return fileName();
}

bool CodeDocument::fromFile(Archive &archive, const QString &name, unsigned int flags,
                            JobStats *stats)
{
    return d->fromFile(archive, name, -1, flags, stats);
}

void CodeDocument::reload()
{
    // While a save runs the document has no name, and the change is its own.
    if (!d->saving)
        d->fromFile(archive(), fileName(), codecId(), 0, nullptr);
}

bool CodeDocumentPrivate::fromFile(Archive &archive, const QString &name, int codec,
                                   unsigned int flags, JobStats *stats)
{
    // The save comes first: it may be that of the same file.
    document->waitForSave();
    QIODevice *const device = archive.openFile(name, QIODevice::ReadOnly);
    QByteArray data;
    if (!device || !readAll(archive, device, data))
        return false;
    QString text = TextCodecs::stringFromData(data, &codec);
    data.clear();
    if (!takeTabs(*document, text))
        return false;

    const bool copy = flags & ProjectFile::Copy;
    document->fileLoaded(archive, name, copy);
    document->setCodecId(codec);
    setContent(text);
    if (!copy) {
        document->setFileName(name);
        resetRevisions();
    }
    document->setModified(copy);
    document->ProjectFile::fromFile(archive, name, flags, stats);
    return true;
}

/// Replaces the text, and with it the steps of undo.
void CodeDocumentPrivate::setContent(const QString &text)
{
    const TreeReplacement replacement(*this);
    const QString title = document->title(); // which goes with the text
    lockUpdates();
    givenText = text;
    document->setPlainText(text);
    givenText.clear();
    unlockUpdates();
    document->setTitle(title);
}

void CodeDocument::fromString(const QString &text)
{
    waitForSave();
    QString content = text;
    if (!takeTabs(*this, content))
        return;
    fileLoaded(FileSystemArchive::instance(), QString(), false);
    const TreeReplacement replacement(*d);
    d->setContent(content);
    d->becomeNew();
}

void CodeDocument::reset()
{
    waitForSave();
    fileLoaded(FileSystemArchive::instance(), QString(), false);
    const TreeReplacement replacement(*d);
    QTextDocument::clear();
    d->becomeNew();
    // The text has taken the mark of a change along without a word.
    Q_EMIT modificationChanged(false);
}

/// Makes the text one without a file.
void CodeDocumentPrivate::becomeNew()
{
    document->setFileName(QString());
    resetRevisions();
    document->setModified(false);
    document->setCodec("UTF-8");
    utf8Mark = false;
}

void CodeDocumentPrivate::resetRevisions()
{
    savedRevision = document->revision();
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next())
        block.setRevision(savedRevision);
}

bool CodeDocument::toFile(Archive &archive, const QString &name, unsigned int flags,
                          JobStats *stats)
{
    QIODevice *device = nullptr;
    if (archive.isWritable(name)) {
        // The save that runs comes first: it may be that of the same file.
        waitForSave();
        device = archive.openFile(name, QIODevice::WriteOnly);
    }
    if (!device) {
        reportFailure(stats, name, tr("it cannot be opened or replaced"));
        endJob(stats, flags);
        return false;
    }

    if (stats)
        stats->setMaximum(1);
    d->saving = true;
    const bool copy = flags & Copy;
    d->saveStart = {title(), fileName(), toString(), revision()};
    fileSaved(archive, name, copy);
    if (!copy)
        setFileName(QString());
    // The archive may be given up by all others before the save is through.
    archive.addRef();
    flags &= Copy | WithJob;
    if (option(QStringLiteral("save_spaceToTab"), false).toBool())
        flags |= blanksToTabsFlag;
    if (d->utf8Mark && codecName() == "UTF-8")
        flags |= utf8MarkFlag;

    const int codec = codecId();
    if (!(flags & WithJob)) {
        const unsigned int result = write(device, d->saveStart.text, codec, flags);
        return d->saveFinished(&archive, device, name, result, stats);
    }
    // The worker has its own copies, and nothing of the document but the way to post a signal.
    CodeDocumentPrivate *const sender = d.get();
    const QString text = d->saveStart.text;
    Archive *const target = &archive;
    d->saveFuture = QtConcurrent::run([=] {
        const unsigned int result = write(device, text, codec, flags);
        const std::lock_guard<std::mutex> handover(sender->saveHandover);
        Q_EMIT sender->callDocSaveFinished(target, device, name, result, stats);
    });
    return true;
}

bool CodeDocumentPrivate::event(QEvent *event)
{
    saveHandover.lock();
    saveHandover.unlock();
    return Messages::event(event);
}

/// Puts the content in its place, and only then calls the document saved.
bool CodeDocumentPrivate::saveFinished(Archive *archive, QIODevice *device, const QString &name,
                                       unsigned int flags, JobStats *stats)
{
    const SaveStart start = std::exchange(saveStart, {});
    QString reason;
    const bool isInPlace = commit(*archive, device, flags, reason);
    if (!(flags & ProjectFile::Copy)) {
        if (isInPlace) {
            document->setFileName(name);
            markLinesSaved(start.revision);
            takeAsSaved(*document, start.text, flags);
        } else {
            document->setTitle(start.title);
            document->setMetaInformation(QTextDocument::DocumentUrl, start.fileName);
            document->fileLoaded(document->archive(), start.fileName, false);
        }
        // The write is over: what is to be left out is this state of the file, and not its next
        // change, which may be somebody else's.
        document->pauseWatch(false);
    }
    // Whoever is told below may save again.
    saving = false;
    if (isInPlace)
        document->ProjectFile::toFile(*archive, name, flags, stats);
    else
        reportFailure(stats, name, reason);
    endJob(stats, flags);
    archive->release();
    return isInPlace;
}

/// Marks the lines that are saved in the state of \a revision; those changed since are not.
void CodeDocumentPrivate::markLinesSaved(int revision)
{
    const int old = std::exchange(savedRevision, revision);
    if (old == revision)
        return;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        const int state = block.revision();
        if (state <= revision)
            block.setRevision(state == old ? revision : ~revision);
    }
}

} // namespace Vela

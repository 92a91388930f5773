// SPDX-License-Identifier: MIT
#include "lantern/contentfile.h"

#include "frame/archive.h"
#include "frame/interface.h"
#include "frame/jobstats.h"

#include <QCoreApplication>
#include <QFileDevice>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

/// Returns whether the content is in its place; else \a reason says why, as far as it is known.
bool writeAll(Vela::Archive &archive, const QString &name, const QByteArray &data, QString &reason)
{
    reason = Texts::tr("it cannot be opened or replaced");
    QIODevice *const device = archive.openFile(name, QIODevice::WriteOnly);
    if (!device)
        return false;
    bool written = device->write(data) == data.size();
    // A full disk shows only when the buffer goes out. It takes a part first, without an error;
    // asking for the rest brings the reason.
    if (auto *const file = qobject_cast<QFileDevice *>(device))
        written = (file->flush() || file->flush()) && written;
    if (written)
        return archive.commitFile(device);
    reason = device->errorString();
    archive.discardFile(device);
    return false;
}

} // namespace

ContentFile::ContentFile(const char *extension)
    : m_extension(extension)
{
}

void ContentFile::free()
{
    delete this;
}

void ContentFile::attach(Vela::Archive &archive, const QString &name)
{
    m_name = name;
    m_loaded = false;
    ProjectFile::fromFile(archive, name, 0, nullptr);
}

bool ContentFile::isLoaded() const
{
    return m_loaded;
}

bool ContentFile::canSave() const
{
    return true;
}

void ContentFile::ensureLoaded() const
{
    if (m_loaded || m_name.isEmpty())
        return;
    // The content is read late, but it was the file's all the time.
    ContentFile *const self = const_cast<ContentFile *>(this);
    QByteArray data;
    QString error;
    self->m_loaded = true;
    if (readAll(archive(), m_name, largestSize, data, error)) {
        self->decode(data, false);
        self->markSaved();
        self->fileLoaded(archive(), m_name, false);
    } else {
        self->reportFailure(error);
    }
}

bool ContentFile::fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                           Vela::JobStats *stats)
{
    QByteArray data;
    QString error;
    if (!readAll(archive, name, largestSize, data, error))
        return fail(error, stats);
    // The content of another file is a change to this one.
    const bool copy = flags & Copy;
    if (copy)
        ensureLoaded();
    const bool again = copy || (m_loaded && name == m_name);
    m_loaded = true;
    if (!copy) {
        fileLoaded(archive, name, false);
        m_name = name;
    }
    ProjectFile::fromFile(archive, name, flags, stats);
    decode(data, again);
    if (!copy)
        markSaved();
    return true;
}

bool ContentFile::toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                         Vela::JobStats *stats)
{
    QByteArray data;
    QString error;
    if (!contentBytes(data, error))
        return fail(error, stats);
    QString reason;
    if (!writeAll(archive, name, data, reason))
        return fail(Texts::tr("The file '%1' cannot be written: %2.").arg(name, reason), stats);
    if (!(flags & Copy)) {
        if (m_loaded)
            fileSaved(archive, name, false);
        m_name = name;
        // The write is over: what is to be left out is this state of the file, and not its next
        // change, which may be somebody else's.
        if (m_loaded)
            pauseWatch(false);
        markSaved();
    }
    ProjectFile::toFile(archive, name, flags, stats);
    return true;
}

// What was never loaded is passed on as it is, without becoming content on the way.
bool ContentFile::contentBytes(QByteArray &data, QString &error)
{
    if (!m_loaded && !m_name.isEmpty())
        return readAll(archive(), m_name, largestSize, data, error);
    return encode(data, error);
}

void ContentFile::reset()
{
    m_name.clear();
    m_loaded = false;
    clear();
}

QString ContentFile::fileName() const
{
    return m_name;
}

const char *ContentFile::fileExtension() const
{
    return m_extension;
}

QString ContentFile::watchedFileName() const
{
    return m_name;
}

void ContentFile::reload()
{
    if (!fileExists())
        return;
    if (isModified()) {
        const bool drop =
            Vela::Interface::instance()
            && Vela::Interface::yesNoOption(
                Texts::tr("File modified"),
                Texts::tr("The file '%1' was changed by another program, and has changes here "
                          "that are not saved. Do you want to read it again?")
                    .arg(m_name),
                QStringLiteral("showmsg_reload_modified"), 0, Vela::Interface::NoButton);
        if (!drop)
            return;
    }
    fromFile(archive(), m_name, 0, nullptr);
}

void ContentFile::reportFailure(const QString &)
{
}

bool ContentFile::fail(const QString &text, Vela::JobStats *stats)
{
    reportFailure(text);
    if (stats)
        stats->error(text);
    return false;
}

bool readAll(Vela::Archive &archive, const QString &name, qint64 largest, QByteArray &data,
             QString &error)
{
    QIODevice *const device = archive.openFile(name, QIODevice::ReadOnly);
    if (!device) {
        error = Texts::tr("The file '%1' cannot be read.").arg(name);
        return false;
    }
    // One byte more than is allowed tells a file that is too large, whatever it says of its size.
    const bool fits = device->size() <= largest;
    if (fits)
        data = device->isSequential() ? device->read(largest + 1) : device->readAll();
    archive.closeFile(device);
    if (fits && data.size() <= largest)
        return true;
    error =
        Texts::tr("The file '%1' is larger than %2 bytes and is not read.").arg(name).arg(largest);
    return false;
}

} // namespace Lantern

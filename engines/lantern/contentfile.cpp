// SPDX-License-Identifier: MIT
#include "lantern/contentfile.h"

#include "frame/jobstats.h"

namespace Lantern {

namespace {

bool fail(const QString &text, Vela::JobStats *stats)
{
    if (stats)
        stats->error(text);
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

void ContentFile::bindTo(Vela::Archive &archive, const QString &name)
{
    m_name = name;
    ProjectFile::fromFile(archive, name, 0, nullptr);
}

bool ContentFile::canSave() const
{
    return true;
}

void ContentFile::load()
{
    QByteArray data;
    QString error;
    if (!readAll(archive(), m_name, largestFile, data, error))
        return;
    decode(data);
    markSaved();
    fileLoaded(archive(), m_name, false);
}

bool ContentFile::fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                           Vela::JobStats *stats)
{
    QByteArray data;
    QString error;
    if (!readAll(archive, name, largestFile, data, error))
        return fail(error, stats);
    // The content of another file is a change to this one.
    const bool copy = flags & Copy;
    setLoaded();
    if (!copy) {
        fileLoaded(archive, name, false);
        m_name = name;
    }
    ProjectFile::fromFile(archive, name, flags, stats);
    decode(data);
    if (!copy)
        markSaved();
    return true;
}

bool ContentFile::toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                         Vela::JobStats *stats)
{
    QByteArray data;
    QString error;
    if (!contentBytes(data, error) || !writeAll(archive, name, data, error))
        return fail(error, stats);
    if (!(flags & Copy)) {
        if (isLoaded())
            fileSaved(archive, name, false);
        m_name = name;
        // The write is over: what is to be left out is this state of the file, and not its next
        // change, which may be somebody else's.
        if (isLoaded())
            pauseWatch(false);
        markSaved();
    }
    ProjectFile::toFile(archive, name, flags, stats);
    return true;
}

// What was never loaded is passed on as it is, without becoming content on the way.
bool ContentFile::contentBytes(QByteArray &data, QString &error)
{
    if (!isLoaded())
        return readAll(archive(), m_name, largestFile, data, error);
    data = encode();
    return true;
}

void ContentFile::reset()
{
    m_name.clear();
    setLoaded();
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
    if (mayReload(*this))
        fromFile(archive(), m_name, 0, nullptr);
}

} // namespace Lantern

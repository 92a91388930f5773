// SPDX-License-Identifier: MIT
#include "lantern/contentfile.h"

#include "frame/jobstats.h"
#include "image/sprites.h"
#include "sound/sounds.h"

#include <QCoreApplication>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

bool fail(const QString &text, Vela::JobStats *stats)
{
    if (stats)
        stats->error(text);
    return false;
}

} // namespace

template <class Base>
ContentFile<Base>::ContentFile(const char *extension)
    : m_extension(extension)
{
}

template <class Base>
void ContentFile<Base>::free()
{
    delete this;
}

template <class Base>
void ContentFile<Base>::bindTo(Vela::Archive &archive, const QString &name)
{
    m_name = name;
    Base::fromFile(archive, name, 0, nullptr);
}

template <class Base>
bool ContentFile<Base>::canSave() const
{
    return true;
}

template <class Base>
void ContentFile<Base>::load()
{
    QString error;
    m_isUnreadable = !read(this->archive(), m_name, error);
    if (m_isUnreadable) {
        loadFailed(error);
        return;
    }
    markSaved();
    fileLoaded(this->archive(), m_name, false);
}

template <class Base>
void ContentFile<Base>::loadFailed(const QString &)
{
}

template <class Base>
bool ContentFile<Base>::fromFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                                 Vela::JobStats *stats)
{
    QString error;
    // The content of another file is a change to this one.
    const bool copy = flags & Base::Copy;
    if (copy)
        ensureLoaded();
    if (!read(archive, name, error))
        return fail(error, stats);
    setLoaded();
    m_isUnreadable = false;
    if (!copy) {
        fileLoaded(archive, name, false);
        m_name = name;
        markSaved();
    }
    Base::fromFile(archive, name, flags, stats);
    return true;
}

template <class Base>
bool ContentFile<Base>::toFile(Vela::Archive &archive, const QString &name, unsigned int flags,
                               Vela::JobStats *stats)
{
    QByteArray data;
    QString error;
    // What could not be read may be mended yet.
    if (m_isUnreadable && this->isModified() && name == m_name && &archive == &this->archive())
        return fail(writeFailure(name, Texts::tr("what it holds could not be read")), stats);
    if (!contentBytes(data, error) || !writeAll(archive, name, data, error))
        return fail(error, stats);
    if (!(flags & Base::Copy)) {
        if (isLoaded())
            fileSaved(archive, name, false);
        m_name = name;
        m_isUnreadable = m_isUnreadable && !this->isModified();
        // The write is over: what is to be left out is this state of the file, and not its next
        // change, which may be somebody else's.
        if (isLoaded())
            pauseWatch(false);
        markSaved();
    }
    Base::toFile(archive, name, flags, stats);
    return true;
}

// What was never loaded is passed on as it is, without becoming content on the way.
template <class Base>
bool ContentFile<Base>::contentBytes(QByteArray &data, QString &error) const
{
    if (!isLoaded() || (m_isUnreadable && !this->isModified()))
        return readAll(this->archive(), m_name, largestFile, data, error);
    return encode(data, error);
}

template <class Base>
void ContentFile<Base>::reset()
{
    m_name.clear();
    m_isUnreadable = false;
    setLoaded();
    dropContent();
}

template <class Base>
QString ContentFile<Base>::fileName() const
{
    return m_name;
}

template <class Base>
const char *ContentFile<Base>::fileExtension() const
{
    return m_extension;
}

template <class Base>
QString ContentFile<Base>::watchedFileName() const
{
    return m_name;
}

template <class Base>
void ContentFile<Base>::reload()
{
    if (mayReload(*this))
        fromFile(this->archive(), m_name, 0, nullptr);
}

template class ContentFile<Vela::ProjectFile>;
template class ContentFile<Vela::Sounds>;
template class ContentFile<Vela::Sprites>;

} // namespace Lantern

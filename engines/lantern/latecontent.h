// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace Vela {
class Archive;
class ProjectFile;
} // namespace Vela

namespace Lantern {

/// A file of a project that reads its content late: one that was only attached to its name reads
/// when the content is first asked for, so that a project of thousands of files opens quickly.
class LateContent
{
public:
    virtual ~LateContent() = default;

    /// Binds the file to its name without reading it.
    void attach(Vela::Archive &archive, const QString &name);
    /// Returns false as long as the content still has to be read.
    bool isLoaded() const
    {
        return !m_waiting;
    }

protected:
    /// Takes archive and name without content.
    virtual void bindTo(Vela::Archive &archive, const QString &name) = 0;
    /// Reads the content. A failure becomes a message.
    virtual void load() = 0;

    /// Reads the content now if that has not happened.
    void ensureLoaded() const;
    /// For a file that gets its content in another way.
    void setLoaded()
    {
        m_waiting = false;
    }

private:
    bool m_waiting = false;
};

/// A file above this size is not read.
constexpr qint64 largestFile = 256 * 1024 * 1024;

/// Reads a whole file, if it is not above \a largest bytes. Returns false with a reason in
/// \a error.
bool readAll(Vela::Archive &archive, const QString &name, qint64 largest, QByteArray &data,
             QString &error);

/// Writes a whole file. Returns false with a reason in \a error, and then the old one stands.
bool writeAll(Vela::Archive &archive, const QString &name, const QByteArray &data, QString &error);

/// Returns the text for a file that cannot be written.
QString writeFailure(const QString &name, const QString &reason);

/// Returns whether a file that another program has changed is to be read again. Changes that are
/// not saved go only if the user says so.
bool mayReload(const Vela::ProjectFile &file);

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QTimer>

namespace Vela {
class ParentProject;
class ProjectFile;
} // namespace Vela

namespace Studio {

/// The files of the opened projects by their paths relative to the root, and which of them have
/// unsaved changes. A file that was never saved stands under a name of its own until it is. Only a
/// definition text tells that it became modified, so the state of all files is looked at twice a
/// second and whenever somebody calls refresh().
class OpenFiles : public QObject
{
    Q_OBJECT

public:
    explicit OpenFiles(QObject *parent = nullptr);

    /// Follows another parent project, which must live until the next call; null follows none.
    void setParentProject(Vela::ParentProject *parent);

    /// Returns null for a path that is no open file.
    Vela::ProjectFile *file(const QString &path) const;
    /// Returns an empty path for a file that is not open here.
    QString path(const Vela::ProjectFile *file) const;
    int count() const;
    /// Returns all paths, sorted.
    QStringList paths() const;
    /// Returns the files that stand in no folder of the project, sorted: those that were never
    /// saved, and those outside of the root.
    QStringList loose() const;
    bool isModified(const QString &path) const;
    /// Returns the modified files, sorted.
    QStringList modified() const;
    /// Returns whether \a path is the root of a project that is shown but not open.
    bool isClosedProject(const QString &path) const;

    /// Looks for modified files now.
    void refresh();
    /// Looks now which files there are. It happens by itself a little after a file was added.
    void collect();

Q_SIGNALS:
    /// The set of files, or of closed projects, is another.
    void filesChanged();
    /// These files became modified, or are it no longer.
    void modifiedChanged(const QStringList &paths);
    /// A file was read from, or written to, its store.
    void contentChanged(const QString &path);
    /// A file is about to go; it is not among the files any more.
    void fileGone(Vela::ProjectFile *file);

private:
    using Paths = QHash<const Vela::ProjectFile *, QString>;

    QString pathFor(Vela::ProjectFile &file, const Paths &known) const;
    QString newName(const Paths &known) const;
    void add(Vela::ProjectFile *file, const QString &path);
    void onModified();
    void onAccess(Vela::ProjectFile *file);
    void onClosed(Vela::ProjectFile *file);

    Vela::ParentProject *m_parent = nullptr;
    QHash<QString, Vela::ProjectFile *> m_files;
    Paths m_paths;
    QStringList m_loose;
    QSet<QString> m_modified;
    QSet<QString> m_closed;
    QTimer m_collectLater;
    QTimer m_lookAgain;
};

} // namespace Studio

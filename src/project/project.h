// SPDX-License-Identifier: MIT
#pragma once

#include "frame/object.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QPair>
#include <QPointF>
#include <QSize>
#include <QVariant>
#include <memory>

namespace Vela {

class Archive;
class MessageList;
class ParentProject;
class ProjectFile;
class ProjectPrivate;

/// One unit of an engine's content: a main file and the files it refers to, by type. It lives in a
/// ParentProject and holds a reference on each of its files.
///
/// release() gives the project up: it flushes and releases the archive, leaves the parent and
/// releases the files. It does not delete the object: the engine's class, which made it, does, and
/// before its parent project's destructor is through.
class VELA_EXPORT Project : public QObject, public Object
{
    Q_OBJECT

public:
    enum FileType { Main = 0, Sprites = 1, Sounds = 2, Animations = 3, Scripts = 4 };
    Q_ENUM(FileType)

    /// A set of file types: bit 1 << type for each.
    using FileTypes = quint32;
    /// A further file of the project: its type and its path relative to the project's folder.
    using Dependency = QPair<int, QString>;

    virtual QVariant option(const QString &key, const QVariant &defaultValue) const;
    virtual bool isEmpty() const;
    virtual bool isModified() const;
    /// Returns the project's name for users.
    virtual QString name() const = 0;
    /// Returns the version of the engine that the project is written for.
    virtual QString version() const = 0;
    /// Returns the size of the stage in stage pixels.
    virtual QSize stageSize() const = 0;
    /// Returns what a stage pixel measures in pixels of the content, per axis.
    virtual QPointF stageScale() const = 0;
    /// Appends the files that the main file refers to.
    virtual void dependencies(QList<Dependency> &files) const = 0;
    /// Writes the whole project under \a path of \a archive: modified files from memory, all others
    /// copied. With \a copy nothing is bound to the new place. Appends the relative paths of the
    /// dependencies to \a written where it is not null. Returns false, with nothing done, if the
    /// archive is read-only; the failure of a single file shows with that file only.
    virtual bool saveAll(Archive &archive, const QString &path, bool copy, QStringList *written);
    /// Reads every file again that still exists.
    virtual void reload();

    void release() override;
    ~Project() override;

    /// Adds a file under a type, from 0 to 31. With its first type the project takes a reference
    /// over from the caller; further types take none. Returns false, with the reference left to the
    /// caller, if the file has that type already or the type is out of range.
    bool addFile(ProjectFile *file, int type);
    void removeFile(int type, unsigned int index);
    /// Removes a file under every type that it has.
    void removeFile(ProjectFile *file);
    void moveFile(int type, unsigned int from, unsigned int to);
    /// Returns the selected file of a type, the first one if that selection lies beyond the list,
    /// or null.
    ProjectFile *file(int type) const;
    ProjectFile *mainFile() const;
    QList<ProjectFile *> files() const;
    QList<ProjectFile *> filesByType(int type) const;
    /// Returns every file with the set of its types.
    QMap<ProjectFile *, FileTypes> filesWithIDs() const;
    int fileCount() const;
    /// Returns the types of a file; 0 for one that is not in the project.
    FileTypes fileID(ProjectFile *file) const;
    unsigned int selectedFile(int type) const;
    void setSelectedFile(int type, unsigned int index);

    Archive &archive() const;
    /// Returns the folder of the main file.
    QString absolutePath() const;
    /// Returns what absolutePath() adds to the parent's basePath(), with the "/" between them.
    QString basePath() const;
    /// Returns the main file's name.
    QString fileName() const;
    int type() const;
    /// Returns the engine's name of the project's type.
    QString typeName() const;

    QVariant option(const QString &key) const;
    /// Stores an option, and passes it to the host first if \a toHost is set. A null value removes
    /// the option.
    void setOption(const QString &key, const QVariant &value, bool toHost);

    MessageList *messages() const;
    ParentProject *parent() const;

Q_SIGNALS:
    void fileAdded(const ProjectFile *file, int type);
    void fileRemoved(const ProjectFile *file, int type);
    /// The files that the main file refers to, or their order, have changed.
    void fileHierarchyChanged();
    void nameChanged();

protected:
    /// Takes a reference on \a mainFile and, if \a addMain is set, lists it under Main. The file's
    /// options "parseCode", "highlightCode" and "modelCode" pass to the project.
    Project(ParentProject *parent, int type, ProjectFile *mainFile, bool addMain);

    /// Takes a file out of the project with its reference, which is the caller's from then on.
    ProjectFile *takeFile(ProjectFile *file);
    /// Enters the project with its parent; called once by the engine's class, fully made.
    void addToParent();

private:
    Q_DISABLE_COPY(Project)

    void disown(ProjectFile *file);
    void removeType(ProjectFile *file, int type);
    QStringList pathsToSave(bool copy) const;
    void saveFile(ProjectFile *file, Archive &target, const QString &folder, bool copy,
                  QStringList &rest);
    void copyFiles(const QStringList &files, Archive &target, const QString &folder);

    std::unique_ptr<ProjectPrivate> d;
};

} // namespace Vela

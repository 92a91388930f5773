// SPDX-License-Identifier: MIT
#pragma once

#include "frame/object.h"

#include <QList>
#include <QStringList>
#include <QVariant>
#include <memory>

class QAbstractItemModel;

namespace Vela {

class Archive;
class JobStats;
class Messages;
class Project;
class ProjectFilePrivate;
class RegExp;

/// One document of an engine's content: a definition text, a sprite file, a sound file. It is
/// counted, beginning at 1, and belongs to the main thread.
class VELA_EXPORT ProjectFile : public Object
{
public:
    enum Capability {
        SharesContent = 1, ///< another file holds the content too, so closing this one loses none
        SavesSlowly = 4,   ///< saving takes long and gets a progress job of its own
        HasText = 8        ///< the content is a text of its own
    };
    Q_DECLARE_FLAGS(Capabilities, Capability)

    /// The flags of toFile() and fromFile().
    enum FileFlag : unsigned int {
        Copy = 1,   ///< the file stays bound to its archive and name
        WithJob = 2 ///< the save takes the progress job over that is the last argument
    };

    /// One match of a search.
    struct SearchResult
    {
        int item = -1; ///< index of the item in a searchable file; -1 in a text
        int line = 0;  ///< line of the match's start, from 0
        int column = 0;
        int length = 0;
        QString text;         ///< the line, or the lines, that hold the match
        QStringList captures; ///< the captured texts without the whole match
    };

    /// Subtracts 1 from the count, and at 0 calls free().
    void release() override;
    ~ProjectFile() override;

    /// Returns the archive that the file was last read from or written to; the disk at first.
    virtual Archive &archive() const;
    virtual Project *project() const;
    /// Returns the content as an item model, or null.
    virtual QAbstractItemModel *model();
    virtual Capabilities capabilities() const;
    virtual bool canSave() const;
    virtual bool isModified() const;
    virtual bool isEmpty() const = 0;
    /// Gives the file up: no name, no content.
    virtual void reset();
    /// Writes the file. \a flags are of FileFlag; \a stats may be null. With WithJob the file takes
    /// \a stats over and deletes it when the save is through, which may be after the call. An
    /// override does its own work, then calls this, which binds the file to \a archive and tells
    /// the parent project. Returns whether the file was written; the base returns false.
    virtual bool toFile(Archive &archive, const QString &name, unsigned int flags, JobStats *stats);
    /// Reads the file, in the same way. A failure leaves the content as it was.
    virtual bool fromFile(Archive &archive, const QString &name, unsigned int flags,
                          JobStats *stats);
    virtual QString fileName() const;
    virtual QString displayName() const;
    virtual void beginChange();
    virtual void endChange();
    virtual void undo();
    virtual void redo();
    virtual QList<SearchResult> search(const RegExp &expression, unsigned int flags) const = 0;
    virtual void replace(const QList<SearchResult> &results, const QString &text) = 0;
    /// Returns the file's option, else the project's, else the host's, else \a defaultValue.
    virtual QVariant option(const QString &key, const QVariant &defaultValue) const;
    virtual QVariant option(const QString &key) const;
    /// Stores an option; a null value removes it. With \a inProject it is stored in the project
    /// where there is one, and passed on to the host if \a inHost is set as well.
    virtual void setOption(const QString &key, const QVariant &value, bool inProject, bool inHost);

protected:
    ProjectFile();

    /// Destroys the object; called when its count has reached 0.
    virtual void free() = 0;

public:
    /// Returns the extension of files of this kind without a dot, or null.
    virtual const char *fileExtension() const;

protected:
    /// Returns the messages about the file, or null if it has none.
    virtual Messages *fileMessages() const = 0;

public:
    void addRef();
    int refCount() const;
    /// Returns whether the archive holds the file.
    bool fileExists() const;
    /// Returns whether the archive refuses to write the file; false for a file without a name.
    bool isReadOnly() const;
    Messages *messages() const;

private:
    Q_DISABLE_COPY(ProjectFile)
    friend class Project;

    void bind(Archive &archive);

    std::unique_ptr<ProjectFilePrivate> d;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(ProjectFile::Capabilities)

} // namespace Vela

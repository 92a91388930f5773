// SPDX-License-Identifier: MIT
#pragma once

#include "engine/engineprivate.h"

#include <QMap>

namespace Vela {

class ParentProject;
class Project;
class ProjectFile;

/// One game engine, as its extension describes it.
class VELA_EXPORT Engine : public EnginePrivate
{
    Q_OBJECT

public:
    /// What queryString() is asked for. Values beyond these are the extension's own.
    enum StringType {
        EditorText = 0,     ///< argument 0: the text that the code editor shows
        EngineName = 1,     ///< argument 0: the key that import and export formats name
        CommentString = 2,  ///< argument 0: what begins a comment in definition text
        DisplayName = 3,    ///< argument 0: the engine's name for users
        ProjectTypeName = 4 ///< argument: a project's type
    };

    explicit Engine(const QString &engineName);
    ~Engine() override;

    /// Returns the folder of what this user has for the engine.
    QString path() const;

    /// Returns a text of the engine; empty for what it does not know.
    virtual QString queryString(StringType what, unsigned int argument) const = 0;
    /// Returns a pattern such as "*.png *.bmp" for each file type that can be opened alone.
    virtual QMap<int, QString> singleFileFilters() const = 0;
    /// Makes an empty file of a type, with a count of 1 that is the caller's, or null.
    virtual ProjectFile *createFile(int type, Project *project) = 0;
    /// Returns whether \a path, a folder or a main file on disk, is a parent project of this
    /// engine. Looks at names only as far as it can.
    virtual bool canOpen(const QString &path) const = 0;
    /// Opens the parent project at a path: its folder, or the main file of one project. Its
    /// projects that are not closed are open on return. The caller closes it by releasing each of
    /// its openedProjects() and then deleting it. Returns null, with the reason in \a error, if
    /// there is none that this engine can read.
    virtual ParentProject *openParentProject(const QString &path, QString *error) = 0;
    /// Opens the project at \a path, relative to the root, that \a parent shows but has not
    /// opened. Returns null, with the reason in \a error, on failure.
    virtual Project *openProject(ParentProject *parent, const QString &path, QString *error) = 0;
    /// Makes a new parent project with one project in an existing empty folder and writes its
    /// first files. Returns the path for openParentProject(), or an empty string with the reason
    /// in \a error.
    virtual QString createParentProject(const QString &folder, const QString &name,
                                        QString *error) = 0;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "engine/engine.h"
#include "project/parentproject.h"
#include "project/project.h"

#include <QIcon>
#include <QMap>
#include <QStringList>

/// An engine that knows the names of two project types and opens nothing.
class TestEngine : public Vela::Engine
{
public:
    TestEngine();

    QString queryString(StringType what, unsigned int argument) const override;
    QMap<int, QString> singleFileFilters() const override;
    Vela::ProjectFile *createFile(int type, Vela::Project *project) override;
    bool canOpen(const QString &path) const override;
    Vela::ParentProject *openParentProject(const QString &path, QString *error) override;
    Vela::Project *openProject(Vela::ParentProject *parent, const QString &path,
                               QString *error) override;
    QString createParentProject(const QString &folder, const QString &name,
                                QString *error) override;
};

/// A parent project whose engine's answers are members.
class TestParentProject : public Vela::ParentProject
{
public:
    TestParentProject(const QString &path, Vela::Archive &archive);

    using ParentProject::addPath;
    using ParentProject::addRef;
    using ParentProject::removePath;

    Vela::Engine *engine() const override;
    QString gameFile() const override;
    QIcon fileIcon(int type) const override;
    void closedProjectFiles(const QString &path, QStringList &files) const override;
    void lastProjectClosed() override;

    Vela::Engine *activeEngine = nullptr;
    QString game;
    QMap<int, QIcon> icons;
    QMap<QString, QStringList> closed; ///< a closed project's files by its path
    mutable QStringList closedAsked;
    int timesEmpty = 0; ///< calls of lastProjectClosed()
};

/// A project whose further files are a list.
class TestProject : public Vela::Project
{
public:
    TestProject(Vela::ParentProject *parent, int type, Vela::ProjectFile *mainFile,
                bool addMain = true);

    using Project::addToParent;
    using Project::takeFile;

    QString name() const override;
    QString version() const override;
    QSize stageSize() const override;
    QPointF stageScale() const override;
    void dependencies(QList<Dependency> &files) const override;

    QList<Dependency> listed;
};

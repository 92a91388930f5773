// SPDX-License-Identifier: MIT
#include "support/testproject.h"

#include "project/projectfile.h"

using namespace Vela;

TestEngine::TestEngine()
    : Engine(QStringLiteral("test"))
{
}

QString TestEngine::queryString(StringType what, unsigned int argument) const
{
    if (what != ProjectTypeName)
        return QString();
    return argument == 0 ? QStringLiteral("Character") : QStringLiteral("Stage");
}

QMap<int, QString> TestEngine::singleFileFilters() const
{
    return {};
}

ProjectFile *TestEngine::createFile(int, Project *)
{
    return nullptr;
}

bool TestEngine::canOpen(const QString &) const
{
    return false;
}

ParentProject *TestEngine::openParentProject(const QString &, QString *)
{
    return nullptr;
}

Project *TestEngine::openProject(ParentProject *, const QString &, QString *)
{
    return nullptr;
}

QString TestEngine::createParentProject(const QString &, const QString &, QString *)
{
    return QString();
}

TestParentProject::TestParentProject(const QString &path, Archive &archive)
    : ParentProject(path, archive)
{
}

Engine *TestParentProject::engine() const
{
    return activeEngine;
}

QString TestParentProject::gameFile() const
{
    return game;
}

QIcon TestParentProject::fileIcon(int type) const
{
    return icons.value(type);
}

void TestParentProject::closedProjectFiles(const QString &path, QStringList &files) const
{
    closedAsked.append(path);
    files.append(closed.value(path));
}

void TestParentProject::lastProjectClosed()
{
    ++timesEmpty;
}

TestProject::TestProject(ParentProject *parentProject, int type, ProjectFile *main, bool addMain)
    : Project(parentProject, type, main, addMain)
{
}

QString TestProject::name() const
{
    return mainFile()->displayName();
}

QString TestProject::version() const
{
    return QStringLiteral("1.0");
}

QSize TestProject::stageSize() const
{
    return {320, 240};
}

QPointF TestProject::stageScale() const
{
    return {1.0, 1.0};
}

void TestProject::dependencies(QList<Dependency> &files) const
{
    files.append(listed);
}

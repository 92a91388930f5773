// SPDX-License-Identifier: MIT
#include "support/testfile.h"

#include "frame/archive.h"
#include "frame/jobstats.h"
#include "frame/regexp.h"

#include <memory>

using namespace Vela;

namespace {

int aliveCount = 0;

}

TestFile::TestFile(const QString &fileName, const QString &content)
    : name(fileName)
    , text(content)
    , notes(this)
{
    ++aliveCount;
}

TestFile::~TestFile()
{
    --aliveCount;
}

int TestFile::alive()
{
    return aliveCount;
}

ProjectFile::Capabilities TestFile::capabilities() const
{
    return caps;
}

bool TestFile::canSave() const
{
    return savable;
}

bool TestFile::isModified() const
{
    return modified;
}

bool TestFile::isEmpty() const
{
    return text.isEmpty();
}

void TestFile::reset()
{
    name.clear();
    text.clear();
    modified = false;
}

bool TestFile::toFile(Archive &archive, const QString &target, unsigned int flags, JobStats *stats)
{
    saves.append({&archive, target, flags, stats != nullptr});
    const std::unique_ptr<JobStats> job(flags & WithJob ? stats : nullptr);
    QIODevice *const device = archive.openFile(target, QIODevice::WriteOnly);
    if (!device)
        return false;
    device->write(text.toUtf8());
    archive.closeFile(device);
    if (!(flags & Copy)) {
        name = target;
        modified = false;
    }
    ProjectFile::toFile(archive, target, flags, stats);
    return true;
}

bool TestFile::fromFile(Archive &archive, const QString &source, unsigned int flags,
                        JobStats *stats)
{
    loads.append({&archive, source, flags, stats != nullptr});
    QIODevice *const device = archive.openFile(source, QIODevice::ReadOnly);
    if (!device)
        return false;
    text = QString::fromUtf8(device->readAll());
    archive.closeFile(device);
    if (!(flags & Copy))
        name = source;
    modified = flags & Copy;
    ProjectFile::fromFile(archive, source, flags, stats);
    return true;
}

QString TestFile::fileName() const
{
    return name;
}

QList<ProjectFile::SearchResult> TestFile::search(const RegExp &, unsigned int) const
{
    return {};
}

void TestFile::replace(const QList<SearchResult> &, const QString &)
{
}

void TestFile::edit(const QString &newText)
{
    text = newText;
    modified = true;
}

void TestFile::place(Archive &archive, const QString &newName)
{
    name = newName;
    ProjectFile::fromFile(archive, newName, 0, nullptr);
}

void TestFile::free()
{
    delete this;
}

Messages *TestFile::fileMessages() const
{
    return &notes;
}

// SPDX-License-Identifier: MIT
#include "studio/cli/standalonefile.h"

#include "engine/engine.h"
#include "frame/filesystemarchive.h"
#include "frame/jobstats.h"
#include "project/project.h"
#include "studio/cli/console.h"
#include "studio/cli/diskfiles.h"
#include "studio/cli/projectcall.h"
#include "studio/session/engineloader.h"

#include <QDir>
#include <QFileInfo>

namespace Studio {

namespace {

template <class Collection>
constexpr Vela::Project::FileType fileType = Vela::Project::Sprites;
template <>
constexpr Vela::Project::FileType fileType<Vela::Sounds> = Vela::Project::Sounds;

/// Returns an empty file made by an engine, or null if it is none of that kind.
template <class Collection>
StandaloneFile<Collection> createBy(Vela::Engine &engine)
{
    Vela::ProjectFile *const file = engine.createFile(fileType<Collection>, nullptr);
    auto *const collection = dynamic_cast<Collection *>(file);
    if (file && !collection)
        file->release();
    return StandaloneFile<Collection>(collection);
}

bool hasFilesOfName(const Vela::Engine &engine, int type, const QString &name)
{
    const QString patterns = engine.singleFileFilters().value(type);
    return QDir::match(patterns.split(QLatin1Char(' ')), name);
}

/// Engines open single images and sounds as files of that type, too: only files with the extension
/// of the collection are meant here.
bool isNameOf(const Vela::ProjectFile &collection, const QFileInfo &info)
{
    const char *const extension = collection.fileExtension();
    return !extension
        || info.suffix().compare(QString::fromUtf8(extension), Qt::CaseInsensitive) == 0;
}

} // namespace

template <class Collection>
StandaloneFile<Collection> createStandalone(const QString &file)
{
    constexpr int type = fileType<Collection>;
    const QFileInfo info(file);
    const QList<Vela::Engine *> engines = EngineLoader::engines();
    for (Vela::Engine *engine : engines) {
        if (!hasFilesOfName(*engine, type, info.fileName()))
            continue;
        StandaloneFile<Collection> collection = createBy<Collection>(*engine);
        if (collection && isNameOf(*collection, info)) {
            collection->reset(); // it has nothing to read
            return collection;
        }
    }
    Console::report(QStringLiteral("%1: no engine has %2 files of such a name")
                        .arg(file,
                             type == Vela::Project::Sounds ? QStringLiteral("sounds")
                                                           : QStringLiteral("sprites")));
    return nullptr;
}

template <class Collection>
StandaloneFile<Collection> openStandalone(const QString &file)
{
    if (!hasFile(file))
        return nullptr;
    StandaloneFile<Collection> collection = createStandalone<Collection>(file);
    const auto job = createJob("Open");
    if (collection
        && !collection->fromFile(Vela::FileSystemArchive::instance(),
                                 ProjectSession::normalizedPath(file), 0, job.get()))
        return nullptr;
    return collection;
}

template StandaloneFile<Vela::Sprites> createStandalone(const QString &file);
template StandaloneFile<Vela::Sprites> openStandalone(const QString &file);
template StandaloneFile<Vela::Sounds> createStandalone(const QString &file);
template StandaloneFile<Vela::Sounds> openStandalone(const QString &file);

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/cli/standalonesprites.h"

#include "engine/engine.h"
#include "frame/filesystemarchive.h"
#include "frame/jobstats.h"
#include "project/project.h"
#include "studio/cli/console.h"
#include "studio/cli/projectcall.h"
#include "studio/session/engineloader.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

namespace Studio {

namespace {

/// Returns a file made by an engine, or null if it is none of sprites.
SpritesFilePtr createBy(Vela::Engine &engine)
{
    Vela::ProjectFile *const file = engine.createFile(Vela::Project::Sprites, nullptr);
    auto *const sprites = dynamic_cast<Vela::Sprites *>(file);
    if (file && !sprites)
        file->release();
    return SpritesFilePtr(sprites);
}

/// Engines open single images as files of sprites, too: only files with the extension of the
/// collection are meant here.
bool isNameOf(const Vela::Sprites &sprites, const QFileInfo &info)
{
    const char *const extension = sprites.fileExtension();
    return !extension
        || info.suffix().compare(QString::fromUtf8(extension), Qt::CaseInsensitive) == 0;
}

} // namespace

SpritesFilePtr createSprites(const QString &file)
{
    const QFileInfo info(file);
    const QList<Vela::Engine *> engines = EngineLoader::engines();
    for (Vela::Engine *engine : engines) {
        const QString patterns = engine->singleFileFilters().value(Vela::Project::Sprites);
        if (!QDir::match(patterns.split(QLatin1Char(' ')), info.fileName()))
            continue;
        SpritesFilePtr sprites = createBy(*engine);
        if (sprites && isNameOf(*sprites, info)) {
            sprites->reset(); // it has nothing to read
            return sprites;
        }
    }
    Console::report(QStringLiteral("%1: no engine has sprites files of such a name").arg(file));
    return nullptr;
}

SpritesFilePtr openSprites(const QString &file)
{
    const QString path = ProjectSession::normalizedPath(file);
    const QFileInfo info(path);
    if (!info.isFile()) {
        Console::report((info.exists() ? QStringLiteral("%1: is not a file")
                                       : QStringLiteral("%1: there is no such file"))
                            .arg(file));
        return nullptr;
    }
    SpritesFilePtr sprites = createSprites(file);
    const auto job = createJob("Open");
    if (sprites && !sprites->fromFile(Vela::FileSystemArchive::instance(), path, 0, job.get()))
        return nullptr;
    return sprites;
}

QString spriteName(Vela::SubItem identifier)
{
    return QStringLiteral("%1_%2").arg(identifier.group).arg(identifier.image);
}

bool readSpriteName(const QString &name, Vela::SubItem *identifier)
{
    static const QRegularExpression pattern(QStringLiteral("^(-?\\d+)_(-?\\d+)$"));
    const QRegularExpressionMatch match = pattern.match(name);
    return match.hasMatch()
        && Vela::SubItem::parse(match.captured(1) + QLatin1Char(',') + match.captured(2),
                                *identifier);
}

} // namespace Studio

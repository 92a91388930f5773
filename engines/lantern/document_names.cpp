// SPDX-License-Identifier: MIT
// What the lines ask their document about the names in them.
#include "lantern/document.h"

#include "lantern/filenames.h"
#include "lantern/motioncode.h"
#include "lantern/motions.h"
#include "lantern/options.h"
#include "lantern/soundsfile.h"
#include "lantern/spritesfile.h"

#include "frame/archive.h"
#include "frame/interface.h"
#include "project/parentproject.h"
#include "project/project.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

// Returns the names of what a file holds. An image or a sound that is a file of its own is called
// as that file.
QStringList namesIn(const Vela::ProjectFile &file)
{
    QStringList names;
    if (const auto *const sprites = dynamic_cast<const SpritesFile *>(&file)) {
        for (const SpriteRef &sprite : sprites->list<SpriteItem>().items())
            names.append(identifierName(sprite->identifier()));
    } else if (const auto *const sounds = dynamic_cast<const SoundsFile *>(&file)) {
        for (const SoundRef &sound : sounds->list<SoundItem>().items())
            names.append(sound->value().identifier);
    } else {
        names.append(QFileInfo(file.fileName()).completeBaseName());
    }
    return names;
}

} // namespace

void Document::forgetNames()
{
    m_names.clear();
    const bool namesAny = m_motions ? m_motions->count() > 0 : !CodeDocument::isEmpty();
    if (namesAny)
        rehighlight();
}

const Document::Names &Document::names(int fileType) const
{
    const auto found = m_names.constFind(fileType);
    if (found != m_names.constEnd())
        return *found;
    m_warnsOfNames = optionOf(*this, OptionKey::warns).toBool();
    Names &names = m_names[fileType];
    const QList<ProjectFile *> files = project()->filesByType(fileType);
    for (const ProjectFile *file : files) {
        const QStringList inFile = namesIn(*file);
        for (const QString &name : inFile)
            names.insert(name.toCaseFolded(), name);
    }
    return names;
}

Presence Document::presence(int fileType, const QString &name) const
{
    if (!project())
        return Presence::Unknown;
    const bool isThere = names(fileType).contains(name.toCaseFolded());
    return !m_warnsOfNames ? Presence::Unknown : isThere ? Presence::Present : Presence::Missing;
}

Presence Document::spritePresence(const QString &name) const
{
    return presence(Vela::Project::Sprites, name);
}

Presence Document::soundPresence(const QString &name) const
{
    return presence(Vela::Project::Sounds, name);
}

QStringList Document::spriteNames() const
{
    return project() ? names(Vela::Project::Sprites).values() : QStringList();
}

QStringList Document::soundNames() const
{
    return project() ? names(Vela::Project::Sounds).values() : QStringList();
}

// An image that is a file of its own has no sprite.
Vela::Sprite *Document::sprite(const QString &name) const
{
    const QList<ProjectFile *> files =
        project() ? project()->filesByType(Vela::Project::Sprites) : QList<ProjectFile *>();
    for (const ProjectFile *file : files) {
        const auto *const sprites = dynamic_cast<const SpritesFile *>(file);
        const int index = sprites ? sprites->find(0, name) : -1;
        if (index >= 0)
            return sprites->at(unsigned(index));
    }
    return nullptr;
}

QString Document::spelledFile(const QString &path) const
{
    const QString folder = archive().absoluteFilePath(fileName());
    const QString clean =
        QDir::cleanPath(QString(path).replace(QLatin1Char('\\'), QLatin1Char('/')));
    if (!m_fileNames)
        m_fileNames = std::make_unique<FileNames>(archive(), folder);
    const QString spelled = m_fileNames->spelled(clean);
    return spelled.isEmpty() ? QString() : QString(folder + QLatin1Char('/') + spelled);
}

Presence Document::filePresence(const QString &path) const
{
    if (fileName().isEmpty())
        return Presence::Unknown;
    return spelledFile(path).isEmpty() ? Presence::Missing : Presence::Present;
}

// Calls a function for each animation of the project, in the order of its files.
void Document::forEachAnimation(
    const std::function<void(Document &, const MotionCode &)> &function) const
{
    const QList<ProjectFile *> files =
        project() ? project()->filesByType(Vela::Project::Animations) : QList<ProjectFile *>();
    for (ProjectFile *const file : files) {
        auto *const document = dynamic_cast<Document *>(file);
        if (!document || !document->m_motions)
            continue;
        document->ensureLoaded();
        const QList<Vela::AnimationCode *> animations = document->m_motions->animations();
        for (const Vela::AnimationCode *const animation : animations)
            function(*document, static_cast<const MotionCode &>(*animation));
    }
}

QStringList Document::animationNames() const
{
    QStringList names;
    forEachAnimation([&names](const Document &, const MotionCode &animation) {
        names.append(animation.identifier());
    });
    names.removeDuplicates();
    return names;
}

void Document::openSound(const QString &name)
{
    Vela::Interface *const host = Vela::Interface::instance();
    const QList<ProjectFile *> files =
        project() ? project()->filesByType(Vela::Project::Sounds) : QList<ProjectFile *>();
    const auto found = std::find_if(files.begin(), files.end(), [&name](const ProjectFile *file) {
        return namesIn(*file).contains(name, Qt::CaseInsensitive);
    });
    if (found == files.end()) {
        if (host)
            host->log(Texts::tr("There is no sound '%1'.").arg(name));
        return;
    }
    if (auto *const sounds = dynamic_cast<SoundsFile *>(*found))
        sounds->setSelected(unsigned(sounds->find(0, name)));
    if (host)
        host->openFile(*found, 0, 0);
}

void Document::openAnimation(const QString &identifier)
{
    Vela::Interface *const host = Vela::Interface::instance();
    Document *found = nullptr;
    unsigned int line = 0;
    forEachAnimation([&](Document &document, const MotionCode &animation) {
        if (!found && animation.identifier().compare(identifier, Qt::CaseInsensitive) == 0) {
            found = &document;
            line = unsigned(animation.lineNo());
        }
    });
    if (host && found)
        host->openFile(found, line, 0);
    else if (host)
        host->log(Texts::tr("There is no animation '%1'.").arg(identifier));
}

void Document::openFile(const QString &path)
{
    Vela::Interface *const host = Vela::Interface::instance();
    if (!host || !project())
        return;
    const QString name = spelledFile(path);
    m_fileNames.reset();
    const QList<Vela::Project *> projects = project()->parent()->openedProjects();
    for (const Vela::Project *candidate : projects) {
        const QList<ProjectFile *> files = candidate->files();
        for (ProjectFile *file : files) {
            if (!name.isEmpty() && file->fileName() == name) {
                host->openFile(file, 0, 0);
                return;
            }
        }
    }
    host->log(Texts::tr("'%1' is no file of an open project.").arg(path));
}

} // namespace Lantern

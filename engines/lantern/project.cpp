// SPDX-License-Identifier: MIT
#include "lantern/project.h"

#include "lantern/binaryfile.h"
#include "lantern/line.h"
#include "lantern/parentproject.h"
#include "lantern/schema.h"
#include "lantern/sectioncode.h"
#include "lantern/settingcode.h"
#include "lantern/soundsfile.h"
#include "lantern/spritesfile.h"
#include "lantern/values.h"

#include "code/rootcode.h"
#include "frame/archive.h"
#include "frame/interface.h"
#include "frame/jobstats.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <QTextBlock>

#include <algorithm>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

// Returns the setting that lists files of a type; null for a type that is not listed.
const Rule *ruleOfFiles(int type)
{
    const QVector<Rule> &all = rules();
    const auto found = std::find_if(all.begin(), all.end(), [type](const Rule &rule) {
        return rule.section == FilesSection && rule.fileType == type;
    });
    return found == all.end() ? nullptr : &*found;
}

// Returns the node that a further file of a setting stands behind: the last one of its kind, else
// the end of the section; null without a section.
const Vela::CodeNode *placeOf(const Rule &rule, const DefinitionFile &text)
{
    const Vela::CodeNode *place = nullptr;
    bool isOfKind = false;
    const QList<Vela::CodeNode *> childs = text.root()->childs();
    for (const Vela::CodeNode *child : childs) {
        if (child->type() != Vela::CodeNode::Group)
            continue;
        const SectionCode &section = static_cast<const SectionCode &>(*child);
        if (section.kind() != FilesSection)
            continue;
        if (!isOfKind)
            place = &section;
        const QList<Vela::ValueCode *> values = section.values();
        for (const Vela::ValueCode *value : values) {
            const bool fits = static_cast<const SettingCode *>(value)->rule() == &rule;
            if (fits || !isOfKind)
                place = value;
            isOfKind = isOfKind || fits;
        }
    }
    return place;
}

// Returns what the text says of a file; null if that is nothing. A missing one may be spelled in
// another case.
const FileEntry *entryOf(const QVector<FileEntry> &entries, int type, const QString &path)
{
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const FileEntry &entry) {
        const Qt::CaseSensitivity spelling =
            entry.missing ? Qt::CaseInsensitive : Qt::CaseSensitive;
        return entry.type == type && entry.path.compare(path, spelling) == 0;
    });
    return found == entries.end() ? nullptr : &*found;
}

// Adds the line of a file as one step of undo.
void addLine(DefinitionFile &text, const Rule &rule, const QString &path)
{
    const QString line = rule.key + QLatin1String(" = ") + quotedIfNeeded(path);
    text.beginChange();
    if (const Vela::CodeNode *const place = placeOf(rule, text)) {
        text.insertAfter(place, line, true);
    } else {
        const QString end =
            text.lastBlock().length() > 1 ? QStringLiteral("\n\n") : QStringLiteral("\n");
        text.insertAfter(nullptr, end + QLatin1String("[files]\n") + line, false);
    }
    text.endChange();
}

bool isImage(const QString &name)
{
    static const QStringList suffixes{QStringLiteral("png"), QStringLiteral("bmp"),
                                      QStringLiteral("pcx"), QStringLiteral("gif")};
    return suffixes.contains(QFileInfo(name).suffix().toLower());
}

// Extensions of the host may read more kinds of sounds than this one knows.
bool isSingleSound(const QString &name)
{
    return !name.isEmpty()
        && QFileInfo(name).suffix().compare(QLatin1String("sounds"), Qt::CaseInsensitive) != 0;
}

} // namespace

Project::Project(ParentProject *parent, DefinitionFile *main, Vela::JobStats *job)
    : Vela::Project(parent, main->settings().projectType, main, true)
    , m_parent(parent)
    , m_definition(main)
    , m_name(Project::name())
{
    QObject::setParent(parent);
    m_namesChanged.setSingleShot(true);
    connect(&m_namesChanged, &QTimer::timeout, this, &Project::passOnNames);
    connect(this, &Project::fileAdded, this,
            [this](const Vela::ProjectFile *, int type) { onFilesChanged(type); });
    connect(this, &Project::fileRemoved, this, [this](const Vela::ProjectFile *file, int type) {
        m_names.remove(file);
        onFilesChanged(type);
    });
    connect(parent, &ParentProject::fileAdded, this, &Project::onFileAdded);
    connect(parent, &ParentProject::fileOpened, this, &Project::onFileNamed);
    connect(parent, &ParentProject::fileSaved, this, &Project::onFileNamed);
    // The job may let events through, in which the main file may be read again.
    bool isOutdated = false;
    m_definition->setListener([&isOutdated] { isOutdated = true; });
    matchFiles(job);
    m_definition->setListener([this] { definitionChanged(); });
    m_namesChanged.stop();
    passOnNames();
    addToParent();
    if (isOutdated)
        definitionChanged();
}

DefinitionFile *Project::definition() const
{
    return m_definition;
}

QString Project::name() const
{
    const QString name = m_definition->settings().name;
    return name.isEmpty() ? QFileInfo(fileName()).completeBaseName() : name;
}

QString Project::version() const
{
    const QString version = m_definition->settings().version;
    const Settings *const game = gameSettings();
    return version.isEmpty() && game ? game->version : version;
}

QSize Project::stageSize() const
{
    const QSize size = m_definition->settings().stageSize;
    if (size.isValid())
        return size;
    const Settings *const game = gameSettings();
    return game && game->stageSize.isValid() ? game->stageSize : QSize(320, 180);
}

QPointF Project::stageScale() const
{
    const QPointF scale = m_definition->settings().stageScale;
    if (!scale.isNull())
        return scale;
    const Settings *const game = gameSettings();
    return game && !game->stageScale.isNull() ? game->stageScale : QPointF(1, 1);
}

void Project::dependencies(QList<Dependency> &files) const
{
    files += m_dependencies;
}

const Settings *Project::gameSettings() const
{
    const Project *const game = m_parent->gameProject();
    return game && game != this ? &game->definition()->settings() : nullptr;
}

// All files get new names, and each the same in its folder.
bool Project::saveAll(Vela::Archive &target, const QString &path, bool copy, QStringList *written)
{
    const QScopedValueRollback<bool> takesNames(m_takesNames, true);
    return Vela::Project::saveAll(target, path, copy, written);
}

// The files are matched once all of them have been read.
void Project::reload()
{
    m_matchesLater = true;
    Vela::Project::reload();
    m_matchesLater = false;
    definitionChanged();
}

void Project::release()
{
    m_definition->setListener(nullptr);
    Vela::Project::release();
    m_parent->projectReleased(this);
    deleteLater();
}

void Project::definitionChanged()
{
    if (m_matchesLater)
        return;
    const QList<Dependency> before = m_dependencies;
    matchFiles();
    if (m_dependencies != before)
        Q_EMIT fileHierarchyChanged();
    if (name() != m_name) {
        m_name = name();
        Q_EMIT nameChanged();
    }
}

// Brings the files in line with the main file.
void Project::matchFiles(Vela::JobStats *job)
{
    const QScopedValueRollback<bool> takesNames(m_takesNames, true);
    m_dependencies.clear();
    QSet<Dependency> unmatched;
    for (const FileEntry &entry : m_definition->files()) {
        const Dependency dependency(entry.type, entry.path);
        if (entry.type == Main)
            continue;
        m_dependencies.append(dependency);
        if (!entry.missing)
            unmatched.insert(dependency);
    }
    removeUnnamedFiles(unmatched);
    addFiles(unmatched, job);
}

// Takes what is there off \a named. A file with changes that are not saved stays, even if it is no
// longer named, until it has been saved. So does one that the text cannot name.
void Project::removeUnnamedFiles(QSet<Dependency> &named)
{
    for (int type = Sprites; type <= Scripts; ++type) {
        const QList<Vela::ProjectFile *> present = filesByType(type);
        for (int i = present.size() - 1; i >= 0; --i) {
            const QString path = pathInFolder(*present.at(i));
            if (!named.remove(Dependency(type, path)) && !path.isEmpty()
                && !present.at(i)->isModified())
                removeFile(type, unsigned(i));
        }
    }
}

void Project::addFiles(const QSet<Dependency> &missing, Vela::JobStats *job)
{
    const QString folder = absolutePath() + QLatin1Char('/');
    QHash<QString, Vela::ProjectFile *> byName;
    const QList<Vela::ProjectFile *> present = files();
    for (Vela::ProjectFile *file : present)
        byName.insert(file->fileName(), file);
    for (const Dependency &dependency : qAsConst(m_dependencies)) {
        if (!missing.contains(dependency))
            continue;
        if (job && job->wasCancelled())
            return;
        if (job)
            job->incrementValue();
        // A file of several types is one file, with one reference.
        Vela::ProjectFile *&file = byName[folder + dependency.second];
        if (!file) {
            file = createContentFile(dependency.first, dependency.second);
            dynamic_cast<LateContent &>(*file).attach(archive(), folder + dependency.second);
        }
        addFile(file, dependency.first);
    }
}

// Returns an empty path for what the text cannot name: a file without a name, one outside of the
// folder, and one whose name has a sign in it that is none of a name there.
QString Project::pathInFolder(const Vela::ProjectFile &file) const
{
    const QString folder = absolutePath() + QLatin1Char('/');
    const QString name = file.fileName();
    const QString path = name.startsWith(folder) ? name.mid(folder.size()) : QString();
    return insidePath(path) == path ? path : QString();
}

void Project::onFileAdded(Vela::ProjectFile *file)
{
    if (file->project() != this || file == mainFile())
        return;
    m_names.insert(file, file->fileName());
    if (auto *const sprites = dynamic_cast<SpritesFile *>(file))
        connect(sprites, &SpritesFile::namesChanged, &m_namesChanged, qOverload<>(&QTimer::start));
    else if (auto *const sounds = dynamic_cast<SoundsFile *>(file))
        connect(sounds, &SoundsFile::namesChanged, &m_namesChanged, qOverload<>(&QTimer::start));
    if (!m_takesNames && !file->fileName().isEmpty())
        listFile(file);
}

void Project::onFileNamed(Vela::ProjectFile *file)
{
    const QString name = file->fileName();
    if (file->project() != this || file == mainFile() || m_names.value(file) == name)
        return;
    m_names.insert(file, name);
    if (!m_takesNames)
        listFile(file);
}

void Project::listFile(Vela::ProjectFile *file)
{
    const QString path = pathInFolder(*file);
    bool isChanged = false;
    m_matchesLater = true;
    for (int type = Sprites; type <= Scripts; ++type) {
        const Rule *const rule = fileID(file) & (1u << type) ? ruleOfFiles(type) : nullptr;
        const FileEntry *const entry = entryOf(m_definition->files(), type, path);
        if (!rule || (entry && !entry->missing))
            continue;
        const bool canList = entry || (!path.isEmpty() && !m_definition->isReadOnly());
        isChanged = isChanged || canList;
        Vela::Interface *const host = Vela::Interface::instance();
        if (entry)
            m_definition->lookForFiles();
        else if (canList)
            addLine(*m_definition, *rule, path);
        else if (host)
            host->log(Texts::tr("The file '%1' cannot be listed in '%2': it is part of the project "
                                "only until that is closed.")
                          .arg(file->fileName(), fileName()));
    }
    m_matchesLater = false;
    if (isChanged)
        definitionChanged();
}

void Project::onFilesChanged(int type)
{
    if (type == Sprites || type == Sounds)
        m_namesChanged.start();
}

// Motions and scripts name sprites and sounds by their files.
void Project::passOnNames()
{
    const QList<Vela::ProjectFile *> present = files();
    for (Vela::ProjectFile *file : present) {
        if (auto *const document = dynamic_cast<Document *>(file))
            document->forgetNames();
    }
}

Vela::ProjectFile *createContentFile(int type, const QString &name)
{
    switch (type) {
    case Vela::Project::Main:
        return new DefinitionFile(Scope::Project);
    case Vela::Project::Sprites:
        if (isImage(name))
            return new BinaryFile("png");
        return new SpritesFile;
    case Vela::Project::Sounds:
        if (isSingleSound(name))
            return new BinaryFile("wav");
        return new SoundsFile;
    case Vela::Project::Animations:
        return new Document(Scope::Motion);
    case Vela::Project::Scripts:
        return new Document(Scope::Script);
    default:
        return nullptr;
    }
}

} // namespace Lantern

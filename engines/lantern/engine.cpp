// SPDX-License-Identifier: MIT
#include "lantern/engine.h"

#include "lantern/line.h"
#include "lantern/nodepanel.h"
#include "lantern/parentproject.h"
#include "lantern/project.h"
#include "lantern/settings.h"
#include "lantern/texteditor.h"

#include "editor/codeworkspace.h"
#include "editor/propertyedit.h"
#include "frame/filesystemarchive.h"
#include "frame/interface.h"
#include "frame/jobstats.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QVBoxLayout>

#include <memory>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

QString extension()
{
    return QStringLiteral("lantern");
}

// Returns the game file of a folder as the disk spells it, or an empty string.
QString gameFileIn(const QString &folder)
{
    return QDir(folder).entryList({Engine::gameFileName()}, QDir::Files).value(0);
}

// Returns the one main file of a folder that is no game; empty if there are none or several.
QString onlyMainFileIn(const QString &folder)
{
    const QStringList names = QDir(folder).entryList({QStringLiteral("*.lantern")}, QDir::Files);
    return names.size() == 1 ? names.first() : QString();
}

// Returns the main file that a path means, or the game file of the folder that it lies in; empty
// if it means neither.
QString mainFileFor(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir()) {
        const QString folder = QDir(path).absolutePath();
        QString name = gameFileIn(folder);
        if (name.isEmpty())
            name = onlyMainFileIn(folder);
        return name.isEmpty() ? QString() : QDir(folder).filePath(name);
    }
    if (!info.isFile() || info.suffix().compare(extension(), Qt::CaseInsensitive) != 0)
        return QString();
    const QString game = gameFileIn(info.absolutePath());
    return game.isEmpty() ? info.absoluteFilePath() : QDir(info.absolutePath()).filePath(game);
}

// Returns a name that every file system takes.
QString fileNameFor(const QString &name)
{
    constexpr int longest = 40;
    QString result;
    for (const QChar c : name.toLower()) {
        if ((c >= QLatin1Char('a') && c <= QLatin1Char('z')) || c.isDigit())
            result += c;
        else if (!result.isEmpty() && !result.endsWith(QLatin1Char('-')))
            result += QLatin1Char('-');
    }
    result.truncate(longest);
    while (result.endsWith(QLatin1Char('-')))
        result.chop(1);
    if (result.isEmpty())
        return QStringLiteral("first");
    // A short name may be that of a device.
    return result.size() < 5 ? QString(QStringLiteral("first-") + result) : result;
}

QString authorLine(const QString &author)
{
    return author.isEmpty() ? QString()
                            : QStringLiteral("author = %1\n").arg(quotedIfNeeded(author));
}

QString gameText(const QString &name, const QString &author, const QString &mainFile)
{
    return Texts::tr(
               "# This file makes the folder a game for the Lantern engine.\n"
               "# One setting a line; what follows a \"#\" is a comment.\n"
               "\n"
               "[game]\n"
               "name = %1\n"
               "%5requires = %2.%3\n"
               "\n"
               "[stage]\n"
               "size = 320 x 180   # in stage pixels\n"
               "scale = 2          # pixels of the content for one of the stage\n"
               "\n"
               "# Each project has a folder of its own. \"closed\" ones are part of the game,\n"
               "# but are opened only when you ask for it.\n"
               "[projects]\n"
               "open = %4\n")
        .arg(quotedIfNeeded(name), QString::number(engineMajor), QString::number(engineMinor),
             mainFile, authorLine(author));
}

QString projectText(const QString &name, const QString &author)
{
    return Texts::tr("# A project: a character, a stage, a screen, or something shared.\n"
                     "\n"
                     "[project]\n"
                     "name = %1\n"
                     "%2kind = character\n"
                     "\n"
                     "# The files of the project, one a line, in folders below this one:\n"
                     "#   sprites = sprites/idle.png\n"
                     "#   sounds = sounds/step.wav\n"
                     "#   animations = first.motion\n"
                     "#   scripts = first.script\n"
                     "[files]\n")
        .arg(quotedIfNeeded(name), authorLine(author));
}

bool write(const QString &path, const QString &text)
{
    Vela::FileSystemArchive &disk = Vela::FileSystemArchive::instance();
    QIODevice *const device = disk.openFile(path, QIODevice::WriteOnly);
    if (!device)
        return false;
    const QByteArray data = text.toUtf8();
    const bool written = device->write(data) == data.size();
    disk.closeFile(device);
    return written && QFileInfo(path).size() == data.size();
}

} // namespace

Engine::Engine()
    : Vela::Engine(QStringLiteral("lantern"))
{
    connect(&m_options, &Options::changed, this, &Engine::optionChanged);
}

QString Engine::gameFileName()
{
    return QStringLiteral("game.lantern");
}

QString Engine::queryString(StringType what, unsigned int argument) const
{
    static const QString typeNames[ProjectTypeCount] = {Texts::tr("Game"), Texts::tr("Character"),
                                                        Texts::tr("Stage"), Texts::tr("Screen"),
                                                        Texts::tr("Shared")};
    if (what == ProjectTypeName)
        return argument < unsigned(ProjectTypeCount) ? typeNames[argument] : QString();
    if (argument != 0)
        return QString();
    switch (what) {
    case EditorText:
        return Texts::tr("Lantern %1.%2").arg(engineMajor).arg(engineMinor);
    case EngineName:
        return QStringLiteral("lantern");
    case CommentString:
        return QStringLiteral("#");
    case DisplayName:
        return Texts::tr("Lantern");
    default:
        return QString();
    }
}

QMap<int, QString> Engine::singleFileFilters() const
{
    return {{Vela::Project::Main, QStringLiteral("*.lantern")},
            {Vela::Project::Sprites, QStringLiteral("*.sprites *.png *.bmp *.pcx *.gif")},
            {Vela::Project::Sounds, QStringLiteral("*.sounds *.wav *.ogg *.flac *.mp3")},
            {Vela::Project::Animations, QStringLiteral("*.motion")},
            {Vela::Project::Scripts, QStringLiteral("*.script")}};
}

Vela::ProjectFile *Engine::createFile(int type, Vela::Project *)
{
    return createContentFile(type, QString());
}

bool Engine::canOpen(const QString &path) const
{
    return !mainFileFor(path).isEmpty();
}

Vela::ParentProject *Engine::openParentProject(const QString &path, QString *error)
{
    const QString mainFile = mainFileFor(path);
    if (mainFile.isEmpty()) {
        *error = Texts::tr("'%1' is no game, and no project, of the Lantern engine.").arg(path);
        return nullptr;
    }
    const QFileInfo info(mainFile);
    const bool game = info.fileName().compare(gameFileName(), Qt::CaseInsensitive) == 0;
    auto parent = std::make_unique<ParentProject>(info.absolutePath(),
                                                  game ? info.fileName() : QString(), this);
    Vela::Interface *const host = Vela::Interface::instance();
    Vela::ProgressProvider *const progress = host ? host->progress() : nullptr;
    const std::unique_ptr<Vela::JobStats> job(
        progress ? progress->createJob(Texts::tr("Opening the game..."), 0) : nullptr);
    const bool opened = game ? parent->openGame(job.get(), error)
                             : parent->openMainFile(mainFile, job.get(), error) != nullptr;
    // A part must not be taken for the whole.
    if (opened && job && job->wasCancelled()) {
        *error = Texts::tr("The game was not opened to the end.");
        return nullptr;
    }
    return opened ? parent.release() : nullptr;
}

Vela::Project *Engine::openProject(Vela::ParentProject *parent, const QString &path, QString *error)
{
    ParentProject *const own = qobject_cast<ParentProject *>(parent);
    return own ? own->openClosed(path, error) : nullptr;
}

QString Engine::createParentProject(const QString &folder, const QString &name, QString *error)
{
    const QDir dir(folder);
    if (!dir.exists() || !dir.isEmpty()) {
        *error = Texts::tr("'%1' is no empty folder.").arg(folder);
        return QString();
    }
    if (name.trimmed().isEmpty() || name.contains(QLatin1Char('\n'))
        || name.contains(QLatin1Char('\r')) || name.contains(QChar(0))) {
        *error = Texts::tr("A game needs a name of one line.");
        return QString();
    }
    const QString base = fileNameFor(name);
    const QString mainFile = base + QLatin1Char('/') + base + QStringLiteral(".lantern");
    const QString author = m_options.option(OptionKey::author).toString();
    const QPair<QString, QString> files[] = {{mainFile, projectText(name, author)},
                                             {gameFileName(), gameText(name, author, mainFile)}};
    for (const auto &[path, text] : files) {
        if (!write(dir.filePath(path), text)) {
            *error = Texts::tr("The file '%1' cannot be written.").arg(dir.filePath(path));
            return QString();
        }
    }
    return dir.absolutePath();
}

void Engine::registerCustomOptions(QWidget *page)
{
    if (!page->layout())
        new QVBoxLayout(page);
    auto *const form = new Vela::PropertyEdit(page);
    page->layout()->addWidget(form);
    form->setProvider(&m_options);
    connect(form, &QObject::destroyed, &m_options, &Options::save);
}

// Lines that name sprites and sounds are read again.
void Engine::optionChanged(const QString &key)
{
    const Vela::Interface *const host = Vela::Interface::instance();
    if (key != OptionKey::warns || !host)
        return;
    for (unsigned int i = 0; i < host->parentProjectCount(); ++i) {
        const QList<Vela::Project *> projects = host->parentProject(i)->openedProjects();
        for (Vela::Project *const project : projects) {
            if (auto *const own = qobject_cast<Project *>(project))
                own->passOnNames();
        }
    }
}

const char *EngineExtension::format() const
{
    return "lantern";
}

const char *EngineExtension::identifier() const
{
    return "lantern";
}

Vela::Engine *EngineExtension::engine()
{
    return &m_engine;
}

QList<Vela::Editor *> EngineExtension::createEditors(const QList<Vela::Workspace *> &workspaces)
{
    QList<Vela::Editor *> editors;
    const auto panel = std::make_shared<NodePanel>();
    for (Vela::Workspace *workspace : workspaces) {
        auto *code = qobject_cast<Vela::CodeWorkspace *>(workspace);
        if (!code)
            continue;
        for (int type : {Vela::Project::Main, Vela::Project::Animations, Vela::Project::Scripts})
            editors.append(new TextEditor(code, type, panel));
    }
    return editors;
}

void EngineExtension::release()
{
    delete this;
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
// Files that come to a project from elsewhere than its main file's text.
#include "lantern/definitionfile.h"
#include "lantern/document.h"
#include "lantern/engine.h"

#include "frame/filesystemarchive.h"
#include "frame/textcodecs.h"
#include "project/messages.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "support/recordinghost.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Lantern::DefinitionFile;

using Vela::Project;
using Vela::ProjectFile;

namespace {

constexpr char heading[] = "[project]\nname = Hero\n";

bool writeFile(const QString &name, const QByteArray &data)
{
    QFile file(name);
    return QDir().mkpath(QFileInfo(name).absolutePath()) && file.open(QIODevice::WriteOnly)
        && file.write(data) == data.size();
}

} // namespace

class tst_LanternListing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void aNamedFileGetsItsLine_data();
    void aNamedFileGetsItsLine();
    void aFileOfSeveralTypesGetsALineForEach();
    void anAddedFileGetsItsLine();
    void aMissingFileThatIsMadeNeedsNoLine_data();
    void aMissingFileThatIsMadeNeedsNoLine();
    void whatCannotBeNamedStaysWithoutALine_data();
    void whatCannotBeNamedStaysWithoutALine();
    void savingInPlaceListsNothingAgain();
    void savingTheProjectElsewhereListsNothing();

private:
    QString path(const QString &name) const;
    bool open(const QByteArray &text);
    ProjectFile *addNew(int type);
    QString listing() const;
    bool save(ProjectFile *file, const QString &name);

    std::unique_ptr<RecordingHost> m_host;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Vela::ParentProject> m_parent;
    Project *m_project = nullptr;
    DefinitionFile *m_main = nullptr;
    Lantern::Engine m_engine;
};

void tst_LanternListing::initTestCase()
{
    Vela::TextCodecs::initialize();
}

void tst_LanternListing::init()
{
    m_host = std::make_unique<RecordingHost>();
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_LanternListing::cleanup()
{
    if (m_parent)
        m_project->release();
    m_parent.reset();
    m_host.reset();
}

QString tst_LanternListing::path(const QString &name) const
{
    return m_folder->filePath(QStringLiteral("hero/") + name);
}

bool tst_LanternListing::open(const QByteArray &text)
{
    QString error;
    const QString name = path(QStringLiteral("hero.lantern"));
    if (!writeFile(name, text))
        return false;
    m_parent.reset(m_engine.openParentProject(name, &error));
    m_project = m_parent ? m_parent->openedProjects().value(0) : nullptr;
    m_main = m_project ? dynamic_cast<DefinitionFile *>(m_project->mainFile()) : nullptr;
    return m_main;
}

ProjectFile *tst_LanternListing::addNew(int type)
{
    ProjectFile *const file = m_engine.createFile(type, m_project);
    return m_project->addFile(file, type) ? file : nullptr;
}

QString tst_LanternListing::listing() const
{
    return m_main->toString();
}

bool tst_LanternListing::save(ProjectFile *file, const QString &name)
{
    return file->toFile(Vela::FileSystemArchive::instance(), name, 0, nullptr);
}

void tst_LanternListing::aNamedFileGetsItsLine_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("after");

    const QByteArray head(heading);
    const auto row = [&](const char *title, const QByteArray &before, int type, const char *name,
                         const QByteArray &after) {
        QTest::newRow(title) << QByteArray(head + before) << type << QString::fromUtf8(name)
                             << QByteArray(head + after);
    };
    row("no section", "", Project::Scripts, "a.script", "\n[files]\nscripts = a.script\n");
    row("no line end", "kind = stage", Project::Scripts, "a.script",
        "kind = stage\n\n[files]\nscripts = a.script\n");
    row("empty section", "[files]\n", Project::Sprites, "s/a.png", "[files]\nsprites = s/a.png\n");
    row("section in the middle", "[files] # all\n\n[stage]\nscale = 2\n", Project::Sounds, "a.wav",
        "[files] # all\nsounds = a.wav\n\n[stage]\nscale = 2\n");
    row("behind its kind", "[files]\nsounds = b.wav\nanimations = c.motion # run\nscripts = d\n",
        Project::Animations, "a.motion",
        "[files]\nsounds = b.wav\nanimations = c.motion # run\nanimations = a.motion\n"
        "scripts = d\n");
    row("behind other kinds", "[files]\nsounds = b.wav\n\n# end\n", Project::Scripts, "a.script",
        "[files]\nsounds = b.wav\nscripts = a.script\n\n# end\n");
    row("sections again", "[files]\nscripts = b\n[stage]\n[files]\nsounds = c.wav\n",
        Project::Scripts, "a.script",
        "[files]\nscripts = b\nscripts = a.script\n[stage]\n[files]\nsounds = c.wav\n");
    row("quotes", "[files]\n", Project::Scripts, "a \"b\" #1.script",
        "[files]\nscripts = \"a \"\"b\"\" #1.script\"\n");
}

void tst_LanternListing::aNamedFileGetsItsLine()
{
    QFETCH(QByteArray, before);
    QFETCH(int, type);
    QFETCH(QString, name);
    QFETCH(QByteArray, after);
    QVERIFY(open(before));
    ProjectFile *const file = addNew(type);
    QCOMPARE(listing(), QString::fromUtf8(before));
    QVERIFY(save(file, path(name)));
    QCOMPARE(listing(), QString::fromUtf8(after));
    QCOMPARE(m_project->filesByType(type), QList<ProjectFile *>() << file);
    QList<Project::Dependency> dependencies;
    m_project->dependencies(dependencies);
    QVERIFY(dependencies.contains(Project::Dependency(type, name)));

    m_main->undo();
    QCOMPARE(listing(), QString::fromUtf8(before));
    QVERIFY(!m_main->isModified());
    QCOMPARE(m_project->filesByType(type), QList<ProjectFile *>());
    m_main->redo();
    QCOMPARE(m_project->filesByType(type).value(0)->fileName(), path(name));
}

void tst_LanternListing::aFileOfSeveralTypesGetsALineForEach()
{
    QVERIFY(writeFile(path(QStringLiteral("a.motion")), "# run\n"));
    QVERIFY(open(QByteArray(heading) + "[files]\nanimations = a.motion\nscripts = a.motion\n"));
    ProjectFile *const file = m_project->file(Project::Animations);
    const Project::FileTypes types = m_project->fileID(file);
    QVERIFY(save(file, path(QStringLiteral("b.motion"))));
    QCOMPARE(listing(),
             QLatin1String(heading)
                 + QLatin1String("[files]\nanimations = a.motion\nanimations = b.motion\n"
                                 "scripts = a.motion\nscripts = b.motion\n"));
    QCOMPARE(m_project->fileID(file), types);
}

void tst_LanternListing::anAddedFileGetsItsLine()
{
    QVERIFY(open(heading));
    QVERIFY(writeFile(path(QStringLiteral("a.script")), "# dusk\n"));
    ProjectFile *const file = m_engine.createFile(Project::Scripts, m_project);
    QVERIFY(file->fromFile(m_project->archive(), path(QStringLiteral("a.script")), 0, nullptr));
    QVERIFY(m_project->addFile(file, Project::Scripts));
    QCOMPARE(listing(), QLatin1String(heading) + QLatin1String("\n[files]\nscripts = a.script\n"));
}

void tst_LanternListing::aMissingFileThatIsMadeNeedsNoLine_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("as spelled") << "A.script";
    QTest::newRow("in another case") << "a.script";
}

void tst_LanternListing::aMissingFileThatIsMadeNeedsNoLine()
{
    QFETCH(QString, name);
    const QByteArray text = QByteArray(heading) + "[files]\nscripts = A.script\n";
    QVERIFY(open(text));
    QCOMPARE(m_main->messages()->count(Vela::Message::Warning), 1);
    ProjectFile *const file = addNew(Project::Scripts);
    QVERIFY(save(file, path(name)));
    QCOMPARE(listing(), QString::fromUtf8(text));
    QCOMPARE(m_main->messages()->count(Vela::Message::Warning), 0);
    m_main->setProperty(QStringLiteral("project.name"), QStringLiteral("Wolf"));
    QCOMPARE(m_project->filesByType(Project::Scripts), QList<ProjectFile *>() << file);
}

void tst_LanternListing::whatCannotBeNamedStaysWithoutALine_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("logged");

    QTest::newRow("no name") << QString() << 0;
    QTest::newRow("outside") << QStringLiteral("../a.script") << 1;
    QTest::newRow("beside") << QStringLiteral("../hero2/a.script") << 1;
#ifndef Q_OS_WIN
    QTest::newRow("backslash") << QStringLiteral("b\\a.script") << 1;
#endif
}

void tst_LanternListing::whatCannotBeNamedStaysWithoutALine()
{
    QFETCH(QString, name);
    QFETCH(int, logged);
    QVERIFY(open(heading));
    ProjectFile *const file = addNew(Project::Scripts);
    if (!name.isEmpty())
        QVERIFY(save(file, QDir::cleanPath(path(QString())) + QLatin1Char('/') + name));
    QCOMPARE(listing(), QLatin1String(heading));
    QCOMPARE(m_host->logged.size(), logged);
    m_main->setProperty(QStringLiteral("project.name"), QStringLiteral("Wolf"));
    QCOMPARE(m_project->filesByType(Project::Scripts), QList<ProjectFile *>() << file);
}

void tst_LanternListing::savingInPlaceListsNothingAgain()
{
    QVERIFY(writeFile(path(QStringLiteral("a.script")), "# dusk\n"));
    QVERIFY(open(QByteArray(heading) + "[files]\nscripts = a.script\n"));
    auto *const file = dynamic_cast<Lantern::Document *>(m_project->file(Project::Scripts));
    file->setText(QStringLiteral("# dawn\n"));
    m_main->setText(QLatin1String(heading));
    QCOMPARE(m_project->filesByType(Project::Scripts).size(), 1); // it has changes
    QVERIFY(save(file, file->fileName()));
    QCOMPARE(listing(), QLatin1String(heading));
    m_project->reload();
    QCOMPARE(m_main->toString(),
             QLatin1String(heading) + QLatin1String("[files]\nscripts = a.script\n"));
}

void tst_LanternListing::savingTheProjectElsewhereListsNothing()
{
    QVERIFY(writeFile(path(QStringLiteral("a.script")), "# dusk\n"));
    QVERIFY(open(QByteArray(heading) + "[files]\nscripts = a.script\n"));
    dynamic_cast<Lantern::Document *>(m_project->file(Project::Scripts))
        ->setText(QStringLiteral("# dawn\n"));
    const QString text = listing();
    m_parent->saveAs(m_folder->filePath(QStringLiteral("copy/hero.lantern")), nullptr);
    QCOMPARE(listing(), text);
    QCOMPARE(m_host->logged, QStringList());
    ProjectFile *const file = m_project->file(Project::Scripts);
    QCOMPARE(file->fileName(), m_folder->filePath(QStringLiteral("copy/a.script")));
    QVERIFY(save(file, m_folder->filePath(QStringLiteral("copy/b.script"))));
    QCOMPARE(listing(), text + QStringLiteral("scripts = b.script\n"));
}

QTEST_MAIN(tst_LanternListing)
#include "tst_lanternlisting.moc"

// SPDX-License-Identifier: MIT
#include "editor/editordata.h"
#include "editor/fileeditor.h"
#include "support/dialoganswerer.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"
#include "support/testfile.h"
#include "support/testproject.h"

#include "frame/filesystemarchive.h"

#include <QFileDialog>
#include <QtTest>

using namespace Vela;

namespace {

constexpr int editedType = Project::Sounds;

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

class UnreadableFile : public TestFile
{
public:
    bool fromFile(Archive &, const QString &, unsigned int, JobStats *) override
    {
        return false;
    }
};

class OneTypeEngine : public TestEngine
{
public:
    QMap<int, QString> singleFileFilters() const override
    {
        return {{editedType, pattern}};
    }
    ProjectFile *createFile(int type, Project *project) override
    {
        asked.append({type, project});
        return unreadable ? new UnreadableFile : new TestFile;
    }

    QString pattern = text("*.def");
    bool unreadable = false;
    QVector<QPair<int, Project *>> asked;
};

class OneTypeEditor : public FileEditor
{
public:
    QAction *action() const override
    {
        return &m_action;
    }
    const char *name() const override
    {
        return "things";
    }
    unsigned int areas() const override
    {
        return 0;
    }
    void retranslate() override
    {
    }
    QList<ProjectFile::SearchResult> find(const RegExp &, unsigned int) override
    {
        return {};
    }
    void replace(const QList<ProjectFile::SearchResult> &, const QString &) override
    {
    }
    int canEditFileType() const override
    {
        return type;
    }
    void cut() override
    {
    }
    void copy() override
    {
    }
    void paste() override
    {
    }

    int type = editedType;

private:
    mutable QAction m_action{text("Thing"), nullptr};
};

/// A project in the folder "game" of a temporary folder, and an editor that is not active.
struct Fixture
{
    Fixture()
    {
        QDir(root.path()).mkpath(text("game"));
        QDir(root.path()).mkpath(text("elsewhere"));
        write("game/plain"); // a file where some tests would need a folder
        main = new TestFile;
        main->place(FileSystemArchive::instance(), path("game/main.def"));
        parent = std::make_unique<TestParentProject>(path("game"), FileSystemArchive::instance());
        project = std::make_unique<TestProject>(parent.get(), 0, main);
        host.project = project.get();
        host.activeEngine = &engine;
    }

    QString path(const char *name) const
    {
        return root.path() + QLatin1Char('/') + text(name);
    }

    QString write(const char *name) const
    {
        QFile file(path(name));
        if (file.open(QIODevice::WriteOnly))
            file.write(name);
        return file.fileName();
    }

    /// Adds a modified file, which is the editor's current one.
    TestFile *edited(const char *name)
    {
        auto *const file = new TestFile;
        file->place(FileSystemArchive::instance(), path(name));
        file->edit(text("new"));
        project->addFile(file, editedType);
        editor.setCurrentFile(file);
        return file;
    }

    QString storedFolder() const
    {
        return project->option(text("things_path")).toString();
    }

    QTemporaryDir root;
    RecordingHost host;
    OneTypeEngine engine;
    TestFile *main;
    std::unique_ptr<TestParentProject> parent;
    std::unique_ptr<TestProject> project;
    OneTypeEditor editor;
    QSignalSpy modified{&editor, &FileEditor::modified};
    DialogAnswerer dialogs;
};

} // namespace

class tst_FileEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listKeepsWhatItsEditorRemembers();
    void createAddsAFileAndComesUp();
    void refusedFileIsReleased();
    void nothingHappensWithoutAProject();
    void openLoadsIntoTheProject();
    void asksAboutPlacesElsewhere();
    void failedOpenLeavesTheProjectAsItWas();
    void saveWritesOnlyWhatHasChanged();
    void saveHasAJob_data();
    void saveHasAJob();
    void failedSaveAsksForAnotherName();
    void saveAsAddsTheOneExtension_data();
    void saveAsAddsTheOneExtension();
    void addedExtensionReplacesNothingUnasked();
    void failedSaveAsKeepsTheFolder();
    void asksForEachModifiedFile();
    void filesMayGoDuringAQuestion();
};

void tst_FileEditor::listKeepsWhatItsEditorRemembers()
{
    QObject first;
    QObject second;
    QVERIFY(!EditorData::of(first).onionSkin);
    EditorData::of(first).onionSkin = true;
    EditorData::of(first).onionFrame = 7;
    QCOMPARE(EditorData::of(first).onionFrame, 7U);
    QCOMPARE(EditorData::of(first).onionAnimation, 0U);
    QVERIFY(!EditorData::of(second).onionSkin);
}

void tst_FileEditor::createAddsAFileAndComesUp()
{
    Fixture f;
    f.editor.create();
    QCOMPARE(f.project->filesByType(editedType).size(), 1);
    QCOMPARE(f.engine.asked, (QVector<QPair<int, Project *>>{{editedType, f.project.get()}}));
    QVERIFY(f.editor.isActive());
    QCOMPARE(f.modified.size(), 1);
    f.editor.create();
    QCOMPARE(f.host.editorsSwitched, QVector<Editor *>{&f.editor});
}

void tst_FileEditor::refusedFileIsReleased()
{
    Fixture f;
    f.editor.type = 32; // the first number that is no type
    const int alive = TestFile::alive();
    f.editor.create();
    QCOMPARE(f.engine.asked.size(), 1);
    QCOMPARE(TestFile::alive(), alive);
    f.dialogs.chooseFiles({f.write("game/a.def")});
    f.editor.open();
    QCOMPARE(f.engine.asked.size(), 2);
    QCOMPARE(TestFile::alive(), alive);
    QCOMPARE(f.modified.size(), 0);
    QVERIFY(!f.editor.isActive());
    QVERIFY(f.storedFolder().isEmpty());
}

void tst_FileEditor::nothingHappensWithoutAProject()
{
    Fixture f;
    f.host.project = nullptr;
    f.editor.create();
    f.editor.open();
    f.editor.save();
    f.editor.saveAs();
    QVERIFY(f.editor.canDiscard(static_cast<const Project *>(nullptr)));
    QVERIFY(f.dialogs.dialogs.isEmpty());
}

void tst_FileEditor::openLoadsIntoTheProject()
{
    Fixture f;
    const QString path = f.write("game/hero.def");
    f.project->setOption(text("project_path"), f.path("game"), false);
    QString folder;
    QStringList filters;
    f.dialogs.handle([&](QDialog *dialog) {
        auto *const files = qobject_cast<QFileDialog *>(dialog);
        folder = files->directory().path();
        filters = files->nameFilters();
        files->selectFile(path);
        dialog->accept();
    });
    f.editor.open();
    QCOMPARE(f.dialogs.dialogs.size(), 1);
    QCOMPARE(f.dialogs.dialogs.first().title, text("Open things..."));
    QCOMPARE(filters, QStringList{text("Thing (*.def)")});
    QCOMPARE(folder, f.path("game"));
    auto *const file = static_cast<TestFile *>(f.project->file(editedType));
    QVERIFY(file);
    QCOMPARE(file->name, path);
    QCOMPARE(file->loads.first().flags, 0u);
    QVERIFY(f.editor.isActive());
    QCOMPARE(f.modified.size(), 1);
    // The folder is kept for the project and for the user.
    QCOMPARE(f.storedFolder(), f.path("game"));
    QCOMPARE(f.host.options.value(text("things_path")).toString(), f.path("game"));

    // The editor's own folder goes before the project's.
    f.project->setOption(text("things_path"), f.path("elsewhere"), false);
    f.dialogs.handle([&](QDialog *dialog) {
        folder = qobject_cast<QFileDialog *>(dialog)->directory().path();
        dialog->reject();
    });
    f.editor.open();
    QCOMPARE(folder, f.path("elsewhere"));
    QCOMPARE(f.project->filesByType(editedType).size(), 1);
}

void tst_FileEditor::asksAboutPlacesElsewhere()
{
    for (const bool isCopy : {true, false}) {
        Fixture f;
        const auto check = [&](const char *question) {
            const DialogAnswerer::Dialog box = f.dialogs.dialogs.last();
            QCOMPARE(box.title, text("External file!"));
            QCOMPARE(box.text,
                     text("This file isn't a child of the project directory, so will be ignored on "
                          "'Run in engine', 'Backup' and 'Save as' functions. ")
                         + text(question));
            QCOMPARE(box.icon, QMessageBox::Warning);
            QCOMPARE(box.defaultButton, QMessageBox::No);
            QCOMPARE(f.storedFolder(), f.path("elsewhere"));
        };
        const unsigned int flags = isCopy ? 1 : 0;
        f.dialogs.chooseFiles({f.write("elsewhere/a.def")});
        f.dialogs.answer(isCopy ? QMessageBox::Yes : QMessageBox::No);
        f.editor.open();
        check("Do you want to load it as copy?");
        auto *const file = static_cast<TestFile *>(f.project->file(editedType));
        QVERIFY(file);
        QCOMPARE(file->text, text("elsewhere/a.def"));
        QCOMPARE(file->loads.first().flags, flags);

        file->edit(text("new"));
        f.editor.setCurrentFile(file);
        f.dialogs.chooseFiles({f.path("elsewhere/b.def")});
        f.dialogs.answer(isCopy ? QMessageBox::Yes : QMessageBox::No);
        f.editor.saveAs();
        check("Do you want to save it as copy?");
        QCOMPARE(file->saves.first().flags, flags);
        QCOMPARE(file->modified, isCopy);
    }
}

void tst_FileEditor::failedOpenLeavesTheProjectAsItWas()
{
    Fixture f;
    f.engine.unreadable = true;
    const int alive = TestFile::alive();
    f.dialogs.chooseFiles({f.write("game/a.def")});
    f.editor.open();
    QVERIFY(f.project->filesByType(editedType).isEmpty());
    QCOMPARE(TestFile::alive(), alive);
    QVERIFY(f.storedFolder().isEmpty());
    QCOMPARE(f.modified.size(), 0);
}

void tst_FileEditor::saveWritesOnlyWhatHasChanged()
{
    Fixture f;
    TestFile *const file = f.edited("game/a.def");
    file->modified = false;
    f.editor.save();
    QVERIFY(f.editor.isActive());
    file->edit(text("newer"));
    file->savable = false;
    f.editor.save();
    QVERIFY(file->saves.isEmpty());
    QVERIFY(f.host.progressProvider.jobs.empty());
    QVERIFY(f.dialogs.dialogs.isEmpty());
    QCOMPARE(f.modified.size(), 0);
}

void tst_FileEditor::saveHasAJob_data()
{
    QTest::addColumn<int>("capabilities");
    QTest::addColumn<int>("lengthy");
    QTest::addColumn<unsigned int>("flags");
    QTest::newRow("quick") << 0 << 0 << 0u;
    QTest::newRow("slow") << int(ProjectFile::SavesSlowly) << 1 << 2u;
    QTest::newRow("no jobs") << int(ProjectFile::SavesSlowly) << -1 << 2u;
}

void tst_FileEditor::saveHasAJob()
{
    QFETCH(int, capabilities);
    QFETCH(int, lengthy);
    QFETCH(unsigned int, flags);
    Fixture f;
    f.host.progressProvider.refuseJobs = lengthy < 0;
    TestFile *const file = f.edited("game/a.def");
    file->caps = ProjectFile::Capabilities(capabilities);
    f.editor.save();
    QCOMPARE(file->saves.size(), 1);
    QCOMPARE(file->saves.first().name, f.path("game/a.def"));
    QCOMPARE(file->saves.first().flags, flags);
    QCOMPARE(f.modified.size(), 1);
    if (lengthy < 0)
        return;
    const JobRecord &job = *f.host.progressProvider.jobs.at(0);
    QCOMPARE(job.text, text("Saving ") + file->displayName());
    QCOMPARE(job.flags, 0);
    QCOMPARE(job.lengthy, lengthy);
    QVERIFY(job.ended);
}

void tst_FileEditor::failedSaveAsksForAnotherName()
{
    Fixture f;
    TestFile *const file = f.edited("game/plain/a.def");
    f.dialogs.chooseFiles({f.path("game/b.def")});
    f.editor.save();
    QCOMPARE(f.dialogs.dialogs.first().title, text("Save things as..."));
    QCOMPARE(file->name, f.path("game/b.def"));
    QVERIFY(!file->modified);
}

void tst_FileEditor::saveAsAddsTheOneExtension_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("saved");
    const auto row = [](const char *pattern, const char *typed, const char *saved) {
        QTest::addRow("%s %s", pattern, typed) << text(pattern) << text(typed) << text(saved);
    };
    row("*.def", "hero", "hero.def");
    row("*.def", "hero.def", "hero.def");
    row("*.def", "hero.DEF", "hero.DEF.def");
    row("*.def *.txt", "hero", "hero");
    row("*.def*.txt", "hero", "hero.txt"); // the last one counts
    row("*.mp3", "hero", "hero");          // digits are no extension here
    row("", "hero", "hero");
}

void tst_FileEditor::saveAsAddsTheOneExtension()
{
    QFETCH(QString, pattern);
    QFETCH(QString, typed);
    QFETCH(QString, saved);
    Fixture f;
    f.engine.pattern = pattern;
    TestFile *const file = f.edited("game/old.def");
    QStringList filters;
    f.dialogs.handle([&](QDialog *dialog) {
        auto *const files = qobject_cast<QFileDialog *>(dialog);
        filters = files->nameFilters();
        files->selectFile(f.path("game/") + typed);
        dialog->accept();
    });
    f.editor.saveAs();
    QCOMPARE(filters, (QStringList{text("Thing (%1)").arg(pattern), text("All files (*.*)")}));
    QCOMPARE(file->saves.size(), 1);
    QCOMPARE(file->saves.first().archive, &FileSystemArchive::instance());
    QCOMPARE(file->saves.first().name, f.path("game/") + saved);
    QCOMPARE(f.dialogs.dialogs.size(), 1);
}

void tst_FileEditor::addedExtensionReplacesNothingUnasked()
{
    Fixture f;
    TestFile *const file = f.edited("game/old.def");
    f.write("game/hero.def");
    f.dialogs.chooseFiles({f.path("game/hero")});
    f.dialogs.answer(QMessageBox::No);
    f.editor.saveAs();
    QVERIFY(file->saves.isEmpty());
    f.dialogs.chooseFiles({f.path("game/hero")});
    f.dialogs.answer(QMessageBox::Yes);
    f.editor.saveAs();
    QCOMPARE(file->name, f.path("game/hero.def"));
}

void tst_FileEditor::failedSaveAsKeepsTheFolder()
{
    Fixture f;
    TestFile *const file = f.edited("game/old.def");
    f.dialogs.chooseFiles({f.path("game/plain/a.def")});
    f.dialogs.answer(QMessageBox::Ok);
    f.editor.saveAs();
    const DialogAnswerer::Dialog box = f.dialogs.dialogs.last();
    QCOMPARE(box.title, text("Save file error!"));
    QCOMPARE(box.text, text("An error has occurred while trying to save the file!"));
    QCOMPARE(box.icon, QMessageBox::Critical);
    QCOMPARE(box.buttons, QStringList{text("OK")});
    QCOMPARE(f.storedFolder(), f.path("game/plain"));
    QCOMPARE(f.modified.size(), 1);
    QVERIFY(file->modified);
    QCOMPARE(file->name, f.path("game/old.def"));

    // A file that cannot be saved brings no dialog at all.
    file->savable = false;
    f.editor.saveAs();
    QCOMPARE(f.dialogs.dialogs.size(), 2);
}

void tst_FileEditor::asksForEachModifiedFile()
{
    Fixture f;
    for (const char *const name : {"game/a.def", "game/b.def", "game/c.def"})
        f.edited(name);
    // These two are safe.
    f.edited("game/shared.def")->caps = ProjectFile::SharesContent;
    f.edited("game/saved.def")->modified = false;
    QVERIFY(f.editor.canDiscard(static_cast<const ProjectFile *>(nullptr)));
    f.dialogs.answer(QMessageBox::Yes);
    f.dialogs.answer(QMessageBox::No);
    f.dialogs.answer(QMessageBox::Yes, DialogAnswerer::CheckBox::Tick);
    QVERIFY(!f.editor.canDiscard(static_cast<const Project *>(nullptr)));
    QCOMPARE(f.dialogs.dialogs.size(), 3);
    for (const DialogAnswerer::Dialog &box : qAsConst(f.dialogs.dialogs)) {
        QCOMPARE(box.title, text("Discard changes?"));
        QCOMPARE(box.text, text("Do you want to discard the changes made in things?"));
        QCOMPARE(box.defaultButton, QMessageBox::Yes);
    }
    QCOMPARE(f.host.options.value(text("showmsg_discard")).toInt(), 1);
}

void tst_FileEditor::filesMayGoDuringAQuestion()
{
    Fixture f;
    const int alive = TestFile::alive();
    f.edited("game/a.def");
    TestFile *const gone = f.edited("game/b.def");
    f.dialogs.handle([&](QDialog *dialog) {
        f.project->removeFile(gone);
        dialog->reject();
    });
    QVERIFY(!f.editor.canDiscard(f.project.get()));
    QCOMPARE(f.dialogs.dialogs.size(), 1);

    TestFile *const last = f.edited("game/c.def");
    f.dialogs.handle([&](QDialog *dialog) {
        f.editor.setCurrentFile(nullptr);
        f.project->removeFile(last);
        qobject_cast<QFileDialog *>(dialog)->selectFile(f.path("game/d.def"));
        dialog->accept();
    });
    f.editor.saveAs();
    QVERIFY(QFile::exists(f.path("game/d.def")));
    QCOMPARE(TestFile::alive(), alive + 1);
}

QTEST_MAIN(tst_FileEditor)
#include "tst_fileeditor.moc"

// SPDX-License-Identifier: MIT
#include "lantern/binaryfile.h"
#include "lantern/definitionfile.h"
#include "lantern/filenames.h"
#include "lantern/textfile.h"

#include "frame/filesystemarchive.h"
#include "frame/regexp.h"
#include "frame/textcodecs.h"
#include "project/searchableprojectfile.h"
#include "support/dialoganswerer.h"
#include "support/limits_unix.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"

#include <QFile>
#include <QTest>

#include <memory>

using Lantern::BinaryFile;
using Lantern::DefinitionFile;
using Lantern::Scope;
using Lantern::TextFile;
using Vela::FileSystemArchive;
using Vela::Message;
using Vela::ProjectFile;

class tst_LanternFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void textsComeBackAsTheyWere_data();
    void textsComeBackAsTheyWere();
    void damagedTextIsKeptUntilItChanges();
    void textThatDoesNotFitTheEncodingIsNotSaved();
    void settingAPropertyKeepsTheRest_data();
    void settingAPropertyKeepsTheRest();
    void valuesThatCannotStandAreIgnored();
    void propertiesOfAText();
    void undoTakesWholeSteps();
    void aReloadIsAStepOfUndo();
    void reloadAsksAboutUnsavedChanges();
    void contentIsReadWhenItIsNeeded();
    void copiesAndFailures();
    void fullDiskIsNamedAndLosesNothing();
    void namesInAnotherCase_data();
    void namesInAnotherCase();
    void searchAndReplace();

private:
    QString path(const char *name) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

struct Release
{
    void operator()(ProjectFile *file) const
    {
        file->release();
    }
};

template <typename File>
using Held = std::unique_ptr<File, Release>;

FileSystemArchive &disk()
{
    return FileSystemArchive::instance();
}

void writeFile(const QString &name, const QByteArray &data)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(data), qint64(data.size()));
}

QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

QByteArray saved(TextFile &file, const QString &name)
{
    return file.toFile(disk(), name, ProjectFile::Copy, nullptr) ? readFile(name)
                                                                 : QByteArray("(not saved)");
}

QString textOf(const TextFile &file, const char *name)
{
    return file.property(QLatin1String(name)).toString();
}

void assign(TextFile &file, const char *name, const char *value)
{
    file.setProperty(QLatin1String(name), QString::fromUtf8(value));
}

} // namespace

void tst_LanternFiles::initTestCase()
{
    Vela::TextCodecs::initialize();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

QString tst_LanternFiles::path(const char *name) const
{
    return m_folder->filePath(QString::fromUtf8(name));
}

void tst_LanternFiles::textsComeBackAsTheyWere_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("encoding");
    QTest::addColumn<QString>("part");

    const QString meadow =
        QString::fromLocal8Bit(qgetenv("VELA_SOURCE_DIR")) + QStringLiteral("/examples/meadow/");
    const auto file = [&meadow](const char *name, const char *encoding, const char *part) {
        QTest::newRow(name) << readFile(meadow + QLatin1String(name))
                            << QString::fromLatin1(encoding) << QString::fromUtf8(part);
    };
    file("game.lantern", "UTF-8", "The Meadow");
    file("rowan/rowan.lantern", "UTF-8", "author = Zo\xc3\xab W\xc3\xb3jcik");
    file("hotaru/hotaru.lantern", "Shift_JIS", "name = \xe3\x81\xbb\xe3\x81\x9f\xe3\x82\x8b");
    file("hotaru/hotaru.motion", "Shift_JIS", "[animation \xe9\xa3\x9b\xe3\x81\xb6]");
    file("brook/brook.lantern", "UTF-16LE", "\xd1\x80\xd1\x83\xd1\x87\xd0\xb5\xd0\xb9");
    file("mill/mill.lantern", "windows-1252", "name = Die M\xc3\xbchle");
    file("mill/mill.motion", "windows-1252", "drehen 45\xc2\xb0");

    const auto bytes = [](const char *name, const QByteArray &data, const char *encoding,
                          const char *part) {
        QTest::newRow(name) << data << QString::fromLatin1(encoding) << QString::fromUtf8(part);
    };
    bytes("nothing", QByteArray(), "UTF-8", "");
    bytes("UTF-8 with a mark", "\xEF\xBB\xBF# \xc3\xa9\n", "UTF-8", "# \xc3\xa9");
    bytes("only a mark", "\xEF\xBB\xBF", "UTF-8", "");
    bytes("UTF-16BE with a mark", QByteArray("\xFE\xFF\x00#\x00\n\x20\xAC", 8), "UTF-16BE",
          "#\n\xe2\x82\xac");
    bytes("UTF-32 with a mark", QByteArray("\xFF\xFE\x00\x00#\x00\x00\x00", 8), "UTF-32LE", "#");
    bytes("mixed line ends", "a\r\nb\nc\r", "UTF-8", "b\nc");
    bytes("with NUL", QByteArray("[a]\n\0\n", 6), "UTF-8", "[a]");
}

void tst_LanternFiles::textsComeBackAsTheyWere()
{
    QFETCH(QByteArray, data);
    QFETCH(QString, encoding);
    QFETCH(QString, part);

    const QString name = path("back.lantern");
    writeFile(name, data);
    Held<TextFile> file(new TextFile("motion"));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    QCOMPARE(textOf(*file, "Encoding"), encoding);
    QVERIFY2(file->text().contains(part), qPrintable(file->text()));
    QCOMPARE(file->messages()->count(Message::Any), 0);
    QCOMPARE(saved(*file, path("copy")), data);

    // Written anew from the text, and not passed on.
    const QString text = file->text();
    file->setText(text + QLatin1Char('x'));
    QVERIFY(file->isModified());
    file->setText(text);
    QCOMPARE(saved(*file, path("copy")), data);
}

void tst_LanternFiles::damagedTextIsKeptUntilItChanges()
{
    const QByteArray data = "\xEF\xBB\xBF[project]\nname = \xff\xfe\n";
    const QString name = path("damaged.lantern");
    writeFile(name, data);
    Held<TextFile> file(new TextFile("motion"));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    QCOMPARE(file->messages()->count(Message::Warning), 1);
    QCOMPARE(saved(*file, path("copy")), data);
    file->setText(QStringLiteral("new"));
    QCOMPARE(file->messages()->count(Message::Any), 0);
    QCOMPARE(saved(*file, path("copy")), QByteArray("\xEF\xBB\xBFnew"));
}

void tst_LanternFiles::textThatDoesNotFitTheEncodingIsNotSaved()
{
    const QByteArray data = "# Die M\xfchle am Bach, sch\xf6n gr\xfcn\n[project]\nname = x\n";
    const QString name = path("narrow.lantern");
    writeFile(name, data);
    Held<DefinitionFile> file(new DefinitionFile(Scope::Project));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    assign(*file, "Encoding", "windows-1252");
    assign(*file, "project.name", "a\xe8\x9b\x8d");
    QCOMPARE(file->settings().name, QString::fromUtf8("a\xe8\x9b\x8d"));
    QVERIFY(!file->toFile(disk(), name, 0, nullptr));
    QVERIFY(file->isModified());
    const Message message = file->messages()->at(0, Message::Error);
    QCOMPARE(message.line, 2u);
    QCOMPARE(message.column, 8u);
    QCOMPARE(readFile(name), data);

    assign(*file, "Encoding", "UTF-8");
    QVERIFY(file->toFile(disk(), name, 0, nullptr));
    QVERIFY(!file->isModified());
    QCOMPARE(readFile(name),
             QByteArray("# Die M\xc3\xbchle am Bach, sch\xc3\xb6n gr\xc3\xbcn\n"
                        "[project]\nname = a\xe8\x9b\x8d\n"));
}

void tst_LanternFiles::settingAPropertyKeepsTheRest_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("after");

    const auto row = [](const char *title, const char *before, const char *name, const char *value,
                        const char *after) {
        QTest::newRow(title) << QByteArray(before) << QString::fromLatin1(name)
                             << QString::fromLatin1(value) << QByteArray(after);
    };
    row("comment and blanks", "[project]\n  name  =  A   # why\n\n# end", "project.name", "B C",
        "[project]\n  name  =  B C   # why\n\n# end");
    row("CR LF", "[stage]\r\nsize=1 x 2\r\n", "stage.size", "3 x 4", "[stage]\r\nsize=3 x 4\r\n");
    row("quotes go", "[a]\nb = \"c # d\"# e\n", "a.b", "f", "[a]\nb = f # e\n");
    row("quotes come", "[a]\nb = c # e\n", "a.b", "\"x\" #1", "[a]\nb = \"\"\"x\"\" #1\" # e\n");
    row("an empty value", "[a]\nb =# e\n", "a.b", "c", "[a]\nb =c # e\n");
    row("to nothing", "[a]\nb = c # e\n", "a.b", "", "[a]\nb = \"\" # e\n");
    row("the last of two counts", "[a]\nb = c\nb = d\n", "a.b", "e", "[a]\nb = c\nb = e\n");
    row("the second of a list", "[files]\nsprites = a.png\nsprites = b.png\n", "files.sprites.2",
        "c.png", "[files]\nsprites = a.png\nsprites = c.png\n");
    row("line ends", "[a]\r\nb = c\nd = e\r", "LineEnds", "LF", "[a]\nb = c\nd = e\n");
    row("line ends of Windows", "[a]\r\nb = c\nd = e\r", "LineEnds", "CRLF",
        "[a]\r\nb = c\r\nd = e\r\n");
    row("encoding", "[a]\n# \xc3\xa9", "Encoding", "UTF-16LE", "\xff\xfe[");
}

void tst_LanternFiles::settingAPropertyKeepsTheRest()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, name);
    QFETCH(QString, value);
    QFETCH(QByteArray, after);

    writeFile(path("edit.lantern"), before);
    Held<DefinitionFile> file(new DefinitionFile(Scope::Project));
    QVERIFY(file->fromFile(disk(), path("edit.lantern"), 0, nullptr));
    QVERIFY(file->propertyNames().contains(name));
    QVERIFY(!file->isModified());
    file->setProperty(name, value);
    QCOMPARE(file->property(name).toString(), value);
    QVERIFY(file->isModified());
    const QByteArray written = saved(*file, path("copy"));
    // An encoding is told by its beginning.
    QCOMPARE(written.left(after.size()), after);
    if (name != QLatin1String("Encoding"))
        QCOMPARE(written, after);
    file->undo();
    QVERIFY(!file->isModified());
    QCOMPARE(saved(*file, path("copy")), before);
}

void tst_LanternFiles::valuesThatCannotStandAreIgnored()
{
    const QByteArray data = "[project]\nname = A\n";
    writeFile(path("edit.lantern"), data);
    Held<DefinitionFile> file(new DefinitionFile(Scope::Project));
    QVERIFY(file->fromFile(disk(), path("edit.lantern"), 0, nullptr));
    assign(*file, "project.name", "B\nC");
    file->setProperty(QStringLiteral("project.name"), QString(QChar(0)));
    assign(*file, "project.name", "A");
    assign(*file, "project.author", "B");
    assign(*file, "Encoding", "klingon");
    assign(*file, "LineEnds", "Mixed");
    assign(*file, "Lines", "5");
    QVERIFY(!file->isModified());
    QCOMPARE(saved(*file, path("copy")), data);
    QVERIFY(!file->property(QStringLiteral("project.author")).isValid());
}

void tst_LanternFiles::propertiesOfAText()
{
    const std::tuple<QByteArray, int, QString> rows[] = {
        {"", 0, QString()},
        {"a", 1, QString()},
        {"a\n", 1, QStringLiteral("LF")},
        {"a\r\nb", 2, QStringLiteral("CRLF")},
        {"a\rb\r", 2, QStringLiteral("CR")},
        {"a\r\n\n", 2, QStringLiteral("Mixed")},
    };
    for (const auto &[data, lines, ends] : rows) {
        writeFile(path("lines.script"), data);
        Held<TextFile> file(new TextFile("script"));
        QVERIFY(file->fromFile(disk(), path("lines.script"), 0, nullptr));
        QCOMPARE(file->property(QStringLiteral("Lines")).toInt(), lines);
        QCOMPARE(textOf(*file, "LineEnds"), ends);
        QCOMPARE(file->isEmpty(), data.isEmpty());
    }
}

void tst_LanternFiles::undoTakesWholeSteps()
{
    writeFile(path("undo.lantern"), "[project]\nname = A\nauthor = Z\n");
    Held<DefinitionFile> file(new DefinitionFile(Scope::Project));
    QVERIFY(file->fromFile(disk(), path("undo.lantern"), 0, nullptr));
    file->undo();
    QCOMPARE(file->settings().name, QStringLiteral("A"));

    assign(*file, "project.name", "B");
    file->beginChange();
    assign(*file, "project.name", "C");
    assign(*file, "project.author", "Y");
    file->endChange();
    file->undo();
    QCOMPARE(file->settings().name + file->settings().author, QStringLiteral("BZ"));
    file->redo();
    QCOMPARE(file->settings().name + file->settings().author, QStringLiteral("CY"));
    file->redo();
    QVERIFY(file->toFile(disk(), path("undo.lantern"), 0, nullptr));
    QVERIFY(!file->isModified());
    file->undo();
    QVERIFY(file->isModified());
    assign(*file, "project.name", "D");
    file->redo();
    QCOMPARE(file->settings().name, QStringLiteral("D"));
    QCOMPARE(readFile(path("undo.lantern")), QByteArray("[project]\nname = C\nauthor = Y\n"));
}

void tst_LanternFiles::aReloadIsAStepOfUndo()
{
    RecordingHost host;
    host.options[QStringLiteral("enable_file_watcher")] = true;
    const QString name = path("watched.motion");
    writeFile(name, "one");
    Held<TextFile> file(new TextFile("motion"));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    writeFile(name, "two");
    QTRY_COMPARE(file->text(), QStringLiteral("two"));
    QVERIFY(!file->isModified());
    file->undo();
    QCOMPARE(file->text(), QStringLiteral("one"));
    QVERIFY(file->isModified());
}

void tst_LanternFiles::reloadAsksAboutUnsavedChanges()
{
    RecordingHost host;
    const QString name = path("asked.motion");
    writeFile(name, "one");
    Held<TextFile> file(new TextFile("motion"));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    file->setText(QStringLiteral("mine"));
    writeFile(name, "theirs");

    {
        DialogAnswerer user;
        user.answer(QMessageBox::No);
        file->reload();
        QVERIFY(user.isDone());
        QCOMPARE(user.dialogs.at(0).defaultButton, QMessageBox::No);
        QVERIFY(user.dialogs.at(0).text.contains(name));
    }
    QCOMPARE(file->text(), QStringLiteral("mine"));
    QVERIFY(file->isModified());
    host.options[QStringLiteral("showmsg_reload_modified")] = 1;
    file->reload();
    QCOMPARE(file->text(), QStringLiteral("theirs"));
    QVERIFY(!file->isModified());

    QVERIFY(QFile::remove(name));
    file->reload();
    QCOMPARE(file->text(), QStringLiteral("theirs"));
}

void tst_LanternFiles::contentIsReadWhenItIsNeeded()
{
    MemoryArchive archive;
    archive.put(QStringLiteral("/a.png"), "abc");
    archive.put(QStringLiteral("/a.script"), "text");
    Held<BinaryFile> picture(new BinaryFile("png"));
    picture->attach(archive, QStringLiteral("/a.png"));
    Held<TextFile> script(new TextFile("script"));
    script->attach(archive, QStringLiteral("/a.script"));
    QVERIFY(!picture->isLoaded() && !script->isLoaded());
    QVERIFY(!picture->isModified() && !script->isModified());
    QCOMPARE(&picture->archive(), static_cast<Vela::Archive *>(&archive));

    // A copy passes through without being kept.
    QVERIFY(picture->toFile(archive, QStringLiteral("/b.png"), ProjectFile::Copy, nullptr));
    QVERIFY(!picture->isLoaded());
    QCOMPARE(archive.content(QStringLiteral("/b.png")), QByteArray("abc"));
    QCOMPARE(picture->property(QStringLiteral("Size")).toInt(), 3);
    QVERIFY(picture->isLoaded());
    picture->setData("abcd");
    QVERIFY(picture->isModified());
    QVERIFY(picture->toFile(archive, QStringLiteral("/a.png"), 0, nullptr));
    QVERIFY(!picture->isModified());
    QCOMPARE(archive.content(QStringLiteral("/a.png")), QByteArray("abcd"));
    QCOMPARE(script->text(), QStringLiteral("text"));
}

void tst_LanternFiles::copiesAndFailures()
{
    RecordingHost host;
    writeFile(path("a.script"), "a");
    writeFile(path("b.script"), "b");
    Held<TextFile> file(new TextFile("script"));
    QVERIFY(file->fromFile(disk(), path("a.script"), 0, nullptr));

    QVERIFY(file->fromFile(disk(), path("b.script"), ProjectFile::Copy, nullptr));
    QCOMPARE(file->fileName(), path("a.script"));
    QCOMPARE(file->text(), QStringLiteral("b"));
    QVERIFY(file->isModified());
    QVERIFY(file->toFile(disk(), path("c.script"), ProjectFile::Copy, nullptr));
    QVERIFY(file->isModified());
    QCOMPARE(file->fileName(), path("a.script"));

    const std::unique_ptr<Vela::ProgressJob> job(
        host.progressProvider.createJob(QStringLiteral("x"), 0));
    QVERIFY(!file->fromFile(disk(), path("none.script"), 0, job.get()));
    QVERIFY(!file->toFile(disk(), m_folder->path(), 0, job.get()));
    QCOMPARE(host.progressProvider.jobs.at(0)->errors.size(), 2);
    QCOMPARE(file->messages()->count(Message::Error), 2);
    QCOMPARE(file->text(), QStringLiteral("b"));
    QCOMPARE(file->fileName(), path("a.script"));

    file->reset();
    QVERIFY(file->isEmpty() && !file->isModified());
    QCOMPARE(file->fileName(), QString());
}

void tst_LanternFiles::fullDiskIsNamedAndLosesNothing()
{
    const QByteArray data = "[project]\nname = x\n";
    const QString name = path("full.lantern");
    writeFile(name, data);
    Held<DefinitionFile> file(new DefinitionFile(Scope::Project));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    assign(*file, "project.name", "y");
    {
        const FullDisk full(10);
        QVERIFY(!file->toFile(disk(), name, 0, nullptr));
    }
    QVERIFY(file->isModified());
    QCOMPARE(readFile(name), data);
    const QString text = file->messages()->at(0, Message::Error).text;
    QVERIFY2(text.contains(name) && text.contains(QLatin1String("File too large")),
             qPrintable(text));
}

void tst_LanternFiles::namesInAnotherCase_data()
{
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("found");

    QTest::newRow("as it is") << "Art/Sub/Water.png"
                              << "Art/Sub/Water.png";
    QTest::newRow("all small") << "art/sub/water.png"
                               << "Art/Sub/Water.png";
    QTest::newRow("only the folder") << "ART/SUB/Water.png"
                                     << "Art/Sub/Water.png";
    QTest::newRow("in the root") << "GAME.LANTERN"
                                 << "game.lantern";
    QTest::newRow("letters with marks")
        << QString::fromUtf8("art/M\xc3\x9cHLE.png") << QString::fromUtf8("Art/M\xc3\xbchle.png");
    QTest::newRow("the case decides") << "Art/dew.PNG"
                                      << "Art/dew.PNG";
    QTest::newRow("missing") << "Art/none.png" << QString();
    QTest::newRow("missing folder") << "none/Water.png" << QString();
    QTest::newRow("a folder is no file") << "art/sub" << QString();
}

void tst_LanternFiles::namesInAnotherCase()
{
    QFETCH(QString, asked);
    QFETCH(QString, found);
    MemoryArchive archive;
    for (const char *name : {"/r/Art/Sub/Water.png", "/r/game.lantern", "/r/Art/M\xc3\xbchle.png",
                             "/r/Art/DEW.png", "/r/Art/dew.PNG"})
        archive.put(QString::fromUtf8(name), "x");
    Lantern::FileNames names(archive, QStringLiteral("/r"));
    QCOMPARE(names.spelled(asked), found);
}

void tst_LanternFiles::searchAndReplace()
{
    Held<TextFile> file(new TextFile("script"));
    file->setText(QStringLiteral("walk left\r\nrun\nwalk right"));
    const Vela::RegExp walk(QStringLiteral("walk (\\w+)"));
    const QList<ProjectFile::SearchResult> all =
        file->search(walk, Vela::SearchableProjectFile::FindAll);
    QCOMPARE(all.size(), 2);
    QCOMPARE(all.at(0).text, QStringLiteral("walk left"));
    QCOMPARE(all.at(1).line, 2);
    QCOMPARE(all.at(1).column, 0);
    QCOMPARE(all.at(1).length, 10);
    QCOMPARE(all.at(1).captures, QStringList{QStringLiteral("right")});
    QCOMPARE(file->search(walk, 0).value(0).line, 0);
    QCOMPARE(file->search(walk, Vela::SearchableProjectFile::Backward).value(0).line, 2);
    QCOMPARE(file->search(Vela::RegExp(QStringLiteral("left\\s+run")), 0).value(0).text,
             QStringLiteral("walk left\r\nrun"));

    file->replace(all, QStringLiteral("go %1"));
    QCOMPARE(file->text(), QStringLiteral("go left\r\nrun\ngo right"));
    file->undo();
    QCOMPARE(file->text(), QStringLiteral("walk left\r\nrun\nwalk right"));
    // Results of another text do no harm.
    ProjectFile::SearchResult stale;
    stale.line = 7;
    stale.length = 1000;
    file->replace({stale}, QStringLiteral("x"));
    QCOMPARE(file->text(), QStringLiteral("walk left\r\nrun\nwalk right"));
}

QTEST_MAIN(tst_LanternFiles)
#include "tst_lanternfiles.moc"

// SPDX-License-Identifier: MIT
#include "lantern/binaryfile.h"
#include "lantern/definitionfile.h"
#include "lantern/filenames.h"
#include "lantern/motions.h"

#include "frame/filesystemarchive.h"
#include "frame/regexp.h"
#include "frame/textcodecs.h"
#include "project/searchableprojectfile.h"
#include "support/dialoganswerer.h"
#include "support/limits_unix.h"
#include "support/memoryarchive.h"
#include "support/recordinghost.h"

#include <QAbstractItemModelTester>
#include <QFile>
#include <QPointer>
#include <QTest>
#include <QTextBlock>

#include <functional>
#include <memory>

using Lantern::BinaryFile;
using Lantern::DefinitionFile;
using Lantern::Document;
using Lantern::Scope;
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
    void encodingsThatCannotBeWrittenAreTold();
    void settingAPropertyKeepsTheRest_data();
    void settingAPropertyKeepsTheRest();
    void valuesThatCannotStandAreIgnored();
    void encodingsChangeWithTheNextSave();
    void propertiesOfAText();
    void undoTakesWholeSteps();
    void aReloadIsAStepOfUndo();
    void reloadsKeepTheEncodingThatFits();
    void reloadAsksAboutUnsavedChanges();
    void contentIsReadWhenItIsNeeded();
    void copiesAndFailures();
    void savesInTheBackground();
    void fullDiskIsNamedAndLosesNothing();
    void theLastHolderLetsTheAnimationsGo();
    void messagesStandInOneList();
    void boxesWithoutAFrameAreToldWhenTheTextRests();
    void namesInAnotherCase_data();
    void namesInAnotherCase();

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

QByteArray saved(ProjectFile &file, const QString &name)
{
    return file.toFile(disk(), name, ProjectFile::Copy, nullptr) ? readFile(name)
                                                                 : QByteArray("(not saved)");
}

QString textOf(const Document &file)
{
    return file.toString();
}

QString textOf(const Vela::PropertyItem &file, const char *name)
{
    return file.property(QLatin1String(name)).toString();
}

void assign(Vela::PropertyItem &file, const char *name, const char *value)
{
    file.setProperty(QLatin1String(name), QString::fromUtf8(value));
}

// Documents write "\r\n" only. For encodings in which these are single bytes.
QByteArray withCrLf(QByteArray data)
{
    return data.replace("\r\n", "\n").replace('\r', '\n').replace("\n", "\r\n");
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
    QTest::addColumn<QByteArray>("fromDocument");
    QTest::addColumn<QString>("encoding");
    QTest::addColumn<QString>("part");

    const QString meadow =
        QString::fromLocal8Bit(qgetenv("VELA_SOURCE_DIR")) + QStringLiteral("/examples/meadow/");
    const auto file = [&meadow](const char *name, const char *encoding, const char *part) {
        const QByteArray data = readFile(meadow + QLatin1String(name));
        // The one of two bytes a character has these line ends already.
        const bool wide = QByteArray(encoding).startsWith("UTF-16");
        QTest::newRow(name) << data << (wide ? data : withCrLf(data))
                            << QString::fromLatin1(encoding) << QString::fromUtf8(part);
    };
    file("game.lantern", "UTF-8", "The Meadow");
    file("barn/barn.lantern", "UTF-8", "The Barn");
    file("rowan/rowan.lantern", "UTF-8", "author = Zo\xc3\xab W\xc3\xb3jcik");
    file("rowan/rowan.motion", "UTF-8", "[animation");
    file("hotaru/hotaru.lantern", "Shift_JIS", "name = \xe3\x81\xbb\xe3\x81\x9f\xe3\x82\x8b");
    file("hotaru/hotaru.motion", "Shift_JIS", "[animation");
    file("brook/brook.lantern", "UTF-16LE", "\xd1\x80\xd1\x83\xd1\x87\xd0\xb5\xd0\xb9");
    file("brook/brook.motion", "UTF-8", "[animation");
    file("mill/mill.lantern", "windows-1252", "name = Die M\xc3\xbchle");
    file("mill/mill.motion", "windows-1252", "[animation");

    const auto bytes = [](const char *name, const QByteArray &data, const QByteArray &fromDocument,
                          const char *encoding, const char *part) {
        QTest::newRow(name) << data << fromDocument << QString::fromLatin1(encoding)
                            << QString::fromUtf8(part);
    };
    const QByteArray mark = "\xEF\xBB\xBF";
    bytes("nothing", "", "", "UTF-8", "");
    bytes("UTF-8 with a mark", mark + "# \xc3\xa9\n", mark + "# \xc3\xa9\r\n", "UTF-8",
          "# \xc3\xa9");
    bytes("only a mark", mark, mark, "UTF-8", "");
    bytes("UTF-16BE with a mark", QByteArray("\xFE\xFF\x00#\x00\n\x20\xAC", 8),
          QByteArray("\xFE\xFF\x00#\x00\r\x00\n\x20\xAC", 10), "UTF-16BE", "#\n\xe2\x82\xac");
    bytes("UTF-32 with a mark", QByteArray("\xFF\xFE\x00\x00#\x00\x00\x00", 8),
          QByteArray("\xFF\xFE\x00\x00#\x00\x00\x00", 8), "UTF-32LE", "#");
    bytes("mixed line ends", "a\r\nb\nc\r", "a\r\nb\r\nc\r\n", "UTF-8", "b\nc");
    bytes("no-break blank", "# a\xc2\xa0:", "# a\xc2\xa0:", "UTF-8", "# a\xc2\xa0:");
    bytes("with NUL", QByteArray("[a]\n\0\n", 6), QByteArray("[a]\r\n\0\r\n", 8), "UTF-8", "[a]");
}

void tst_LanternFiles::textsComeBackAsTheyWere()
{
    QFETCH(QByteArray, data);
    QFETCH(QByteArray, fromDocument);
    QFETCH(QString, encoding);
    QFETCH(QString, part);

    const QString name = path("back.lantern");
    writeFile(name, data);
    const auto check = [&](Document &file, const QByteArray &expected) {
        QVERIFY(file.fromFile(disk(), name, 0, nullptr));
        QVERIFY(!file.isModified());
        QCOMPARE(textOf(file, "Encoding"), encoding);
        const QString text = textOf(file);
        QVERIFY2(text.contains(part), qPrintable(text));
        QCOMPARE(saved(file, path("copy")), expected);
        // Written anew from the text, and not passed on.
        file.setText(text + QLatin1Char('x'));
        QVERIFY(file.isModified());
        file.setText(text);
        QCOMPARE(saved(file, path("copy")), expected);
    };
    for (const Scope scope : {Scope::Motion, Scope::Script}) {
        Held<Document> document(new Document(scope));
        check(*document, fromDocument);
    }
}

void tst_LanternFiles::damagedTextIsKeptUntilItChanges()
{
    const QByteArray data = "\xEF\xBB\xBF# \n# \xff\xfe\n";
    const QString name = path("damaged.lantern");
    const auto check = [&](Document &file) {
        writeFile(name, data);
        QVERIFY(file.fromFile(disk(), name, 0, nullptr));
        QCOMPARE(file.messages()->count(Message::Warning), 1);
        QCOMPARE(saved(file, path("copy")), data);
        QVERIFY(file.toFile(disk(), name, 0, nullptr));
        QCOMPARE(readFile(name), data);
        file.setText(QStringLiteral("# new"));
        QVERIFY(file.toFile(disk(), name, 0, nullptr));
        QCOMPARE(readFile(name), QByteArray("\xEF\xBB\xBF# new"));
        QCOMPARE(file.messages()->count(Message::Any), 0);
    };
    Held<Document> document(new Document(Scope::Motion));
    check(*document);
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
    RecordingHost host;
    for (const unsigned int flags : {0u, unsigned(ProjectFile::WithJob)}) {
        std::unique_ptr<Vela::ProgressJob> job(
            host.progressProvider.createJob(QStringLiteral("x"), 0));
        QVERIFY(!file->toFile(disk(), name, flags, job.get()));
        const auto record = host.progressProvider.jobs.back();
        QCOMPARE(record->errors.size(), 1);
        if (flags & ProjectFile::WithJob)
            QVERIFY(job.release() && record->ended);
    }
    QVERIFY(file->isModified());
    const Message message = file->messages()->at(0, Message::Error);
    QCOMPARE(message.line, 2u);
    QCOMPARE(message.column, 8u);
    QCOMPARE(readFile(name), data);
    assign(*file, "project.name", "b");
    QCOMPARE(file->messages()->count(Message::Error), 0);
    assign(*file, "project.name", "a\xe8\x9b\x8d");

    assign(*file, "Encoding", "UTF-8");
    QVERIFY(file->toFile(disk(), name, 0, nullptr));
    QVERIFY(!file->isModified());
    QCOMPARE(readFile(name),
             QByteArray("# Die M\xc3\xbchle am Bach, sch\xc3\xb6n gr\xc3\xbcn\r\n"
                        "[project]\r\nname = a\xe8\x9b\x8d\r\n"));
}

// Qt reads it, but does not list it.
void tst_LanternFiles::encodingsThatCannotBeWrittenAreTold()
{
    const QByteArray data =
        QByteArray::fromHex("23208ce5ebfcede8f6e020f1f2eee8f220f320f0f3f7fcdf"); // Mac Cyrillic
    const QString text =
        QString::fromUtf8("# \xd0\x9c\xd0\xb5\xd0\xbb\xd1\x8c\xd0\xbd\xd0\xb8\xd1\x86\xd0\xb0 "
                          "\xd1\x81\xd1\x82\xd0\xbe\xd0\xb8\xd1\x82 \xd1\x83 "
                          "\xd1\x80\xd1\x83\xd1\x87\xd1\x8c\xd1\x8f");
    const QString name = path("mac.motion");
    const auto check = [&](Document &file) {
        writeFile(name, data);
        QVERIFY(file.fromFile(disk(), name, 0, nullptr));
        QCOMPARE(textOf(file), text);
        const Message message = file.messages()->at(0, Message::Warning);
        QVERIFY2(message.text.contains(QLatin1String("cyrillic")), qPrintable(message.text));
        QVERIFY(file.toFile(disk(), name, 0, nullptr));
        QCOMPARE(readFile(name), data);
        file.setText(text + QLatin1Char('.'));
        QVERIFY(!file.toFile(disk(), name, 0, nullptr));
        QCOMPARE(readFile(name), data);
        assign(file, "Encoding", "UTF-8");
        QVERIFY(file.toFile(disk(), name, 0, nullptr));
        QCOMPARE(readFile(name), QByteArray(text.toUtf8() + '.'));
    };
    Held<Document> document(new Document(Scope::Motion));
    check(*document);
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
    row("no blanks", "[stage]\r\nsize=1 x 2\r\n", "stage.size", "3 x 4", "[stage]\nsize=3 x 4\n");
    row("quotes go", "[a]\nb = \"c # d\"# e\n", "a.b", "f", "[a]\nb = f # e\n");
    row("quotes come", "[a]\nb = c # e\n", "a.b", "\"x\" #1", "[a]\nb = \"\"\"x\"\" #1\" # e\n");
    row("to nothing", "[a]\nb = c # e\n", "a.b", "", "[a]\nb = \"\" # e\n");
    row("the last of two counts", "[a]\nb = c\nb = d\n", "a.b", "e", "[a]\nb = c\nb = e\n");
    row("the second of a list", "[files]\nsprites = a.png\nsprites = b.png\n", "files.sprites.2",
        "c.png", "[files]\nsprites = a.png\nsprites = c.png\n");
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
    QCOMPARE(saved(*file, path("copy")), withCrLf(after));
    file->undo();
    QVERIFY(!file->isModified());
    QCOMPARE(saved(*file, path("copy")), withCrLf(before));
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
    assign(*file, "Lines", "5");
    QVERIFY(!file->isModified());
    QCOMPARE(saved(*file, path("copy")), withCrLf(data));
    QVERIFY(!file->property(QStringLiteral("project.author")).isValid());
}

void tst_LanternFiles::encodingsChangeWithTheNextSave()
{
    const QString name = path("wide.motion");
    writeFile(name, "\xEF\xBB\xBF# \xc3\xa9");
    Held<Document> file(new Document(Scope::Motion));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    assign(*file, "Encoding", "UTF-16LE");
    QVERIFY(file->isModified());
    QVERIFY(file->toFile(disk(), name, 0, nullptr));
    QVERIFY(!file->isModified());
    QCOMPARE(readFile(name), QByteArray("\xff\xfe#\0 \0\xe9\0", 8));
    assign(*file, "Encoding", "UTF-8");
    QCOMPARE(saved(*file, path("copy")), QByteArray("# \xc3\xa9"));
}

void tst_LanternFiles::propertiesOfAText()
{
    const std::pair<QByteArray, int> rows[] = {
        {"", 0}, {"a", 1}, {"a\n", 1}, {"a\r\nb", 2}, {"a\rb\r", 2}, {"a\r\n\n", 2},
    };
    for (const auto &[data, lines] : rows) {
        writeFile(path("lines.script"), data);
        Held<Document> document(new Document(Scope::Motion));
        QVERIFY(document->fromFile(disk(), path("lines.script"), 0, nullptr));
        QCOMPARE(document->property(QStringLiteral("Lines")).toInt(), lines);
        QCOMPARE(document->isEmpty(), data.isEmpty());
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
    QCOMPARE(readFile(path("undo.lantern")), QByteArray("[project]\r\nname = C\r\nauthor = Y\r\n"));
}

void tst_LanternFiles::aReloadIsAStepOfUndo()
{
    RecordingHost host;
    host.options[QStringLiteral("enable_file_watcher")] = true;
    const auto check = [this](Document &file) {
        const QString name = path("watched.script");
        writeFile(name, "# one\n# two\n# six\n");
        QVERIFY(file.fromFile(disk(), name, 0, nullptr));
        writeFile(name, "# one\n# three\n# six\n");
        QTRY_COMPARE(textOf(file), QStringLiteral("# one\n# three\n# six\n"));
        QVERIFY(!file.isModified());
        file.undo();
        QCOMPARE(textOf(file), QStringLiteral("# one\n# two\n# six\n"));
        QVERIFY(file.isModified());
        file.redo();
        QCOMPARE(textOf(file), QStringLiteral("# one\n# three\n# six\n"));
        QVERIFY(!file.isModified());
    };
    Held<Document> document(new Document(Scope::Motion));
    check(*document);
}

void tst_LanternFiles::reloadsKeepTheEncodingThatFits()
{
    const QString name = path("again.motion");
    writeFile(name, "# gr\xfcn");
    Held<Document> file(new Document(Scope::Motion));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    assign(*file, "Encoding", "windows-1252");
    QVERIFY(file->toFile(disk(), name, 0, nullptr));
    // By the look of it these bytes could be in many encodings.
    writeFile(name, "# \xe4\xe4 \xfc");
    file->reload();
    QCOMPARE(file->toString(), QString::fromUtf8("# \xc3\xa4\xc3\xa4 \xc3\xbc"));
    QCOMPARE(textOf(*file, "Encoding"), QStringLiteral("windows-1252"));
    // What is the same at both ends is not touched: the place of a cursor stays.
    QTextCursor cursor(file.get());
    cursor.movePosition(QTextCursor::End);
    writeFile(name, "\xEF\xBB\xBF# gr\xc3\xbcn, \xc3\xbc");
    file->reload();
    QCOMPARE(textOf(*file, "Encoding"), QStringLiteral("UTF-8"));
    QCOMPARE(cursor.position(), file->toString().size());
    QCOMPARE(saved(*file, path("copy")), QByteArray("\xEF\xBB\xBF# gr\xc3\xbcn, \xc3\xbc"));

    // Both surrogate pairs begin with the same half.
    file->setText(QString::fromUtf8("# \xf0\x9f\x8c\xb1"));
    file->setText(QString::fromUtf8("# \xf0\x9f\x8c\xb2"));
    QCOMPARE(file->toString(), QString::fromUtf8("# \xf0\x9f\x8c\xb2"));
    file->undo();
    QCOMPARE(file->toString(), QString::fromUtf8("# \xf0\x9f\x8c\xb1"));
}

void tst_LanternFiles::reloadAsksAboutUnsavedChanges()
{
    const auto check = [this](Document &file) {
        RecordingHost host;
        const QString name = path("asked.motion");
        writeFile(name, "# one");
        QVERIFY(file.fromFile(disk(), name, 0, nullptr));
        file.setText(QStringLiteral("# mine"));
        writeFile(name, "# theirs");
        {
            DialogAnswerer user;
            user.answer(QMessageBox::No);
            file.reload();
            QVERIFY(user.isDone());
            QCOMPARE(user.dialogs.at(0).defaultButton, QMessageBox::No);
            QVERIFY(user.dialogs.at(0).text.contains(name));
        }
        QCOMPARE(textOf(file), QStringLiteral("# mine"));
        QVERIFY(file.isModified());
        host.options[QStringLiteral("showmsg_reload_modified")] = 1;
        file.reload();
        QCOMPARE(textOf(file), QStringLiteral("# theirs"));
        QVERIFY(!file.isModified());

        QVERIFY(QFile::remove(name));
        file.reload();
        QCOMPARE(textOf(file), QStringLiteral("# theirs"));
    };
    Held<Document> document(new Document(Scope::Motion));
    check(*document);
}

void tst_LanternFiles::contentIsReadWhenItIsNeeded()
{
    MemoryArchive archive;
    archive.put(QStringLiteral("/a.png"), "abc");
    Held<BinaryFile> picture(new BinaryFile("png"));
    picture->attach(archive, QStringLiteral("/a.png"));
    QVERIFY(!picture->isLoaded());
    QVERIFY(!picture->isModified());
    QCOMPARE(&picture->archive(), static_cast<Vela::Archive *>(&archive));

    // A copy passes through without being kept, and its size needs no reading.
    QVERIFY(picture->toFile(archive, QStringLiteral("/b.png"), ProjectFile::Copy, nullptr));
    QVERIFY(!picture->isLoaded());
    QCOMPARE(archive.content(QStringLiteral("/b.png")), QByteArray("abc"));
    QCOMPARE(picture->property(QStringLiteral("Size")).toInt(), 3);
    QVERIFY(!picture->isLoaded());
    QCOMPARE(picture->data(), QByteArray("abc"));
    QVERIFY(picture->isLoaded());
    picture->setData("abcd");
    QVERIFY(picture->isModified());
    QVERIFY(picture->toFile(archive, QStringLiteral("/a.png"), 0, nullptr));
    QVERIFY(!picture->isModified());
    QCOMPARE(archive.content(QStringLiteral("/a.png")), QByteArray("abcd"));

    // A new file has its content, and keeps it when it gets a name.
    Held<Document> fresh(new Document(Scope::Script));
    fresh->setText(QStringLiteral("new"));
    QVERIFY(fresh->toFile(archive, QStringLiteral("/new.script"), 0, nullptr));
    fresh->undo();
    QVERIFY(fresh->isEmpty());

    const QByteArray motion = "[animation 1]\nframe idle : 6\n";
    archive.put(QStringLiteral("/a.motion"), motion);
    const std::function<void(Document &)> readers[] = {
        [](Document &file) { QVERIFY(!file.isEmpty()); },
        [](Document &file) { QCOMPARE(file.model()->rowCount(), 1); },
        [](Document &file) { QCOMPARE(textOf(file, "Lines"), QStringLiteral("2")); },
        [](Document &file) {
            QCOMPARE(file.search(Vela::RegExp(QStringLiteral("idle")),
                                 Vela::SearchableProjectFile::FromStart)
                         .size(),
                     1);
        },
        [](Document &file) {
            Vela::CodeNodeFile *const animations = file.nodeFile(Vela::CodeNode::Animation, 0);
            QVERIFY(!animations->isEmpty());
            QCOMPARE(dynamic_cast<Lantern::Motions *>(animations)->count(), 1u);
        },
    };
    for (const auto &read : readers) {
        Held<Document> file(new Document(Scope::Motion));
        file->attach(archive, QStringLiteral("/a.motion"));
        QVERIFY(!file->isModified() && file->canSave());
        QCOMPARE(file->displayName(), QStringLiteral("a.motion"));
        QVERIFY(file->toFile(archive, QStringLiteral("/b.motion"), ProjectFile::Copy, nullptr));
        QVERIFY(!file->isLoaded());
        QCOMPARE(archive.content(QStringLiteral("/b.motion")), motion);
        read(*file);
        QVERIFY(file->isLoaded() && !file->isModified());
        QCOMPARE(file->fileName(), QStringLiteral("/a.motion"));
    }
    Held<Document> gone(new Document(Scope::Motion));
    gone->attach(archive, QStringLiteral("/none.motion"));
    QVERIFY(gone->isEmpty());
    QCOMPARE(gone->messages()->count(Message::Error), 1);
}

void tst_LanternFiles::copiesAndFailures()
{
    RecordingHost host;
    writeFile(path("a.script"), "# a");
    writeFile(path("b.script"), "# b");
    const auto check = [&](Document &file) {
        QVERIFY(file.fromFile(disk(), path("a.script"), 0, nullptr));
        QVERIFY(file.fromFile(disk(), path("b.script"), ProjectFile::Copy, nullptr));
        QCOMPARE(file.fileName(), path("a.script"));
        QCOMPARE(textOf(file), QStringLiteral("# b"));
        QVERIFY(file.isModified());
        QVERIFY(file.toFile(disk(), path("c.script"), ProjectFile::Copy, nullptr));
        QVERIFY(file.isModified());
        QCOMPARE(file.fileName(), path("a.script"));

        const std::unique_ptr<Vela::ProgressJob> job(
            host.progressProvider.createJob(QStringLiteral("x"), 0));
        QVERIFY(!file.fromFile(disk(), path("none.script"), 0, job.get()));
        QVERIFY(!file.toFile(disk(), m_folder->path(), 0, job.get()));
        QCOMPARE(host.progressProvider.jobs.back()->errors.size(), 2);
        QCOMPARE(file.messages()->count(Message::Error), 2);
        QCOMPARE(textOf(file), QStringLiteral("# b"));
        QCOMPARE(file.fileName(), path("a.script"));

        file.reset();
        QVERIFY(file.isEmpty() && !file.isModified());
        QCOMPARE(file.fileName(), QString());
        QCOMPARE(file.messages()->count(Message::Any), 0);
    };
    Held<Document> document(new Document(Scope::Motion));
    check(*document);
}

void tst_LanternFiles::savesInTheBackground()
{
    RecordingHost host;
    MemoryArchive archive;
    archive.put(QStringLiteral("/p/a.lantern"), "[project]\nname = A\n[files]\nsounds = b.wav\n");
    archive.put(QStringLiteral("/p/b.wav"), "x");
    Held<DefinitionFile> file(new DefinitionFile(Scope::Project));
    QVERIFY(file->fromFile(archive, QStringLiteral("/p/a.lantern"), 0, nullptr));
    assign(*file, "project.name", "B");
    QVERIFY(file->toFile(archive, file->fileName(), ProjectFile::WithJob,
                         host.progressProvider.createJob(QStringLiteral("x"), 0)));
    // The project goes by the name of its main file, and what is typed meanwhile counts.
    QCOMPARE(file->fileName(), QStringLiteral("/p/a.lantern"));
    assign(*file, "project.name", "C");
    QCOMPARE(file->files().size(), 1);
    QVERIFY(!file->files().at(0).missing);
    QTRY_VERIFY(host.progressProvider.jobs.at(0)->ended);
    QCOMPARE(host.progressProvider.jobs.at(0)->errors, QStringList());
    QCOMPARE(archive.content(QStringLiteral("/p/a.lantern")),
             QByteArray("[project]\r\nname = B\r\n[files]\r\nsounds = b.wav\r\n"));
    QVERIFY(file->isModified());
    QCOMPARE(file->fileName(), QStringLiteral("/p/a.lantern"));

    // One that is let go while it saves still writes all.
    QVERIFY(file->toFile(archive, file->fileName(), ProjectFile::WithJob, nullptr));
    file.reset();
    QVERIFY(archive.content(QStringLiteral("/p/a.lantern")).contains("name = C\r\n"));
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

// The animations hold their document, which holds them.
void tst_LanternFiles::theLastHolderLetsTheAnimationsGo()
{
    const auto animationsOf = [](Document *document) {
        return dynamic_cast<Lantern::Motions *>(document->nodeFile(Vela::CodeNode::Animation, 0));
    };
    Document *document = new Document(Scope::Motion);
    QPointer<Document> guard(document);
    QPointer<Lantern::Motions> animations(animationsOf(document));
    QVERIFY(animations);
    document->addRef();
    document->release();
    QVERIFY(guard && animations);
    document->release();
    QVERIFY(!guard && !animations);

    // An editor of the animations keeps the text.
    document = new Document(Scope::Motion);
    document->setText(QStringLiteral("[animation 1]\n"));
    guard = document;
    animations = animationsOf(document);
    animations->addRef();
    document->release();
    QVERIFY(guard && animations);
    document->addRef();
    document->release();
    QCOMPARE(animations->count(), 1u);
    animations->release();
    QVERIFY(!guard && !animations);
}

void tst_LanternFiles::messagesStandInOneList()
{
    Held<DefinitionFile> file(new DefinitionFile(Scope::Project));
    const QAbstractItemModelTester tester(file->messages());
    const auto check = [&](const char *text, int errors, int warnings) {
        file->setText(QString::fromLatin1(text));
        const Vela::Messages *const messages = file->messages();
        QCOMPARE(messages->count(Message::Error), errors);
        QCOMPARE(messages->count(Message::Warning), warnings);
        QCOMPARE(messages->rowCount(), errors + warnings);
        for (int row = 0; row < messages->rowCount(); ++row) {
            QCOMPARE(messages->data(messages->index(row), Qt::DisplayRole).toString(),
                     messages->at(unsigned(row), Message::Any).text);
            QVERIFY(messages->at(unsigned(row), Message::Any).type != Message::Any);
        }
        QCOMPARE(messages->at(unsigned(errors), Message::Error).type, Message::Any);
    };
    // The missing section belongs to the whole, the missing "=" to its line.
    check("[files]\nsounds\n", 2, 0);
    check("", 1, 0);
    check("[project]\nsounds\nname = a\nname = b\n", 1, 1);
    check("[project]\nname = a\nname = b\n", 0, 1);
    file->undo();
    QCOMPARE(file->messages()->count(Message::Any), 2);
    check("[project]\n", 0, 0);
}

void tst_LanternFiles::boxesWithoutAFrameAreToldWhenTheTextRests()
{
    const QString name = path("boxes.motion");
    writeFile(name, "[animation a]\nframe none : 1\nbody 0 0 1 1\n");
    const Held<Document> file(new Document(Scope::Motion));
    QVERIFY(file->fromFile(disk(), name, 0, nullptr));
    QCOMPARE(file->messages()->count(Message::Any), 1);
    QCOMPARE(file->messages()->at(0, Message::Warning).line, 2u);

    file->insert(QStringLiteral("frame none : 2\n"));
    QTRY_COMPARE(file->messages()->count(Message::Any), 0);
    file->undo();
    QTRY_COMPARE(file->messages()->count(Message::Warning), 1);
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

QTEST_MAIN(tst_LanternFiles)
#include "tst_lanternfiles.moc"

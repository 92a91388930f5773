// SPDX-License-Identifier: MIT
#include "studio/windowfixture.h"

#include "code/codedocument.h"
#include "project/parentproject.h"
#include "studio/session/comparedlines.h"
#include "studio/session/documents.h"
#include "studio/session/textautosave.h"
#include "studio/window/fileview.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QRandomGenerator>
#include <QTreeWidget>
#include <cstdio>
#include <functional>

using namespace Studio;

using Harm = std::function<void(QByteArray &)>;
using End = std::function<void(WindowFixture &)>;
Q_DECLARE_METATYPE(Harm)
Q_DECLARE_METATYPE(End)

namespace {

const QString rowan = QStringLiteral("rowan/rowan.lantern");
const QString typed = QString::fromUtf8("# typed and lost \u2013 \U0001F41F");
const char typingOption[] = "--type";

/// The folder for the unsaved texts of all programs that have the fixture's settings.
QString recoveryFolder()
{
    return Folders().userFolder() + QStringLiteral("/recovery");
}

QStringList filesIn(const QString &folder)
{
    return SmallGame::tree(folder).keys();
}

UnsavedText sample(const QString &project, const QString &file)
{
    return {project,
            file,
            "UTF-16LE",
            {1234, QDateTime(QDate(2020, 2, 29), QTime(23, 59, 59, 7))},
            QString::fromUtf8("a\u00a0b\n\n\U0001F41F \u7d75\n"),
            {},
            {}};
}

/// Writes a text as a program leaves it that ends without a word. Each has a time of its own.
/// Returns its file.
QString leave(const QString &folder, const UnsavedText &text, const char *program = "crashed")
{
    const QTemporaryDir other;
    UnsavedTexts texts(other.path());
    QString error;
    if (!texts.write(text, &error))
        return error;
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    while (QDateTime::currentMSecsSinceEpoch() == now) { }
    const QString place = folder + QLatin1Char('/') + QLatin1String(program);
    QDir().mkpath(place);
    QDirIterator it(other.path(), {QStringLiteral("*.text")}, QDir::Files,
                    QDirIterator::Subdirectories);
    const QString name = place + QLatin1Char('/') + QFileInfo(it.next()).fileName();
    return QFile::copy(it.filePath(), name) ? name : QString();
}

/// What another program does that is to be killed: opens a project, types a line into a file, and
/// says so when that is kept.
int type(int argc, char **argv)
{
    QApplication app(argc, argv);
    Host host((Folders()));
    Vela::TextCodecs::initialize();
    const EngineLoader loader(host.folders().extensionsFolder());
    MainWindow window(host);
    window.show();
    if (!window.openProject(QString::fromLocal8Bit(argv[2])))
        return 1;
    window.setCurrentFile(rowan);
    window.view().textEdit()->insertPlainText(typed);
    if (!QTest::qWaitFor([] { return filesIn(recoveryFolder()).size() == 2; }, 20000))
        return 1;
    std::puts("kept");
    std::fflush(stdout);
    return QApplication::exec();
}

} // namespace

class TestUnsavedTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void linesAreCompared_data();
    void linesAreCompared();
    void comparisonHoldsBothTexts();
    void leftTextIsReadAsItWasWritten();
    void runningProgramKeepsItsTexts();
    void leftTextsAreOfferedToOneProgramAtATime();
    void brokenFilesAreLeftOut_data();
    void brokenFilesAreLeftOut();
    void textIsKeptUntilItIsSafe_data();
    void textIsKeptUntilItIsSafe();
    void textIsKeptWhileTheUserTypesOn();
    void unwritableFolderIsToldOnce();
    void killedProgramLosesNothing_data();
    void killedProgramLosesNothing();
    void leftTextWaitsOrGoes_data();
    void leftTextWaitsOrGoes();
    void textOfNoOpenFileIsRecovered_data();
    void textOfNoOpenFileIsRecovered();

private:
    Vela::CodeDocument *document() const;
    QByteArray onDisk(const QString &name) const;

    std::unique_ptr<WindowFixture> f;
};

void TestUnsavedTexts::init()
{
    f = std::make_unique<WindowFixture>();
}

void TestUnsavedTexts::cleanup()
{
    f.reset();
}

Vela::CodeDocument *TestUnsavedTexts::document() const
{
    return documentOf(f->window->files().file(rowan));
}

QByteArray TestUnsavedTexts::onDisk(const QString &name) const
{
    return SmallGame::readFile(f->meadow() + QLatin1Char('/') + name);
}

void TestUnsavedTexts::linesAreCompared_data()
{
    QTest::addColumn<QString>("before"); // a letter for a line
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("rows"); // "=" same, "!" differs, "-" only before, "+" only after
    QTest::newRow("same") << "abc"
                          << "abc"
                          << "===";
    QTest::newRow("changed line") << "abc"
                                  << "axc"
                                  << "=!=";
    QTest::newRow("new line") << "abc"
                              << "abxc"
                              << "==+=";
    QTest::newRow("new line like its neighbour") << "abb"
                                                 << "abbb"
                                                 << "===+";
    QTest::newRow("lines gone at both ends") << "abcd"
                                             << "bc"
                                             << "-==-";
    QTest::newRow("two changes") << "abcdefg"
                                 << "xbcdeyzg"
                                 << "!====!+=";
    QTest::newRow("moved line") << "abcd"
                                << "bcda"
                                << "-===+";
    QTest::newRow("nothing the same") << "ab"
                                      << "xyz"
                                      << "!!+";
}

void TestUnsavedTexts::linesAreCompared()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    const auto asLines = [](const QString &letters) {
        return letters.split(QString(), Qt::SkipEmptyParts).join(QLatin1Char('\n'));
    };
    QString rows;
    for (const ComparedLine &line : compareLines(asLines(before), asLines(after)))
        rows += QLatin1Char(!line.differs        ? '='
                                : !line.hasAfter ? '-'
                                : line.hasBefore ? '!'
                                                 : '+');
    QTEST(rows, "rows");
}

void TestUnsavedTexts::comparisonHoldsBothTexts()
{
    QRandomGenerator random(7);
    for (int round = 0; round < 300; ++round) {
        // The last rounds have more differences than are looked for.
        const int most = round < 297 ? 30 : 3000;
        QStringList texts[2];
        for (QStringList &text : texts) {
            for (int count = random.bounded(most) + 1; count > 0; --count)
                text.append(QString::number(random.bounded(round % 7 + 1)));
        }
        QStringList found[2];
        const QVector<ComparedLine> lines =
            compareLines(texts[0].join(QLatin1Char('\n')), texts[1].join(QLatin1Char('\n')));
        for (const ComparedLine &line : lines) {
            if (line.hasBefore)
                found[0].append(line.before);
            if (line.hasAfter)
                found[1].append(line.after);
            QVERIFY(line.differs || (line.hasBefore && line.hasAfter && line.before == line.after));
        }
        QCOMPARE(found[0], texts[0]);
        QCOMPARE(found[1], texts[1]);
    }
}

void TestUnsavedTexts::leftTextIsReadAsItWasWritten()
{
    const QString folder = f->path(QStringLiteral("texts"));
    const QString file = QString::fromUtf8("hotaru/\u7d75.motion");
    const UnsavedText text = sample(f->meadow(), file);
    {
        UnsavedTexts texts(folder);
        QVERIFY(!QFile::exists(folder));
        QString error;
        QVERIFY2(texts.write(sample(f->meadow(), rowan), &error), qPrintable(error));
        QVERIFY2(texts.write(text, &error), qPrintable(error));
        QVERIFY2(texts.write(text, &error), qPrintable(error));
        texts.remove(f->meadow(), rowan);
        texts.remove(f->meadow(), QStringLiteral("unknown"));
        const QStringList names = filesIn(folder);
        QCOMPARE(names.size(), 2); // the text and the lock
        for (const QString &name : names) {
            const QFileInfo info(folder + QLatin1Char('/') + name);
            if (info.suffix() != QLatin1String("text"))
                continue;
            QVERIFY(!(info.permissions() & (QFile::ReadGroup | QFile::ReadOther)));
            QVERIFY(!(QFileInfo(info.path()).permissions() & (QFile::ExeGroup | QFile::ExeOther)));
        }
    }
    // The program has come to its end.
    QCOMPARE(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());

    const QDateTime before = QDateTime::currentDateTime().addSecs(-60);
    leave(folder, text);
    leave(folder, sample(f->path(QStringLiteral("other")), file));
    const LeftTexts left(folder, f->meadow());
    QCOMPARE(left.problems(), QStringList());
    QCOMPARE(left.texts().size(), 1);
    const UnsavedText &read = left.texts().first();
    QCOMPARE(read.file, text.file);
    QCOMPARE(read.encoding, text.encoding);
    QCOMPARE(read.text, text.text);
    QVERIFY(read.disk == text.disk);
    QVERIFY(read.time > before && read.time <= QDateTime::currentDateTime());
}

void TestUnsavedTexts::runningProgramKeepsItsTexts()
{
    const QString folder = f->path(QStringLiteral("texts"));
    UnsavedTexts texts(folder);
    QString error;
    QVERIFY2(texts.write(sample(f->meadow(), rowan), &error), qPrintable(error));
    QCOMPARE(LeftTexts(folder, f->meadow()).texts().size(), 0);

    leave(folder, sample(f->meadow(), rowan));
    UnsavedText newer = sample(f->meadow(), rowan);
    newer.text = QStringLiteral("newer");
    leave(folder, newer, "another");
    {
        const LeftTexts left(folder, f->meadow());
        QCOMPARE(left.texts().size(), 2);
        QCOMPARE(left.texts().first().text, newer.text);
        QVERIFY2(texts.adopt(left.texts().first(), &error), qPrintable(error));
        QVERIFY2(LeftTexts::discard(left.texts().last(), &error), qPrintable(error));
    }
    // Empty folders of programs that have ended are cleared away; the own text is the adopted one.
    QCOMPARE(QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
    const QStringList names = filesIn(folder);
    QCOMPARE(names.size(), 2);
    QVERIFY(SmallGame::readFile(folder + QLatin1Char('/')
                                + names.filter(QLatin1String(".text")).first())
                .endsWith("\nnewer"));
}

void TestUnsavedTexts::leftTextsAreOfferedToOneProgramAtATime()
{
    const QString folder = f->path(QStringLiteral("texts"));
    leave(folder, sample(f->meadow(), rowan));
    {
        const LeftTexts first(folder, f->meadow());
        QCOMPARE(first.texts().size(), 1);
        QCOMPARE(LeftTexts(folder, f->meadow()).texts().size(), 0);
    }
    QCOMPARE(LeftTexts(folder, f->path(QStringLiteral("other"))).texts().size(), 0);
    QCOMPARE(LeftTexts(folder, f->meadow()).texts().size(), 1);
}

void TestUnsavedTexts::brokenFilesAreLeftOut_data()
{
    QTest::addColumn<Harm>("harm");
    QTest::newRow("empty") << Harm([](QByteArray &content) { content.clear(); });
    QTest::newRow("cut short") << Harm([](QByteArray &content) { content.chop(1); });
    QTest::newRow("too long") << Harm([](QByteArray &content) { content += '\n'; });
    QTest::newRow("another byte") << Harm(
        [](QByteArray &content) { content[content.size() - 1] = '!'; });
    QTest::newRow("no head") << Harm([](QByteArray &content) { content.prepend("x"); });
    QTest::newRow("head without end")
        << Harm([](QByteArray &content) { content = QByteArray(1 << 20, '{'); });
    QTest::newRow("newer format") << Harm(
        [](QByteArray &content) { content.replace("\"format\":1", "\"format\":2"); });
}

void TestUnsavedTexts::brokenFilesAreLeftOut()
{
    QFETCH(Harm, harm);
    const QString folder = f->path(QStringLiteral("texts"));
    const QString broken = leave(folder, sample(f->meadow(), rowan));
    leave(folder, sample(f->meadow(), QStringLiteral("good")));
    QByteArray content = SmallGame::readFile(broken);
    harm(content);
    QVERIFY(SmallGame::writeFile(broken, content));
    const LeftTexts left(folder, f->meadow());
    QCOMPARE(left.texts().size(), 1);
    QCOMPARE(left.texts().first().file, QStringLiteral("good"));
    QCOMPARE(left.problems().size(), 1);
    QVERIFY(left.problems().first().startsWith(broken));
    QVERIFY(QFile::exists(broken));
}

void TestUnsavedTexts::textIsKeptUntilItIsSafe_data()
{
    QTest::addColumn<End>("end");
    QTest::newRow("saved") << End([](WindowFixture &x) { x.trigger("save"); });
    QTest::newRow("undone") << End([](WindowFixture &x) { x.window->files().file(rowan)->undo(); });
    QTest::newRow("given up") << End(
        [](WindowFixture &x) { x.window->files().file(rowan)->reset(); });
    QTest::newRow("discarded") << End([](WindowFixture &x) {
        DialogAnswerer dialogs;
        dialogs.answer(QMessageBox::Discard);
        x.trigger("close");
    });
    QTest::newRow("end of the program") << End([](WindowFixture &x) { x.stop(); });
}

void TestUnsavedTexts::textIsKeptUntilItIsSafe()
{
    QFETCH(End, end);
    QVERIFY(f->window->openProject(f->meadow()));
    f->window->setCurrentFile(rowan);
    const QString before = document()->toString();
    document()->insert(typed);
    QTRY_COMPARE(filesIn(recoveryFolder()).size(), 2);
    const QString name = filesIn(recoveryFolder()).filter(QLatin1String(".text")).first();
    QVERIFY(SmallGame::readFile(recoveryFolder() + QLatin1Char('/') + name)
                .endsWith((before + typed).toUtf8()));
    end(*f);
    QTRY_COMPARE(filesIn(recoveryFolder()).filter(QLatin1String(".text")), QStringList());
}

void TestUnsavedTexts::textIsKeptWhileTheUserTypesOn()
{
    const QString folder = f->path(QStringLiteral("texts"));
    constexpr int never = 1000 * 1000;
    QVERIFY(f->window->openProject(f->meadow()));
    TextAutosave autosave(folder, never, 200);
    autosave.setParentProject(f->window->commands().session()->parent());
    f->window->setCurrentFile(rowan);
    const bool isKept = QTest::qWaitFor([&] {
        document()->insert(QStringLiteral("#"));
        return filesIn(folder).size() == 2;
    });
    QVERIFY(isKept);
    document()->setModified(false);
}

void TestUnsavedTexts::unwritableFolderIsToldOnce()
{
    const QString folder = f->path(QStringLiteral("texts"));
    QVERIFY(SmallGame::writeFile(folder, "no folder"));
    QVERIFY(f->window->openProject(f->meadow()));
    TextAutosave autosave(folder, 0, 0);
    autosave.setParentProject(f->window->commands().session()->parent());
    f->window->setCurrentFile(rowan);
    QSignalSpy failed(&autosave, &TextAutosave::failed);
    document()->insert(typed);
    QTRY_COMPARE(failed.size(), 1);
    QVERIFY(failed.first().first().toString().startsWith(folder));
    document()->insert(typed);
    // It is written as soon as that is possible.
    QVERIFY(QFile::remove(folder));
    document()->insert(typed);
    QTRY_COMPARE(filesIn(folder).size(), 2);
    QCOMPARE(failed.size(), 1);
}

void TestUnsavedTexts::killedProgramLosesNothing_data()
{
    QTest::addColumn<bool>("isChanged");
    QTest::newRow("file as it was") << false;
    QTest::newRow("file changed since") << true;
}

void TestUnsavedTexts::killedProgramLosesNothing()
{
    QFETCH(bool, isChanged);
    QProcess other;
    other.start(QCoreApplication::applicationFilePath(),
                {QLatin1String(typingOption), f->meadow()});
    QVERIFY(QTest::qWaitFor([&other] { return other.canReadLine() || !other.processId(); }, 30000));
    QCOMPARE(other.readLine().trimmed(), QByteArray("kept"));
    // It lives: this is nobody else's business.
    QCOMPARE(LeftTexts(recoveryFolder(), f->meadow()).texts().size(), 0);
    other.kill();
    QVERIFY(other.waitForFinished());
    if (isChanged)
        QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/rowan.lantern"), onDisk(rowan) + "# more"));
    const QByteArray before = onDisk(rowan);

    DialogAnswerer dialogs;
    dialogs.handle([isChanged](QDialog *dialog) {
        const auto *items = dialog->findChild<QTreeWidget *>(QStringLiteral("items"));
        QCOMPARE(items->topLevelItemCount(), 1);
        QCOMPARE(items->topLevelItem(0)->text(0), rowan);
        QCOMPARE(items->topLevelItem(0)->text(3).startsWith(QLatin1String("changed")), isChanged);
        const auto *preview = dialog->findChild<QPlainTextEdit *>(QStringLiteral("preview"));
        const auto *present = dialog->findChild<QPlainTextEdit *>(QStringLiteral("present"));
        QVERIFY(preview->toPlainText().contains(typed));
        QVERIFY(!present->toPlainText().contains(typed));
        QCOMPARE(present->blockCount(), preview->blockCount());
        QCOMPARE(preview->extraSelections().size(), isChanged ? 2 : 1);
        QVERIFY(preview->extraSelections().first().cursor.block().text().contains(typed));
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("recover")),
                          Qt::LeftButton);
    });
    QVERIFY(f->window->openProject(f->meadow()));
    QTRY_VERIFY(dialogs.isDone());
    QTRY_VERIFY(f->window->isWindowModified());
    const QString text = document()->toString();
    QVERIFY(text.contains(typed));
    QCOMPARE(onDisk(rowan), before);
    // The text is kept until it is safe, now as this program's; undo takes it back in one step.
    QCOMPARE(filesIn(recoveryFolder()).filter(QLatin1String(".text")).size(), 1);
    Vela::ProjectFile *file = f->window->files().file(rowan);
    file->undo();
    QCOMPARE(document()->toString().toUtf8(), QByteArray(before).replace("\r\n", "\n"));
    QVERIFY(!document()->isUndoAvailable());
    file->redo();
    QCOMPARE(document()->toString(), text);
    f->trigger("save");
    QTRY_VERIFY(onDisk(rowan).contains(typed.toUtf8()));
    QTRY_COMPARE(filesIn(recoveryFolder()).filter(QLatin1String(".text")), QStringList());
}

void TestUnsavedTexts::leftTextWaitsOrGoes_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("left");
    QTest::newRow("later") << "later" << 2;
    QTest::newRow("discard") << "discard" << 1;
}

void TestUnsavedTexts::leftTextWaitsOrGoes()
{
    QFETCH(QString, button);
    QFETCH(int, left);
    QVERIFY(f->window->openProject(f->meadow()));
    f->window->setCurrentFile(rowan);
    const QString before = document()->toString();
    f->trigger("close");
    // One that was saved before the program ended, and two crashes behind each other.
    UnsavedText text = sample(f->meadow(), rowan);
    text.encoding = "UTF-8";
    text.text = before;
    leave(recoveryFolder(), text, "saved");
    text.text = before + QStringLiteral("older");
    leave(recoveryFolder(), text, "older");
    text.text = before + QStringLiteral("newer");
    leave(recoveryFolder(), text, "newer");

    DialogAnswerer dialogs;
    dialogs.handle([&](QDialog *dialog) {
        auto *items = dialog->findChild<QTreeWidget *>(QStringLiteral("items"));
        QCOMPARE(items->topLevelItemCount(), 2);
        QCOMPARE(items->topLevelItem(0)->checkState(0), Qt::Checked);
        QCOMPARE(items->topLevelItem(1)->checkState(0), Qt::Unchecked);
        const auto *preview = dialog->findChild<QPlainTextEdit *>(QStringLiteral("preview"));
        QVERIFY(preview->toPlainText().endsWith(QLatin1String("newer")));
        // Of a file there is one text.
        items->topLevelItem(1)->setCheckState(0, Qt::Checked);
        QCOMPARE(items->topLevelItem(0)->checkState(0), Qt::Unchecked);
        QTest::mouseClick(dialog->findChild<QPushButton *>(button), Qt::LeftButton);
        if (dialog->isVisible())
            dialog->reject();
    });
    if (left == 1)
        dialogs.answer(QMessageBox::Yes);
    QVERIFY(f->window->openProject(f->meadow()));
    QTRY_VERIFY(dialogs.isDone());
    QCOMPARE(document()->toString(), before);
    QTRY_COMPARE(LeftTexts(recoveryFolder(), f->meadow()).texts().size(), left);
    const LeftTexts rest(recoveryFolder(), f->meadow());
    QVERIFY(rest.texts().first().text.endsWith(QLatin1String("newer")));
}

void TestUnsavedTexts::textOfNoOpenFileIsRecovered_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("written"); // empty where the project takes it
    const QString lost = QStringLiteral("lost/lost.motion");
    QTest::newRow("file of a closed project") << "barn/barn.lantern" << QString();
    QTest::newRow("file that is gone") << lost << lost;
    QTest::newRow("file of no project") << "rowan/rowan.txt"
                                        << "rowan/rowan.txt.recovered";
}

void TestUnsavedTexts::textOfNoOpenFileIsRecovered()
{
    QFETCH(QString, file);
    QFETCH(QString, written);
    QVERIFY(SmallGame::writeFile(f->inMeadow("rowan/rowan.txt"), "of the user"));
    const UnsavedText text = sample(f->meadow(), file);
    leave(recoveryFolder(), text);
    DialogAnswerer dialogs;
    dialogs.handle([](QDialog *dialog) {
        QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("recover")),
                          Qt::LeftButton);
    });
    QVERIFY(f->window->openProject(f->meadow()));
    QTRY_VERIFY(dialogs.isDone());
    QCOMPARE(onDisk(QStringLiteral("rowan/rowan.txt")), QByteArray("of the user"));
    if (written.isEmpty()) {
        QTRY_VERIFY(f->window->files().isModified(file));
        const Vela::CodeDocument *taken = documentOf(f->window->files().file(file));
        QCOMPARE(taken->toString(), text.text);
        QCOMPARE(taken->codecName(), text.encoding);
        return;
    }
    QString lines = text.text;
    lines.replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    int codec = Vela::TextCodecs::index("UTF-16LE");
    QCOMPARE(Vela::TextCodecs::stringFromData(onDisk(written), &codec), lines);
    QCOMPARE(filesIn(recoveryFolder()).filter(QLatin1String(".text")), QStringList());
}

int main(int argc, char **argv)
{
    if (argc == 3 && qstrcmp(argv[1], typingOption) == 0)
        return type(argc, argv);
    QApplication app(argc, argv);
    TestUnsavedTexts test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_unsavedtexts.moc"

// SPDX-License-Identifier: MIT
#include "contentfiles.h"
#include "lantern/document.h"
#include "lantern/engine.h"
#include "soundedits.h"

#include "frame/checksum.h"
#include "frame/filesystemarchive.h"
#include "frame/textcodecs.h"
#include "project/messages.h"
#include "project/parentproject.h"
#include "project/project.h"
#include "support/recordinghost.h"

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QtEndian>

#include <utility>

using Vela::FileSystemArchive;
using Vela::Message;
using Vela::ProjectFile;

namespace {

using Held = HeldFile<SoundsFile>;

SoundSample noise(quint32 frames, quint32 seed)
{
    SoundSample sample = silence(1, 16, frames);
    QRandomGenerator random(seed);
    for (char &byte : sample.data)
        byte = char(random.bounded(256));
    return sample;
}

// Makes the checksum behind the tables fit them.
void mendTables(QByteArray &file, int end)
{
    qToLittleEndian(Vela::CRC32(file.constData(), size_t(end)), file.data() + end);
}

// A file of one sound by a program that knows no FLAC, which Vela would write in another way.
QByteArray foreignFile()
{
    Held file(new SoundsFile);
    file->add(s("a"), tone(2, 16, 9000), ShareMode::Share)->setProperty(encoding, raw);
    QByteArray bytes = bytesOf(*file);
    bytes[6] = 0;
    mendTables(bytes, 20 + 30 + 6 + 1);
    return bytes;
}

// All that users hear of a file.
QStringList contentOf(const SoundsFile &file)
{
    QStringList lines;
    for (unsigned int i = 0; i < file.count(); ++i) {
        const Sound &sound = *file.at(i);
        QStringList values{QString::number(qHash(sound.sample().data))};
        for (const QString &name : sound.propertyNames())
            values.append(text(sound, name));
        lines.append(values.join(QLatin1Char(' ')));
    }
    return lines;
}

} // namespace

class tst_Sounds : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void framesComeBackAsTheyWere();
    void equalSoundsAreStoredOnce();
    void equalContentMakesEqualBytes();
    void foreignFilesGetTheUsualEncoding();
    void randomEditsCanBeTakenBack();
    void onlyWhatTheFileHoldsIsUnmodified();
    void usersAreAskedOutsideOfChanges();
    void namesAreTextsWithoutCase();
    void brokenFilesStayAsTheyAre();
    void largeFilesAreReadInTheBackground();
    void textsKnowTheNames();
};

void tst_Sounds::framesComeBackAsTheyWere()
{
    Held file(new SoundsFile);
    QVector<SoundSample> samples;
    for (const int precision : {8, 16, 24, 32}) {
        for (const int channels : {1, 2})
            samples.append(tone(channels, precision, 2002, 0.05F));
    }
    samples.append(noise(100, 1));
    for (const SoundSample &sample : qAsConst(samples))
        QVERIFY(file->add(s("a"), sample, ShareMode::Share));
    // Frames that are cut off, or of no form, are none.
    Sound *const cut = file->add(s("a"), silence(2, 16, 3), ShareMode::Share);
    QVERIFY(cut->setSample(silence(2, 16, 9), QByteArray(4 * 5 + 3, 'x')));
    QCOMPARE(cut->sample().data, QByteArray(4 * 5, 'x'));
    QVERIFY(!cut->setSample(silence(2, 12, 9), QByteArray(90, 'x')));
    SoundSample still = silence(1, 16, 9);
    still.frequency = 0;
    QVERIFY(!file->add(s("a"), still, ShareMode::Share));
    QCOMPARE(cut->info().samples, 5u);

    const Held again = fileOf<SoundsFile>(bytesOf(*file));
    QCOMPARE(again->property(s("Sounds")).toInt(), samples.size() + 1);
    for (int i = 0; i < samples.size(); ++i)
        QVERIFY(isSameSound(again->at(unsigned(i))->sample(), samples.at(i)));
    QCOMPARE(contentOf(*again), contentOf(*file));
    QCOMPARE(bytesOf(*again), bytesOf(*file));
    // 2002 frames of 8000 a second.
    const QStringList values = s("a flac 2 24 8000 2002 0.250").split(QLatin1Char(' '));
    const QStringList names = again->at(5)->propertyNames();
    QCOMPARE(names.join(QLatin1Char(' ')),
             s("Identifier Encoding Channels Bits Rate Frames Duration"));
    for (int i = 0; i < names.size(); ++i) {
        again->at(5)->setProperty(names.at(i), s("a")); // changes nothing
        QCOMPARE(text(*again->at(5), names.at(i)), values.at(i));
    }
}

void tst_Sounds::equalSoundsAreStoredOnce()
{
    Held file(new SoundsFile);
    const SoundSample sample = noise(4000, 1);
    file->add(s("ab"), sample, ShareMode::Share);
    const int alone = bytesOf(*file).size();
    file->add(s("cd"), sample, ShareMode::Share);
    QCOMPARE(bytesOf(*file).size(), alone + 6 + 2); // a row, and the name
    // The same frames with another frequency are another sound.
    SoundSample slow = sample;
    slow.frequency = 4000;
    QVERIFY(!file->add(s("ef"), slow, ShareMode::Share)->dataIsShared());
    QVERIFY(!file->add(s("gh"), sample, ShareMode::NoShare)->dataIsShared());
    QVERIFY(bytesOf(*file).size() > alone + 2 * 8000);
}

void tst_Sounds::equalContentMakesEqualBytes()
{
    const SoundSample sweet = tone(2, 16, 9000);
    Held straight(new SoundsFile);
    straight->add(s("a"), sweet, ShareMode::Share);
    straight->add(s("b"), sweet, ShareMode::Share)->setProperty(encoding, ogg);
    straight->add(s("c"), noise(900, 1), ShareMode::Share);

    Held detour(new SoundsFile);
    detour->add(s("c"), noise(900, 2), ShareMode::Share);
    detour->add(s("x"), sweet, ShareMode::Share)->setProperty(encoding, raw);
    detour->add(s("y"), sweet, ShareMode::NoShare);
    detour->at(1)->setProperty(encoding, ogg);
    detour->move(2, 0);
    detour->at(0)->setProperty(identifier, s("a"));
    detour->at(2)->setProperty(identifier, s("b"));
    detour->move(2, 1);
    detour->at(2)->setSample(noise(900, 1), noise(900, 1).data);
    QCOMPARE(contentOf(*detour), contentOf(*straight));
    QCOMPARE(bytesOf(*detour), bytesOf(*straight));
    QVERIFY(bytesOf(*straight).contains("OggS"));
    QCOMPARE(bytesOf(*fileOf<SoundsFile>(bytesOf(*straight))), bytesOf(*straight));
}

// Of a file without the flag, written by a program that knows no FLAC.
void tst_Sounds::foreignFilesGetTheUsualEncoding()
{
    Held file(new SoundsFile);
    file->add(s("a"), tone(2, 16, 9000), ShareMode::Share)->setProperty(encoding, raw);
    file->add(s("b"), tone(2, 16, 9000, 0.2F), ShareMode::Share)->setProperty(encoding, ogg);
    file->add(s("c"), tone(2, 16, 9000, 0.3F), ShareMode::Share);
    QByteArray bytes = bytesOf(*file);
    QCOMPARE(bytes.mid(20 + 30 + 12, 4), QByteArray(4, 0)); // Ogg is decoded as its decoder likes
    bytes[6] = 0;
    mendTables(bytes, 20 + 3 * 30 + 3 * 6 + 3);

    const Held foreign = fileOf<SoundsFile>(bytes);
    QCOMPARE(contentOf(*foreign), contentOf(*file));
    foreign->at(2)->setProperty(encoding, raw); // what is wished for stays
    const Held saved = fileOf<SoundsFile>(bytesOf(*foreign));
    QStringList words;
    for (unsigned int i = 0; i < 3; ++i) {
        QVERIFY(isSameSound(saved->at(i)->sample(), file->at(i)->sample()));
        words.append(text(*saved->at(i), encoding));
    }
    QCOMPARE(words, (QStringList{flac, ogg, raw}));
}

void tst_Sounds::randomEditsCanBeTakenBack()
{
    for (const quint32 seed : {1u, 2u, 3u}) {
        Held file(new SoundsFile);
        Edits edits(*file, seed);
        for (int i = 0; i < 400; ++i) {
            edits.edit();
            edits.check(i % 20 == 0);
            if (QTest::currentTestFailed())
                return qWarning("seed %u, edit %d", seed, i);
        }
        const QByteArray bytes = bytesOf(*file);
        const Held again = fileOf<SoundsFile>(bytes);
        QCOMPARE(contentOf(*again), contentOf(*file));
        QCOMPARE(bytesOf(*again), bytes);
    }
}

void tst_Sounds::onlyWhatTheFileHoldsIsUnmodified()
{
    MemoryArchive archive({{s("/f"), foreignFile()}});
    Held other(new SoundsFile);
    QVERIFY(other->toFile(archive, s("/g"), 0, nullptr));
    // The bytes are the file's as they are, also behind another content that was taken back.
    Held file(new SoundsFile);
    QVERIFY(file->fromFile(archive, s("/f"), 0, nullptr));
    QVERIFY(file->fromFile(archive, s("/g"), ProjectFile::Copy, nullptr) && file->isEmpty());
    file->undo();
    QCOMPARE(bytesOf(*file), foreignFile());
    // Who hears that the file was read again finds it unmodified, and may change it.
    file->remove(0);
    bool isModified = true;
    const auto onModified = connect(file.get(), &SoundsFile::modified, file.get(), [&] {
        if (!std::exchange(isModified, file->isModified()))
            return;
        file->at(0)->setProperty(identifier, s("b"));
    });
    QVERIFY(file->fromFile(archive, s("/f"), 0, nullptr));
    disconnect(onModified);
    QVERIFY(file->isModified());
    file->undo();
    QVERIFY(!file->isModified());
    // What is saved in the middle of a change is the content of no step.
    file->beginChange();
    file->remove(0);
    QVERIFY(file->toFile(archive, s("/f"), 0, nullptr));
    file->endChange();
    file->undo();
    QVERIFY(file->count() == 1 && file->isModified());
}

void tst_Sounds::usersAreAskedOutsideOfChanges()
{
    RecordingHost host;
    MemoryArchive archive({{s("/f"), foreignFile()}});
    Held file(new SoundsFile);
    QVERIFY(file->fromFile(archive, s("/f"), 0, nullptr));
    const SoundSample sample = file->at(0)->sample();
    for (const bool shares : {true, false}) {
        host.options[s("showmsg_share_data")] = 0;
        QTimer::singleShot(0, file.get(), [&] {
            auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box && file->fromFile(archive, s("/f"), 0, nullptr) && !file->isModified());
            box->button(shares ? QMessageBox::Yes : QMessageBox::No)->click();
        });
        Sound *const added = file->add(s("b"), sample, ShareMode::AskToShare);
        QVERIFY(added && file->count() == 2 && file->isModified());
        QCOMPARE(text(*added, encoding), shares ? raw : flac);
        file->undo();
        QVERIFY(file->count() == 1 && !file->isModified());
    }
}

void tst_Sounds::namesAreTextsWithoutCase()
{
    Held file(new SoundsFile);
    for (const char *name : {"Zoë", "bang", "Bang", "a", "c:d", "\uFEFFa"})
        file->add(QString::fromUtf8(name), SoundSample(), ShareMode::Share);
    QCOMPARE(text(*file->at(4), identifier), s("sound"));
    QCOMPARE(contentOf(*fileOf<SoundsFile>(bytesOf(*file))), contentOf(*file));
    file->remove(5);
    QCOMPARE(file->find(0, s("zOË")), 0);
    QCOMPARE(file->find(2, s("BANG")), 2);
    QCOMPARE(file->find(3, s("BANG")), -1);
    QVERIFY(file->compare(3, 2) < 0 && file->compare(0, 2) > 0 && file->compare(2, 1) > 0);
    file->setSelected(9);
    QCOMPARE(file->selected(), 4u);
    // Only names are news to texts.
    QSignalSpy named(file.get(), &SoundsFile::namesChanged);
    file->at(0)->setProperty(identifier, s("Zoe"));
    QVERIFY(file->at(0)->setSample(silence(1, 8, 1), QByteArray(1, 'x')));
    QCOMPARE(named.size(), 1);
    file->undo();
    file->undo();
    QCOMPARE(named.size(), 2);
    QCOMPARE(file->find(0, s("Zoe")), -1);
}

void tst_Sounds::brokenFilesStayAsTheyAre()
{
    Held file(new SoundsFile);
    file->add(s("a"), noise(200, 1), ShareMode::Share);
    const QByteArray whole = bytesOf(*file);
    MemoryArchive archive;
    const QString name = s("/b.sounds");
    for (const QByteArray &bytes : {QByteArray(), whole.left(9), whole.left(whole.size() - 1)}) {
        archive.put(name, bytes);
        Held opened(new SoundsFile);
        opened->attach(archive, name);
        QCOMPARE(opened->count(), 0u);
        QCOMPARE(opened->messages()->count(Message::Error), 1);
        QVERIFY(!opened->isModified());
        QCOMPARE(bytesOf(*opened), bytes);
        opened->add(QVariant(), SoundSample(), ShareMode::Share);
        QVERIFY(!opened->toFile(archive, name, 0, nullptr));
        QCOMPARE(archive.content(name), bytes);
    }
    // Frames that are broken, or of another form than their row says, make a sound without any,
    // which cannot be written anew.
    QByteArray frames = whole;
    frames[whole.size() - 9] = char(frames.at(whole.size() - 9) ^ 1);
    const Held opened = fileOf<SoundsFile>(frames);
    QCOMPARE(opened->at(0)->info().samples, 200u);
    QVERIFY(opened->at(0)->sample().data.isEmpty());
    QCOMPARE(bytesOf(*opened), QByteArray("(not written)"));
    QByteArray row = whole;
    row[20 + 22] = 'x'; // the frequency
    mendTables(row, 20 + 30 + 6 + 1);
    const Held other = fileOf<SoundsFile>(row);
    QCOMPARE(other->at(0)->info().samples, 200u);
    QVERIFY(other->at(0)->sample().data.isEmpty());
    // What another program puts in the place of a file is not taken for that one.
    archive.put(name, whole);
    const Held replaced(new SoundsFile);
    QVERIFY(replaced->fromFile(archive, name, 0, nullptr));
    archive.put(name, row);
    QCOMPARE(bytesOf(*replaced), whole);
}

void tst_Sounds::largeFilesAreReadInTheBackground()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(s("large.sounds"));
    FileSystemArchive &disk = FileSystemArchive::instance();
    Held file(new SoundsFile);
    Held other(new SoundsFile);
    for (quint32 i = 0; i < 30; ++i) {
        file->add(QString::number(i), noise(20000, i), ShareMode::Share);
        other->add(QString::number(i), noise(20000, i + 30), ShareMode::Share);
    }
    file->add(s("ogg"), tone(2, 16, 9000), ShareMode::Share)->setProperty(encoding, ogg);
    QVERIFY(file->toFile(disk, name, 0, nullptr));
    QVERIFY(QFile(name).size() > 1024 * 1024);
    const QStringList content = contentOf(*file);

    Held large(new SoundsFile);
    QVERIFY(saveWhileLoading(*large, name, 7) && !large->isModified());
    large->undo();
    QCOMPARE(contentOf(*large), content);

    // What undo brings back, and what was saved elsewhere, needs the file no more.
    const QString second = folder.filePath(s("other.sounds"));
    QVERIFY(large->toFile(disk, name, 0, nullptr) && other->toFile(disk, second, 0, nullptr));
    for (const unsigned int flags : {0u, unsigned(ProjectFile::Copy)}) {
        Held late(new SoundsFile);
        const BusyThreads threads;
        QVERIFY(late->fromFile(disk, name, 0, nullptr));
        QVERIFY(!flags || late->fromFile(disk, second, flags, nullptr));
        QVERIFY(late->toFile(disk, flags ? name : second, 0, nullptr));
        QVERIFY(QFile::remove(name));
        late->undo();
        QCOMPARE(contentOf(*late), content);
        QVERIFY(large->toFile(disk, name, 0, nullptr));
        QVERIFY(other->toFile(disk, second, 0, nullptr));
    }

    // Another program's file in its place, of the same layout, is no sound of this one.
    Held replaced(new SoundsFile);
    {
        const BusyThreads threads;
        QVERIFY(replaced->fromFile(disk, name, 0, nullptr));
        QVERIFY(other->toFile(disk, name, ProjectFile::Copy, nullptr));
    }
    for (unsigned int i = 0; i < replaced->count(); ++i)
        QVERIFY(replaced->at(i)->sample().data.isEmpty());
    replaced->remove(0);
    QVERIFY(!replaced->toFile(disk, name, 0, nullptr));
}

void tst_Sounds::textsKnowTheNames()
{
    Vela::TextCodecs::initialize();
    RecordingHost host;
    QTemporaryDir folder;
    FileSystemArchive &disk = FileSystemArchive::instance();
    const auto write = [&folder](const char *name, const char *content) {
        QFile file(folder.filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) > 0);
    };
    write("a.lantern",
          "[project]\nname = A\n[files]\nsounds = a.sounds\nsounds = b.wav\nscripts = a.script\n");
    write("b.wav", "no sound at all");
    write("a.script", "[script s]\notherwise play step, play B, play \"big bang\"\n");
    Held made(new SoundsFile);
    made->add(s("other"), SoundSample(), ShareMode::Share);
    made->add(s("Step"), SoundSample(), ShareMode::Share);
    QVERIFY(made->toFile(disk, folder.filePath(s("a.sounds")), 0, nullptr));

    Lantern::Engine engine;
    QString error;
    const std::unique_ptr<Vela::ParentProject> parent(
        engine.openParentProject(folder.filePath(s("a.lantern")), &error));
    QVERIFY2(parent, qPrintable(error));
    Vela::Project *const project = parent->openedProjects().at(0);
    auto *const sounds = dynamic_cast<SoundsFile *>(project->file(Vela::Project::Sounds));
    auto *const script = dynamic_cast<Lantern::Document *>(project->file(Vela::Project::Scripts));
    QVERIFY(sounds && script && !script->isEmpty());
    const auto warnings = [script] {
        QStringList texts;
        for (int i = 0; i < script->messages()->count(Message::Warning); ++i)
            texts.append(script->messages()->at(i, Message::Warning).text);
        return texts;
    };
    const QStringList bang{s("There is no sound 'big bang'.")};
    const QStringList bangAndStep{s("There is no sound 'step'."), bang.first()};
    QTRY_COMPARE(warnings(), bang);
    sounds->at(1)->setProperty(identifier, s("Big Bang"));
    QTRY_COMPARE(warnings(), QStringList{bangAndStep.first()});
    sounds->undo();
    QTRY_COMPARE(warnings(), bang);
    sounds->clear();
    QTRY_COMPARE(warnings(), bangAndStep);
    sounds->undo();
    QTRY_COMPARE(warnings(), bang);

    QStringList names = script->soundNames();
    names.sort();
    QCOMPARE(names, (QStringList{s("Step"), s("b"), s("other")}));
    script->openSound(s("STEP"));
    QCOMPARE(host.openFileCalls.last().file, sounds);
    QCOMPARE(sounds->selected(), 1u);
    script->openSound(s("a")); // the file itself is no sound
    QCOMPARE(host.openFileCalls.size(), 1);
    QCOMPARE(host.logged.size(), 1);
    project->release();
}

QTEST_MAIN(tst_Sounds)
#include "tst_sounds.moc"

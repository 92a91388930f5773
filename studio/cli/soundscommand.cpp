// SPDX-License-Identifier: MIT
#include "sound/sound.h"
#include "studio/cli/collectionexport.h"
#include "studio/cli/collectionimport.h"
#include "studio/cli/commands.h"
#include "studio/cli/diskfiles.h"
#include "studio/cli/soundfiles.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSet>

namespace Studio {

namespace {

// So many sounds are in memory at once.
constexpr int batchSize = 16;

/// Returns the name that users know a sound by.
QString nameOf(const Vela::Sound &sound)
{
    return sound.property(QStringLiteral("Identifier")).toString();
}

/// Returns a name that every disk takes for a file.
QString fileNameFor(const QString &name)
{
    constexpr int longest = 200; // bytes: disks take 255, and an ending follows
    static const QRegularExpression forbidden(QStringLiteral("[\\x00-\\x1f\\x7f/\\\\:*?\"<>|]"));
    static const QRegularExpression edges(QStringLiteral("^[\\s.]+|[\\s.]+$"));
    static const QRegularExpression device(
        QStringLiteral("^(con|prn|aux|nul|com\\d|lpt\\d)(\\.|$)"),
        QRegularExpression::CaseInsensitiveOption);
    QString result = name;
    result.replace(forbidden, QStringLiteral("_"));
    while (result.toUtf8().size() > longest)
        result.chop(result.at(result.size() - 1).isLowSurrogate() ? 2 : 1);
    result.remove(edges);
    if (result.isEmpty())
        return QStringLiteral("sound");
    return device.match(result).hasMatch() ? QString(QLatin1Char('_') + result) : result;
}

/// Runs on any thread.
EncodedItem encoded(const Vela::SoundSample &sound, const QByteArray &format)
{
    EncodedItem result;
    if (sound.data.isEmpty())
        result.error = QStringLiteral("the sound cannot be read");
    else
        encodeSound(sound, format, &result.bytes, &result.error);
    return result;
}

ExportedItem exportedItem(const Vela::Sound &sound, const QByteArray &format)
{
    const QString name = fileNameFor(nameOf(sound));
    if (sound.isEmpty())
        return {name, nullptr, QStringLiteral("has no frames")};
    const Vela::SoundSample sample = sound.sample();
    return {name, [sample, format] { return encoded(sample, format); }, {}};
}

QString identifierOf(const QString &file)
{
    return QFileInfo(file).completeBaseName();
}

/// Returns whether no two files are for one sound; otherwise the second one has been reported. Case
/// makes no difference: engines and disks may know none.
bool hasEachOnce(const QStringList &files)
{
    QSet<QString> names;
    for (const QString &file : files) {
        const QString name =
            identifierOf(file).normalized(QString::NormalizationForm_C).toCaseFolded();
        if (names.contains(name)) {
            Console::report(
                QStringLiteral("%1: a second file of the sound %2").arg(file, identifierOf(file)));
            return false;
        }
        names.insert(name);
    }
    return true;
}

/// Returns the name of the sound; empty if the collection cannot take it.
QString put(Vela::Sounds &sounds, const QString &file, const Vela::SoundSample &sample)
{
    const QVariant identifier = identifierOf(file);
    const int known = sounds.find(0, identifier);
    const Vela::Sound *sound = nullptr;
    if (known < 0) {
        sound = sounds.add(identifier, sample, Vela::ShareMode::Share);
    } else {
        Vela::Sound *const old = sounds.at(static_cast<unsigned int>(known));
        if (old->setSample(sample, sample.data, Vela::ShareMode::Share))
            sound = old;
    }
    return sound ? nameOf(*sound) : QString();
}

} // namespace

int runSoundsList(const Call &call)
{
    const auto sounds = openStandalone<Vela::Sounds>(call.arguments.first());
    if (!sounds)
        return Failed;
    QList<QStringList> rows;
    QJsonArray array;
    for (unsigned int i = 0; i < sounds->count(); ++i) {
        const Vela::Sound &sound = *sounds->at(i);
        const QString name = nameOf(sound);
        rows.append(
            QStringList(name)
            + (sound.isEmpty() ? QStringList(QStringLiteral("empty")) : columnsOf(sound.info())));
        QJsonObject object = toJson(sound.info());
        object.insert(QStringLiteral("identifier"), name);
        array.append(object);
    }
    if (call.options.testFlag(Json))
        printJson(
            {{QStringLiteral("path"), sounds->fileName()}, {QStringLiteral("sounds"), array}});
    else
        Console::print(rows);
    return Done;
}

int runSoundsExport(const Call &call)
{
    const SoundFormat format =
        SoundFormat::ofWord(call.values.value(Format, QStringLiteral("wav")));
    if (!format.saves)
        return Console::fail(QStringLiteral("--format needs a format of sounds that can be "
                                            "written, such as wav, flac or ogg"));
    return exportCollection<Vela::Sounds>(call, format.word, batchSize, exportedItem);
}

int runSoundsImport(const Call &call)
{
    const QStringList files = call.arguments.mid(1);
    const auto sounds =
        hasEachOnce(files) ? openOrCreate<Vela::Sounds>(call.arguments.first()) : nullptr;
    if (!sounds)
        return Failed;
    sounds->beginChange();
    const QVector<ImportedItem> items =
        importFiles(files, batchSize, readSound,
                    [&sounds](const QString &file, const Vela::SoundSample &sound) {
                        return put(*sounds, file, sound);
                    });
    sounds->endChange();
    for (const ImportedItem &item : items) {
        if (item.name.compare(identifierOf(item.file), Qt::CaseInsensitive) != 0)
            warn(call, item.file,
                 QStringLiteral("no sound can have this name, it is called %1").arg(item.name));
    }
    return finishImport(call, *sounds, items, files.size(), "sounds");
}

} // namespace Studio

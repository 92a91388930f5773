// SPDX-License-Identifier: MIT
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/decodefiles.h"
#include "studio/cli/diskfiles.h"
#include "studio/cli/soundfiles.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Studio {

namespace {

// So many sounds are in memory at once.
constexpr int batchSize = 16;

// What frequencies a call may ask for, in frames a second.
constexpr int highestRate = 1048575;

/// Reads the number of an option, if the call has it. Returns whether it is from \a least to
/// \a most.
template <typename Number>
bool readNumber(const Call &call, CallOption option, int least, int most, Number *number)
{
    if (!call.options.testFlag(option))
        return true;
    bool isNumber = false;
    const int value = call.values.value(option).toInt(&isNumber);
    *number = static_cast<Number>(value);
    return isNumber && value >= least && value <= most;
}

/// Reads what a call asks for; what it leaves as it is stays 0. Returns false with a reason for the
/// user.
bool readForm(const Call &call, const SoundFormat &to, Vela::SampleInfo *form, QString *error)
{
    *form = {0, 0, 0, 0};
    if (!readNumber(call, SampleRate, 1, highestRate, &form->frequency))
        *error = QStringLiteral("--rate needs a number of frames a second from 1 to %1")
                     .arg(highestRate);
    else if (!readNumber(call, SampleBits, 8, 32, &form->precision)
             || (form->precision != 0 && !Vela::isKnownPrecision(form->precision)))
        *error = QStringLiteral("--bits needs one of 8, 16, 20, 24, 32");
    else if (to.word == "OGG" && form->precision != 0 && form->precision != 16)
        *error = QStringLiteral("--bits: OGG has no bits to choose, and is read with 16");
    else if (!readNumber(call, ChannelCount, 1, 2, &form->channels))
        *error = QStringLiteral("--channels needs 1 or 2");
    else if (const QString reason = unfitForm(*form, to.word); !reason.isEmpty())
        *error = QStringLiteral("--rate: %1").arg(reason);
    return error->isEmpty();
}

/// Gives a sound the form that a call asks for. Returns false with a reason for the user.
bool changeForm(Vela::SoundSample &sound, const Vela::SampleInfo &form, QString *error)
{
    constexpr quint32 largestRatio = 256; // of the frequencies, either way
    Vela::SampleInfo target = sound;
    target.channels = form.channels != 0 ? form.channels : sound.channels;
    target.precision = form.precision != 0 ? form.precision : sound.precision;
    target.frequency = form.frequency != 0 ? form.frequency : sound.frequency;
    if (Vela::resampleSound(sound, target))
        return true;
    if (sound.channels > 2 && target.channels == 2)
        *error = QStringLiteral("%1 channels can become one, but not two").arg(sound.channels);
    else if (quint64(target.frequency) > quint64(sound.frequency) * largestRatio
             || quint64(sound.frequency) > quint64(target.frequency) * largestRatio)
        *error = QStringLiteral("%1 frames a second cannot become %2: one is more than %3 times "
                                "the other")
                     .arg(sound.frequency)
                     .arg(target.frequency)
                     .arg(largestRatio);
    else
        *error = QStringLiteral("it would be too long");
    return false;
}

bool convert(const Call &call, QByteArray *bytes, QString *error)
{
    const QString in = call.arguments.first();
    const QString out = call.arguments.at(1);
    const SoundFormat to = SoundFormat::ofFile(out);
    Vela::SampleInfo form;
    if (!to.saves)
        return failFile(out, QStringLiteral("is of no format of sounds that can be written"),
                        error);
    if (!readForm(call, to, &form, error))
        return false;
    Vela::SoundSample sound = readSound(in, error);
    if (!error->isEmpty())
        return false;
    if (changeForm(sound, form, error) && encodeSound(sound, to.word, bytes, error))
        return true;
    return failFile(out, *error, error);
}

/// Returns the form of a sound, without its frames.
Vela::SampleInfo formOf(const QString &file, QString *error)
{
    return readSound(file, error);
}

} // namespace

int runSoundConvert(const Call &call)
{
    QByteArray bytes;
    QString error;
    if (!convert(call, &bytes, &error))
        return Console::fail(error);
    return finishFile(call, call.arguments.at(1), bytes);
}

int runSoundInfo(const Call &call)
{
    QList<QStringList> rows;
    QJsonArray array;
    decodeFiles("Read", call.arguments, batchSize, formOf,
                [&rows, &array](const QString &file, const Vela::SampleInfo &info) {
                    const QString format = QString::fromUtf8(SoundFormat::ofFile(file).word);
                    rows.append(QStringList{file, format} + columnsOf(info));
                    QJsonObject object = toJson(info);
                    object.insert(QStringLiteral("path"), ProjectSession::normalizedPath(file));
                    object.insert(QStringLiteral("format"), format);
                    array.append(object);
                    return QString();
                });
    if (call.options.testFlag(Json))
        printJson({{QStringLiteral("sounds"), array}});
    else
        Console::print(rows);
    return array.size() == call.arguments.size() ? Done : Failed;
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "sound/soundsample.h"

#include <QByteArray>
#include <QStringList>

class QJsonObject;

namespace Studio {

/// What a call can do with files of one format of sounds.
struct SoundFormat
{
    QByteArray word; ///< as the library names it: what follows the last dot, in upper case
    bool loads = false;
    bool saves = false;

    /// Returns what is known of the format of a file, by its name alone.
    static SoundFormat ofFile(const QString &name);
    static SoundFormat ofWord(const QString &word);
};

/// Returns what a format does not hold of a sound of such channels and frequency; empty if it holds
/// it. A 0 stands for what is not known yet.
QString unfitForm(const Vela::SampleInfo &form, const QByteArray &format);

/// Returns the length of a sound in milliseconds; 0 without a frequency.
qint64 millisecondsOf(const Vela::SampleInfo &form);
/// Returns columns that tell the length and the form of a sound.
QStringList columnsOf(const Vela::SampleInfo &form);
/// Returns the same for programs.
QJsonObject toJson(const Vela::SampleInfo &form);

// The functions below may be called from any thread. Where they fail an error has the whole reason,
// with the file as the user names it.

/// Reads a sound.
Vela::SoundSample readSound(const QString &file, QString *error);
/// Makes a file's bytes. The error does not name the file.
bool encodeSound(const Vela::SoundSample &sound, const QByteArray &format, QByteArray *bytes,
                 QString *error);

} // namespace Studio

// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/soundcodec.h"
#include "lantern/soundsfile.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <cmath>

using Lantern::SoundsFile;
using Vela::ShareMode;
using Vela::Sound;
using Vela::SoundSample;

inline QString s(const char *text)
{
    return QString::fromUtf8(text);
}

inline const QString identifier = s("Identifier");
inline const QString encoding = s("Encoding");
inline const QString raw = s("raw");
inline const QString flac = s("flac");
inline const QString ogg = s("ogg");

inline SoundSample silence(int channels, int precision, quint32 frames)
{
    SoundSample sample;
    sample.channels = quint16(channels);
    sample.precision = quint16(precision);
    sample.frequency = 8000;
    sample.samples = frames;
    sample.data.fill(0, int(frames) * frameSize(sample));
    return sample;
}

inline SoundSample tone(int channels, int precision, quint32 frames, float pitch = 0.1F)
{
    SoundSample sample = silence(channels, precision, frames);
    const int size = Vela::sampleSize(sample.precision);
    for (int i = 0; i < sample.data.size() / size; ++i)
        Vela::encodeSample(0.7F * std::sin(float(i / channels) * pitch),
                           sample.data.data() + i * size, sample.precision);
    return sample;
}

inline bool isSameSound(const SoundSample &a, const SoundSample &b)
{
    return Vela::isSame(a, b) && a.data == b.data;
}

inline QString text(const Sound &sound, const QString &property)
{
    return sound.property(property).toString();
}

/// What a model of a file has of a sound. Numbers stand for equal items and equal streams.
struct Data
{
    int stream = 0; // none without frames
    QString encoding;
    SoundSample sample;
};

struct Expected
{
    int item;
    QString name;
    Data data;
};

inline bool operator==(const Expected &a, const Expected &b)
{
    return a.item == b.item && a.data.stream == b.data.stream && a.name == b.name;
}

/// Edits a file by chance, and a plain model in the same way.
class Edits
{
public:
    Edits(SoundsFile &file, quint32 seed)
        : m_file(file)
        , m_random(seed)
        , m_samples{tone(1, 8, 20000, 0.1F), tone(2, 16, 9000, 0.2F), tone(2, 24, 9000, 0.3F),
                    silence(1, 8, 3), SoundSample()}
        , m_history{{}}
    {
    }

    void edit()
    {
        QSignalSpy modified(&m_file, &SoundsFile::modified);
        const int before = m_at;
        editOnce();
        if (m_depth == 0 && m_now != m_history.at(m_at)) {
            m_history.resize(++m_at);
            m_history.append(m_now);
        }
        // Inside of a bracket nobody hears of anything.
        QCOMPARE(modified.size(), m_at == before ? 0 : 1);
    }

    void check(bool wholeSamples)
    {
        QCOMPARE(m_file.count(), unsigned(m_now.size()));
        QCOMPARE(m_file.undoStack().index(), m_at);
        QCOMPARE(m_file.undoStack().count(), m_history.size() - 1);
        QCOMPARE(m_file.isModified(), m_at > 0 || !m_now.isEmpty());
        for (int i = 0; i < m_now.size(); ++i) {
            const Sound &sound = *m_file.at(unsigned(i));
            const Expected &expected = m_now.at(i);
            QCOMPARE(sound.index(), unsigned(i));
            QCOMPARE(text(sound, identifier), expected.name);
            QCOMPARE(m_file.find(0, expected.name.toUpper()), firstOf(expected.name));
            QCOMPARE(text(sound, encoding), expected.data.encoding);
            QCOMPARE(sound.info().samples, expected.data.sample.samples);
            int sharers = 0;
            for (const Expected &other : qAsConst(m_now))
                sharers += other.data.stream == expected.data.stream;
            QCOMPARE(sound.dataIsShared(), expected.data.stream != 0 && sharers > 1);
            QVERIFY(!wholeSamples || isSameSound(sound.sample(), expected.data.sample));
        }
    }

private:
    void editOnce()
    {
        const int count = m_now.size();
        const int at = count > 0 ? int(m_random.bounded(count)) : 0;
        Sound *const sound = m_file.at(unsigned(at));
        switch (m_random.bounded(count > 12 ? 14 : 12)) {
        case 0:
        case 1:
            return insert(int(m_random.bounded(count + 2)));
        case 2:
            m_file.move(unsigned(at), unsigned(count)); // out of range
            m_file.move(unsigned(at), unsigned(count / 2));
            return count > 0 ? m_now.move(at, count / 2) : void();
        case 3:
            return sound ? rename(*sound, m_now[at]) : void();
        case 4:
            return sound ? duplicate(*sound, at) : void();
        case 5:
            return sound ? setSample(*sound, m_now[at]) : void();
        case 6:
            return sound ? setEncoding(*sound, m_now[at]) : void();
        case 7:
            m_depth += 1;
            return m_file.beginChange();
        case 8:
            m_depth = std::max(m_depth - 1, 0);
            return m_file.endChange();
        case 9:
            m_file.undo();
            return goTo(m_at - 1);
        case 10:
            m_file.redo();
            return goTo(m_at + 1);
        default:
            m_file.remove(unsigned(count)); // out of range
            m_random.bounded(20) == 0 ? m_file.clear() : m_file.remove(unsigned(at));
            m_file.count() == 0 ? m_now.clear() : m_now.removeAt(at);
        }
    }

    // What is under way is no step yet.
    void goTo(int step)
    {
        if (m_depth > 0 || step < 0 || step >= m_history.size())
            return;
        m_at = step;
        m_now = m_history.at(step);
    }

    int firstOf(const QString &name) const
    {
        const auto isIt = [&name](const Expected &sound) {
            return sound.name.toLower() == name.toLower();
        };
        return int(std::find_if(m_now.begin(), m_now.end(), isIt) - m_now.begin());
    }

    QString freeName(const QString &base) const
    {
        QString name = base;
        for (int i = 2; firstOf(name) < m_now.size(); ++i)
            name = base + QLatin1Char('-') + QString::number(i);
        return name;
    }

    // Returns what these frames are kept as: as another sound's, unless they are to have some
    // encoding and those have not.
    Data kept(const SoundSample &sample, ShareMode share, const QString &word = QString())
    {
        if (sample.data.isEmpty())
            return {};
        for (const Expected &sound : qAsConst(m_now)) {
            if (share == ShareMode::Share && isSameSound(sound.data.sample, sample)
                && (word.isEmpty() || sound.data.encoding == word))
                return sound.data;
        }
        const QString usual = sample.samples < 9 ? raw : flac;
        return {++m_last, word.isEmpty() ? usual : word, sample};
    }

    void insert(int at)
    {
        static const char *const names[] = {"step", "Step", "a.b", "", "a/b"};
        const unsigned int name = unsigned(m_random.bounded(5));
        const SoundSample &sample = m_samples[m_random.bounded(5)];
        const ShareMode share = m_random.bounded(3) ? ShareMode::Share : ShareMode::NoShare;
        const QString added = name < 3 ? s(names[name]) : freeName(s("sound"));
        QVERIFY(m_file.insert(unsigned(at), s(names[name]), sample, share));
        m_now.insert(std::min(at, m_now.size()), {++m_last, added, kept(sample, share)});
    }

    void duplicate(Sound &sound, int at)
    {
        QCOMPARE(int(sound.duplicate()->index()), at + 1);
        const Expected &old = m_now.at(at);
        m_now.insert(at + 1, {++m_last, freeName(old.name), old.data});
    }

    void rename(Sound &sound, Expected &expected)
    {
        static const char *const names[] = {"x", "y", "z.", " z"};
        const unsigned int i = unsigned(m_random.bounded(4));
        sound.setProperty(identifier, s(names[i]));
        if (i < 2)
            expected.name = s(names[i]);
    }

    void setSample(Sound &sound, Expected &expected)
    {
        const SoundSample &sample = m_samples[m_random.bounded(5)];
        QVERIFY(sound.setSample(sample, sample.data));
        if (!isSameSound(sample, expected.data.sample))
            expected.data = kept(sample, ShareMode::Share);
    }

    void setEncoding(Sound &sound, Expected &expected)
    {
        const QStringList words{raw, flac, ogg, s("mp3")};
        const QString word = words.at(int(m_random.bounded(4)));
        sound.setProperty(encoding, word);
        // Three frames take more with the head of any encoding.
        const Data &old = expected.data;
        if (old.sample.samples < 9 || word == words.last() || word == old.encoding)
            return;
        const SoundSample heard = sound.sample();
        QVERIFY(word == ogg ? heard.precision == 16 : isSameSound(heard, old.sample));
        expected.data = kept(heard, ShareMode::Share, word);
    }

    SoundsFile &m_file;
    QRandomGenerator m_random;
    const SoundSample m_samples[5];
    QVector<Expected> m_now;
    QVector<QVector<Expected>> m_history;
    int m_at = 0;
    int m_depth = 0;
    int m_last = 0;
};

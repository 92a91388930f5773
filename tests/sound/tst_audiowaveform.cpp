// SPDX-License-Identifier: MIT
#include "sound/audiodata.h"
#include "sound/audiowaveform.h"
#include "sound/plainwaveform.h"
#include "sound/samplebounds_p.h"
#include "sound/samplesound.h"

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QUndoStack>
#include <cstring>
#include <random>

using Vela::AudioData;
using Vela::AudioWaveform;
using Vela::SampleInfo;

namespace {

constexpr quint16 precisions[] = {8, 16, 20, 24, 32};

float floatAt(const AudioWaveform &view, unsigned int index)
{
    float value;
    std::memcpy(&value, &view.points()[index], sizeof(value));
    return value;
}

int lowAt(const AudioWaveform &view, unsigned int index)
{
    return qint16(view.points()[index]);
}

int highAt(const AudioWaveform &view, unsigned int index)
{
    return qint16(view.points()[index] >> 16);
}

QByteArray shorts(std::initializer_list<qint16> values)
{
    QByteArray bytes;
    for (const qint16 value : values) {
        const qint16 stored = qToLittleEndian(value);
        bytes.append(reinterpret_cast<const char *>(&stored), 2);
    }
    return bytes;
}

void set(AudioData &audio, quint16 channels, const QByteArray &data)
{
    audio.setSample({{channels, 16, 8000, quint32(data.size() / 2 / channels)}, data});
}

} // namespace

class TestAudioWaveform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void drawsCurvesBetweenFrames()
    {
        AudioData audio;
        AudioWaveform view(&audio);
        set(audio, 1, shorts({0, 16384, -32768}));
        view.setViewWidth(100);
        view.setZoom(4);
        QCOMPARE(view.width(), 12U); // three frames of four pixels
        QCOMPARE(view.step(), 0.25);
        QCOMPARE(view.packed(), std::vector<quint32>(1));
        // At a quarter between 0 and 0.5 the control point is 0.125, so that the ends of the line
        // are 0.03125 and 0.21875.
        const float expected[] = {0, 0.078125F, 0.25F, 0.421875F, 0.5F};
        for (unsigned int x = 0; x < 5; ++x)
            QCOMPARE(floatAt(view, x), expected[x]);
        QCOMPARE(floatAt(view, 8), -1.0F);
        // Behind the last frame comes silence.
        QCOMPARE(floatAt(view, 10), -0.5F);
    }

    void drawsBoundsOfColumns()
    {
        AudioData audio;
        AudioWaveform view(&audio);
        set(audio, 2, shorts({0, 5, 100, -5, -200, 7, 300, 8, -32768, 9, 50, 32767}));
        view.setViewWidth(3);
        view.setZoom(0.5);
        QCOMPARE(view.width(), 3U);
        QCOMPARE(view.packed(), std::vector<quint32>{7});
        const int bounds[][2] = {{0, 100}, {-200, 300}, {-32768, 50}, {-5, 5}, {7, 8}, {9, 32767}};
        for (unsigned int i = 0; i < 6; ++i) {
            QCOMPARE(lowAt(view, i), bounds[i][0]);
            QCOMPARE(highAt(view, i), bounds[i][1]);
        }
        // Louder than full scale is full scale.
        audio.select(2, 4);
        view.setSelectionScale({1.0, 200.0});
        QCOMPARE(lowAt(view, 1), -32768);
        QCOMPARE(highAt(view, 1), 32767);
        // Half a column is none.
        view.setOffset(5);
        QCOMPARE(view.width(), 0U);
    }

    void selectionShrinksAndGrows()
    {
        AudioData audio;
        AudioWaveform view(&audio);
        set(audio, 1, shorts({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
        view.setViewWidth(10);
        audio.select(2, 6);
        const auto frames = [&view] {
            QByteArray digits;
            for (unsigned int x = 0; x < view.width(); ++x)
                digits.append(char('0' + qRound(floatAt(view, x) * 32768)));
            return digits;
        };
        view.setSelectionScale({0.0, 1.0});
        QCOMPARE(frames(), QByteArray("016789"));
        view.setSelectionScale({2.0, 1.0});
        QCOMPARE(view.width(), 10U);
        QCOMPARE(frames().left(3), QByteArray("012"));
        view.setOffset(3); // now the part of it that is in view
        QCOMPARE(view.width(), 7U);
        QCOMPARE(floatAt(view, 2), floatAt(view, 0) + 1.0F / 32768);
        view.setSelectionScale({0.0, 1.0});
        QCOMPARE(frames(), QByteArray("6789"));
    }

    void tellsOfChangesOnly()
    {
        AudioData audio;
        AudioWaveform view(&audio);
        QSignalSpy spy(&view, &AudioWaveform::changed);
        set(audio, 1, shorts({1, 2, 3}));
        QCOMPARE(spy.count(), 1);
        view.setViewWidth(10);
        view.setOffset(1);
        view.setZoom(2);
        view.setSelectionScale({2, 2});
        QCOMPARE(spy.count(), 5);
        view.setViewWidth(10);
        view.setOffset(1);
        view.setSelectionScale({2, 2});
        for (const double zoom : {2.0, 0.0, -1.0, qQNaN(), qInf(), 1e-320})
            view.setZoom(zoom);
        view.setSelectionScale({qInf(), 1});
        QCOMPARE(spy.count(), 5);
        QCOMPARE(view.zoom(), 2.0);
        audio.setSample({});
        QCOMPARE(spy.count(), 6);
        QCOMPARE(view.width(), 0U);
    }

    // Any view of any sound after any edits is that of the plain rule.
    void equalsThePlainRule_data()
    {
        QTest::addColumn<int>("precision");
        QTest::addColumn<int>("channels");
        for (const int precision : precisions)
            for (const int channels : {1, 2, 3, 4, 5, 6, 7, 8, 9})
                QTest::addRow("%d bits, %d channels", precision, channels) << precision << channels;
    }

    void equalsThePlainRule()
    {
        QFETCH(int, precision);
        QFETCH(int, channels);
        std::mt19937 random(unsigned(precision * 100 + channels));
        const auto below = [&](unsigned int limit) { return unsigned(random() % limit); };
        AudioData audio;
        AudioWaveform view(&audio);
        view.setViewWidth(150);
        const SampleInfo info = {quint16(channels), quint16(precision), 44100, 20000 + below(300)};
        audio.setSample(SampleSound::noise(info));
        for (int i = 0; i < 15; ++i) {
            const quint32 frames = audio.info().samples;
            const unsigned int start = below(frames);
            audio.select(start, start + below(i % 4 == 0 ? 9000 : 200));
            view.setSelectionScale(i % 2 == 0 ? QPointF(1, 1)
                                              : QPointF(below(30) / 10.0, below(40) / 10.0 - 1));
            switch (below(4)) {
            case 1:
                audio.undo();
                break;
            case 2:
                audio.moveSelection(below(frames));
                break;
            default:
                audio.replaceSelection(
                    SampleSound::noise({info.channels, info.precision, 1, below(3000)}).data);
            }
            view.setOffset(below(i % 5 == 0 ? frames : 300));
            const double zooms[] = {150.0 / frames, 1.0, 3.7, 0.99, 0.2, 0.01, 1.0 / 64};
            view.setZoom(zooms[below(7)]);
            QVERIFY2(PlainWaveform(audio, view) == view, qPrintable(QString::number(i)));
            audio.dragSelection(below(frames));
            view.update();
            QVERIFY2(PlainWaveform(audio, view) == view, qPrintable(QString::number(i)));
        }
        // Another sound of the same length and form.
        SampleInfo same = audio.info();
        audio.setSample(SampleSound::tones(2, 8000, 20000));
        QVERIFY(PlainWaveform(audio, view) == view);
        audio.setSample({same, QByteArray(int(same.samples) * Vela::frameSize(same), 'x')});
        QVERIFY(PlainWaveform(audio, view) == view);
    }

    // What only some processors can do gives the bounds that all find.
    void equalsOnEveryProcessor()
    {
        for (const quint16 precision : precisions) {
            const Vela::BoundsFormat &fast = Vela::BoundsFormat::of(precision);
            const Vela::BoundsFormat &plain = Vela::BoundsFormat::plain(precision);
            for (quint16 channels = 1; channels <= 9; ++channels) {
                const Vela::SoundSample sound = SampleSound::noise({channels, precision, 1, 100});
                const auto shape = plain.shapeOf(channels, std::size_t(frameSize(sound)));
                for (int count = 0; count <= 100; ++count) {
                    // Memory that ends with the frames.
                    const QByteArray frames = sound.data.right(count * frameSize(sound));
                    const std::vector<char> data(frames.begin(), frames.end());
                    Vela::SampleBounds found = fast.nothing;
                    fast.mergeFrames(data.data(), std::size_t(count), shape, found);
                    Vela::SampleBounds expected = plain.nothing;
                    plain.mergeFrames(data.data(), std::size_t(count), shape, expected);
                    QCOMPARE(std::memcmp(&found, &expected, sizeof(found)), 0);
                }
            }
        }
    }

    // Comes with a sound in it already, and after very many small edits.
    void staysExactThroughManyEdits()
    {
        AudioData audio;
        audio.setSample(SampleSound::noise({2, 16, 44100, 100000}));
        AudioWaveform view(&audio);
        view.setViewWidth(100);
        std::mt19937 random(3);
        for (int i = 0; i < 2000; ++i) {
            const unsigned int start = random() % audio.info().samples;
            audio.select(start, start + random() % 120);
            if (i % 2 == 0)
                audio.replaceSelection(QByteArray());
            else
                audio.moveSelection(random() % audio.info().samples);
            if (i % 100 == 0) {
                view.setZoom(100.0 / audio.info().samples);
                QVERIFY(PlainWaveform(audio, view) == view);
            }
        }
    }

    void rendersLanes()
    {
        AudioData audio;
        AudioWaveform view(&audio);
        // The first channel is at half height; the second swings fully.
        set(audio, 2, shorts({16384, -32768, 16384, 32767, 16384, -32768, 16384, 32767}));
        view.setViewWidth(4);
        QImage image(8, 100, QImage::Format_RGB32);
        const auto render = [&] {
            image.fill(Qt::black);
            QPainter painter(&image);
            view.render(painter, {Qt::green, Qt::red}, 10, 40, 5);
        };
        const auto column = [&image](int x, QRgb color) {
            QVector<int> rows;
            for (int y = 0; y < image.height(); ++y)
                if (image.pixel(x, y) == color)
                    rows.append(y);
            return rows;
        };
        const QRgb green = qRgb(0, 255, 0);
        const QRgb red = qRgb(255, 0, 0);
        render();
        QVERIFY(column(1, red).contains(30)); // the axis of the first lane is 10 + 20
        QVERIFY(column(1, green).contains(20));
        QVERIFY(column(1, green).contains(55)); // the second lane is from 55 to 95
        QVERIFY(column(2, green).contains(95));
        QVERIFY(column(5, green).isEmpty());
        view.setZoom(0.5);
        render();
        QCOMPARE(column(1, green).size(), 42); // a dot and a bar
        audio.setSample({});
        render();
        QVERIFY(column(1, green).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestAudioWaveform)
#include "tst_audiowaveform.moc"

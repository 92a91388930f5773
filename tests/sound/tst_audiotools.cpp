// SPDX-License-Identifier: MIT
#include "sound/audiodata.h"
#include "sound/audiotools.h"
#include "sound/audiowaveform.h"
#include "sound/soundsample.h"

#include <QCursor>
#include <QTest>
#include <QUndoStack>

using namespace Vela;

namespace {

// Ten frames of 8-bit mono, one pixel each in a view of 100.
class View
{
public:
    View()
    {
        audio.setSample({{1, 8, 8000, 10}, "0123456789"});
        waveform.setViewWidth(100);
    }

    AudioTool::Pointer at(int x, float height) const
    {
        const double frame = x * waveform.step() + waveform.offset();
        return {Qt::NoModifier, Qt::LeftButton, QPoint(x, 40),
                unsigned(qBound(0.0, frame, audio.info().samples - 1.0)), height};
    }

    void press(AudioTool &tool, int x, float height = 0)
    {
        tool.mousePress(at(x, height), cursor);
    }

    void move(AudioTool &tool, int x, float height = 0)
    {
        tool.mouseMove(at(x, height), cursor);
    }

    void release(AudioTool &tool, int x, float height = 0)
    {
        tool.mouseRelease(at(x, height), cursor);
    }

    void drag(AudioTool &tool, int from, int to)
    {
        press(tool, from);
        move(tool, to);
        release(tool, to);
    }

    QPair<unsigned int, unsigned int> selection() const
    {
        return {audio.selectionStart(), audio.selectionEnd()};
    }

    AudioData audio;
    AudioWaveform waveform{&audio};
    QCursor cursor;
};

using Range = QPair<unsigned int, unsigned int>;

} // namespace

class TestAudioTools : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void moveToolDragsTheView()
    {
        View view;
        MoveTool tool(&view.audio, &view.waveform);
        view.move(tool, 30);
        QCOMPARE(view.cursor.shape(), Qt::OpenHandCursor);
        view.waveform.setOffset(4);
        view.waveform.setZoom(2); // half a frame a pixel
        view.press(tool, 30);
        QCOMPARE(view.cursor.shape(), Qt::ClosedHandCursor);
        view.move(tool, 27);
        QCOMPARE(view.waveform.offset(), 6U); // 4 + 1.5
        QCOMPARE(view.cursor.shape(), Qt::ClosedHandCursor);
        view.move(tool, 33);
        QCOMPARE(view.waveform.offset(), 3U); // 4 - 1.5
        view.move(tool, 90);
        QCOMPARE(view.waveform.offset(), 0U);
        view.release(tool, 90);
        QCOMPARE(view.cursor.shape(), Qt::OpenHandCursor);
        view.move(tool, 0);
        QCOMPARE(view.waveform.offset(), 0U);
    }

    void selectionToolSelects()
    {
        View view;
        SelectionTool tool(&view.audio, &view.waveform);
        view.move(tool, 3);
        QCOMPARE(view.selection(), Range(0, 0));
        QCOMPARE(view.cursor.shape(), Qt::ArrowCursor);
        view.press(tool, 7);
        QCOMPARE(view.selection(), Range(7, 7));
        view.move(tool, 2);
        QCOMPARE(view.selection(), Range(7, 2));
        view.release(tool, 2);
        view.move(tool, 5);
        QCOMPARE(view.selection(), Range(7, 2));

        QVERIFY(!tool.keyPress(Qt::NoModifier, Qt::Key_Left));
        QVERIFY(!tool.keyPress(Qt::ShiftModifier | Qt::ControlModifier, Qt::Key_Left));
        QVERIFY(!tool.keyPress(Qt::ShiftModifier, Qt::Key_Up));
        QVERIFY(tool.keyPress(Qt::ShiftModifier, Qt::Key_Right));
        QCOMPARE(view.selection(), Range(7, 3));
        for (int i = 0; i < 5; ++i)
            QVERIFY(tool.keyPress(Qt::ShiftModifier, Qt::Key_Left));
        QCOMPARE(view.selection(), Range(7, 0));
    }

    void zoomToolShowsWhatWasDraggedOver()
    {
        View view;
        ZoomTool tool(&view.audio, &view.waveform);
        view.audio.select(5, 3);
        view.press(tool, 7);
        view.move(tool, 2);
        QCOMPARE(view.cursor.shape(), Qt::PointingHandCursor);
        QCOMPARE(view.selection(), Range(7, 2));
        view.release(tool, 2);
        QCOMPARE(view.selection(), Range(5, 3));
        QCOMPARE(view.waveform.offset(), 2U);
        QCOMPARE(view.waveform.zoom(), 20.0);
        view.drag(tool, 0, 0); // a click zooms nowhere
        QCOMPARE(view.waveform.zoom(), 20.0);
        QCOMPARE(view.selection(), Range(5, 3));
        view.press(tool, 0);
        view.move(tool, 60);
        tool.deactivated();
        QCOMPARE(view.selection(), Range(5, 3));
        view.release(tool, 60);
        QCOMPARE(view.waveform.zoom(), 20.0);
    }

    void selectionMoveToolMoves()
    {
        View view;
        SelectionMoveTool tool(&view.audio, &view.waveform);
        view.drag(tool, 3, 5); // nothing is selected
        QVERIFY(!tool.keyPress(Qt::ShiftModifier, Qt::Key_Left));
        view.audio.select(4, 2);
        for (const int x : {1, 2, 3, 4}) {
            view.move(tool, x);
            QCOMPARE(view.cursor.shape(), x == 2 || x == 3 ? Qt::SizeAllCursor : Qt::ArrowCursor);
        }
        const std::vector<quint32> shown = view.waveform.points();
        view.press(tool, 3);
        view.move(tool, 9);
        QCOMPARE(view.audio.data(), QByteArray("0145678923"));
        view.move(tool, 0);
        QCOMPARE(view.audio.data(), QByteArray("2301456789"));
        QVERIFY(view.waveform.points() != shown);
        view.move(tool, 5);
        QCOMPARE(view.audio.data(), QByteArray("0145236789"));
        QCOMPARE(view.audio.undoStack()->count(), 0);
        view.release(tool, 5);
        QCOMPARE(view.audio.data(), QByteArray("0145236789"));
        QCOMPARE(view.selection(), Range(4, 6));
        QCOMPARE(view.audio.undoStack()->count(), 1);
        QVERIFY(tool.keyPress(Qt::ShiftModifier, Qt::Key_Left));
        QCOMPARE(view.audio.data(), QByteArray("0142356789"));
        view.audio.undo();
        view.audio.undo();
        QCOMPARE(view.audio.data(), QByteArray("0123456789"));

        view.audio.select(0, 2);
        QVERIFY(tool.keyPress(Qt::ShiftModifier, Qt::Key_Left)); // no further
        QCOMPARE(view.audio.undoStack()->index(), 0);
        view.press(tool, 1);
        view.move(tool, 5);
        tool.deactivated();
        QCOMPARE(view.audio.data(), QByteArray("0123456789"));
        view.release(tool, 5);
        QCOMPARE(view.audio.undoStack()->index(), 0);
    }

    void hResizeToolResamples()
    {
        View view;
        // A long piece in the middle of silence.
        const QByteArray data =
            QByteArray(50, '\x80') + QByteArray(400, '\xc0') + QByteArray(50, '\x80');
        view.audio.setSample({{1, 8, 8000, 500}, data});
        view.waveform.setViewWidth(500);
        HResizeTool tool(&view.audio, &view.waveform);
        view.drag(tool, 60, 90); // nothing is selected
        view.audio.select(450, 50);
        view.move(tool, 60);
        QCOMPARE(view.cursor.shape(), Qt::SizeHorCursor);
        view.press(tool, 440);
        view.release(tool, 440); // a click changes nothing
        QCOMPARE(view.audio.undoStack()->count(), 0);
        for (const int length : {300, 450}) {
            view.press(tool, 440);
            view.move(tool, 40 + length);
            QCOMPARE(view.waveform.selectionScale(), QPointF(length / 400.0, 1));
            view.release(tool, 40 + length);
            QCOMPARE(view.waveform.selectionScale(), QPointF(1, 1));
            QCOMPARE(view.selection(), Range(50, unsigned(50 + length)));
            QCOMPARE(view.audio.info().samples, quint32(length + 100));
            QCOMPARE(view.audio.data().left(50), data.left(50));
            QCOMPARE(view.audio.data().right(50), data.right(50));
            QVERIFY(qAbs(quint8(view.audio.data().at(50 + length / 2)) - 0xc0) <= 1);
            view.audio.undo();
            QCOMPARE(view.audio.data(), data);
            view.audio.select(50, 450);
        }
        view.press(tool, 440);
        view.move(tool, 0); // beyond its beginning
        QCOMPARE(view.waveform.selectionScale(), QPointF(0, 1));
        view.release(tool, 0);
        QCOMPARE(view.audio.data(), QByteArray(100, '\x80'));
        QCOMPARE(view.selection(), Range(50, 50));
        QCOMPARE(view.audio.undoStack()->count(), 1);
    }

    // A single frame cannot be made 400: the converter takes no such ratio.
    void hResizeToolKeepsWhatCannotBeResampled()
    {
        View view;
        const QByteArray data(500, '\x90');
        view.audio.setSample({{1, 8, 8000, 500}, data});
        view.waveform.setViewWidth(500);
        view.audio.select(10, 11);
        HResizeTool tool(&view.audio, &view.waveform);
        view.drag(tool, 10, 410);
        QCOMPARE(view.audio.data(), data);
        QCOMPARE(view.selection(), Range(10, 11));
        QCOMPARE(view.waveform.selectionScale(), QPointF(1, 1));
    }

    void vResizeToolScales()
    {
        View view;
        view.audio.setSample({{1, 8, 8000, 4}, QByteArray("\x90\x70\xd0\x81", 4)});
        VResizeTool tool(&view.audio, &view.waveform);
        view.press(tool, 1, 0.0F);
        view.release(tool, 1, 1.0F); // nothing is selected
        view.audio.select(3, 0);
        view.press(tool, 1, 0.25F);
        view.release(tool, 1, 0.25F); // a click changes nothing
        QCOMPARE(view.audio.undoStack()->count(), 0);
        view.press(tool, 1, -0.5F);
        view.move(tool, 1, 0.5F);
        QCOMPARE(view.waveform.selectionScale(), QPointF(1, 2));
        QCOMPARE(view.cursor.shape(), Qt::SizeVerCursor);
        view.release(tool, 1, 0.5F);
        QCOMPARE(view.waveform.selectionScale(), QPointF(1, 1));
        // 16, -16 and 80 from the middle doubled; the last is clipped.
        QCOMPARE(view.audio.data(), QByteArray("\xa0\x60\xff\x81", 4));
        view.press(tool, 1, 1.0F);
        view.release(tool, 1, -0.5F);
        QCOMPARE(view.audio.data(), QByteArray("\x70\x90\x41\x81", 4));
        view.audio.undo();
        view.audio.undo();
        QCOMPARE(view.audio.data(), QByteArray("\x90\x70\xd0\x81", 4));
        view.press(tool, 1, 0.0F);
        view.move(tool, 1, 1.0F);
        tool.deactivated();
        QCOMPARE(view.waveform.selectionScale(), QPointF(1, 1));
    }
};

QTEST_MAIN(TestAudioTools)
#include "tst_audiotools.moc"

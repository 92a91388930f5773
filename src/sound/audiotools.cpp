// SPDX-License-Identifier: MIT
#include "sound/audiotools.h"

#include "sound/audiodata.h"
#include "sound/audiowaveform.h"
#include "sound/samplebytes_p.h"

#include <QCursor>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vela {

namespace {

/// -1 for left and 1 for right, with Shift; 0 for everything else.
int keyStep(Qt::KeyboardModifiers modifiers, int key)
{
    if ((modifiers & ~Qt::KeyboardModifiers(Qt::KeypadModifier)) != Qt::ShiftModifier)
        return 0;
    return key == Qt::Key_Left ? -1 : key == Qt::Key_Right ? 1 : 0;
}

/// The selected frames as a sound of their own.
SoundSample selectedSound(const AudioData &audio, unsigned int count)
{
    SoundSample sound;
    static_cast<SampleInfo &>(sound) = audio.info();
    sound.samples = count;
    sound.data = audio.selectedBytes();
    return sound;
}

/// Gives a sound another number of frames, 0 included. Returns false if that cannot be done.
bool resize(SoundSample &sound, qint64 count)
{
    const qint64 size = count * frameSize(sound);
    if (size > LargestData)
        return false;
    if (count > 0) {
        // A little more than is wanted, as the frames that come out are rounded down.
        const double rate = std::ceil(double(count) * sound.frequency / sound.samples + 0.5);
        if (rate > std::numeric_limits<quint32>::max())
            return false;
        SampleInfo target = sound;
        target.frequency = quint32(rate);
        if (!resampleSound(sound, target) || sound.data.isEmpty())
            return false;
    }
    sound.data.truncate(int(size));
    return true;
}

} // namespace

AudioTool::AudioTool(AudioData *data, AudioWaveform *view, QObject *parent)
    : QObject(parent)
    , audio(data)
    , waveform(view)
{
}

void AudioTool::activated()
{
}

void AudioTool::deactivated()
{
}

bool AudioTool::keyPress(Qt::KeyboardModifiers, int)
{
    return false;
}

void AudioTool::mousePress(const Pointer &, QCursor &)
{
}

void AudioTool::mouseRelease(const Pointer &, QCursor &)
{
}

void AudioTool::mouseMove(const Pointer &, QCursor &)
{
}

void AudioTool::paint()
{
}

bool AudioTool::isSelected(unsigned int frame) const
{
    unsigned int low = 0;
    unsigned int high = 0;
    audio->selection(low, high);
    return low <= frame && frame < high;
}

void MoveTool::deactivated()
{
    dragging = false;
}

void MoveTool::mousePress(const Pointer &pointer, QCursor &cursor)
{
    dragging = true;
    m_startX = pointer.position.x();
    startSample = waveform->offset();
    cursor = Qt::ClosedHandCursor;
}

void MoveTool::mouseRelease(const Pointer &, QCursor &cursor)
{
    dragging = false;
    cursor = Qt::OpenHandCursor;
}

void MoveTool::mouseMove(const Pointer &pointer, QCursor &cursor)
{
    if (!dragging) {
        cursor = Qt::OpenHandCursor;
        return;
    }
    const double offset =
        std::round(startSample - (pointer.position.x() - m_startX) * waveform->step());
    waveform->setOffset(static_cast<unsigned int>(
        qBound(0.0, offset, double(std::numeric_limits<unsigned int>::max()))));
}

void SelectionTool::deactivated()
{
    dragging = false;
}

bool SelectionTool::keyPress(Qt::KeyboardModifiers modifiers, int key)
{
    const int step = keyStep(modifiers, key);
    if (step == 0)
        return false;
    const qint64 end = std::max<qint64>(qint64(audio->selectionEnd()) + step, 0);
    audio->select(audio->selectionStart(), static_cast<unsigned int>(end));
    return true;
}

void SelectionTool::mousePress(const Pointer &pointer, QCursor &)
{
    dragging = true;
    startSample = pointer.frame;
    audio->select(startSample, startSample);
}

void SelectionTool::mouseRelease(const Pointer &, QCursor &)
{
    dragging = false;
}

void SelectionTool::mouseMove(const Pointer &pointer, QCursor &cursor)
{
    if (dragging)
        audio->select(startSample, pointer.frame);
    cursor = Qt::ArrowCursor;
}

void ZoomTool::deactivated()
{
    if (dragging)
        restoreSelection();
    SelectionTool::deactivated();
}

void ZoomTool::mousePress(const Pointer &pointer, QCursor &cursor)
{
    m_selectionStart = audio->selectionStart();
    m_selectionEnd = audio->selectionEnd();
    SelectionTool::mousePress(pointer, cursor);
}

void ZoomTool::mouseRelease(const Pointer &pointer, QCursor &cursor)
{
    if (!dragging)
        return;
    SelectionTool::mouseRelease(pointer, cursor);
    unsigned int low = 0;
    unsigned int high = 0;
    audio->selection(low, high);
    if (low != high) {
        waveform->setOffset(low);
        waveform->setZoom(double(waveform->viewWidth()) / (high - low));
    }
    restoreSelection();
}

void ZoomTool::mouseMove(const Pointer &pointer, QCursor &cursor)
{
    SelectionTool::mouseMove(pointer, cursor);
    cursor = Qt::PointingHandCursor;
}

void ZoomTool::restoreSelection()
{
    audio->select(m_selectionStart, m_selectionEnd);
}

void SelectionMoveTool::deactivated()
{
    if (!std::exchange(dragging, false))
        return;
    audio->cancelDrag();
    waveform->update();
}

bool SelectionMoveTool::keyPress(Qt::KeyboardModifiers modifiers, int key)
{
    const int step = keyStep(modifiers, key);
    unsigned int low = 0;
    unsigned int high = 0;
    audio->selection(low, high);
    if (step == 0 || low == high)
        return false;
    commit(qint64(low) + step);
    return true;
}

void SelectionMoveTool::mousePress(const Pointer &pointer, QCursor &)
{
    unsigned int high = 0;
    dragging = true;
    startSample = pointer.frame;
    audio->selection(m_startLow, high);
}

void SelectionMoveTool::mouseRelease(const Pointer &, QCursor &)
{
    unsigned int low = 0;
    unsigned int high = 0;
    audio->selection(low, high);
    if (std::exchange(dragging, false))
        commit(low);
}

void SelectionMoveTool::mouseMove(const Pointer &pointer, QCursor &cursor)
{
    cursor = isSelected(pointer.frame) ? Qt::SizeAllCursor : Qt::ArrowCursor;
    if (!dragging)
        return;
    const qint64 low = qint64(m_startLow) + pointer.frame - startSample;
    audio->dragSelection(static_cast<unsigned int>(std::max<qint64>(low, 0)));
    waveform->update();
}

void SelectionMoveTool::commit(qint64 position)
{
    audio->moveSelection(static_cast<unsigned int>(std::max<qint64>(position, 0)));
}

void HResizeTool::deactivated()
{
    dragging = false;
    waveform->setSelectionScale({1.0, waveform->selectionScale().y()});
}

void HResizeTool::mousePress(const Pointer &pointer, QCursor &)
{
    dragging = true;
    startSample = pointer.frame;
}

void HResizeTool::mouseMove(const Pointer &pointer, QCursor &cursor)
{
    unsigned int low = 0;
    unsigned int high = 0;
    audio->selection(low, high);
    if (dragging && low != high)
        waveform->setSelectionScale({double(resized(high - low, pointer.frame)) / (high - low),
                                     waveform->selectionScale().y()});
    cursor = isSelected(pointer.frame) ? Qt::SizeHorCursor : Qt::ArrowCursor;
}

void HResizeTool::mouseRelease(const Pointer &pointer, QCursor &)
{
    const bool dragged = dragging;
    deactivated();
    unsigned int low = 0;
    unsigned int high = 0;
    audio->selection(low, high);
    const qint64 count = resized(high - low, pointer.frame);
    if (!dragged || low == high || count == high - low)
        return;
    SoundSample sound = selectedSound(*audio, high - low);
    if (resize(sound, count) && audio->replaceSelection(sound.data))
        audio->select(low, low + static_cast<unsigned int>(count));
}

qint64 HResizeTool::resized(unsigned int count, unsigned int frame) const
{
    return std::max<qint64>(qint64(count) - startSample + frame, 0);
}

void VResizeTool::deactivated()
{
    dragging = false;
    waveform->setSelectionScale({waveform->selectionScale().x(), 1.0});
}

void VResizeTool::mousePress(const Pointer &pointer, QCursor &)
{
    dragging = true;
    startY = pointer.height;
}

void VResizeTool::mouseMove(const Pointer &pointer, QCursor &cursor)
{
    unsigned int low = 0;
    unsigned int high = 0;
    audio->selection(low, high);
    if (dragging && low != high)
        waveform->setSelectionScale(
            {waveform->selectionScale().x(), double(pointer.height - startY + 1.0F)});
    cursor = isSelected(pointer.frame) ? Qt::SizeVerCursor : Qt::ArrowCursor;
}

void VResizeTool::mouseRelease(const Pointer &pointer, QCursor &)
{
    const bool dragged = dragging;
    deactivated();
    const float factor = pointer.height - startY + 1.0F;
    QByteArray bytes = audio->selectedBytes();
    if (!dragged || bytes.isEmpty() || factor == 1.0F)
        return;
    const unsigned short precision = audio->info().precision;
    char *const end = bytes.data() + bytes.size();
    for (char *sample = bytes.data(); sample < end; sample += sampleSize(precision))
        scaleSample(sample, sample, factor, precision);
    audio->replaceSelection(bytes);
}

} // namespace Vela

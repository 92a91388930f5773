// SPDX-License-Identifier: MIT
#include "sound/audiodata.h"

#include "sound/audiodata_p.h"
#include "sound/samplebytes_p.h"
#include "sound/sampleundo_p.h"

#include <algorithm>
#include <cstring>

namespace Vela {

AudioDataPrivate::AudioDataPrivate(AudioData *audio)
    : q(audio)
    , cache(StreamCache::instance(nullptr, StreamCache::Default))
{
}

QByteArray AudioDataPrivate::read(int position, int length)
{
    settle();
    return data.mid(position, length);
}

void AudioDataPrivate::insert(int position, const QByteArray &bytes)
{
    moveGap(position);
    const int more = bytes.size() - m_gapLength;
    if (more > 0) {
        const int tail = m_gap + m_gapLength;
        const int tailLength = data.size() - tail;
        data.resize(data.size() + more);
        std::memmove(data.data() + tail + more, data.constData() + tail, std::size_t(tailLength));
        m_gapLength += more;
    }
    std::memcpy(data.data() + m_gap, bytes.constData(), std::size_t(bytes.size()));
    m_gap += bytes.size();
    m_gapLength -= bytes.size();
    notify(position, 0, bytes.size());
}

void AudioDataPrivate::remove(int position, int length)
{
    moveGap(position);
    m_gapLength += length;
    notify(position, length, 0);
}

void AudioDataPrivate::overwrite(int position, const QByteArray &bytes)
{
    Q_ASSERT(m_gapLength == 0);
    std::memcpy(data.data() + position, bytes.constData(), std::size_t(bytes.size()));
    notify(position, bytes.size(), bytes.size());
}

void AudioDataPrivate::settle()
{
    const int length = m_gapLength;
    moveGap(data.size() - length);
    m_gapLength = 0;
    if (length > 0)
        data.chop(length);
}

void AudioDataPrivate::moveGap(int position)
{
    if (m_gapLength > 0 && position != m_gap) {
        char *const bytes = data.data();
        if (position < m_gap)
            std::memmove(bytes + position + m_gapLength, bytes + position,
                         std::size_t(m_gap - position));
        else
            std::memmove(bytes + m_gap, bytes + m_gap + m_gapLength, std::size_t(position - m_gap));
    }
    m_gap = position;
}

void AudioDataPrivate::notify(int position, int removed, int inserted)
{
    const auto frames = [this](int bytes) { return quint32(bytes) / frameSize; };
    info.samples = info.samples - frames(removed) + frames(inserted);
    Q_EMIT q->framesReplaced(frames(position), frames(removed), frames(inserted));
}

bool AudioDataPrivate::fits(qint64 growth) const
{
    return data.size() + growth <= LargestData;
}

void AudioDataPrivate::store(unsigned int start, unsigned int end)
{
    selectionStart = start;
    selectionEnd = end;
    Q_EMIT q->selectionChanged(start, end);
}

void AudioDataPrivate::finishEdit()
{
    settle();
    Q_EMIT q->sampleChanged();
    if (std::max(selectionStart, selectionEnd) > info.samples)
        store(std::min(selectionStart, info.samples), std::min(selectionEnd, info.samples));
}

void AudioDataPrivate::rotate(unsigned int to)
{
    unsigned int low = 0;
    unsigned int high = 0;
    q->selection(low, high);
    if (to == low)
        return;
    // The frames that the selection passes change over to its other side.
    char *const bytes = data.data();
    const auto at = [&](unsigned int frame) { return bytes + std::size_t(frame) * frameSize; };
    const unsigned int count = high - low;
    const unsigned int passed = to > low ? to - low : low - to;
    const unsigned int source = to > low ? high : to;
    const unsigned int target = to > low ? low : to + count;
    const QByteArray kept(at(source), int(passed * frameSize));
    std::memmove(at(to), at(low), std::size_t(count) * frameSize);
    std::memcpy(at(target), kept.constData(), std::size_t(kept.size()));
    Q_EMIT q->framesReplaced(source, passed, 0);
    Q_EMIT q->framesReplaced(target, 0, passed);
    store(to, to + count);
}

AudioData::AudioData(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<AudioDataPrivate>(this))
{
}

AudioData::~AudioData()
{
    // The stack tells of its end, too, to slots that may look at this sound.
    d->undoStack.blockSignals(true);
}

void AudioData::setSample(const SoundSample &sample)
{
    Q_EMIT sampleAboutToChange();
    d->undoStack.clear();
    d->draggedFrom.reset();
    const quint32 before = d->info.samples;
    d->info = sample;
    // Only what decodeSample() knows may reach the views.
    d->frameSize = isKnownPrecision(sample.precision) ? quint32(Vela::frameSize(sample)) : 0;
    d->info.samples = d->frameSize > 0 ? quint32(wholeFrames(sample)) : 0;
    d->data = sample.data.left(int(d->info.samples * d->frameSize));
    d->selectionStart = 0;
    d->selectionEnd = 0;
    Q_EMIT framesReplaced(0, before, d->info.samples);
    Q_EMIT sampleChanged();
    Q_EMIT selectionChanged(0, 0);
}

const SampleInfo &AudioData::info() const
{
    return d->info;
}

const QByteArray &AudioData::data() const
{
    d->settle(); // a slot may ask in the middle of an edit
    return d->data;
}

unsigned int AudioData::frameSize() const
{
    return d->frameSize;
}

QUndoStack *AudioData::undoStack() const
{
    return &d->undoStack;
}

void AudioData::select(unsigned int start, unsigned int end)
{
    cancelDrag();
    const quint32 count = d->info.samples;
    if (count == 0)
        return d->store(0, 0);
    const quint32 last = count - 1;
    if (start > count)
        return d->store(count, std::min(end, last));
    d->store(std::min(start, last), end > count ? count : std::min(end, last));
}

void AudioData::selection(unsigned int &low, unsigned int &high) const
{
    low = std::min(d->selectionStart, d->selectionEnd);
    high = std::max(d->selectionStart, d->selectionEnd);
}

unsigned int AudioData::selectionStart() const
{
    return d->selectionStart;
}

unsigned int AudioData::selectionEnd() const
{
    return d->selectionEnd;
}

QByteArray AudioData::selectedBytes() const
{
    unsigned int low = 0;
    unsigned int high = 0;
    selection(low, high);
    return low == high ? QByteArray()
                       : data().mid(int(d->frameSize * low), int(d->frameSize * (high - low)));
}

bool AudioData::replaceSelection(const QByteArray &bytes)
{
    cancelDrag();
    unsigned int low = 0;
    unsigned int high = 0;
    selection(low, high);
    const int position = int(d->frameSize * low);
    const int length = int(d->frameSize * (high - low));
    const bool wholeFrames =
        !bytes.isEmpty() && d->frameSize != 0 && quint32(bytes.size()) % d->frameSize == 0;
    if (!wholeFrames && (length == 0 || !bytes.isEmpty()))
        return false;
    if (!d->fits(qint64(bytes.size()) - length))
        return false;

    if (bytes.isEmpty()) {
        d->undoStack.push(new SampleRemove(d.get(), position, length));
    } else if (length == 0) {
        d->undoStack.push(new SampleInsert(d.get(), position, bytes));
    } else if (bytes.size() == length) {
        d->undoStack.push(new SampleChange(d.get(), position, bytes));
    } else {
        d->undoStack.beginMacro(QString());
        d->undoStack.push(new SampleRemove(d.get(), position, length));
        d->undoStack.push(new SampleInsert(d.get(), position, bytes));
        d->undoStack.endMacro();
    }
    d->finishEdit();
    return true;
}

void AudioData::moveSelection(unsigned int position)
{
    cancelDrag();
    unsigned int low = 0;
    unsigned int high = 0;
    selection(low, high);
    const unsigned int to = std::min(position, d->info.samples - (high - low));
    if (low == high || to == low)
        return;
    const QByteArray bytes = selectedBytes();
    d->undoStack.beginMacro(QString());
    d->undoStack.push(new SampleRemove(d.get(), int(d->frameSize * low), bytes.size()));
    d->undoStack.push(new SampleInsert(d.get(), int(d->frameSize * to), bytes));
    d->undoStack.endMacro();
    d->finishEdit();
    // Not by select(), which leaves the last frame of the sound out.
    d->store(to, to + (high - low));
}

void AudioData::dragSelection(unsigned int position)
{
    unsigned int low = 0;
    unsigned int high = 0;
    selection(low, high);
    if (low == high)
        return;
    if (!d->draggedFrom)
        d->draggedFrom = low;
    d->rotate(std::min(position, d->info.samples - (high - low)));
}

void AudioData::cancelDrag()
{
    if (!d->draggedFrom)
        return;
    const unsigned int from = *d->draggedFrom;
    d->draggedFrom.reset();
    d->rotate(from);
}

void AudioData::undo()
{
    cancelDrag();
    d->undoStack.undo();
    d->finishEdit();
}

void AudioData::redo()
{
    cancelDrag();
    d->undoStack.redo();
    d->finishEdit();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "sound/audiodata_p.h"
#include "sound/sampleundo_p.h"

namespace Vela {

namespace {

// Any encoding tells the cache to keep a stream as it is.
constexpr unsigned int plainFrames = 1;

} // namespace

SampleUndoCommand::SampleUndoCommand(AudioDataPrivate *audio, int position, int length)
    : m_audio(audio)
    , m_position(position)
    , m_length(length)
    , m_item(audio->cache->addItem(QVariant()))
{
}

SampleUndoCommand::~SampleUndoCommand()
{
    m_item->release();
}

void SampleUndoCommand::keep(const QByteArray &bytes)
{
    m_refused = m_item->setRawData(bytes, plainFrames, nullptr, 0) ? QByteArray() : bytes;
}

QByteArray SampleUndoCommand::kept() const
{
    QByteArray bytes = m_refused.isEmpty() ? m_item->data() : m_refused;
    if (bytes.size() != m_length)
        bytes = QByteArray(m_length, m_audio->info.precision == 8 ? '\x80' : '\0');
    return bytes;
}

void SampleUndoCommand::forget()
{
    keep(QByteArray());
}

void SampleUndoCommand::putIn()
{
    m_audio->insert(m_position, kept());
    forget();
}

void SampleUndoCommand::takeOut()
{
    keep(m_audio->read(m_position, m_length));
    m_audio->remove(m_position, m_length);
}

SampleInsert::SampleInsert(AudioDataPrivate *audio, int position, const QByteArray &bytes)
    : SampleUndoCommand(audio, position, bytes.size())
{
    keep(bytes);
}

void SampleInsert::redo()
{
    putIn();
}

void SampleInsert::undo()
{
    takeOut();
}

SampleRemove::SampleRemove(AudioDataPrivate *audio, int position, int length)
    : SampleUndoCommand(audio, position, length)
{
}

void SampleRemove::redo()
{
    takeOut();
}

void SampleRemove::undo()
{
    putIn();
}

SampleChange::SampleChange(AudioDataPrivate *audio, int position, const QByteArray &bytes)
    : SampleUndoCommand(audio, position, bytes.size())
{
    keep(bytes);
}

void SampleChange::redo()
{
    const QByteArray other = kept();
    keep(m_audio->read(m_position, m_length));
    m_audio->overwrite(m_position, other);
}

void SampleChange::undo()
{
    redo();
}

} // namespace Vela

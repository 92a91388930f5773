// SPDX-License-Identifier: MIT
#pragma once

#include "cache/streamcache.h"

#include <QUndoCommand>
#include <memory>

namespace Vela {

class AudioDataPrivate;

/// A step of undo on a sound. The bytes that it needs are in an item of the sound's cache; while
/// they are in the sound itself the item is empty. They are kept as they are: to compress them
/// would take far longer than the edit.
class SampleUndoCommand : public QUndoCommand
{
public:
    ~SampleUndoCommand() override;

protected:
    /// Positions and lengths are in bytes.
    SampleUndoCommand(AudioDataPrivate *audio, int position, int length);

    void keep(const QByteArray &bytes);
    /// Returns as many bytes as were kept; silence in place of what the disk has lost, so that the
    /// steps before this one still meet the sound that they have made.
    QByteArray kept() const;
    void forget();

    /// Puts the kept bytes into the sound.
    void putIn();
    /// Takes the bytes out of the sound and keeps them.
    void takeOut();

    AudioDataPrivate *const m_audio;
    const int m_position;
    const int m_length;

private:
    StreamCache::Item *const m_item;
    QByteArray m_refused; // bytes that the cache could not take
};

class SampleInsert : public SampleUndoCommand
{
public:
    SampleInsert(AudioDataPrivate *audio, int position, const QByteArray &bytes);
    void redo() override;
    void undo() override;
};

class SampleRemove : public SampleUndoCommand
{
public:
    SampleRemove(AudioDataPrivate *audio, int position, int length);
    void redo() override;
    void undo() override;
};

/// Keeps the other version of the bytes.
class SampleChange : public SampleUndoCommand
{
public:
    SampleChange(AudioDataPrivate *audio, int position, const QByteArray &bytes);
    void redo() override;
    void undo() override;
};

} // namespace Vela

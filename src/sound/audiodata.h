// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QByteArray>
#include <QObject>
#include <memory>

class QUndoStack;

namespace Vela {

struct SampleInfo;
struct SoundSample;
class AudioDataPrivate;

/// One sound that is being edited: its frames in memory, a selection, and an undo stack. The bytes
/// that undo and redo need are kept in a stream cache, which the setting "cache_type" chooses.
/// Positions are frames, counted from 0. Main thread only.
class VELA_EXPORT AudioData : public QObject
{
    Q_OBJECT

public:
    explicit AudioData(QObject *parent = nullptr);
    ~AudioData() override;

    /// Takes another sound, with nothing selected and nothing to undo. It has the whole frames that
    /// its data really holds; none if its precision is not 8, 16, 20, 24 or 32 bits.
    void setSample(const SoundSample &sample);
    const SampleInfo &info() const;
    /// The frames as SoundSample::data has them. Valid until the next edit.
    const QByteArray &data() const;
    /// Bytes of one frame.
    unsigned int frameSize() const;
    /// For what it knows of itself and for setClean(); steps are taken by undo() and redo().
    QUndoStack *undoStack() const;

    /// Selects the frames from \a start to in front of \a end, which may be in front of \a start.
    /// The end of the sound counts as its last frame; one position past the end means the end
    /// itself, and two of them the last frame.
    void select(unsigned int start, unsigned int end);
    /// The selection in order.
    void selection(unsigned int &low, unsigned int &high) const;
    /// The selection as it was made.
    unsigned int selectionStart() const;
    unsigned int selectionEnd() const;
    /// The bytes of the selected frames; empty if none are.
    QByteArray selectedBytes() const;

    /// Puts frames in the place of those selected, which go if \a bytes is empty. Without a
    /// selection they are inserted there. Returns false, with nothing done, if \a bytes is not
    /// whole frames, if there is nothing to do, or if the sound would take more than the 2 GB that
    /// fit in memory as one piece.
    bool replaceSelection(const QByteArray &bytes);
    /// Moves the selected frames so that they begin at \a position, or as near to it as the sound
    /// allows. They stay selected. One step for undo; none if they are there already.
    void moveSelection(unsigned int position);
    /// The same for the time of a drag: no step for undo, and no sampleChanged(). The next edit,
    /// selection, undo or redo puts the frames back first.
    void dragSelection(unsigned int position);
    /// Puts back what dragSelection() has moved.
    void cancelDrag();

    void undo();
    void redo();

Q_SIGNALS:
    /// Another sound is about to be set.
    void sampleAboutToChange();
    void sampleChanged();
    void selectionChanged(unsigned int start, unsigned int end);
    /// A part of the sound is another: \a removed frames from \a from on have given way to
    /// \a inserted ones. Comes for each part, before sampleChanged(); data() may have the parts
    /// that are still to come already.
    void framesReplaced(unsigned int from, unsigned int removed, unsigned int inserted);

private:
    const std::unique_ptr<AudioDataPrivate> d;
};

} // namespace Vela

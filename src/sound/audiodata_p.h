// SPDX-License-Identifier: MIT
#pragma once

#include "cache/streamcache.h"
#include "sound/audiodata.h"
#include "sound/soundsample.h"

#include <QUndoStack>
#include <optional>

namespace Vela {

/// Positions and lengths are bytes here, and fit in an int as the whole sound does.
///
/// remove() leaves a gap in the data that the next insert() fills, so that a replacement moves the
/// tail of the sound once. Whoever begins an edit ends it with settle(), which closes the gap;
/// whoever looks at the data before does so, too.
class AudioDataPrivate
{
public:
    explicit AudioDataPrivate(AudioData *audio);

    QByteArray read(int position, int length);
    void insert(int position, const QByteArray &bytes);
    void remove(int position, int length);
    void overwrite(int position, const QByteArray &bytes);
    void settle();

    bool fits(qint64 growth) const;
    void store(unsigned int start, unsigned int end);
    /// Ends an edit, which may have cut off frames that were selected.
    void finishEdit();
    /// Moves the selected frames without a command.
    void rotate(unsigned int to);

    AudioData *const q;

    struct Release
    {
        void operator()(StreamCache *held) const
        {
            held->release();
        }
    };
    const std::unique_ptr<StreamCache, Release> cache; // outlives the commands
    SampleInfo info;
    QByteArray data;
    quint32 frameSize = 0;
    quint32 selectionStart = 0;
    quint32 selectionEnd = 0;
    std::optional<unsigned int> draggedFrom; // where the frames of a drag belong
    QUndoStack undoStack;

private:
    void moveGap(int position);
    void notify(int position, int removed, int inserted);

    int m_gap = 0; // position
    int m_gapLength = 0;
};

} // namespace Vela

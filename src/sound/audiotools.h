// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QObject>
#include <QPoint>

class QCursor;

namespace Vela {

class AudioData;
class AudioWaveform;

/// Turns what the mouse and the keys do on a waveform's view into operations on the sound and on
/// the waveform. The view calls it.
class VELA_EXPORT AudioTool : public QObject
{
    Q_OBJECT

public:
    /// Where the mouse is, and what is held down.
    struct Pointer
    {
        Qt::KeyboardModifiers modifiers;
        Qt::MouseButtons buttons;
        QPoint position;    ///< pixels of the view
        unsigned int frame; ///< that under the position, taken to the nearest of the sound
        float height;       ///< in the lane, from -1 at the bottom to 1 at the top
    };

    /// Both have to live as long as the tool.
    AudioTool(AudioData *audio, AudioWaveform *waveform, QObject *parent = nullptr);

    /// The tool becomes the current one.
    virtual void activated();
    /// Another tool takes over. What a drag has not finished is undone.
    virtual void deactivated();
    /// Returns true if the key, one of Qt::Key, meant something.
    virtual bool keyPress(Qt::KeyboardModifiers modifiers, int key);
    /// These may change the view's cursor.
    virtual void mousePress(const Pointer &pointer, QCursor &cursor);
    virtual void mouseRelease(const Pointer &pointer, QCursor &cursor);
    virtual void mouseMove(const Pointer &pointer, QCursor &cursor);
    /// Called when the view is painted.
    virtual void paint();

protected:
    /// Tells whether the frame is selected.
    bool isSelected(unsigned int frame) const;

    AudioData *const audio;
    AudioWaveform *const waveform;
    bool dragging = false;
    float startY = 0; ///< height in the lane where the button went down
    unsigned int startSample = 0;
};

/// Drags the view along the sound.
class VELA_EXPORT MoveTool : public AudioTool
{
    Q_OBJECT

public:
    using AudioTool::AudioTool;

    void deactivated() override;
    void mousePress(const Pointer &pointer, QCursor &cursor) override;
    void mouseRelease(const Pointer &pointer, QCursor &cursor) override;
    void mouseMove(const Pointer &pointer, QCursor &cursor) override;

private:
    int m_startX = 0;
};

/// Selects frames.
class VELA_EXPORT SelectionTool : public AudioTool
{
    Q_OBJECT

public:
    using AudioTool::AudioTool;

    void deactivated() override;
    /// Shift with left or right moves the end of the selection.
    bool keyPress(Qt::KeyboardModifiers modifiers, int key) override;
    void mousePress(const Pointer &pointer, QCursor &cursor) override;
    void mouseRelease(const Pointer &pointer, QCursor &cursor) override;
    void mouseMove(const Pointer &pointer, QCursor &cursor) override;
};

/// Shows the frames dragged over in the whole view. The selection stays what it was.
class VELA_EXPORT ZoomTool : public SelectionTool
{
    Q_OBJECT

public:
    using SelectionTool::SelectionTool;

    void deactivated() override;
    void mousePress(const Pointer &pointer, QCursor &cursor) override;
    void mouseRelease(const Pointer &pointer, QCursor &cursor) override;
    void mouseMove(const Pointer &pointer, QCursor &cursor) override;

private:
    void restoreSelection();

    unsigned int m_selectionStart = 0;
    unsigned int m_selectionEnd = 0;
};

/// Drags the selected frames to another place of the sound.
class VELA_EXPORT SelectionMoveTool : public AudioTool
{
    Q_OBJECT

public:
    using AudioTool::AudioTool;

    void deactivated() override;
    /// Shift with left or right moves the selected frames by one.
    bool keyPress(Qt::KeyboardModifiers modifiers, int key) override;
    void mousePress(const Pointer &pointer, QCursor &cursor) override;
    void mouseRelease(const Pointer &pointer, QCursor &cursor) override;
    void mouseMove(const Pointer &pointer, QCursor &cursor) override;

private:
    void commit(qint64 position);

    unsigned int m_startLow = 0;
};

/// Makes the selected frames longer or shorter, by resampling them.
class VELA_EXPORT HResizeTool : public AudioTool
{
    Q_OBJECT

public:
    using AudioTool::AudioTool;

    void deactivated() override;
    void mousePress(const Pointer &pointer, QCursor &cursor) override;
    void mouseRelease(const Pointer &pointer, QCursor &cursor) override;
    void mouseMove(const Pointer &pointer, QCursor &cursor) override;

private:
    /// Returns how many frames the drag has made of \a count, at least 0.
    qint64 resized(unsigned int count, unsigned int frame) const;
};

/// Makes the selected frames louder or quieter.
class VELA_EXPORT VResizeTool : public AudioTool
{
    Q_OBJECT

public:
    using AudioTool::AudioTool;

    void deactivated() override;
    void mousePress(const Pointer &pointer, QCursor &cursor) override;
    void mouseRelease(const Pointer &pointer, QCursor &cursor) override;
    void mouseMove(const Pointer &pointer, QCursor &cursor) override;
};

} // namespace Vela

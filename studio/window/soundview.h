// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/soundplayback.h"

#include <QWidget>

class QLabel;
class QToolButton;

namespace Studio {

class Colors;
class Settings;
class SoundWaveform;
class VolumeSlider;

/// A sound to be looked at and to be heard: its waveform with a selection, and what plays it. The
/// volume is the setting "snd_volume".
class SoundView : public QWidget
{
    Q_OBJECT

public:
    SoundView(Settings &settings, const Colors &colors, QWidget *parent = nullptr);

    /// Shows a sound; one that is shown already stays as it is, and goes on playing.
    void setSample(const Vela::SoundSample &sample);
    /// Shows no sound but words in its place.
    void showWords(const QString &words);
    /// Returns whether there is something to be played.
    bool hasSound() const;
    SoundWaveform *waveform() const;
    const SoundPlayback &playback() const;

public Q_SLOTS:
    /// Plays the selection, or all if nothing is selected; stops what plays.
    void playOrStop();
    /// Changes whether it is played again and again.
    void changeLoop();

Q_SIGNALS:
    /// hasSound() is another.
    void changed();

protected:
    void hideEvent(QHideEvent *event) override;

private:
    QLayout *makeBar();
    void connectParts();
    QToolButton *makeButton(const char *name, const char *icon, const QString &text);
    void play();
    void onLoopToggled();
    void takeVolume();
    void showPlaying();
    void showSelection();
    void tell(const QString &words);

    Settings &m_settings;
    SoundPlayback m_playback;
    SoundWaveform *m_waveform;
    QToolButton *m_play;
    QToolButton *m_stop;
    QToolButton *m_loop;
    QLabel *m_selection;
    VolumeSlider *m_volume;
};

} // namespace Studio

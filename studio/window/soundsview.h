// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/soundreader.h"

#include <QTimer>
#include <QWidget>

class QTreeView;

namespace Vela {
class Sound;
class Sounds;
} // namespace Vela

namespace Studio {

class Colors;
class Settings;
class SoundsModel;
class SoundView;

/// The sounds of a file: all of them as a list, and below it the current one.
class SoundsView : public QWidget
{
    Q_OBJECT

public:
    SoundsView(Settings &settings, const Colors &colors, QWidget *parent = nullptr);

    /// Shows \a sounds, with the sound that they have selected; null shows none. The same ones
    /// again change nothing.
    void setSounds(Vela::Sounds *sounds);
    /// Returns null if there is none.
    Vela::Sound *currentSound() const;
    QTreeView *list() const;
    SoundView *sound() const;

Q_SIGNALS:
    /// Another sound is the current one, or it has changed.
    void currentChanged();
    /// The file has changed.
    void edited();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void makeList();
    void onCurrentChanged(const QModelIndex &index);
    void onReset();
    void playOrStop();
    void wantSample();
    void readSample();
    void showSample(const Vela::SoundSample &sample);

    SoundsModel *m_model;
    QTreeView *m_list;
    SoundView *m_sound;
    const Vela::Sound *m_shown = nullptr; ///< to be compared only
    bool m_playsLater = false;            ///< as soon as it is decoded
    QTimer m_reading;
    SoundReader m_reader;
};

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "studio/window/soundview.h"

#include "sound/soundsample.h"
#include "studio/controls.h"
#include "studio/icons.h"
#include "studio/settings.h"
#include "studio/window/notelabel.h"
#include "studio/window/soundwaveform.h"
#include "studio/window/soundwords.h"

#include <QHBoxLayout>
#include <QHideEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>

namespace Studio {

namespace {

const QString volumeKey = QStringLiteral("snd_volume");
constexpr int Space = 6;
constexpr int VolumeWidth = 150;

/// A note that ends in dots where there is no room for all of it: a number that is cut off would be
/// another one.
class ElidedNote : public NoteLabel
{
public:
    using NoteLabel::NoteLabel;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        style()->drawItemText(&painter, rect(), alignment(), palette(), isEnabled(),
                              fontMetrics().elidedText(text(), Qt::ElideRight, width()),
                              foregroundRole());
    }
};

} // namespace

SoundView::SoundView(Settings &settings, const Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_waveform(new SoundWaveform(colors, this)) // in front of the buttons, also for Tab
    , m_play(makeButton("playSound", "play", tr("Play the selection, or all (Space)")))
    , m_stop(makeButton("stopSound", "stop", tr("Stop (Space)")))
    , m_loop(makeButton("loopSound", "loop", tr("Play again and again")))
    , m_selection(new ElidedNote)
    , m_volume(new VolumeSlider)
{
    m_waveform->setObjectName(QStringLiteral("soundWaveform"));
    setFocusProxy(m_waveform);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_waveform, 1);
    layout->addLayout(makeBar());
    connectParts();
    takeVolume();
    showWords(QString());
}

void SoundView::connectParts()
{
    connect(m_play, &QToolButton::clicked, this, &SoundView::play);
    connect(m_stop, &QToolButton::clicked, &m_playback, &SoundPlayback::stop);
    connect(m_loop, &QToolButton::toggled, this, &SoundView::onLoopToggled);
    connect(m_waveform, &SoundWaveform::playWanted, this, &SoundView::playOrStop);
    connect(m_waveform, &SoundWaveform::selectionChanged, this, &SoundView::showSelection);
    connect(&m_playback, &SoundPlayback::changed, this, &SoundView::showPlaying);
    connect(&m_playback, &SoundPlayback::failed, this,
            [this] { tell(tr("The sound cannot be played here.")); });
    connect(&m_playback, &SoundPlayback::moved, m_waveform, &SoundWaveform::setPlayHead);
    connect(m_volume, &VolumeSlider::edited, this,
            [this](int volume) { m_settings.setValue(volumeKey, volume); });
    connect(&m_settings, &Settings::changed, this, [this](const QString &key) {
        if (key == volumeKey)
            takeVolume();
    });
}

QToolButton *SoundView::makeButton(const char *name, const char *icon, const QString &text)
{
    auto *const button = new QToolButton(this);
    button->setObjectName(QLatin1String(name));
    button->setIcon(namedIcon(QLatin1String(icon)));
    button->setAutoRaise(true);
    button->setToolTip(text);
    button->setAccessibleName(text);
    return button;
}

QLayout *SoundView::makeBar()
{
    m_loop->setCheckable(true);
    m_selection->setObjectName(QStringLiteral("soundSelection"));
    m_selection->setMinimumWidth(1); // it may be cut off before the window grows
    m_volume->setObjectName(QStringLiteral("soundVolume"));
    m_volume->setToolTip(tr("Volume of sounds"));
    m_volume->slider()->setAccessibleName(tr("Volume of sounds"));
    m_volume->setMaximumWidth(VolumeWidth);
    auto *const bar = new QHBoxLayout;
    bar->setContentsMargins(Space, Space, Space, Space);
    bar->setSpacing(Space);
    bar->addWidget(m_play);
    bar->addWidget(m_stop);
    bar->addWidget(m_loop);
    bar->addWidget(m_selection, 1);
    bar->addWidget(m_volume);
    return bar;
}

void SoundView::setSample(const Vela::SoundSample &sample)
{
    const Vela::AudioData &audio = m_waveform->audio();
    if (hasSound() && isSame(audio.info(), sample) && audio.data() == sample.data)
        return;
    m_playback.stop();
    m_waveform->setSample(sample);
    showPlaying();
}

void SoundView::showWords(const QString &words)
{
    m_playback.stop();
    m_waveform->showWords(words);
    showPlaying();
}

bool SoundView::hasSound() const
{
    return m_waveform->audio().info().samples > 0;
}

SoundWaveform *SoundView::waveform() const
{
    return m_waveform;
}

const SoundPlayback &SoundView::playback() const
{
    return m_playback;
}

void SoundView::playOrStop()
{
    if (m_playback.isPlaying())
        m_playback.stop();
    else
        play();
}

void SoundView::changeLoop()
{
    m_loop->toggle();
}

void SoundView::play()
{
    const Vela::AudioData &audio = m_waveform->audio();
    if (!hasSound())
        return;
    unsigned int low = 0;
    unsigned int high = 0;
    audio.selection(low, high);
    if (low == high) {
        low = 0;
        high = audio.info().samples;
    }
    m_playback.play({audio.info(), audio.data()}, low, high, m_loop->isChecked());
}

// What plays begins anew, as the player has no other way.
void SoundView::onLoopToggled()
{
    if (m_playback.isPlaying())
        play();
}

void SoundView::takeVolume()
{
    m_volume->push(m_settings.value(volumeKey).toInt());
    m_playback.setVolume(m_volume->value());
}

void SoundView::showPlaying()
{
    m_play->setEnabled(hasSound());
    m_loop->setEnabled(hasSound());
    m_stop->setEnabled(m_playback.isPlaying());
    if (!m_playback.isPlaying())
        m_waveform->hidePlayHead();
    showSelection();
    Q_EMIT changed();
}

void SoundView::showSelection()
{
    const Vela::AudioData &audio = m_waveform->audio();
    const Vela::SampleInfo &info = audio.info();
    unsigned int low = 0;
    unsigned int high = 0;
    audio.selection(low, high);
    QString words;
    if (hasSound())
        words = low == high
            ? tr("At %1").arg(timeWords(info, low))
            : tr("Selected: %1 to %2, %3, ticks: %4")
                  .arg(timeWords(info, low), timeWords(info, high), timeWords(info, high - low))
                  .arg(ticksOf(info, high - low));
    tell(words);
}

void SoundView::tell(const QString &words)
{
    m_selection->setText(words);
    m_selection->setToolTip(words); // there may not be room for all of it
    m_waveform->setAccessibleDescription(hasSound() ? words : m_waveform->words());
}

// A window that is minimized goes on playing.
void SoundView::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous())
        m_playback.stop();
    QWidget::hideEvent(event);
}

} // namespace Studio

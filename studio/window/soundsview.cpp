// SPDX-License-Identifier: MIT
#include "studio/window/soundsview.h"

#include "sound/sounds.h"
#include "studio/window/soundsmodel.h"
#include "studio/window/soundview.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace Studio {

namespace {

// So many bytes of frames are decoded in a few hundredths of a second.
constexpr qint64 ShortSound = 2 * 1024 * 1024;

} // namespace

SoundsView::SoundsView(Settings &settings, const Colors &colors, QWidget *parent)
    : QWidget(parent)
    , m_model(new SoundsModel(this))
    , m_list(new QTreeView)
    , m_sound(new SoundView(settings, colors))
{
    makeList();
    auto *const parts = new QSplitter(Qt::Vertical);
    parts->addWidget(m_list);
    parts->addWidget(m_sound);
    parts->setStretchFactor(0, 2);
    parts->setStretchFactor(1, 3);
    parts->setChildrenCollapsible(false);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(parts);

    m_reading.setSingleShot(true);
    connect(&m_reading, &QTimer::timeout, this, &SoundsView::readSample);
    connect(&m_reader, &SoundReader::finished, this, &SoundsView::showSample);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &SoundsView::onCurrentChanged);
    connect(m_list, &QTreeView::doubleClicked, this, &SoundsView::playOrStop);
    connect(m_model, &QAbstractItemModel::modelReset, this, &SoundsView::onReset);
    connect(m_model, &QAbstractItemModel::dataChanged, this, &SoundsView::wantSample);
}

void SoundsView::makeList()
{
    m_list->setObjectName(QStringLiteral("soundList"));
    m_list->setAccessibleName(tr("Sounds of the file"));
    m_list->setModel(m_model);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setAlternatingRowColors(true);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setMinimumSectionSize(m_list->fontMetrics().averageCharWidth() * 12);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_list->header()->setSectionResizeMode(SoundsModel::Identifier, QHeaderView::Stretch);
    m_list->installEventFilter(this);
}

void SoundsView::setSounds(Vela::Sounds *sounds)
{
    if (sounds == m_model->sounds())
        return;
    if (m_model->sounds())
        disconnect(m_model->sounds(), nullptr, this, nullptr);
    m_model->setSounds(sounds);
    if (sounds)
        connect(sounds, &Vela::Sounds::modified, this, &SoundsView::edited);
}

Vela::Sound *SoundsView::currentSound() const
{
    return m_model->sound(m_list->currentIndex());
}

QTreeView *SoundsView::list() const
{
    return m_list;
}

SoundView *SoundsView::sound() const
{
    return m_sound;
}

// Space would choose a row, or search for one with a blank in its name, and Enter that is held down
// play again and again.
bool SoundsView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto *const key = static_cast<QKeyEvent *>(event);
    const bool isEnter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (key->key() != Qt::Key_Space && !isEnter)
        return QWidget::eventFilter(watched, event);
    if (!key->isAutoRepeat())
        playOrStop();
    return true;
}

/// What is not decoded yet plays as soon as it is.
void SoundsView::playOrStop()
{
    if (m_reading.isActive())
        readSample();
    m_playsLater = !m_sound->hasSound() && !m_playsLater;
    m_sound->playOrStop();
}

void SoundsView::onCurrentChanged(const QModelIndex &index)
{
    if (m_model->sounds() && index.isValid())
        m_model->sounds()->setSelected(unsigned(index.row()));
    wantSample();
}

void SoundsView::onReset()
{
    if (const Vela::Sounds *const sounds = m_model->sounds()) {
        const int row = std::min(int(sounds->selected()), m_model->rowCount() - 1);
        m_list->setCurrentIndex(m_model->index(row, 0));
    }
    wantSample();
}

/// Has the current sound decoded when there is nothing else to do. A sound that was shown before
/// stays until then.
void SoundsView::wantSample()
{
    if (currentSound() != m_shown || !m_shown)
        m_sound->showWords(currentSound() ? QStringLiteral("\u2026") : QString());
    m_shown = currentSound();
    m_playsLater = false;
    m_reader.cancel();
    m_reading.start(0);
    Q_EMIT currentChanged();
}

// A short sound is there at once; a long one is decoded in the background.
void SoundsView::readSample()
{
    m_reading.stop();
    const Vela::Sound *const sound = currentSound();
    if (!sound)
        return m_sound->showWords(tr("There is no sound in the file."));
    if (sound->isEmpty())
        return m_sound->showWords(tr("The sound is empty."));
    const Vela::SampleInfo info = sound->info();
    if (qint64(info.samples) * Vela::frameSize(info) <= ShortSound)
        showSample(sound->sample());
    else
        m_reader.read(sound->reader());
}

void SoundsView::showSample(const Vela::SoundSample &sample)
{
    if (sample.data.isEmpty())
        m_sound->showWords(tr("The sound cannot be decoded."));
    else
        m_sound->setSample(sample);
    if (m_playsLater)
        playOrStop();
}

} // namespace Studio

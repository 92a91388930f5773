// SPDX-License-Identifier: MIT
#include "studio/window/soundsmodel.h"

#include "sound/sound.h"
#include "sound/sounds.h"
#include "studio/window/soundwords.h"

namespace Studio {

namespace {

QString text(const Vela::Sound &sound, int column)
{
    const Vela::SampleInfo info = sound.info();
    switch (column) {
    case SoundsModel::Identifier:
        return sound.property(QStringLiteral("Identifier")).toString();
    case SoundsModel::Duration:
        return timeWords(info, info.samples);
    default:
        return sound.isEmpty() ? SoundsModel::tr("empty") : formatWords(info);
    }
}

} // namespace

SoundsModel::SoundsModel(QObject *parent)
    : QAbstractTableModel(parent)
{
}

void SoundsModel::setSounds(Vela::Sounds *sounds)
{
    if (sounds == m_sounds)
        return;
    if (m_sounds)
        disconnect(m_sounds, nullptr, this, nullptr);
    m_sounds = sounds;
    reset();
    if (!sounds)
        return;
    connect(sounds, &Vela::Sounds::changed, this, &SoundsModel::onChanged);
    // By then the pointer is null.
    connect(sounds, &QObject::destroyed, this, &SoundsModel::reset);
}

Vela::Sounds *SoundsModel::sounds() const
{
    return m_sounds;
}

Vela::Sound *SoundsModel::sound(const QModelIndex &index) const
{
    return m_sounds && index.isValid() ? m_sounds->at(unsigned(index.row())) : nullptr;
}

int SoundsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_count;
}

int SoundsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant SoundsModel::data(const QModelIndex &index, int role) const
{
    const Vela::Sound *const sound = this->sound(index);
    return sound && role == Qt::DisplayRole ? QVariant(text(*sound, index.column())) : QVariant();
}

QVariant SoundsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Identifier:
        return tr("Identifier");
    case Duration:
        return tr("Duration");
    default:
        return tr("Format");
    }
}

void SoundsModel::onChanged(bool count)
{
    if (count || !m_sounds || int(m_sounds->count()) != m_count)
        reset();
    else if (m_count > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_count - 1, ColumnCount - 1));
}

void SoundsModel::reset()
{
    beginResetModel();
    m_count = m_sounds ? int(m_sounds->count()) : 0;
    endResetModel();
}

} // namespace Studio

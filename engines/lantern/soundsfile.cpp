// SPDX-License-Identifier: MIT
#include "lantern/soundsfile.h"

#include "lantern/soundcodec.h"
#include "lantern/soundnames.h"
#include "lantern/soundtable.h"

#include <QCoreApplication>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

QString soundsProperty()
{
    return QStringLiteral("Sounds");
}

// Returns the first stream of plain data that is right; null if there is none. No sound of another
// length is decoded for it.
template <class IsRight>
StreamRef firstEqual(const ItemList<SoundItem> &list, const QByteArray &plain, IsRight isRight)
{
    Vela::SampleInfo info;
    if (!readSoundHead(plain, info))
        return nullptr;
    const SoundRef equal = list.firstEqual(plain, [&info, isRight](const SoundItem &sound) {
        return isSame(sound.value().info, info) && isRight(*sound.value().stream);
    });
    return equal ? equal->value().stream : nullptr;
}

} // namespace

SoundsFile::SoundsFile()
    : CollectionFile("sounds")
{
}

void SoundsFile::move(unsigned int from, unsigned int to)
{
    moveItem<SoundItem>(from, to, Texts::tr("Move sound"));
}

void SoundsFile::remove(unsigned int index)
{
    if (index >= count())
        return;
    const Change change(*this, Texts::tr("Remove sound"));
    list<SoundItem>().take(index);
}

Vela::Sound *SoundsFile::at(unsigned int index) const
{
    return list<SoundItem>().at(index);
}

Vela::Sound *SoundsFile::add(const QVariant &identifier, const Vela::SoundSample &sample,
                             Vela::ShareMode share)
{
    return insert(count(), identifier, sample, share);
}

Vela::Sound *SoundsFile::insert(unsigned int index, const QVariant &identifier,
                                const Vela::SoundSample &sample, Vela::ShareMode share)
{
    const QString name = identifier.toString();
    SoundValue value{isSoundName(name) ? name : freeName(QString()), nullptr, {}};
    if (!takeFrames(value, *this, sample, sample.data, share))
        return nullptr;
    const Change change(*this, Texts::tr("Add sound"));
    const auto sound = std::make_shared<SoundItem>(*this, value);
    list<SoundItem>().insert(index, sound);
    return sound.get();
}

int SoundsFile::find(unsigned int start, const QVariant &identifier) const
{
    return list<SoundItem>().find(start, identifier.toString());
}

void SoundsFile::clear()
{
    clearLists(Texts::tr("Remove all sounds"));
}

QStringList SoundsFile::propertyNames() const
{
    return {soundsProperty()};
}

QVariant SoundsFile::property(const QString &name) const
{
    return name == soundsProperty() ? QVariant(count()) : QVariant();
}

QString SoundsFile::freeName(const QString &wanted) const
{
    return freeSoundName(wanted, [this](const QString &name) { return find(0, name) >= 0; });
}

StreamRef SoundsFile::streamOf(const QByteArray &plain, unsigned int encoding) const
{
    return firstEqual(list<SoundItem>(), plain, [encoding](const StreamHandle &stream) {
        return stream.encoding() == encoding;
    });
}

StreamRef SoundsFile::findTwin(const QByteArray &plain, StreamKind) const
{
    return firstEqual(list<SoundItem>(), plain, [](const StreamHandle &) { return true; });
}

void SoundsFile::takeRows(const SoundTable &table, const QVector<StreamRef> &streams)
{
    QVector<SoundRef> sounds;
    for (const SoundTable::Sound &row : table.sounds) {
        SoundValue value{row.name, nullptr, {}};
        if (row.stream != SoundTable::None) {
            value.stream = streams.at(int(row.stream));
            value.info = table.streams.at(int(row.stream)).info;
        }
        sounds.append(std::make_shared<SoundItem>(*this, value));
    }
    list<SoundItem>().setItems(sounds);
}

bool SoundsFile::makeRows(SoundTable &table, StreamWriter<SoundTable> &writer, QString &error) const
{
    for (const SoundRef &sound : list<SoundItem>().items()) {
        const SoundValue &value = sound->value();
        const quint32 stream =
            value.stream ? writer.add(value.stream, value.info) : SoundTable::None;
        table.sounds.append({value.identifier, stream});
        if (value.stream && stream == SoundTable::None) {
            error = Texts::tr("The frames of sound '%1' cannot be read; the file stays as it is.")
                        .arg(value.identifier);
            return false;
        }
    }
    return true;
}

void SoundsFile::namesHaveChanged()
{
    Q_EMIT namesChanged();
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "lantern/sounditem.h"

#include "lantern/soundcodec.h"
#include "lantern/soundnames.h"
#include "lantern/soundsfile.h"

#include <QCoreApplication>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

// Places in SoundItem::propertyNames().
enum Property { Identifier, Encoding, Channels, Bits, Rate, Frames, Duration };

} // namespace

bool isSame(const SoundValue &a, const SoundValue &b)
{
    return a.identifier == b.identifier && isSameStream(a.stream, b.stream);
}

bool takeFrames(SoundValue &value, SoundsFile &file, const Vela::SampleInfo &info,
                const QByteArray &data, Vela::ShareMode share)
{
    if (data.isEmpty()) {
        value.stream.reset();
        value.info = {};
        return true;
    }
    SoundValue taken = value;
    const QByteArray plain = plainSound(info, data);
    if (!readSoundHead(plain, taken.info))
        return false;
    if (!value.stream || value.stream->plain() != plain)
        taken.stream = file.keep(plain, StreamKind::Sound, share);
    if (!taken.stream)
        return false;
    value = taken;
    return true;
}

SoundItem::SoundItem(SoundsFile &file, const SoundValue &value)
    : ListItem(value)
    , m_file(file)
{
}

QStringList SoundItem::propertyNames() const
{
    return Sound::propertyNames()
        + QStringList{QStringLiteral("Encoding"), QStringLiteral("Channels"),
                      QStringLiteral("Bits"),     QStringLiteral("Rate"),
                      QStringLiteral("Frames"),   QStringLiteral("Duration")};
}

QVariant SoundItem::property(const QString &name) const
{
    const Vela::SampleInfo &info = value().info;
    switch (propertyNames().indexOf(name)) {
    case Identifier:
        return value().identifier;
    case Encoding:
        return isEmpty() ? QString() : encodingWord(value().stream->encoding());
    case Channels:
        return info.channels;
    case Bits:
        return isEmpty() ? 0 : info.precision;
    case Rate:
        return info.frequency;
    case Frames:
        return info.samples;
    case Duration:
        return QString::number(isEmpty() ? 0 : double(info.samples) / info.frequency, 'f', 3);
    default:
        return {};
    }
}

void SoundItem::setProperty(const QString &name, const QVariant &variant)
{
    const QString text = variant.toString();
    const int property = propertyNames().indexOf(name);
    SoundEncoding encoding = RawSound;
    if (property == Identifier && isSoundName(text)) {
        SoundValue changed = value();
        changed.identifier = text;
        m_file.changeValue(*this, changed, Texts::tr("Sound's name"));
    } else if (property == Encoding && readEncodingWord(text, encoding)) {
        setEncoding(encoding);
    }
}

unsigned int SoundItem::index() const
{
    return place();
}

Vela::Sounds *SoundItem::parent() const
{
    return &m_file;
}

Vela::Sound *SoundItem::duplicate() const
{
    const Change change(m_file, Texts::tr("Duplicate sound"));
    SoundValue copy = value();
    copy.identifier = m_file.freeName(copy.identifier);
    const auto sound = std::make_shared<SoundItem>(m_file, copy);
    m_file.list<SoundItem>().insert(index() + 1, sound);
    return sound.get();
}

bool SoundItem::isEmpty() const
{
    return !value().stream;
}

Vela::SampleInfo SoundItem::info() const
{
    return value().info;
}

// A stream that is another sound than its row says is none.
Vela::Sound::Reader SoundItem::reader() const
{
    return [stream = value().stream, expected = value().info] {
        const QByteArray plain = stream ? stream->plain() : QByteArray();
        Vela::SampleInfo info;
        return readSoundHead(plain, info) && isSame(info, expected) ? soundFromPlain(plain)
                                                                    : Vela::SoundSample();
    };
}

bool SoundItem::dataIsShared() const
{
    return m_file.list<SoundItem>().sharesStream(*this);
}

bool SoundItem::setSample(const Vela::SampleInfo &info, const QByteArray &data,
                          Vela::ShareMode share)
{
    SoundValue changed = value();
    if (!takeFrames(changed, m_file, info, data, share))
        return false;
    m_file.changeValue(*this, changed, Texts::tr("Sound's frames"));
    return true;
}

// What is heard from then on is what the file holds. Sounds that were equal before are stored once
// again when they have the same encoding again.
void SoundItem::setEncoding(unsigned int encoding)
{
    if (isEmpty() || value().stream->encoding() == encoding)
        return;
    SoundValue changed = value();
    changed.stream = m_file.keepEncoded(value().stream->plain(), encoding, StreamKind::Sound);
    const QByteArray plain = changed.stream ? changed.stream->plain() : QByteArray();
    if (!readSoundHead(plain, changed.info))
        return;
    if (const StreamRef equal = m_file.streamOf(plain, encoding))
        changed.stream = equal;
    m_file.changeValue(*this, changed, Texts::tr("Sound's encoding"));
}

} // namespace Lantern

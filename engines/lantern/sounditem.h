// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/itemlist.h"

#include "sound/sound.h"

namespace Lantern {

class SoundsFile;

/// What undo takes back of a sound.
struct SoundValue
{
    QString identifier;
    StreamRef stream; ///< null for an empty sound
    Vela::SampleInfo info;
};

/// Returns whether users see no difference.
bool isSame(const SoundValue &a, const SoundValue &b);
/// Gives \a value frames that \a file keeps; no data make it empty. Returns false, with the value
/// as it was, if they cannot be taken. The user may be asked.
bool takeFrames(SoundValue &value, SoundsFile &file, const Vela::SampleInfo &info,
                const QByteArray &data, Vela::ShareMode share);

/// A sound of a sounds file. Its identifier is the name that texts have for it.
class SoundItem : public Vela::Sound, public ListItem<SoundItem, SoundValue>
{
public:
    SoundItem(SoundsFile &file, const SoundValue &value);

    /// "Identifier", a name; "Encoding", "raw", "flac" or "ogg", or nothing without frames; and, to
    /// be read only, "Channels", "Bits", "Rate", "Frames" and "Duration", in seconds with three
    /// decimals.
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    /// Ignores a name that is none, and an encoding that cannot take the sound or would make it no
    /// smaller than raw frames.
    void setProperty(const QString &name, const QVariant &value) override;

    unsigned int index() const override;
    Vela::Sounds *parent() const override;
    /// Returns a copy, which stands behind this one, as "NAME-2" or the next free one of these.
    Vela::Sound *duplicate() const override;
    bool isEmpty() const override;
    Vela::SampleInfo info() const override;
    Reader reader() const override;
    bool dataIsShared() const override;
    using Vela::Sound::setSample;
    /// No data make it an empty sound.
    bool setSample(const Vela::SampleInfo &info, const QByteArray &data,
                   Vela::ShareMode share) override;

private:
    void setEncoding(unsigned int encoding);

    SoundsFile &m_file;
};

using SoundRef = std::shared_ptr<SoundItem>;

} // namespace Lantern

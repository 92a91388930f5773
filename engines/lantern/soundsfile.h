// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/collectionfile.h"
#include "lantern/sounditem.h"

#include "sound/sounds.h"

namespace Lantern {

class SoundCodec;
struct SoundTable;

/// What a sounds file is made of.
struct SoundsKind
{
    using Base = Vela::Sounds;
    using Table = SoundTable;
    using Codec = SoundCodec;
    using Lists = ItemLists<SoundItem>;
};

/// A file of many sounds, which texts know by their names. docs/lantern.md tells its layout.
class SoundsFile : public CollectionFile<SoundsKind>
{
    Q_OBJECT

public:
    SoundsFile();

    void move(unsigned int from, unsigned int to) override;
    void remove(unsigned int index) override;

    Vela::Sound *at(unsigned int index) const override;
    /// An identifier that is no name becomes "sound" or the next free one of "sound-2", "sound-3".
    Vela::Sound *add(const QVariant &identifier, const Vela::SoundSample &sample,
                     Vela::ShareMode share) override;
    Vela::Sound *insert(unsigned int index, const QVariant &identifier,
                        const Vela::SoundSample &sample, Vela::ShareMode share) override;
    /// Without regard to case.
    int find(unsigned int start, const QVariant &identifier) const override;
    void clear() override;

    /// The property "Sounds", their number.
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;

    /// Returns the name, "sound" in place of none, or the first free one of NAME-2, NAME-3 and so
    /// on.
    QString freeName(const QString &wanted) const;

    /// Returns the stream of the first sound with that plain data and that encoding; null if there
    /// is none.
    StreamRef streamOf(const QByteArray &plain, unsigned int encoding) const;

Q_SIGNALS:
    /// The sounds have other names than before.
    void namesChanged();

protected:
    void takeRows(const SoundTable &table, const QVector<StreamRef> &streams) override;
    bool makeRows(SoundTable &table, StreamWriter<SoundTable> &writer,
                  QString &error) const override;
    /// Of what only undo brings back, the encoding would come as a surprise.
    StreamRef findTwin(const QByteArray &plain, StreamKind kind) const override;
    void namesHaveChanged() override;
};

} // namespace Lantern

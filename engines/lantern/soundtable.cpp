// SPDX-License-Identifier: MIT
#include "lantern/soundtable.h"

#include "lantern/soundcodec.h"
#include "lantern/soundnames.h"

#include <QCoreApplication>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

constexpr TableLayout layout = {{'L', 'S', 'N', 'D'}, {30, 6, 1}};

// The row of a sound. Names stand in a table of their own, one behind the other.
struct SoundRow
{
    quint16 nameBytes = 0;
    quint32 stream = SoundTable::None;
};

void readStream(QDataStream &in, SoundTable::Stream &stream)
{
    readPlace(in, stream);
    in >> stream.info.channels >> stream.info.precision >> stream.info.frequency
        >> stream.info.samples;
}

void writeStream(QDataStream &out, const SoundTable::Stream &stream)
{
    writePlace(out, stream);
    out << stream.info.channels << stream.info.precision << stream.info.frequency
        << stream.info.samples;
}

void readSound(QDataStream &in, SoundRow &row)
{
    in >> row.nameBytes >> row.stream;
}

void writeSound(QDataStream &out, const SoundRow &row)
{
    out << row.nameBytes << row.stream;
}

bool isStream(const SoundTable::Stream &stream)
{
    return stream.encoding < SoundEncodingCount && isSound(stream.info);
}

// Returns false if the names are not as long as the rows say, or cannot be names.
bool readSounds(const QVector<SoundRow> &rows, const QByteArray &names, SoundTable &table)
{
    int at = 0;
    for (const SoundRow &row : rows) {
        const QByteArray bytes = names.mid(at, row.nameBytes);
        const QString name = QString::fromUtf8(bytes);
        const bool hasStream =
            row.stream == SoundTable::None || row.stream < quint32(table.streams.size());
        if (!hasStream || !isSoundName(name) || name.toUtf8() != bytes)
            return false;
        table.sounds.append({name, row.stream});
        at += row.nameBytes;
    }
    return at == names.size();
}

} // namespace

bool SoundTable::read(QIODevice &device, QString &error)
{
    TableReader reader(layout);
    if (!reader.read(device, Texts::tr("it is no sounds file"), error))
        return false;
    SoundTable table;
    QVector<SoundRow> rows;
    reader.readRows(table.streams, readStream);
    reader.readRows(rows, readSound);
    if (!reader.areStreams(table.streams, isStream) || !readSounds(rows, reader.readBytes(), table))
        return false;
    table.isPreferred = reader.isPreferred();
    table.original = reader.bytes();
    *this = table;
    error.clear();
    return true;
}

QByteArray SoundTable::write()
{
    QVector<SoundRow> rows;
    QByteArray names;
    for (const Sound &sound : qAsConst(sounds)) {
        const QByteArray name = sound.name.toUtf8();
        rows.append({quint16(name.size()), sound.stream});
        names += name;
    }
    TableWriter writer(layout, isPreferred, {streams.size(), rows.size(), names.size()});
    writer.place(streams);
    writer.writeRows(streams, writeStream);
    writer.writeRows(rows, writeSound);
    writer.writeBytes(names);
    return writer.finished();
}

} // namespace Lantern

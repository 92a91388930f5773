// SPDX-License-Identifier: MIT
#pragma once

#include "project/message.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace Lantern {

/// A text as a file holds it: what is read without a change is written byte for byte as it was.
class TextContent
{
public:
    TextContent() = default;
    /// Reads a file's bytes in the encoding \a codec, or for -1 in the one that they are judged to
    /// be in.
    explicit TextContent(const QByteArray &data, int codec = -1);

    QString text() const;
    void setText(const QString &text);

    /// Returns the index of the encoding in Vela::TextCodecs.
    int codec() const;
    void setCodec(int codec);
    /// Returns whether the text begins with a byte-order mark.
    bool hasMark() const;

    /// Returns whether the bytes read held something that the encoding has no character for.
    bool isDamaged() const;
    /// Returns what is to be said about the bytes read.
    QVector<Vela::Message> messages() const;
    /// Returns the offset of the first character that the encoding lacks, -1 for none.
    int firstUnwritable() const;
    /// Returns the message about the character at \a offset, which stands at that place, from 0.
    Vela::Message unwritableMessage(int offset, int line, int column) const;
    /// Returns the text as a file's bytes.
    QByteArray toData() const;

private:
    QByteArray encoded() const;
    QByteArray mark() const;

    QString m_text;
    int m_codec = -1;
    bool m_hasMark = false;
    // The encoding read, where it is none of the list; the codec is another one then.
    QByteArray m_unlisted;
    // The bytes read, where the text alone would not give them back.
    QByteArray m_original;
};

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

namespace Lantern {

/// A text as a file holds it: what is read without a change is written byte for byte as it was.
class TextContent
{
public:
    enum LineEnds { NoLineEnds, Lf, CrLf, Cr, MixedLineEnds };

    TextContent() = default;
    /// Reads a file's bytes in the encoding that they are judged to be in.
    explicit TextContent(const QByteArray &data);

    QString text() const;
    /// Puts \a text in the place of \a length characters at \a offset.
    void replace(int offset, int length, const QString &text);
    void setText(const QString &text);

    /// Returns the index of the encoding in Vela::TextCodecs.
    int codec() const;
    void setCodec(int codec);

    LineEnds lineEnds() const;
    /// Turns every line end into one kind.
    void setLineEnds(LineEnds lineEnds);

    /// Returns whether the bytes read held something that the encoding has no character for.
    bool isDamaged() const;
    /// Returns the offset of the first character that the encoding lacks, -1 for none.
    int firstUnwritable() const;
    /// Returns the text as a file's bytes.
    QByteArray toData() const;

private:
    QByteArray encoded() const;
    QByteArray mark() const;

    QString m_text;
    int m_codec = -1;
    bool m_hasMark = false;
    // The bytes read, where the text alone would not give them back.
    QByteArray m_original;
};

} // namespace Lantern

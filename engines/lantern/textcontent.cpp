// SPDX-License-Identifier: MIT
#include "lantern/textcontent.h"

#include "frame/textcodecs.h"

#include <QCoreApplication>
#include <QTextCodec>

#include <algorithm>

using Vela::TextCodecs;

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

// The list gives 0 for an encoding that it does not have.
QByteArray unlistedEncoding(const QByteArray &data)
{
    const QByteArray judged = TextCodecs::get(data)->name();
    const bool listed = TextCodecs::aliases(0)
                            .split(QStringLiteral(", "))
                            .contains(QString::fromLatin1(judged), Qt::CaseInsensitive);
    return listed ? QByteArray() : judged;
}

} // namespace

TextContent::TextContent(const QByteArray &data, int codec)
    : m_codec(codec)
{
    m_text = TextCodecs::stringFromData(data, &m_codec);
    m_hasMark = !mark().isEmpty() && data.startsWith(mark());
    if (encoded() != data)
        m_original = data;
    if (codec < 0 && m_codec == 0)
        m_unlisted = unlistedEncoding(data);
}

QString TextContent::text() const
{
    return m_text;
}

void TextContent::setText(const QString &text)
{
    m_text = text;
    m_original.clear();
    m_unlisted.clear();
}

int TextContent::codec() const
{
    return m_codec;
}

void TextContent::setCodec(int codec)
{
    m_codec = codec;
    m_hasMark = mark().size() > 0 && TextCodecs::name(codec) != "UTF-8";
    m_original.clear();
    m_unlisted.clear();
}

bool TextContent::hasMark() const
{
    return m_hasMark;
}

bool TextContent::isDamaged() const
{
    return !m_original.isNull();
}

QVector<Vela::Message> TextContent::messages() const
{
    const QString encoding = QString::fromLatin1(TextCodecs::name(m_codec));
    if (!m_unlisted.isEmpty()) {
        const QString text = Texts::tr("The file is in %1, which cannot be written; it is saved "
                                       "as %2 once it is changed.");
        return {
            {Vela::Message::Warning, 0, 0, text.arg(QString::fromLatin1(m_unlisted), encoding)}};
    }
    if (isDamaged()) {
        const QString text = Texts::tr("The file holds bytes that are no text in %1; they are lost "
                                       "once it is changed and saved.");
        return {{Vela::Message::Warning, 0, 0, text.arg(encoding)}};
    }
    return {};
}

int TextContent::firstUnwritable() const
{
    if (isDamaged())
        return -1;
    int codec = m_codec;
    const QString readBack =
        TextCodecs::stringFromData(TextCodecs::stringToData(m_text, m_codec), &codec);
    if (readBack == m_text)
        return -1;
    const auto differing =
        std::mismatch(m_text.begin(), m_text.end(), readBack.begin(), readBack.end());
    return int(differing.first - m_text.begin());
}

Vela::Message TextContent::unwritableMessage(int offset, int line, int column) const
{
    const int length = m_text.at(offset).isHighSurrogate() ? 2 : 1;
    return {Vela::Message::Error, unsigned(line), unsigned(column),
            Texts::tr("%1 has no '%2': the file cannot be saved in this encoding.")
                .arg(QString::fromLatin1(TextCodecs::name(m_codec)), m_text.mid(offset, length))};
}

QByteArray TextContent::toData() const
{
    return isDamaged() ? m_original : encoded();
}

QByteArray TextContent::encoded() const
{
    QByteArray data = TextCodecs::stringToData(m_text, m_codec);
    const QByteArray start = mark();
    if (m_hasMark && !data.startsWith(start))
        data.prepend(start);
    else if (!m_hasMark && !start.isEmpty() && data.startsWith(start))
        data.remove(0, start.size());
    return data;
}

// The library puts a mark in front of UTF-16 and UTF-32 and none in front of UTF-8.
QByteArray TextContent::mark() const
{
    const QByteArray name = TextCodecs::name(m_codec);
    if (name == "UTF-8")
        return QByteArrayLiteral("\xEF\xBB\xBF");
    if (name.startsWith("UTF-16") || name.startsWith("UTF-32"))
        return TextCodecs::stringToData(QString(), m_codec);
    return QByteArray();
}

} // namespace Lantern

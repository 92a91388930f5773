// SPDX-License-Identifier: MIT
#include "lantern/spriteitem.h"

#include "lantern/spritecodec.h"
#include "lantern/spritesfile.h"

#include "image/imageoperations.h"

#include <QCoreApplication>

#include <algorithm>
#include <limits>

namespace Lantern {

namespace {

struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)
};

constexpr int colorCount = 256;

QString axisProperty()
{
    return QStringLiteral("Axis");
}

QString paletteProperty()
{
    return QStringLiteral("Palette");
}

QString widthProperty()
{
    return QStringLiteral("Width");
}

QString heightProperty()
{
    return QStringLiteral("Height");
}

QString colorsProperty()
{
    return QStringLiteral("Colors");
}

QVector<QRgb> grayTable()
{
    QVector<QRgb> table(colorCount);
    for (int i = 0; i < colorCount; ++i)
        table[i] = qRgb(i, i, i);
    return table;
}

QVector<QRgb> colorTableOf(const Vela::Palette *palette)
{
    Vela::RGBA colors[colorCount];
    if (!palette || !palette->colorTable(colors))
        return grayTable();
    QVector<QRgb> table(colorCount);
    std::transform(std::begin(colors), std::end(colors), table.begin(), &Vela::toRgb);
    return table;
}

// Fills what the image does not have with opaque black.
void colorsOf(const QImage &image, Vela::RGBA (&colors)[colorCount])
{
    const QVector<QRgb> table = image.colorTable();
    for (int i = 0; i < colorCount; ++i)
        colors[i] = Vela::toRGBA(i < table.size() ? table.at(i) : qRgb(0, 0, 0));
}

PaletteRef equalPalette(const SpritesFile &file, const Vela::RGBA (&colors)[colorCount])
{
    const QByteArray plain(reinterpret_cast<const char *>(colors), sizeof colors);
    return file.list<PaletteItem>().firstEqual(plain, [](const PaletteItem &) { return true; });
}

QImage channelOf(const QImage &image, QRgb mask)
{
    QImage channel = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < channel.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(channel.scanLine(y));
        std::transform(row, row + channel.width(), row,
                       [mask](QRgb color) { return color & mask; });
    }
    return channel;
}

// Moves a place in an image along when the image becomes another size.
QPoint scaled(QPoint place, const Vela::ImageInfo &from, QSize to)
{
    if (from.width == 0 || from.height == 0)
        return place;
    return {int(qint64(place.x()) * to.width() / from.width),
            int(qint64(place.y()) * to.height() / from.height)};
}

// A file may hold any axis.
QPoint shifted(QPoint place, QPoint by)
{
    const auto difference = [](int a, int b) {
        constexpr qint64 least = std::numeric_limits<int>::min();
        constexpr qint64 greatest = std::numeric_limits<int>::max();
        return int(qBound(least, qint64(a) - b, greatest));
    };
    return {difference(place.x(), by.x()), difference(place.y(), by.y())};
}

} // namespace

bool isSame(const SpriteValue &a, const SpriteValue &b)
{
    return a.identifier == b.identifier && a.axis == b.axis && a.palette == b.palette
        && isSameStream(a.stream, b.stream);
}

SpriteItem::SpriteItem(SpritesFile &file, const SpriteValue &value)
    : ListItem(value)
    , m_file(file)
{
}

QStringList SpriteItem::propertyNames() const
{
    return Sprite::propertyNames()
        + QStringList{axisProperty(), paletteProperty(), widthProperty(), heightProperty(),
                      colorsProperty()};
}

QVariant SpriteItem::property(const QString &name) const
{
    if (name == Sprite::propertyNames().first())
        return identifierText(value().identifier);
    if (name == axisProperty())
        return identifierText({value().axis.x(), value().axis.y()});
    if (name == paletteProperty())
        return value().palette ? QVariant(value().palette->index()) : QVariant(QString());
    if (name == widthProperty())
        return value().info.width;
    if (name == heightProperty())
        return value().info.height;
    if (name == colorsProperty())
        return value().info.format == QImage::Format_Indexed8 ? Texts::tr("palette")
                                                              : Texts::tr("32 bits");
    return {};
}

void SpriteItem::setProperty(const QString &name, const QVariant &value)
{
    Vela::SubItem numbers;
    if (name == Sprite::propertyNames().first() && readIdentifier(value, numbers))
        setIdentifier(numbers);
    else if (name == axisProperty() && readIdentifier(value, numbers))
        setAxis({numbers.group, numbers.image});
    else if (name == paletteProperty()) {
        bool isNumber = false;
        const unsigned int index = value.toString().toUInt(&isNumber);
        if (isNumber && m_file.palettes()->at(index))
            setPalette(m_file.palettes()->at(index));
        else if (value.toString().isEmpty())
            setPalette(nullptr);
    }
}

unsigned int SpriteItem::index() const
{
    return place();
}

Vela::Sprites *SpriteItem::parent() const
{
    return &m_file;
}

Vela::Sprite *SpriteItem::duplicate() const
{
    const Change change(m_file, Texts::tr("Duplicate sprite"));
    SpriteValue copy = value();
    copy.identifier = m_file.freeIdentifier(copy.identifier);
    copy.palette = m_file.paletteRef(copy.palette.get());
    const auto sprite = std::make_shared<SpriteItem>(m_file, copy);
    m_file.list<SpriteItem>().insert(index() + 1, sprite);
    return sprite.get();
}

void SpriteItem::crop()
{
    QImage cropped = image();
    QPoint offset;
    if (!Vela::cropImage(cropped, &offset, 0))
        return;
    const Change change(m_file, Texts::tr("Crop sprite"));
    setImage(cropped, Vela::ShareMode::Share);
    setAxis(shifted(value().axis, offset));
}

void SpriteItem::splitRGB()
{
    const QImage whole = image();
    if (whole.isNull())
        return;
    const Change change(m_file, Texts::tr("Split channels"));
    unsigned int behind = index();
    for (const QRgb mask : {0xFFFF0000u, 0xFF00FF00u, 0xFF0000FFu}) {
        const Vela::SubItem identifier = m_file.freeIdentifier(value().identifier);
        Vela::Sprite *const channel = m_file.insert(++behind, QVariant::fromValue(identifier),
                                                    channelOf(whole, mask), Vela::ShareMode::Share);
        if (channel)
            channel->setAxis(value().axis);
    }
}

bool SpriteItem::isEmpty() const
{
    return !value().stream;
}

Vela::SubItem SpriteItem::identifier() const
{
    return value().identifier;
}

void SpriteItem::setIdentifier(Vela::SubItem identifier)
{
    SpriteValue changed = value();
    changed.identifier = identifier;
    m_file.changeValue(*this, changed, Texts::tr("Sprite's number"));
}

QImage SpriteItem::image() const
{
    QImage image = value().stream ? imageFromPlain(value().stream->plain()) : QImage();
    // A stream that is another image than its row says is none.
    if (image.size() != QSize(value().info.width, value().info.height)
        || image.format() != value().info.format)
        return {};
    if (image.format() == QImage::Format_Indexed8)
        image.setColorTable(colorTableOf(value().palette.get()));
    return image;
}

Vela::ImageInfo SpriteItem::imageProperties() const
{
    return value().info;
}

bool SpriteItem::imageIsShared() const
{
    return m_file.list<SpriteItem>().sharesStream(*this);
}

void SpriteItem::setImage(const QImage &image, Vela::ShareMode share)
{
    setImage(image, true, Ignore, nullptr, share);
}

void SpriteItem::setImage(const QImage &image, bool keepAxis, PaletteMode mode,
                          Vela::Palette *palette, Vela::ShareMode share)
{
    QImage pixels = spriteImage(image);
    // An image that cannot be kept leaves the sprite as it was; an empty one empties it.
    if (!image.isNull() && !hasPlainForm(pixels))
        return;
    const Change change(m_file, Texts::tr("Sprite's image"));
    if (!pixels.isNull())
        takeColors(pixels, mode, palette, share);
    SpriteValue changed = value();
    const QByteArray plain = plainImage(pixels);
    // An image that is there already is neither asked about nor a change.
    if (plain.isEmpty())
        changed.stream = nullptr;
    else if (!changed.stream || changed.stream->plain() != plain)
        changed.stream = m_file.keep(plain, StreamKind::Image, share);
    if (!changed.stream && !image.isNull())
        return;
    changed.info = changed.stream
        ? Vela::ImageInfo{quint16(pixels.width()), quint16(pixels.height()), pixels.format()}
        : SpriteValue().info;
    if (!keepAxis)
        changed.axis = scaled(value().axis, value().info, pixels.size());
    m_file.list<SpriteItem>().setValue(*this, changed);
}

// Settles which palette the sprite has with a new image, and fits the image to it where asked.
void SpriteItem::takeColors(QImage &image, PaletteMode mode, Vela::Palette *palette,
                            Vela::ShareMode share)
{
    const bool isIndexed = image.format() == QImage::Format_Indexed8;
    Vela::RGBA colors[colorCount];
    if (mode == OwnPalette && isIndexed) {
        colorsOf(image, colors);
        const PaletteRef known = equalPalette(m_file, colors);
        setPalette(known ? known.get() : m_file.palettes()->add(colors, QVariant(), share));
    } else if (mode == AdaptImage && palette && palette->colorTable(colors)) {
        Vela::adaptImageToPalette(image, colors);
        setPalette(palette);
    } else if (mode == SwapPalette && palette && isIndexed) {
        colorsOf(image, colors);
        palette->setColorTable(colors, share);
        setPalette(palette);
    }
}

Vela::Palette *SpriteItem::palette() const
{
    return value().palette.get();
}

void SpriteItem::setPalette(Vela::Palette *palette)
{
    SpriteValue changed = value();
    changed.palette = m_file.paletteRef(palette);
    m_file.changeValue(*this, changed, Texts::tr("Sprite's palette"));
}

QPoint SpriteItem::axis() const
{
    return value().axis;
}

void SpriteItem::setAxis(QPoint axis)
{
    SpriteValue changed = value();
    changed.axis = axis;
    m_file.changeValue(*this, changed, Texts::tr("Sprite's axis"));
}

} // namespace Lantern

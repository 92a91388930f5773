// SPDX-License-Identifier: MIT
#include "code/animationcode.h"
#include "code/animations.h"
#include "code/framecode.h"
#include "image/gifimage.h"
#include "image/imageoperations.h"
#include "image/sprite.h"
#include "studio/cli/animationfiles.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/diskfiles.h"
#include "studio/cli/imagefiles.h"
#include "studio/cli/projectcall.h"

#include <QBuffer>

#include <algorithm>
#include <cmath>

namespace Studio {

namespace {

// How long the last frame takes that never ends, in ticks. No player goes on behind it.
constexpr int lastTicks = 60;

bool readFactor(const Call &call, CallOption option, double least, double most, double *factor)
{
    if (!call.options.testFlag(option))
        return true;
    bool isNumber = false;
    *factor = call.values.value(option).toDouble(&isNumber);
    return isNumber && *factor >= least && *factor <= most;
}

/// Returns an image in which that of the palette's colours is transparent which sprites do not
/// show.
QImage shownImage(QImage image)
{
    if (image.format() == QImage::Format_Indexed8 && image.colorCount() > 0
        && transparentColor(image.colorTable()) < 0)
        image.setColor(0, image.color(0) & RGB_MASK);
    return withOneTransparentColor(image);
}

/// Returns a pixel that cannot be seen, for a frame without a sprite: a GIF has no empty frames. It
/// has the colors of another frame, which then suit all frames.
QImage blankImage(const QImage &other)
{
    const bool isIndexed = other.format() == QImage::Format_Indexed8;
    QImage image(1, 1, isIndexed ? QImage::Format_Indexed8 : QImage::Format_ARGB32);
    image.setColorTable(other.colorTable());
    image.fill(isIndexed ? uint(qMax(0, transparentColor(other.colorTable()))) : 0U);
    return image;
}

/// Returns a place within what whole numbers hold.
qint32 bounded(double place)
{
    constexpr double limit = 0x3FFFFFFF;
    return qRound(qBound(-limit, place, limit));
}

/// A picture with the point of it that stands on the frame's offset.
struct Picture
{
    QImage image;
    double x = 0;
    double y = 0;

    void flip(bool horizontally, bool vertically)
    {
        // The axis stays on its pixel.
        image = image.mirrored(horizontally, vertically);
        x = horizontally ? image.width() - 1 - x : x;
        y = vertically ? image.height() - 1 - y : y;
    }

    /// Returns whether the result is of a size that a GIF can have.
    bool resize(double scaleX, double scaleY)
    {
        const auto side = [](int length, double factor) {
            return qMax(1.0, std::round(length * factor));
        };
        const double width = side(image.width(), scaleX);
        const double height = side(image.height(), scaleY);
        if (!(width <= 0xFFFF && height <= 0xFFFF))
            return false;
        const QVector<QRgb> colors = image.colorTable();
        image = Vela::resizeImageNearest(image, QSize(int(width), int(height)));
        image.setColorTable(colors);
        x *= scaleX;
        y *= scaleY;
        return !image.isNull();
    }
};

/// Makes the frames of a GIF of those of an animation.
class GifFrames
{
public:
    /// Returns false with a reason where a frame cannot be shown.
    bool read(const Vela::AnimationCode &animation, QString *error);

    const QVector<Vela::AnimImageFrame> &frames() const
    {
        return m_frames;
    }
    /// Returns whether the last frame never ends.
    bool isEndless() const
    {
        return m_isEndless;
    }
    /// Returns whether a frame has an angle or a blending, which a GIF does not show.
    bool isSimplified() const
    {
        return m_isSimplified;
    }

private:
    bool add(const Vela::FrameCode &frame, QString *error);

    QVector<Vela::AnimImageFrame> m_frames;
    bool m_isEndless = false;
    bool m_isSimplified = false;
};

bool GifFrames::read(const Vela::AnimationCode &animation, QString *error)
{
    const QList<Vela::FrameCode *> frames = animation.frames();
    for (const Vela::FrameCode *frame : frames) {
        if (frame->delay() == 0)
            continue;
        if (!add(*frame, error))
            return false;
        m_isEndless = frame->delay() < 0;
        if (m_isEndless)
            break;
    }
    const auto first = std::find_if(m_frames.begin(), m_frames.end(),
                                    [](const auto &frame) { return !frame.image.isNull(); });
    if (first == m_frames.end()) {
        *error = QStringLiteral("the animation has no frame that shows something");
        return false;
    }
    const QImage blank = blankImage(first->image);
    for (Vela::AnimImageFrame &frame : m_frames) {
        if (frame.image.isNull())
            frame = {blank, 0, 0, frame.ticks};
    }
    return true;
}

bool GifFrames::add(const Vela::FrameCode &frame, QString *error)
{
    const QString name = frame.property(QStringLiteral("Identifier")).toString();
    const Vela::Sprite *const sprite = frame.sprite();
    Picture picture;
    if (sprite) {
        picture = {shownImage(sprite->image()), double(sprite->axis().x()),
                   double(sprite->axis().y())};
    }
    const double scaleX = frame.scaleX();
    const double scaleY = frame.scaleY();
    if (picture.image.isNull() && !name.isEmpty()) {
        const QString reason = sprite
            ? QStringLiteral("the image of the sprite %1 cannot be read")
            : QStringLiteral("no sprites file has the sprite %1, and an image "
                             "that is a file of its own is not shown");
        *error = QStringLiteral("line %1: %2")
                     .arg(QString::number(frame.lineNo() + 1), reason.arg(name));
        return false;
    }
    if (!picture.image.isNull() && (scaleX != 1 || scaleY != 1)
        && !picture.resize(std::abs(scaleX), std::abs(scaleY))) {
        *error = QStringLiteral("line %1: the frame is too large").arg(frame.lineNo() + 1);
        return false;
    }
    picture.flip(bool(frame.flipFlags() & Vela::FrameCode::Horizontal) != (scaleX < 0),
                 bool(frame.flipFlags() & Vela::FrameCode::Vertical) != (scaleY < 0));
    m_isSimplified =
        m_isSimplified || frame.angle() != 0 || frame.blendMode() != Vela::FrameCode::Blend::None;
    m_frames.append({picture.image, bounded(picture.x - frame.offsetX()),
                     bounded(picture.y - frame.offsetY()),
                     frame.delay() < 0 ? lastTicks : frame.delay()});
    return true;
}

} // namespace

int runGif(const Call &call)
{
    double scale = 1;
    double speed = 1;
    if (!readFactor(call, Scale, 1.0 / 64, 64, &scale))
        return Console::fail(QStringLiteral("--scale needs a number from 1/64 to 64"));
    if (!readFactor(call, Speed, 1.0 / 64, 64, &speed))
        return Console::fail(QStringLiteral("--speed needs a number from 1/64 to 64"));
    const QString out = call.arguments.at(2);
    if (ImageFormat::ofFile(out).word != "GIF")
        return Console::fail(QStringLiteral("%1: is no name of a GIF").arg(out));
    const std::unique_ptr<ProjectSession> session = openProject(call.arguments.first());
    AnimationMatch match;
    if (!session
        || !findAnimation(*session, call.arguments.at(1), call.values.value(InFile), &match))
        return Failed;

    GifFrames gif;
    QString error;
    if (!gif.read(*match.file.animations->at(static_cast<unsigned int>(match.index)), &error))
        return Console::fail(QStringLiteral("%1: %2").arg(match.file.path, error));
    if (gif.isSimplified())
        warn(call, out, QStringLiteral("the angles and the blending of frames are not shown"));
    QByteArray bytes;
    QBuffer device(&bytes);
    device.open(QIODevice::WriteOnly);
    if (!Vela::saveGIF(&device, gif.frames(), float(scale), float(speed),
                       call.options.testFlag(SharedPalette),
                       !gif.isEndless() && !call.options.testFlag(Once)))
        return Console::fail(QStringLiteral("%1: the animation is too large for a GIF").arg(out));
    return finishFile(call, out, bytes);
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "lantern/motionframe.h"

#include "lantern/identifiers.h"
#include "lantern/linereader.h"
#include "lantern/motioncode.h"
#include "lantern/report.h"
#include "lantern/values.h"

#include "code/codedocument.h"

#include <QRegularExpression>
#include <QVector>

#include <algorithm>
#include <array>

namespace Lantern {

namespace {

using Vela::ContactBoxCode;

const QLatin1String noSprite("none");

QString offsetText(QLatin1String option, int offset)
{
    return offset == 0 ? QString() : option + QLatin1String(" = ") + integerText(offset);
}

QString scaleText(QPointF scale)
{
    const QString text = pairText(scale);
    return text == QLatin1String("1") ? QString() : QLatin1String("scale = ") + text;
}

QString angleText(double angle)
{
    const QString text = numberText(angle);
    return text == QLatin1String("0") ? QString() : QLatin1String("angle = ") + text;
}

QString flipText(unsigned int flags)
{
    flags &= Vela::FrameCode::Both;
    return flags == 0 ? QString() : QLatin1String("flip = ") + flipWords().at(int(flags) - 1);
}

QString blendText(Vela::FrameCode::Blend blend)
{
    const Vela::FrameCode::Blend unset;
    const QString source = numberText(blend.source);
    const QString destination = numberText(blend.destination);
    const bool hasDestination = destination != numberText(unset.destination);
    const bool hasSource = hasDestination || source != numberText(unset.source);
    if (blend.mode == unset.mode && !hasSource)
        return QString();
    QString text = QLatin1String("blend = ") + blendWords().value(blend.mode, noSprite);
    if (hasSource)
        text += QLatin1Char(' ') + source;
    if (hasDestination)
        text += QLatin1Char(' ') + destination;
    return text;
}

// Returns the name that a token is. Frames name the same few sprites again and again; the latest
// names are kept, so that equal ones share their text.
QString sharedName(const Line &line, int token)
{
    if (!line.is(token, Token::Word))
        return line.value(token);
    constexpr int kept = 64;
    static std::array<QString, kept> names;
    const QStringView text = line.text(token);
    // Names of a series differ at their end.
    QString &name = names[(text.back().unicode() + unsigned(text.size())) % kept];
    if (!std::equal(text.begin(), text.end(), name.cbegin(), name.cend()))
        name = text.toString();
    return name;
}

/// A frame's line taken apart for a change.
struct Parts
{
    explicit Parts(const QString &lineText)
        : text(lineText)
        , line(text)
    {
        Report silent(line, nullptr);
        isFrame = readFrame(line, frame, silent);
    }

    QString head(const QString &sprite, const QString &delay) const
    {
        return line.text(0).toString() + QLatin1Char(' ') + sprite + QLatin1String(" : ") + delay;
    }
    QString optionText(const FrameLine::Option &option) const
    {
        return text.mid(option.start, option.end - option.start);
    }

    const QString text;
    const Line line;
    FrameLine frame;
    bool isFrame;
};

} // namespace

MotionFrame::MotionFrame(const QTextBlock &block, Vela::CodeNode *previous, const Line &line,
                         const FrameLine &frame, const ParserContext &context)
    : Node(block, previous, &m_attack, &m_collision)
    , m_context(context)
{
    take(line, frame);
}

Vela::Sprite *MotionFrame::sprite() const
{
    return m_sprite.isEmpty() ? nullptr : m_context.sprite(m_sprite);
}

void MotionFrame::setSprite(const QVariant &identifier)
{
    const QString name = spriteNameOf(identifier);
    if (name == m_sprite)
        return;
    const bool isKeyword = name.compare(noSprite, Qt::CaseInsensitive) == 0;
    const QString word = name.isEmpty() ? QString(noSprite)
        : isKeyword                     ? quoted(name)
                                        : quotedIfNoWord(name);
    writeHead(word, QString());
}

void MotionFrame::setSound(const QString &name)
{
    if (name != m_sound)
        writeOptions(
            {{FrameOption::Play,
              name.isEmpty() ? QString() : QLatin1String("play ") + quotedIfNoWord(name)}});
}

void MotionFrame::setOffsetX(int x)
{
    setOffset(QPoint(x, m_offset.y()));
}

void MotionFrame::setOffsetY(int y)
{
    setOffset(QPoint(m_offset.x(), y));
}

void MotionFrame::setOffset(QPoint offset)
{
    if (offset != m_offset)
        writeOptions({{FrameOption::X, offsetText(QLatin1String("x"), offset.x())},
                      {FrameOption::Y, offsetText(QLatin1String("y"), offset.y())}});
}

void MotionFrame::setDelay(int ticks)
{
    ticks = std::max(ticks, -1);
    if (ticks != m_delay)
        writeHead(QString(), ticks < 0 ? QStringLiteral("forever") : integerText(ticks));
}

void MotionFrame::setScaleX(double x)
{
    setScale(QPointF(x, m_scale.y()));
}

void MotionFrame::setScaleY(double y)
{
    setScale(QPointF(m_scale.x(), y));
}

void MotionFrame::setScale(QPointF scale)
{
    if (pairText(scale) != pairText(m_scale))
        writeOptions({{FrameOption::Scale, scaleText(scale)}});
}

void MotionFrame::setAngle(double angle)
{
    if (numberText(angle) != numberText(m_angle))
        writeOptions({{FrameOption::Angle, angleText(angle)}});
}

void MotionFrame::setFlipFlags(unsigned int flags)
{
    if ((flags & Both) != m_flip)
        writeOptions({{FrameOption::Flip, flipText(flags)}});
}

void MotionFrame::setBlendMode(Blend::Mode mode)
{
    setBlend(Blend(mode, m_blend.source, m_blend.destination));
}

void MotionFrame::setBlendSource(double factor)
{
    setBlend(Blend(m_blend.mode, factor, m_blend.destination));
}

void MotionFrame::setBlendDestination(double factor)
{
    setBlend(Blend(m_blend.mode, m_blend.source, factor));
}

void MotionFrame::setBlend(Blend blend)
{
    if (blendText(blend) != blendText(m_blend))
        writeOptions({{FrameOption::Blend, blendText(blend)}});
}

QString MotionFrame::contactBoxesText(const QList<ContactBoxCode *> &boxes) const
{
    QString text;
    for (const ContactBoxCode *box : boxes)
        text += boxCode(box->boxType(), box->rect(), box->depth()) + QLatin1Char('\n');
    return text;
}

int MotionFrame::pasteContactBoxes(const QString &text)
{
    if (!document())
        return 0;
    static const QRegularExpression lineEnd(QStringLiteral("[\\r\\n\\x{2028}\\x{2029}]"));
    QStringList lines;
    for (const QString &lineText : text.split(lineEnd, Qt::SkipEmptyParts)) {
        const Line line(lineText);
        Report silent(line, nullptr);
        BoxLine box;
        if (lineKind(line, AnimationSection, silent) == LineKind::Box && readBox(line, box, silent))
            lines.append(boxIndent(*document()) + boxCode(box.type, box.rect, box.depth));
    }
    if (!lines.isEmpty())
        document()->insertBefore(this, lines.join(QLatin1Char('\n')), true);
    return lines.size();
}

void MotionFrame::setLoopPoint(bool isLoopPoint)
{
    if (isLoopPoint != m_isLoopPoint)
        writeOptions({{FrameOption::Loop, isLoopPoint ? QStringLiteral("loop") : QString()}});
}

QVariant MotionFrame::property(const QString &name) const
{
    if (name == QLatin1String("Identifier"))
        return m_sprite;
    if (name == QLatin1String("Offset"))
        return m_offset;
    if (name == QLatin1String("Delay"))
        return m_delay;
    if (name == QLatin1String("Scale"))
        return m_scale;
    if (name == QLatin1String("Angle"))
        return m_angle;
    if (name == QLatin1String("Flip"))
        return unsigned(m_flip);
    return name == QLatin1String("LoopPoint") ? QVariant(m_isLoopPoint) : QVariant();
}

void MotionFrame::setProperty(const QString &name, const QVariant &value)
{
    if (name == QLatin1String("Identifier"))
        setSprite(value);
    else if (name == QLatin1String("Offset"))
        setOffset(value.toPoint());
    else if (name == QLatin1String("Delay"))
        setDelay(value.toInt());
    else if (name == QLatin1String("Scale"))
        setScale(value.toPointF());
    else if (name == QLatin1String("Angle"))
        setAngle(value.toDouble());
    else if (name == QLatin1String("Flip"))
        setFlipFlags(value.toUInt());
    else if (name == QLatin1String("LoopPoint"))
        setLoopPointAlone(value.toBool());
}

// An animation has one loop point.
void MotionFrame::setLoopPointAlone(bool isLoopPoint)
{
    if (isLoopPoint && index() >= 0)
        static_cast<MotionCode *>(parent())->setLoopPoint(unsigned(index()));
    else
        setLoopPoint(isLoopPoint);
}

bool MotionFrame::says(const Line &line, const FrameLine &frame) const
{
    const auto means = [&line](int token, const QString &name) {
        return token < 0 ? name.isEmpty() : line.means(token, name);
    };
    return means(frame.sprite, m_sprite) && means(frame.sound, m_sound) && frame.delay == m_delay
        && QPoint(frame.x, frame.y) == m_offset && frame.scale.x() == m_scale.x()
        && frame.scale.y() == m_scale.y() && frame.angle == m_angle && frame.flip == m_flip
        && frame.loop == m_isLoopPoint && frame.blend.mode == m_blend.mode
        && frame.blend.source == m_blend.source && frame.blend.destination == m_blend.destination
        && frame.hasOffset() == m_hasOffset && frame.hasTransform() == m_hasTransform;
}

void MotionFrame::update(const Line &line, const FrameLine &frame)
{
    if (says(line, frame))
        return;
    take(line, frame);
    valueChanged(QVariant());
}

void MotionFrame::take(const Line &line, const FrameLine &frame)
{
    m_sprite = frame.sprite < 0 ? QString() : sharedName(line, frame.sprite);
    m_sound = frame.sound < 0 ? QString() : sharedName(line, frame.sound);
    m_delay = frame.delay;
    m_offset = QPoint(frame.x, frame.y);
    m_scale = frame.scale;
    m_angle = frame.angle;
    m_flip = frame.flip;
    m_blend = frame.blend;
    m_isLoopPoint = frame.loop;
    m_hasOffset = frame.hasOffset();
    m_hasTransform = frame.hasTransform();
}

// Writes the sprite or the delay; an empty text leaves it as it is.
void MotionFrame::writeHead(const QString &sprite, const QString &delay)
{
    const Parts parts(block().text());
    if (!parts.isFrame)
        return;
    QString code = parts.head(sprite.isEmpty() ? parts.line.text(1).toString() : sprite,
                              delay.isEmpty() ? parts.line.text(3).toString() : delay);
    for (const FrameLine::Option &option : parts.frame.options)
        code += QLatin1String(", ") + parts.optionText(option);
    write(code);
}

void MotionFrame::writeOptions(const QVector<OptionText> &changes)
{
    const Parts parts(block().text());
    if (!parts.isFrame)
        return;
    QString code = parts.head(parts.line.text(1).toString(), parts.line.text(3).toString());
    const auto append = [&code](const QString &text) {
        if (!text.isEmpty())
            code += QLatin1String(", ") + text;
    };
    QVector<OptionText> open = changes;
    for (const FrameLine::Option &option : parts.frame.options) {
        const auto isOfOption = [&option](const OptionText &change) {
            return change.option == option.option;
        };
        if (std::none_of(changes.begin(), changes.end(), isOfOption)) {
            append(parts.optionText(option));
            continue;
        }
        // The first place of an option takes what it says now; it does not stand twice.
        const auto change = std::find_if(open.begin(), open.end(), isOfOption);
        if (change != open.end()) {
            append(change->text);
            open.erase(change);
        }
    }
    for (const OptionText &change : open)
        append(change.text);
    write(code);
}

} // namespace Lantern

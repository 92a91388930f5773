// SPDX-License-Identifier: MIT
#include "lantern/motioncode.h"

#include "lantern/line.h"
#include "lantern/motionframe.h"
#include "lantern/values.h"

#include "code/codedocument.h"

namespace Lantern {

namespace {

const QLatin1String identifierProperty("Identifier");
const QLatin1String loopProperty("LoopPoint");

QString headerCode(const QString &identifier, const QString &title)
{
    const QString header = QStringLiteral("[animation %1]").arg(identifier);
    return title.isEmpty() ? header : header + QLatin1Char(' ') + quoted(title);
}

QString newFrameCode(int time)
{
    return QStringLiteral("frame none : ")
        + (time < 0 ? QStringLiteral("forever") : integerText(time));
}

} // namespace

MotionCode::MotionCode(const QTextBlock &block, Vela::CodeNode *previous, const QString &identifier,
                       const QString &title)
    : Node(block, previous)
    , m_identifier(identifier)
    , m_title(title)
{
}

void MotionCode::setIdentifier(const QString &identifier)
{
    if (isWord(identifier))
        write(headerCode(identifier, m_title));
}

unsigned int MotionCode::loopPoint() const
{
    for (unsigned int i = 0; i < frameCount(); ++i) {
        if (frameAt(i)->isLoopPoint())
            return i;
    }
    return 0;
}

void MotionCode::setLoopPoint(unsigned int index)
{
    if (!document() || index >= frameCount())
        return;
    document()->beginChange();
    for (unsigned int i = 0; i < frameCount(); ++i) {
        static_cast<MotionFrame *>(frameAt(i))->setLoopPoint(i == index);
    }
    document()->endChange();
}

Vela::FrameCode *MotionCode::insertFrame(unsigned int index, int time)
{
    const unsigned int count = frameCount();
    if (index >= count)
        return addFrame(time);
    if (!document())
        return nullptr;
    document()->insertBefore(frameAt(index), newFrameCode(time), false);
    return frameCount() > count ? frameAt(index) : nullptr;
}

Vela::FrameCode *MotionCode::addFrame(int time)
{
    if (!document())
        return nullptr;
    const unsigned int count = frameCount();
    appendValue(newFrameCode(time));
    return frameCount() > count ? frameAt(count) : nullptr;
}

QString MotionCode::name() const
{
    return m_title;
}

QString MotionCode::displayName() const
{
    return m_title.isEmpty() ? m_identifier : m_title;
}

void MotionCode::setName(const QString &name)
{
    write(headerCode(m_identifier, name));
}

QVariant MotionCode::property(const QString &name) const
{
    if (name == identifierProperty)
        return m_identifier;
    return name == loopProperty ? QVariant(loopPoint()) : NamedCode::property(name);
}

void MotionCode::setProperty(const QString &name, const QVariant &value)
{
    if (name == identifierProperty)
        setIdentifier(value.toString());
    else if (name == loopProperty)
        setLoopPoint(value.toUInt());
    else
        NamedCode::setProperty(name, value);
}

void MotionCode::update(QStringView identifier, const QString &title)
{
    if (identifier == m_identifier && title == m_title)
        return;
    m_identifier = identifier.toString();
    m_title = title;
    valueChanged(QVariant());
}

} // namespace Lantern

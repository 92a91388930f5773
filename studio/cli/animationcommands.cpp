// SPDX-License-Identifier: MIT
#include "code/animationcode.h"
#include "code/animationplayer.h"
#include "code/animations.h"
#include "code/framecode.h"
#include "studio/cli/animationfiles.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/projectcall.h"
#include "studio/session/messagereport.h"

#include <QJsonArray>
#include <QJsonObject>

namespace Studio {

namespace {

constexpr int MostTicks = 60 * 60 * 60; // an hour

QString identifierOf(const Vela::AnimationCode &animation)
{
    return animation.property(QStringLiteral("Identifier")).toString();
}

/// Returns the ticks of all frames; -1 if one of them never ends.
qint64 durationOf(const Vela::AnimationCode &animation)
{
    qint64 result = 0;
    const QList<Vela::FrameCode *> frames = animation.frames();
    for (const Vela::FrameCode *frame : frames) {
        if (frame->delay() < 0)
            return -1;
        result += frame->delay();
    }
    return result;
}

/// Returns the nearest millisecond. Only a sum of ticks may be converted: a tick has none of its
/// own, and what is left over from each would be lost.
qint64 milliseconds(qint64 ticks)
{
    return (ticks * 50 + 1) / 3;
}

QString counted(qint64 count, const QString &unit)
{
    const QString text = QString::number(count) + QLatin1Char(' ') + unit;
    return count == 1 ? text : text + QLatin1Char('s');
}

QStringList toRow(const QString &path, const Vela::AnimationCode &animation)
{
    const qint64 ticks = durationOf(animation);
    return {path,
            MessageReport::printable(identifierOf(animation)),
            MessageReport::printable(animation.displayName()),
            counted(animation.frameCount(), QStringLiteral("frame")),
            ticks < 0 ? QStringLiteral("endless") : counted(ticks, QStringLiteral("tick")),
            ticks < 0 ? QString() : QStringLiteral("%1 ms").arg(milliseconds(ticks)),
            QStringLiteral("loop %1").arg(animation.loopPoint())};
}

QJsonObject toJson(const QString &path, const Vela::AnimationCode &animation)
{
    const qint64 ticks = durationOf(animation);
    QJsonObject object{{QStringLiteral("file"), path},
                       {QStringLiteral("line"), animation.lineNo() + 1},
                       {QStringLiteral("identifier"), identifierOf(animation)},
                       {QStringLiteral("name"), animation.displayName()},
                       {QStringLiteral("frames"), static_cast<qint64>(animation.frameCount())},
                       {QStringLiteral("endless"), ticks < 0},
                       {QStringLiteral("loop"), static_cast<qint64>(animation.loopPoint())}};
    if (ticks >= 0) {
        object.insert(QStringLiteral("ticks"), ticks);
        object.insert(QStringLiteral("milliseconds"), milliseconds(ticks));
    }
    return object;
}

/// What a player shows at one tick.
struct Shown
{
    int time = 0;
    int frame = -1; ///< -1 where there is none
    unsigned int frameTime = 0;
};

QList<Shown> play(const AnimationMatch &match, int ticks)
{
    QList<Shown> result;
    Vela::AnimationPlayer player;
    player.change(match.file.animations, match.index, true);
    for (int i = 0; i < ticks; ++i) {
        const int time = player.tick();
        const Vela::FrameCode *const frame = player.currentFrame();
        result.append({time, frame ? frame->index() : -1, player.frameTime()});
    }
    return result;
}

void printText(const QList<Shown> &ticks)
{
    QString text;
    for (const Shown &shown : ticks) {
        text += QStringLiteral("%1  %2  %3\n")
                    .arg(shown.time, 6)
                    .arg(shown.frame < 0 ? QStringLiteral("-") : QString::number(shown.frame), 4)
                    .arg(shown.frameTime, 6);
    }
    Console::print(text);
}

QJsonArray toJson(const QList<Shown> &ticks)
{
    QJsonArray result;
    for (const Shown &shown : ticks) {
        result.append(
            QJsonObject{{QStringLiteral("time"), shown.time},
                        {QStringLiteral("frame"),
                         shown.frame < 0 ? QJsonValue(QJsonValue::Null) : QJsonValue(shown.frame)},
                        {QStringLiteral("frameTime"), static_cast<qint64>(shown.frameTime)}});
    }
    return result;
}

} // namespace

int runAnimations(const Call &call)
{
    const std::unique_ptr<ProjectSession> session = openProject(call.arguments.first());
    if (!session)
        return Failed;
    bool complete = false;
    QJsonArray array;
    QList<QStringList> rows;
    const QList<AnimationFile> files = animationFiles(*session, QString(), &complete);
    for (const AnimationFile &file : files) {
        const QList<Vela::AnimationCode *> animations = file.animations->animations();
        for (const Vela::AnimationCode *animation : animations) {
            array.append(toJson(file.path, *animation));
            rows.append(toRow(file.path, *animation));
        }
    }
    if (call.options.testFlag(Json))
        printJson({{QStringLiteral("path"), rootPath(*session->parent())},
                   {QStringLiteral("animations"), array}});
    else
        Console::print(rows);
    return complete ? Done : Failed;
}

int runPlay(const Call &call)
{
    bool isNumber = false;
    const int ticks = call.values.value(Ticks).toInt(&isNumber);
    if (!isNumber || ticks < 1 || ticks > MostTicks) {
        Console::report(QStringLiteral("--ticks needs a number from 1 to %1").arg(MostTicks));
        return Failed;
    }
    const std::unique_ptr<ProjectSession> session = openProject(call.arguments.first());
    AnimationMatch match;
    if (!session
        || !findAnimation(*session, call.arguments.at(1), call.values.value(InFile), &match))
        return Failed;
    const QList<Shown> shown = play(match, ticks);
    if (call.options.testFlag(Json))
        printJson({{QStringLiteral("path"), rootPath(*session->parent())},
                   {QStringLiteral("file"), match.file.path},
                   {QStringLiteral("identifier"), call.arguments.at(1)},
                   {QStringLiteral("ticks"), toJson(shown)}});
    else
        printText(shown);
    return Done;
}

} // namespace Studio

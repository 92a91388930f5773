// SPDX-License-Identifier: MIT
#include "code/animationcode.h"
#include "code/animationplayer.h"
#include "code/animations.h"
#include "code/codedocument.h"
#include "code/framecode.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/definitions.h"
#include "studio/cli/projectcall.h"
#include "studio/session/messagereport.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>

namespace Studio {

namespace {

constexpr int MostTicks = 60 * 60 * 60; // an hour

/// The animations of one file of a project.
struct AnimationFile
{
    QString path;
    Vela::Animations *animations = nullptr;
};

/// One animation that has the identifier that was asked for.
struct Match
{
    AnimationFile file;
    int index = 0;
};

bool isFile(const ProjectSession &session, const QString &path, const QString &name)
{
    const QString root = rootPath(*session.parent());
    return path == QDir::cleanPath(name)
        || QDir(root).absoluteFilePath(path) == ProjectSession::normalizedPath(name);
}

/// Returns the animations of the file \a name, or of all files if that is null. Sets \a complete
/// to whether they could be read.
QList<AnimationFile> animationFiles(const ProjectSession &session, const QString &name,
                                    bool *complete)
{
    *complete = true;
    QList<AnimationFile> result;
    const QList<Definition> texts = definitions(*session.parent());
    for (const Definition &text : texts) {
        if (!name.isNull() && !isFile(session, text.path, name))
            continue;
        if (!read(text.document)) {
            *complete = false;
            continue;
        }
        Vela::CodeNodeFile *const file = text.document->nodeFile(Vela::CodeNode::Animation, 0);
        if (auto *animations = dynamic_cast<Vela::Animations *>(file))
            result.append({text.path, animations});
    }
    return result;
}

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

QList<Match> findAll(const QList<AnimationFile> &files, const QString &id)
{
    QList<Match> result;
    for (const AnimationFile &file : files) {
        int index = file.animations->find(0, id);
        while (index >= 0) {
            result.append({file, index});
            index = file.animations->find(static_cast<unsigned int>(index) + 1, id);
        }
    }
    return result;
}

QString placeOf(const Match &match)
{
    const Vela::AnimationCode *animation =
        match.file.animations->at(static_cast<unsigned int>(match.index));
    return QStringLiteral("%1:%2").arg(match.file.path, QString::number(animation->lineNo() + 1));
}

/// Returns the one animation that a call means. Reports the reason and returns false if there is
/// none or more than one.
bool findAnimation(const ProjectSession &session, const Call &call, Match *match)
{
    bool complete = false;
    const QString name = call.values.value(InFile);
    const QList<AnimationFile> files = animationFiles(session, name, &complete);
    if (!complete)
        return false;
    if (!name.isNull() && files.isEmpty()) {
        Console::report(QStringLiteral("%1: is not a file of animations").arg(name));
        return false;
    }
    const QString id = call.arguments.at(1);
    const QList<Match> matches = findAll(files, id);
    if (matches.size() == 1) {
        *match = matches.first();
        return true;
    }
    QStringList places;
    for (const Match &found : matches)
        places.append(placeOf(found));
    Console::report(matches.isEmpty()
                        ? QStringLiteral("%1: there is no such animation").arg(id)
                        : QStringLiteral("%1: is the identifier of several animations: %2")
                              .arg(id, places.join(QStringLiteral(", "))));
    return false;
}

/// What a player shows at one tick.
struct Shown
{
    int time = 0;
    int frame = -1; ///< -1 where there is none
    unsigned int frameTime = 0;
};

QList<Shown> play(const Match &match, int ticks)
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
    Match match;
    if (!session || !findAnimation(*session, call, &match))
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

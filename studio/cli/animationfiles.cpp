// SPDX-License-Identifier: MIT
#include "studio/cli/animationfiles.h"

#include "code/animationcode.h"
#include "code/animations.h"
#include "code/codedocument.h"
#include "studio/cli/console.h"
#include "studio/cli/definitions.h"

#include <QDir>

namespace Studio {

namespace {

bool isFile(const ProjectSession &session, const QString &path, const QString &name)
{
    const QString root = rootPath(*session.parent());
    return path == QDir::cleanPath(name)
        || QDir(root).absoluteFilePath(path) == ProjectSession::normalizedPath(name);
}

QList<AnimationMatch> findAll(const QList<AnimationFile> &files, const QString &id)
{
    QList<AnimationMatch> result;
    for (const AnimationFile &file : files) {
        int index = file.animations->find(0, id);
        while (index >= 0) {
            result.append({file, index});
            index = file.animations->find(static_cast<unsigned int>(index) + 1, id);
        }
    }
    return result;
}

QString placeOf(const AnimationMatch &match)
{
    const Vela::AnimationCode *animation =
        match.file.animations->at(static_cast<unsigned int>(match.index));
    return QStringLiteral("%1:%2").arg(match.file.path, QString::number(animation->lineNo() + 1));
}

} // namespace

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

bool findAnimation(const ProjectSession &session, const QString &id, const QString &name,
                   AnimationMatch *match)
{
    bool complete = false;
    const QList<AnimationFile> files = animationFiles(session, name, &complete);
    if (!complete)
        return false;
    if (!name.isNull() && files.isEmpty()) {
        Console::report(QStringLiteral("%1: is not a file of animations").arg(name));
        return false;
    }
    const QList<AnimationMatch> matches = findAll(files, id);
    if (matches.size() == 1) {
        *match = matches.first();
        return true;
    }
    QStringList places;
    for (const AnimationMatch &found : matches)
        places.append(placeOf(found));
    Console::report(matches.isEmpty()
                        ? QStringLiteral("%1: there is no such animation").arg(id)
                        : QStringLiteral("%1: is the identifier of several animations: %2")
                              .arg(id, places.join(QStringLiteral(", "))));
    return false;
}

} // namespace Studio

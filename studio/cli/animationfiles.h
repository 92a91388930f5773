// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/projectsession.h"

#include <QList>

namespace Vela {
class Animations;
}

namespace Studio {

/// The animations of one file of a project.
struct AnimationFile
{
    QString path;
    Vela::Animations *animations = nullptr;
};

/// One animation that has the identifier that was asked for.
struct AnimationMatch
{
    AnimationFile file;
    int index = 0;
};

/// Returns the animations of the file \a name, or of all files if that is null. Sets \a complete
/// to whether they could be read.
QList<AnimationFile> animationFiles(const ProjectSession &session, const QString &name,
                                    bool *complete);

/// Returns the one animation with the identifier \a id, in the file \a name unless that is null.
/// Reports the reason and returns false if there is none or more than one.
bool findAnimation(const ProjectSession &session, const QString &id, const QString &name,
                   AnimationMatch *match);

} // namespace Studio

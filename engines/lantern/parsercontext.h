// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace Vela {
class Sprite;
}

namespace Lantern {

/// What kind of text a definition is; each has sections of its own.
enum class Scope { Game, Project, Motion, Script };

/// What a document knows about something that its text names. Nothing is said about what it cannot
/// know, such as the sprites of a text that belongs to no project.
enum class Presence { Unknown, Missing, Present };

/// What the grammar asks the document around a line. Names of sprites and sounds are those of their
/// files without folder and extension, in any case. Paths are as the text spells them, relative to
/// the folder of the document's file. The document outlives its nodes and its links, which ask too.
class ParserContext
{
public:
    virtual Scope scope() const = 0;
    virtual Presence spritePresence(const QString &name) const = 0;
    virtual Presence soundPresence(const QString &name) const = 0;
    virtual Presence filePresence(const QString &path) const = 0;
    /// Return the known names for the words that complete a line.
    virtual QStringList spriteNames() const = 0;
    virtual QStringList soundNames() const = 0;
    /// Returns the identifiers of all animations that a script may start.
    virtual QStringList animationNames() const = 0;
    /// Returns the sprite of that name, or null while there is none.
    virtual Vela::Sprite *sprite(const QString &name) const = 0;
    /// Opens a file that a link names in the host.
    virtual void openFile(const QString &path) = 0;
    /// Do the same for a sound and for an animation.
    virtual void openSound(const QString &name) = 0;
    virtual void openAnimation(const QString &identifier) = 0;

protected:
    ~ParserContext() = default;
};

} // namespace Lantern

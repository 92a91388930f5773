// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/parsercontext.h"

#include "code/valuecode.h"

#include <QStringList>
#include <QVector>

namespace Lantern {

/// The kinds of sections. The number is the sub-type of the section's group, so it is also the user
/// state of its lines.
enum SectionKind : unsigned int {
    NoSection = 0,
    GameSection = 1,
    ProjectSection = 2,
    StageSection = 3,
    ProjectsSection = 4,
    FilesSection = 5,
    MotionSection = 6,
    ScriptLines = 7, ///< a section of a script file
    // Reserved for later: their lines are not read.
    FontSection = 16,
    PaletteSection = 17,
    ScriptSection = 18,
    SoundSection = 19,
    SpriteSection = 20,
    UnknownSection = 32,
    /// An animation, whose node is no group; the library's number for the state of its lines.
    AnimationSection = 0x40000000
};

constexpr bool isReservedSection(unsigned int kind)
{
    return kind >= FontSection && kind <= SpriteSection;
}

/// One kind of section.
struct SectionRule
{
    SectionKind kind;
    QString word;
    unsigned int scopes; ///< one bit of scopeBit() for each kind of text that has it

    bool isReserved() const
    {
        return isReservedSection(kind);
    }
};

/// How the value of a setting is written.
enum class Form {
    Text,
    Path,
    YesNo,
    Date,    ///< 2026-05-31
    Word,    ///< one of the rule's words
    Words,   ///< some of them, with commas between
    Version, ///< "1" or "1.0"
    Size,    ///< "320 x 180"
    Scale,   ///< "2" or "1.5 x 2"
    Integers,
    Numbers ///< these two with commas between
};

/// One setting of a section.
struct Rule
{
    unsigned int section;
    QString key;
    unsigned int scopes;
    Vela::ValueCode::Type type;
    Form form;
    double least; ///< bounds of each number
    double most;
    QStringList words;     ///< of Form::Word and Form::Words; a keyword's number is its index
    QVariant defaultValue; ///< invalid where there is none, or none that the text alone tells
    int fileType;          ///< of Vela::Project::FileType, for Form::Path; else -1
    bool isList;           ///< may stand more than once
};

constexpr unsigned int scopeBit(Scope scope)
{
    return 1u << unsigned(scope);
}

const QVector<SectionRule> &sectionRules();
const QVector<Rule> &rules();

/// Returns the section that a word names, in any case; null for none.
const SectionRule *findSection(QStringView word);
/// Returns the section of a kind; null for NoSection and UnknownSection.
const SectionRule *sectionOfKind(unsigned int kind);
/// Returns the rule for a setting, in any case; null for none.
const Rule *findRule(Scope scope, unsigned int section, QStringView key);
/// Returns the key that has taken the place of an outdated one; empty for none.
QString renamedKey(unsigned int section, QStringView key);

/// Returns the word that \a word was probably meant to be; empty where none is close.
QString closestWord(QStringView word, const QStringList &words);
} // namespace Lantern

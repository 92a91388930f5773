// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/linereader.h"

namespace Lantern {

// What the lines of scripts say, read without a tree. Each reader returns false, with an error in
// the report, for a line that is malformed.

struct ScriptLine
{
    int action = 0;                     ///< token of the first action
    QVarLengthArray<int, 4> animations; ///< tokens that name one
    QVarLengthArray<int, 4> sounds;
};

bool readScriptHeader(const Line &line, HeaderLine &header, Report &report);
bool readScriptLine(const Line &line, ScriptLine &script, Report &report);

/// What the word of an action takes behind it.
enum class Argument { Direction, Sound, Text, Ticks, Thing };

struct ActionRule
{
    QString word;
    Argument argument;
};

/// A number that a script sets, as in "light = 0.5".
struct AmountRule
{
    QString word;
    double most; ///< the least is 0
};

const QVector<ActionRule> &actionRules();
const QVector<AmountRule> &amountRules();
/// Return the rule of a word, in any case; null for none.
const ActionRule *findAction(QStringView word);
const AmountRule *findAmount(QStringView word);

/// The words of the grammar, for completion.
const QStringList &eventWords();
const QStringList &triggerWords();
/// Returns the names that a trigger knows; none where they are the game's.
const QStringList &triggerNames(QStringView trigger);
const QStringList &directionWords();

} // namespace Lantern

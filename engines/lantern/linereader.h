// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/line.h"
#include "lantern/schema.h"

#include "code/contactboxcode.h"
#include "code/framecode.h"

#include <QVarLengthArray>

namespace Lantern {

class Report;

// What the lines of the grammar say, read without a tree. Each reader takes a line that
// lineKind() gave it, and returns false, with an error in the report, for one that is malformed.

/// What a line is, by its first token and the section that it stands in.
enum class LineKind { None, Header, Include, Setting, Frame, Box };

struct HeaderLine
{
    SectionKind kind = UnknownSection;
    int word = 0;     ///< token of the section's word
    int name = -1;    ///< token of an animation's identifier; -1 for none
    int title = -1;   ///< token of an animation's title; -1 for none
    QStringView rest; ///< what stands behind the word of another section
};

struct SettingLine
{
    const Rule *rule = nullptr; ///< null for an unknown setting
    QVariant value;
};

/// The options of a frame.
enum class FrameOption { Unknown, X, Y, Flip, Scale, Angle, Blend, Loop, Play };

struct FrameLine
{
    /// An option with the columns that it takes.
    struct Option
    {
        FrameOption option;
        int start;
        int end;
    };

    int sprite = -1; ///< token of the sprite; -1 for none
    int sound = -1;  ///< token of the sound; -1 for none
    int delay = 0;
    int x = 0;
    int y = 0;
    QPointF scale{1, 1};
    double angle = 0;
    Vela::FrameCode::Blend blend;
    unsigned char flip = Vela::FrameCode::NoFlip;
    bool loop = false;
    QVarLengthArray<Option, 10> options;
    unsigned int given = 0; ///< one bit for each kind of option

    void add(FrameOption option, int start, int end)
    {
        options.append({option, start, end});
        given |= 1u << unsigned(option);
    }
    bool has(FrameOption option) const
    {
        return given & 1u << unsigned(option);
    }
    bool hasOffset() const
    {
        return has(FrameOption::X) || has(FrameOption::Y);
    }
    bool hasTransform() const
    {
        return has(FrameOption::Scale) || has(FrameOption::Angle);
    }
};

struct BoxLine
{
    Vela::ContactBoxCode::BoxType type = Vela::ContactBoxCode::Attack;
    QRect rect;
    Vela::ContactBoxCode::Depth depth{0, 0};
};

/// Returns whether a line can be read at all. Reports one that holds a NUL character.
bool isReadable(const Line &line, Report &report);
/// Tells what a line in a kind of section is. Reports a line that can be nothing there.
LineKind lineKind(const Line &line, unsigned int section, Report &report);

bool readHeader(const Line &line, Scope scope, HeaderLine &header, Report &report);
/// Gives the path that an include names, cleaned.
bool readInclude(const Line &line, QString &path, Report &report);
bool readSetting(const Line &line, Scope scope, unsigned int section, SettingLine &setting,
                 Report &report);
bool readFrame(const Line &line, FrameLine &frame, Report &report);
bool readBox(const Line &line, BoxLine &box, Report &report);

/// The words of the grammar, for completion.
const QStringList &frameOptionWords();
const QStringList &flipWords();
const QStringList &blendWords();

} // namespace Lantern

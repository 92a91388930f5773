// SPDX-License-Identifier: MIT
#pragma once

#include "code/animations.h"
#include "project/message.h"

#include <QVector>

namespace Lantern {

/// The animations of a definition text. Its document registers it.
class Motions : public Vela::Animations
{
    Q_OBJECT

public:
    explicit Motions(Vela::CodeDocument *document);

    /// Takes out lines that change nothing for the engine, as one step of undo: settings that a
    /// later one overrides or that say their default, boxes that stand twice, sections without a
    /// line, and blank lines behind a blank line. A line with a comment stays.
    unsigned int optimize() override;
    QString animationTemplate() const override;

    /// Returns a warning for each box behind the last frame of its animation. Takes time with the
    /// number of animations; no line alone tells it, so it is none of the parser's messages.
    QVector<Vela::Message> boxesWithoutFrame() const;

protected:
    void free() override;
};

} // namespace Lantern

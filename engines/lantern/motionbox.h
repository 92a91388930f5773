// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/node.h"

#include "code/contactboxcode.h"

namespace Lantern {

struct BoxLine;

/// A contact box. It belongs to the frame below it, with nothing but boxes between, and has no
/// parent in the tree.
class MotionBox : public Node<Vela::ContactBoxCode>
{
public:
    MotionBox(const QTextBlock &block, Vela::CodeNode *previous, const BoxLine &line);

    BoxType boxType() const override
    {
        return m_type;
    }
    QRect rect() const override
    {
        return m_rect;
    }
    void setRect(QRect rect) override;
    /// Refuses a depth whose end lies before its start.
    bool setDepth(Depth depth) override;
    /// Its properties are "Type", to be read only, "Rect" and "Depth", a point.
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    /// Returns whether the line says what the box is already.
    bool says(const BoxLine &line) const;
    /// The parser calls this for a box that stays.
    void update(const BoxLine &line);

private:
    BoxType m_type;
    QRect m_rect;
};

/// The boxes of one type of a frame: those on the lines above it.
class MotionBoxes : public Vela::ContactBoxesCode
{
public:
    MotionBoxes(Vela::FrameCode *frame, Vela::ContactBoxCode::BoxType type);

    unsigned int count() const override;
    Vela::ContactBoxCode *at(unsigned int index) const override;
    Vela::ContactBoxCode *add(QRect rect) override;
    void remove(unsigned int index) override;
    void clear() override;

    QList<Vela::ContactBoxCode *> boxes() const;
};

/// Returns the blanks in front of the lines of boxes.
QString boxIndent(const Vela::CodeDocument &document);
/// Returns the line of a box, without an indent.
QString boxCode(Vela::ContactBoxCode::BoxType type, QRect rect, Vela::ContactBoxCode::Depth depth);

} // namespace Lantern

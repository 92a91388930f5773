// SPDX-License-Identifier: MIT
#pragma once

#include "code/childlist.h"
#include "code/codenode.h"
#include "code/namedcode.h"

namespace Vela {

class FrameCode;

/// An animation: the line that begins it, with its frames below. Besides those of NamedCode it has
/// the property "Identifier", which a concrete class reads and writes.
class VELA_EXPORT AnimationCode : public ParentCode, public NamedCode
{
public:
    /// Gives its frames to the animation above, or leaves them without a parent.
    ~AnimationCode() override;

    int lastLine() const override;
    unsigned int childCount() const override;
    int childIndex(CodeNode *child) const override;
    CodeNode *childAt(unsigned int row) const override;
    void insertChild(CodeNode *child, unsigned int row) override;
    void removeChild(CodeNode *child) override;

    /// Returns the index of the frame with which the animation goes on when it is through.
    virtual unsigned int loopPoint() const = 0;
    /// Inserts a frame that is shown for \a time ticks in front of that at \a index, and returns
    /// it; null if the text did not take it.
    virtual FrameCode *insertFrame(unsigned int index, int time) = 0;
    /// The same behind the last frame.
    virtual FrameCode *addFrame(int time) = 0;

    QStringList propertyNames() const override;

    QList<FrameCode *> frames() const;
    unsigned int frameCount() const;
    /// Returns null past the end.
    FrameCode *frameAt(unsigned int index) const;
    int indexOfFrame(const FrameCode *frame) const;
    unsigned int selectedFrame() const;
    void setSelectedFrame(unsigned int index);
    void removeFrame(unsigned int index);
    /// Returns the whole text of the animation without the blanks around it.
    QString code() const;
    /// Replaces the whole text of the animation.
    void setCode(const QString &text);

protected:
    /// Joins the root, and takes the frames behind it up to the next group or animation.
    AnimationCode(const QTextBlock &block, CodeNode *previous);

private:
    static void take(ParentCode *animation, CodeNode *node);

    ChildList<FrameCode> m_frames;
    unsigned int m_selectedFrame = 0;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "code/animationcode.h"
#include "code/animations.h"
#include "code/codedocument.h"
#include "code/codelink.h"
#include "code/codeparser.h"
#include "code/framecode.h"
#include "code/groupcode.h"
#include "code/rootcode.h"
#include "code/valuecode.h"

// A grammar small enough to work out by hand what a text gives:
//
//   ; a comment
//   version 3             in the first line only: calls setVersion(); no node
//   [name]   [name 7]     a group of sub-type 1, or of the number
//   [[name]]              a group of sub-type 2 inside the last outer group above
//   key = type value      a value, see TestValue::typeNames(); "," between items
//   anim id name          an animation
//   frame id delay loop   a frame; "loop" may be missing
//   box a 1 2 3 4         a box (a attack, c collision) of the next frame below
//
// Tokens: comment 1, header 4, key 3, value 7, keyword of a line 5; errors have 2. A key that
// begins with "old" gives a deprecation, with "odd" a warning, with "both" an error and a warning,
// in this order, on the key. Anything else is an error from its first character that is no blank to
// the line's end. "(" and ")" in values are parentheses. A value of type "file" is a link.
//
// An old node is kept where its class and value type fit and it has the parent that a new one would
// find.

class TestValue : public Vela::ValueCode
{
public:
    TestValue(Type type, const QTextBlock &block, CodeNode *previous, const QString &name,
              const QVariant &value);

    /// The words of all types but Unknown, at the index of their number.
    static const QStringList &typeNames();
    /// Returns "key = type text".
    static QString line(const QString &name, Type type, const QString &text);

    QVariant defaultValue() const override;
    QString keywordName(unsigned int keyword) const override;
    void setValue(const QVariant &value) override;
    QString name() const override;
    void setName(const QString &name) override;
    /// Takes what the line says now.
    void update(const QString &name, const QVariant &value);

private:
    QString m_name;
};

class TestGroup : public Vela::GroupCode
{
public:
    TestGroup(const QTextBlock &block, CodeNode *previous, const QString &name,
              unsigned int subType, bool nested);
    ~TestGroup() override;

    unsigned int childCount() const override;
    int childIndex(CodeNode *child) const override;
    CodeNode *childAt(unsigned int row) const override;
    void insertChild(CodeNode *child, unsigned int row) override;
    void removeChild(CodeNode *child) override;
    Vela::ValueCode *insertValue(unsigned int index, const QString &name, const QString &value,
                                 bool isComment) override;
    Vela::ValueCode *addValue(const QString &name, const QString &value, bool isComment) override;
    QString name() const override;
    void setName(const QString &name) override;

    bool isNested() const
    {
        return m_nested;
    }
    /// Returns the group that a nested one behind \a node belongs to, or null.
    static TestGroup *outerAt(CodeNode *node);
    void update(const QString &name, unsigned int subType);

private:
    void adopt(TestGroup *group);
    int groupIndex(const CodeNode *child) const;

    QList<TestGroup *> m_groups;
    QString m_name;
    bool m_nested;
};

class TestAnimation : public Vela::AnimationCode
{
public:
    TestAnimation(const QTextBlock &block, CodeNode *previous, const QString &id,
                  const QString &name);

    unsigned int loopPoint() const override;
    Vela::FrameCode *insertFrame(unsigned int index, int time) override;
    Vela::FrameCode *addFrame(int time) override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;
    QString name() const override;
    void setName(const QString &name) override;

    void update(const QString &id, const QString &name);

private:
    QString m_id;
    QString m_name;
};

class TestBox : public Vela::ContactBoxCode
{
public:
    TestBox(const QTextBlock &block, CodeNode *previous, BoxType type, QRect rect);

    BoxType boxType() const override;
    QRect rect() const override;
    void setRect(QRect rect) override;
    bool setDepth(Depth depth) override;
    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    void update(BoxType type, QRect rect);
    static QString line(BoxType type, QRect rect);

private:
    BoxType m_type;
    QRect m_rect;
};

/// Finds the boxes between a frame and the node above them that is none.
class TestBoxes : public Vela::ContactBoxesCode
{
public:
    TestBoxes(Vela::FrameCode *frame, Vela::ContactBoxCode::BoxType type);

    unsigned int count() const override;
    Vela::ContactBoxCode *at(unsigned int index) const override;
    Vela::ContactBoxCode *add(QRect rect) override;
    void remove(unsigned int index) override;
    void clear() override;

private:
    QList<Vela::ContactBoxCode *> boxes() const;
};

class TestFrame : public Vela::FrameCode
{
public:
    TestFrame(const QTextBlock &block, CodeNode *previous, const QString &id, int delay, bool loop);

    Vela::Sprite *sprite() const override
    {
        return nullptr;
    }
    void setSprite(const QVariant &identifier) override;
    int offsetX() const override
    {
        return 0;
    }
    void setOffsetX(int) override
    {
    }
    int offsetY() const override
    {
        return 0;
    }
    void setOffsetY(int) override
    {
    }
    bool hasOffset() const override
    {
        return false;
    }
    QPoint offset() const override
    {
        return QPoint();
    }
    void setOffset(QPoint) override
    {
    }
    int delay() const override
    {
        return m_delay;
    }
    void setDelay(int ticks) override;
    double scaleX() const override
    {
        return 1;
    }
    void setScaleX(double) override
    {
    }
    double scaleY() const override
    {
        return 1;
    }
    void setScaleY(double) override
    {
    }
    QPointF scale() const override
    {
        return QPointF(1, 1);
    }
    void setScale(QPointF) override
    {
    }
    double angle() const override
    {
        return 0;
    }
    void setAngle(double) override
    {
    }
    bool hasTransform() const override
    {
        return false;
    }
    unsigned char flipFlags() const override
    {
        return NoFlip;
    }
    void setFlipFlags(unsigned int) override
    {
    }
    Blend::Mode blendMode() const override
    {
        return Blend::None;
    }
    void setBlendMode(Blend::Mode) override
    {
    }
    double blendSource() const override
    {
        return 1;
    }
    void setBlendSource(double) override
    {
    }
    double blendDestination() const override
    {
        return 0;
    }
    void setBlendDestination(double) override
    {
    }
    Blend blend() const override
    {
        return Blend();
    }
    void setBlend(Blend) override
    {
    }
    QString contactBoxesText(const QList<Vela::ContactBoxCode *> &) const override
    {
        return QString();
    }
    int pasteContactBoxes(const QString &) override
    {
        return 0;
    }
    bool isLoopPoint() const override
    {
        return m_loop;
    }
    /// Answers "Identifier", "Delay" and "LoopPoint".
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

    void update(const QString &id, int delay, bool loop);
    static QString line(const QString &id, int delay, bool loop);

private:
    QString m_id;
    int m_delay;
    bool m_loop;
    TestBoxes m_attack{this, Vela::ContactBoxCode::Attack};
    TestBoxes m_collision{this, Vela::ContactBoxCode::Collision};
};

class TestLink : public Vela::CodeLink
{
public:
    TestLink(int start, int end);
    ~TestLink() override;
    void activate() override;

    static int alive;     ///< links that have not been destroyed
    static int activated; ///< how often any was clicked
};

class TestParser : public Vela::CodeParser
{
public:
    Vela::CodeNode *parseLine(const QString &line, const QTextBlock &block, Vela::CodeNode *oldNode,
                              Vela::CodeNode *previous, Vela::RootCode *root,
                              Vela::CodeParserSyntax *syntax) override;

    QVector<int> parsed; ///< numbers of the lines that were parsed, while \a record is set
    bool record = false;
};

class TestDocument : public Vela::CodeDocument
{
public:
    /// \a withParser sets the document's own parser.
    explicit TestDocument(const QString &text = QString(), bool withParser = true);
    ~TestDocument() override;

    /// Takes the blanks in front of the lines away.
    void formatLines(int firstLine, int lastLine, bool indentOnly) override;
    using CodeDocument::reparse;
    using CodeDocument::setFileName;

    TestParser parser;
    int updates = 0; ///< calls of codeUpdated()

protected:
    void codeUpdated() override;
};

/// The animations of a TestDocument; the creator registers it.
class TestAnimations : public Vela::Animations
{
public:
    explicit TestAnimations(Vela::CodeDocument *document);

    unsigned int optimize() override;
    QString animationTemplate() const override; ///< "anim %1\n"
    using Vela::Animations::release;

protected:
    void free() override;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "code/childlist.h"
#include "code/codenode.h"
#include "code/namedcode.h"

#include <QVariant>

namespace Vela {

class ValueCode;

/// A header whose lines below are values. It finds no parent by itself: a concrete class makes
/// itself a child of the root, or of another group. A child that is no value gets no row here; a
/// class whose groups hold others keeps them in its own overrides.
class VELA_EXPORT GroupCode : public ParentCode, public NamedCode
{
public:
    /// Gives its values to the group above, or leaves them without a parent.
    ~GroupCode() override;

    int lastLine() const override;
    unsigned int childCount() const override;
    int childIndex(CodeNode *child) const override;
    CodeNode *childAt(unsigned int row) const override;
    void insertChild(CodeNode *child, unsigned int row) override;
    void removeChild(CodeNode *child) override;

    /// Inserts a line with a value in front of the value at \a index, and returns its node.
    /// \a isComment makes the line one that is commented out, for engines that know such.
    virtual ValueCode *insertValue(unsigned int index, const QString &name, const QString &value,
                                   bool isComment) = 0;
    /// The same behind the last value.
    virtual ValueCode *addValue(const QString &name, const QString &value, bool isComment) = 0;

    /// Returns what kind of group it is, in the engine's numbers.
    unsigned int subType() const
    {
        return m_subType;
    }
    QList<ValueCode *> values() const;
    unsigned int valueCount() const;
    /// \a index must be below valueCount().
    ValueCode *valueAt(unsigned int index) const;
    /// Returns the first value of that name, or null.
    ValueCode *valueByName(const QString &name) const;
    /// Returns the value of that name; invalid if there is none.
    QVariant value(const QString &name) const;
    void removeValue(unsigned int index);

protected:
    /// Takes the values behind it in the chain, up to the next group or animation.
    GroupCode(const QTextBlock &block, CodeNode *previous, unsigned int subType);

    /// For a parser that finds another kind in the line of a group that stays.
    void setSubType(unsigned int subType)
    {
        m_subType = subType;
    }

private:
    static void take(ParentCode *group, CodeNode *node);

    ChildList<ValueCode> m_values;
    unsigned int m_subType;
};

} // namespace Vela

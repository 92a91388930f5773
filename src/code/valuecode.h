// SPDX-License-Identifier: MIT
#pragma once

#include "code/codenode.h"
#include "code/namedcode.h"

#include <QPointF>
#include <QRect>
#include <QVariant>
#include <QVector>

namespace Vela {

/// A line that gives a value to a name. The value is kept raw, in the form that convertFrom() makes
/// for its type, and converted by the readers.
///
/// The scalar types are String, File, Date, Keyword, KeywordVector, Float and Int; to the readers
/// of lists, points and rectangles all others are lists.
class VELA_EXPORT ValueCode : public CodeNode, public NamedCode
{
public:
    /// A number outside these is treated as Unknown.
    enum Type {
        Unknown = 0,
        String = 3,
        Bool = 4,
        File = 5,
        Date = 6,
        Keyword = 7,
        KeywordVector = 8,
        Float = 9,
        FloatVec2 = 10,
        FloatVec3 = 11,
        FloatVec4 = 12,
        FloatVector = 13,
        Int = 14,
        IntVec2 = 15,
        IntVec3 = 16,
        IntVec4 = 17,
        IntVector = 18
    };

    ~ValueCode() override;

    /// Returns the raw value, or for a Keyword its text.
    virtual QVariant value() const;
    /// Stores a value and leaves the text as it is. A subclass that writes it into its line
    /// overrides this and calls change().
    virtual void setValue(const QVariant &value);
    /// Returns the value that stands where the text gives none, for extensions; the library does
    /// not ask.
    virtual QVariant defaultValue() const = 0;
    virtual bool asBool() const;
    virtual int asInt() const;
    virtual unsigned int asUInt() const;
    /// A scalar gives one element.
    virtual QVector<int> asIntVector() const;
    virtual qreal asReal() const;
    virtual QVector<qreal> asRealVector() const;
    virtual QVariantList asVector() const;
    /// A scalar gives the x; items that a list lacks are 0.
    virtual QPoint asPoint() const;
    virtual QPointF asPointF() const;
    virtual QSize asSize() const;
    /// A list sets left, top, right and bottom, in this order, of a null rectangle; a scalar sets
    /// left.
    virtual QRect asRect() const;
    /// Returns the text of a keyword's number.
    virtual QString keywordName(unsigned int keyword) const = 0;
    /// Returns the raw value that \a value has in a type.
    virtual QVariant convertFrom(Type type, const QVariant &value) const;

    /// Stores the value and tells the parent and the model.
    void valueChanged(const QVariant &value) override;

    Type valueType() const;
    QVariant rawValue() const;

    /// Returns a value as text. Numbers of a list are joined by \a separator, unless that is null,
    /// and a blank. The text of a keyword needs \a node, which may be null; a variant that holds a
    /// string is returned as it is.
    static QString asString(const ValueCode *node, Type type, const QVariant &value,
                            const QChar &separator);

protected:
    /// Joins the group, or the parent of the value, that stands before it in the chain.
    ValueCode(Type type, const QTextBlock &block, CodeNode *previous, const QVariant &value);

private:
    Type m_valueType;
    QVariant m_value;
};

} // namespace Vela

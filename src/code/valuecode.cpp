// SPDX-License-Identifier: MIT
#include "code/valuecode.h"

#include <QDate>
#include <QSize>

namespace Vela {

namespace {

bool isScalar(ValueCode::Type type)
{
    switch (type) {
    case ValueCode::String:
    case ValueCode::File:
    case ValueCode::Date:
    case ValueCode::Keyword:
    case ValueCode::KeywordVector:
    case ValueCode::Float:
    case ValueCode::Int:
        return true;
    default:
        return false;
    }
}

bool isList(const QVariant &value)
{
    return value.type() == QVariant::List || value.type() == QVariant::StringList;
}

/// Returns \a value if it is a list, else a list with \a item alone.
QVariant listOf(const QVariant &value, const QVariant &item)
{
    return isList(value) ? value : QVariantList{item};
}

QPoint pointOf(const QVariantList &list)
{
    return QPoint(list.value(0).toInt(), list.value(1).toInt());
}

QPointF pointFOf(const QVariantList &list)
{
    return QPointF(list.value(0).toReal(), list.value(1).toReal());
}

QPoint toPoint(const QVariant &value)
{
    return isList(value) ? pointOf(value.toList()) : value.toPoint();
}

QPointF toPointF(const QVariant &value)
{
    return isList(value) ? pointFOf(value.toList()) : value.toPointF();
}

template <typename T>
QVector<T> itemsOf(const QVariant &value)
{
    QVector<T> items;
    for (const QVariant &item : value.toList())
        items.append(item.value<T>());
    return items;
}

} // namespace

ValueCode::ValueCode(Type type, const QTextBlock &block, CodeNode *previous, const QVariant &value)
    : CodeNode(Value, block, previous)
    , m_valueType(type)
    , m_value(ValueCode::convertFrom(type, value))
{
    for (CodeNode *node = previous; node; node = node->previous()) {
        if (node->type() == Value) {
            if (ParentCode *const parent = node->parent())
                parent->insertChild(this, unsigned(parent->childIndex(node) + 1));
            return;
        }
        if (node->type() == Group) {
            static_cast<ParentCode *>(node)->insertChild(this, 0);
            return;
        }
        if (node->type() == Animation)
            return;
    }
}

ValueCode::~ValueCode() = default;

ValueCode::Type ValueCode::valueType() const
{
    return m_valueType;
}

QVariant ValueCode::rawValue() const
{
    return m_value;
}

QVariant ValueCode::value() const
{
    return m_valueType == Keyword ? QVariant(keywordName(asUInt())) : m_value;
}

void ValueCode::setValue(const QVariant &value)
{
    m_value = convertFrom(m_valueType, value);
}

void ValueCode::valueChanged(const QVariant &value)
{
    m_value = convertFrom(m_valueType, value);
    CodeNode::valueChanged(value);
}

bool ValueCode::asBool() const
{
    return m_value.toBool();
}

int ValueCode::asInt() const
{
    return m_value.toInt();
}

unsigned int ValueCode::asUInt() const
{
    return m_value.toUInt();
}

QVector<int> ValueCode::asIntVector() const
{
    return isScalar(m_valueType) ? QVector<int>{asInt()} : itemsOf<int>(m_value);
}

qreal ValueCode::asReal() const
{
    return m_value.toReal();
}

QVector<qreal> ValueCode::asRealVector() const
{
    return isScalar(m_valueType) ? QVector<qreal>{asReal()} : itemsOf<qreal>(m_value);
}

QVariantList ValueCode::asVector() const
{
    return isScalar(m_valueType) ? QVariantList{m_value} : m_value.toList();
}

QPoint ValueCode::asPoint() const
{
    if (m_value.type() == QVariant::Point)
        return m_value.toPoint();
    if (isScalar(m_valueType))
        return QPoint(asInt(), 0);
    return m_valueType == IntVec2 ? m_value.toPoint() : pointOf(m_value.toList());
}

QPointF ValueCode::asPointF() const
{
    if (m_value.type() == QVariant::Point || m_value.type() == QVariant::PointF)
        return m_value.toPointF();
    if (isScalar(m_valueType))
        return QPointF(asReal(), 0);
    return m_valueType == FloatVec2 ? m_value.toPointF() : pointFOf(m_value.toList());
}

QSize ValueCode::asSize() const
{
    const QPoint point = asPoint();
    return QSize(point.x(), point.y());
}

QRect ValueCode::asRect() const
{
    if (m_value.type() == QVariant::Rect)
        return m_value.toRect();
    QRect rect;
    if (isScalar(m_valueType)) {
        rect.setLeft(asInt());
        return rect;
    }
    void (QRect::*const setters[])(int) = {&QRect::setLeft, &QRect::setTop, &QRect::setRight,
                                           &QRect::setBottom};
    const QVariantList list = m_value.toList();
    for (int i = 0; i < qMin(4, list.size()); ++i)
        (rect.*setters[i])(list.at(i).toInt());
    return rect;
}

QVariant ValueCode::convertFrom(Type type, const QVariant &value) const
{
    switch (type) {
    case String:
    case File:
        return value.toString();
    case Keyword:
        return value.toUInt();
    case Int:
        return value.toInt();
    case FloatVec2:
        return toPointF(value);
    case IntVec2:
        return toPoint(value);
    case KeywordVector:
        return listOf(value, value.toUInt());
    case FloatVec3:
    case FloatVec4:
    case FloatVector:
        return listOf(value, value.toReal());
    case IntVec3:
    case IntVec4:
    case IntVector:
        return listOf(value, value.toInt());
    default:
        return value;
    }
}

QString ValueCode::asString(const ValueCode *node, Type type, const QVariant &value,
                            const QChar &separator)
{
    if (value.type() == QVariant::String)
        return value.toString();
    const QString between = separator.isNull() ? QStringLiteral(" ") : separator + QLatin1Char(' ');
    switch (type) {
    case Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case Date:
        return value.toDate().toString(Qt::ISODate);
    case Keyword:
        return node ? node->keywordName(value.toUInt()) : value.toString();
    case FloatVec2: {
        const QPointF point = toPointF(value);
        return QString::number(point.x(), 'g', 6) + between + QString::number(point.y(), 'g', 6);
    }
    case IntVec2: {
        const QPoint point = toPoint(value);
        return QString::number(point.x()) + between + QString::number(point.y());
    }
    case FloatVec3:
    case FloatVec4:
    case FloatVector:
    case IntVec3:
    case IntVec4:
    case IntVector: {
        QStringList texts;
        for (const QVariant &item : listOf(value, value).toList())
            texts.append(item.toString());
        return texts.join(between);
    }
    default:
        return value.toString();
    }
}

} // namespace Vela

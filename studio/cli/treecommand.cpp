// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "code/framecode.h"
#include "code/rootcode.h"
#include "code/valuecode.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/definitions.h"
#include "studio/cli/projectcall.h"
#include "studio/session/messagereport.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>

namespace Studio {

namespace {

QString typeName(Vela::CodeNode::Type type)
{
    switch (type) {
    case Vela::CodeNode::Root:
        return QStringLiteral("root");
    case Vela::CodeNode::Group:
        return QStringLiteral("group");
    case Vela::CodeNode::Value:
        return QStringLiteral("value");
    case Vela::CodeNode::Animation:
        return QStringLiteral("animation");
    case Vela::CodeNode::Frame:
        return QStringLiteral("frame");
    case Vela::CodeNode::HitBox:
        return QStringLiteral("box");
    }
    return QString::number(type);
}

QString boxTypeName(Vela::ContactBoxCode::BoxType type)
{
    return type == Vela::ContactBoxCode::Attack ? QStringLiteral("attack")
                                                : QStringLiteral("collision");
}

/// Returns the name that users know a node by; a frame has that of its sprite.
QString nameOf(const Vela::CodeNode *node)
{
    if (const auto *named = dynamic_cast<const Vela::NamedCode *>(node))
        return named->displayName();
    if (const auto *frame = dynamic_cast<const Vela::FrameCode *>(node))
        return frame->property(QStringLiteral("Identifier")).toString();
    if (const auto *box = dynamic_cast<const Vela::ContactBoxCode *>(node))
        return boxTypeName(box->boxType());
    return QString();
}

QString textOf(const Vela::ValueCode *value)
{
    if (value->valueType() != Vela::ValueCode::KeywordVector)
        return Vela::ValueCode::asString(value, value->valueType(), value->rawValue(),
                                         QLatin1Char(','));
    QStringList words;
    const QVariantList keywords = value->rawValue().toList();
    for (const QVariant &keyword : keywords)
        words.append(value->keywordName(keyword.toUInt()));
    return words.join(QStringLiteral(", "));
}

/// Returns what a node says as text; null where it says nothing but its name.
QString valueOf(const Vela::CodeNode *node)
{
    if (const auto *value = dynamic_cast<const Vela::ValueCode *>(node)) {
        const QString text = textOf(value);
        return text.isNull() ? QLatin1String("") : text;
    }
    if (const auto *box = dynamic_cast<const Vela::ContactBoxCode *>(node)) {
        const QRect rect = box->rect();
        return QStringLiteral("%1, %2, %3, %4")
            .arg(rect.x())
            .arg(rect.y())
            .arg(rect.width())
            .arg(rect.height());
    }
    return QString();
}

QList<const Vela::CodeNode *> boxesOf(const Vela::FrameCode *frame)
{
    QList<const Vela::CodeNode *> result;
    for (const Vela::ContactBoxesCode *boxes : {frame->attackBoxes(), frame->collisionBoxes()}) {
        for (unsigned int i = 0; boxes && i < boxes->count(); ++i)
            result.append(boxes->at(i));
    }
    std::sort(result.begin(), result.end(), [](const Vela::CodeNode *a, const Vela::CodeNode *b) {
        return a->lineNo() < b->lineNo();
    });
    return result;
}

/// Returns the children of a node, and for a frame its boxes, which need not be in the tree.
QList<const Vela::CodeNode *> nodesBelow(const Vela::CodeNode *node)
{
    QList<const Vela::CodeNode *> result;
    const auto *parent = dynamic_cast<const Vela::ParentCode *>(node);
    const unsigned int count = parent ? parent->childCount() : 0;
    for (unsigned int i = 0; i < count; ++i)
        result.append(parent->childAt(i));
    const auto *frame = dynamic_cast<const Vela::FrameCode *>(node);
    return frame && result.isEmpty() ? boxesOf(frame) : result;
}

QJsonArray toJson(const QList<const Vela::CodeNode *> &nodes)
{
    QJsonArray result;
    for (const Vela::CodeNode *node : nodes) {
        QJsonObject object{{QStringLiteral("line"), node->lineNo() + 1},
                           {QStringLiteral("type"), typeName(node->type())},
                           {QStringLiteral("name"), nameOf(node)}};
        const QString value = valueOf(node);
        if (!value.isNull())
            object.insert(QStringLiteral("value"), value);
        if (dynamic_cast<const Vela::ParentCode *>(node))
            object.insert(QStringLiteral("children"), toJson(nodesBelow(node)));
        result.append(object);
    }
    return result;
}

QString rowOf(const Vela::CodeNode *node)
{
    QString text = typeName(node->type());
    const QString name = nameOf(node);
    if (!name.isEmpty())
        text += QLatin1Char(' ') + MessageReport::printable(name);
    const QString value = valueOf(node);
    if (!value.isNull())
        text += QStringLiteral(" = ") + MessageReport::printable(value);
    return text;
}

void appendRows(const QList<const Vela::CodeNode *> &nodes, int depth, QList<QStringList> &rows)
{
    for (const Vela::CodeNode *node : nodes) {
        rows.append({QString::number(node->lineNo() + 1),
                     QString(2 * depth, QLatin1Char(' ')) + rowOf(node)});
        appendRows(nodesBelow(node), depth + 1, rows);
    }
}

} // namespace

int runTree(const Call &call)
{
    DefinitionFinder finder;
    const ProjectSession *session = nullptr;
    const Definition definition = finder.find(call.arguments.first(), &session);
    if (!definition.document)
        return Failed;
    const QList<const Vela::CodeNode *> nodes = nodesBelow(definition.document->root());
    if (call.options.testFlag(Json)) {
        printJson({{QStringLiteral("path"), rootPath(*session->parent())},
                   {QStringLiteral("file"), definition.path},
                   {QStringLiteral("nodes"), toJson(nodes)}});
        return Done;
    }
    QList<QStringList> rows;
    appendRows(nodes, 0, rows);
    Console::print(rows);
    return Done;
}

} // namespace Studio

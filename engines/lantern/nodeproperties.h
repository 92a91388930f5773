// SPDX-License-Identifier: MIT
#pragma once

#include "editor/propertyprovider.h"

#include <QTextCursor>
#include <QVector>

#include <functional>

namespace Vela {
class CodeDocument;
class CodeNode;
} // namespace Vela

namespace Lantern {

class Document;

/// One property of what a line of a text says. It finds its node anew at each call, as any change
/// of the text may have made another one.
struct NodeProperty
{
    QString kind;
    QString label;
    QString section;
    QString sectionKey;
    std::function<QVariant()> read;
    /// Writes into the text, as one step of undo; leaves a value out that the text cannot say.
    std::function<void(const QVariant &)> write;
    QVariantMap attributes;
};

using NodeProperties = QVector<NodeProperty>;

/// Finds the node of a line; null once it is gone.
using NodeFinder = std::function<Vela::CodeNode *()>;

/// Return the properties of a frame with its boxes, of a box, of an animation, of a section with
/// all of its settings, and of a line of a script.
NodeProperties frameProperties(const Document &document, const NodeFinder &find);
NodeProperties boxProperties(const NodeFinder &find);
NodeProperties animationProperties(const NodeFinder &find);
NodeProperties sectionProperties(const Document &document, const NodeFinder &find);
NodeProperties scriptProperties(const NodeFinder &find);

/// The properties of the line that a cursor stands in. A setting stands for its section: what the
/// text does not set shows its default, and is added when it is set.
class LineProperties : public Vela::PropertyProvider
{
public:
    /// Takes the line of a cursor in a Document; a null cursor stands for none. Returns whether the
    /// properties are others than before, so that a form has to be built anew.
    bool setLine(const QTextCursor &cursor);

    unsigned int count() const override;
    QString kind(unsigned int index) const override;
    QString label(unsigned int index) const override;
    QString section(unsigned int index) const override;
    /// Returns what was typed last as long as nothing else has changed the text: what the text
    /// cannot say, such as half a date, is not taken out of the field.
    QVariant value(unsigned int index) const override;
    void setValue(unsigned int index, const QVariant &value) override;
    QVariantMap attributes(unsigned int index) const override;
    QString sectionKey(unsigned int index) const override;

private:
    Vela::CodeNode *node() const;
    NodeProperties propertiesOfLine() const;
    int revision() const;

    QTextCursor m_line; // at its start; it moves with the line
    NodeProperties m_properties;
    int m_typed = -1; // index of the property that was set last
    QVariant m_typedValue;
    int m_typedRevision = 0; // of the document, behind the change
};

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "code/codenode.h"

namespace Lantern {

/// Returns whether Vela::CodeNode::change() makes a line say just \a code. It goes by words, so
/// quotes with blanks in them, words less than before, and comments, which need a blank in front of
/// them, are for replaceCode().
bool changesCleanly(const QString &text, const QString &code);
/// Puts \a code in the place of what a node's line says. The indent and the comment stay, and with
/// the document's option "preserve_code_formatting" also the blanks between the parts, where a part
/// is a quote, the value of a setting, or a run of characters without blanks.
void replaceCode(const Vela::CodeNode &node, const QString &code);
/// Replaces columns of a node's line, as the one below does.
void replaceColumns(const Vela::CodeNode &node, int start, int end, const QString &text);
/// Returns the blanks that a line begins with.
QString indentOf(const QString &text);
/// Replaces columns of a line. What is the same at both ends stays untouched.
void replaceColumns(Vela::CodeDocument &document, const QTextBlock &line, int start, int end,
                    const QString &text);

/// What all nodes of Lantern have in common.
template <typename Base>
class Node : public Base
{
protected:
    using Base::Base;

    /// Makes the node's line say \a code.
    void write(const QString &code)
    {
        const QString text = this->block().text();
        if (changesCleanly(text, code))
            this->change(indentOf(text) + code);
        else
            replaceCode(*this, code);
    }
};

} // namespace Lantern

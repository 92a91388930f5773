// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/node.h"
#include "lantern/schema.h"

#include "code/groupcode.h"

namespace Lantern {

/// A section that is no animation. Its sub-type is of SectionKind, its name the word in the
/// brackets, in lower case.
class SectionCode : public Node<Vela::GroupCode>
{
public:
    /// \a title is what stands behind the word in the brackets.
    SectionCode(const QTextBlock &block, Vela::CodeNode *previous, SectionKind kind,
                const QString &word, const QString &title);

    SectionKind kind() const;
    QString name() const override;
    QString displayName() const override;
    /// Takes a word of the grammar; anything else is ignored.
    void setName(const QString &name) override;
    /// Both return null for a name that is no word, and for a comment, which has no node. In a
    /// script the name is an event and the value its actions.
    Vela::ValueCode *insertValue(unsigned int index, const QString &name, const QString &value,
                                 bool isComment) override;
    Vela::ValueCode *addValue(const QString &name, const QString &value, bool isComment) override;

    /// The parser calls this for a section that stays.
    void update(SectionKind kind, QStringView word, QStringView title);

private:
    bool canName(const QString &name) const;

    QString m_word;
    QString m_title;
};

} // namespace Lantern

// SPDX-License-Identifier: MIT
#pragma once

#include "code/codenodefile.h"
#include "frame/organizableobject.h"

#include <QList>
#include <memory>

class QAbstractListModel;

namespace Vela {

class AnimationCode;
class AnimationsPrivate;

/// The animations of a document in the order of its text. Its operations change the text only; the
/// parser keeps the list in step with it.
class VELA_EXPORT Animations : public OrganizableObject, public CodeNodeFile
{
    Q_OBJECT

public:
    ~Animations() override;

    void move(unsigned int from, unsigned int to) override;
    void remove(unsigned int index) override;
    /// Compares the identifiers, as numbers where both are. Never returns 0.
    int compare(unsigned int a, unsigned int b) const override;
    void beginChange() override;
    void endChange() override;

    /// Cleans the text of the file and returns the number of lines that were removed.
    virtual unsigned int optimize() = 0;
    /// Returns the text of a new, empty animation with "%1" where its identifier goes.
    virtual QString animationTemplate() const = 0;

    void insertChild(CodeNode *node, unsigned int index) override;
    void removeChild(CodeNode *node) override;
    void childChanged(CodeNode *node) override;

    /// Returns the list as a model with one column; dragging its rows moves animations.
    QAbstractListModel *listModel() const;

    unsigned int count() const;
    /// Returns null past the end.
    AnimationCode *at(unsigned int index) const;
    QList<AnimationCode *> animations() const;
    /// The animation that editors show; nothing here follows it.
    unsigned int selected() const;
    void setSelected(unsigned int index);
    int indexOf(const AnimationCode *animation) const;
    /// Returns the first animation from \a from on with the identifier \a id, or -1.
    int find(unsigned int from, const QVariant &id) const;
    /// Appends an empty animation and returns the last one, which is another, or null, where the
    /// text did not take it.
    AnimationCode *add(const QString &id);
    AnimationCode *insert(unsigned int index, const QString &id);
    /// Inserts a copy behind the animation, with another identifier unless \a id is empty.
    void duplicate(unsigned int index, const QString &id);

protected:
    explicit Animations(CodeDocument *document);

private:
    std::unique_ptr<AnimationsPrivate> d;
    unsigned int m_selected = 0;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"

#include <QWidget>
#include <memory>

class QLabel;

namespace Vela {

class MultiValueWidgetPrivate;

/// A few editors, each with a coloured badge before it: side by side while folded, which it is at
/// first, and one under the other else. Items are numbered from 0; for any other number the
/// operations return null or do nothing.
///
/// A fold changes the badges' texts through the PropertyValueEdit in the dynamic property "edit"
/// and the PropertyValueEditTranslator in "translator", where both are set.
class VELA_EXPORT MultiValueWidget : public QWidget
{
    Q_OBJECT

public:
    explicit MultiValueWidget(unsigned int count, QWidget *parent = nullptr);
    ~MultiValueWidget() override;

    unsigned int count() const;
    /// Returns the text of the badge.
    QLabel *itemLabel(unsigned int item) const;
    /// Returns what holds badge and editor, the parent for a new editor.
    QWidget *itemParent(unsigned int item) const;
    /// Returns the editor, null while there is none.
    QWidget *itemWidget(unsigned int item) const;
    /// Takes \a widget over as the editor; the one before it is deleted.
    void setItemWidget(unsigned int item, QWidget *widget);

    bool isFolded() const;
    void setFolded(bool folded);

private:
    std::unique_ptr<MultiValueWidgetPrivate> d;
};

} // namespace Vela

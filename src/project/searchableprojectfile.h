// SPDX-License-Identifier: MIT
#pragma once

#include "project/projectfile.h"

namespace Vela {

class PropertyItem;

/// A file made of items that are found by their property "Identifier".
class VELA_EXPORT SearchableProjectFile : public ProjectFile
{
public:
    /// The flags of search().
    enum SearchFlag : unsigned int {
        FindAll = 1,
        WrapAround = 2,
        FromStart = 4, ///< from the end of the list that lies behind the search, not from the
                       ///< current item
        Backward = 8
    };

    QList<SearchResult> search(const RegExp &expression, unsigned int flags) const override;
    /// Sets "Identifier" of each result's item to \a text with the captures in place of %1, %2…
    void replace(const QList<SearchResult> &results, const QString &text) override;

    virtual int itemCount() const = 0;
    /// Returns the index of the item that is selected, -1 for none.
    virtual int currentItem() const = 0;
    /// Returns null for an index that does not exist. The file owns the item.
    virtual PropertyItem *item(int index) const = 0;

protected:
    SearchableProjectFile() = default;
};

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "project/searchableprojectfile.h"

#include "frame/propertyitem.h"
#include "frame/regexp.h"

namespace Vela {

namespace {

const QString &identifierKey()
{
    static const QString key = QStringLiteral("Identifier");
    return key;
}

/// Appends the match of one item; an item that does not exist matches nothing. Returns whether
/// there was one.
bool searchItem(const SearchableProjectFile &file, int index, const RegExp &expression,
                QList<ProjectFile::SearchResult> &results)
{
    const PropertyItem *const item = file.item(index);
    if (!item)
        return false;
    const QString identifier = item->property(identifierKey()).toString();
    const QRegularExpressionMatch match = expression.match(identifier);
    if (!match.hasMatch())
        return false;

    ProjectFile::SearchResult result;
    result.item = index;
    result.column = match.capturedStart();
    result.length = match.capturedLength();
    result.text = identifier;
    result.captures = match.capturedTexts().mid(1);
    results.append(result);
    return true;
}

} // namespace

QList<ProjectFile::SearchResult> SearchableProjectFile::search(const RegExp &expression,
                                                               unsigned int flags) const
{
    QList<SearchResult> results;
    const int count = itemCount();
    if (count <= 0 || !expression.isValid())
        return results;

    if (flags & FindAll) {
        for (int i = 0; i < count; ++i)
            searchItem(*this, i, expression, results);
        return results;
    }

    // The items in the order of the search, as steps from the end that lies behind it. The current
    // item is step `start` - 1; with none selected the search begins at the end.
    const bool backward = flags & Backward;
    const int current = currentItem();
    const bool fromEnd = (flags & FromStart) || current < 0 || current >= count;
    const int start = fromEnd ? 0 : (backward ? count - current : current + 1);
    const int steps = flags & WrapAround ? count : count - start;
    for (int i = 0; i < steps; ++i) {
        const int step = (start + i) % count;
        if (searchItem(*this, backward ? count - 1 - step : step, expression, results))
            break;
    }
    return results;
}

void SearchableProjectFile::replace(const QList<SearchResult> &results, const QString &text)
{
    const bool bracketed = results.size() > 1;
    if (bracketed)
        beginChange();
    for (const SearchResult &result : results) {
        PropertyItem *const found = item(result.item);
        if (!found)
            continue;
        QString identifier = text;
        for (const QString &capture : result.captures)
            identifier = identifier.arg(capture);
        found->setProperty(identifierKey(), identifier);
    }
    if (bracketed)
        endChange();
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#pragma once

#include "editor/snipfield.h"

#include <QStringList>
#include <QVector>
#include <optional>

namespace Vela {

/// A "field" element of a snippet's file.
struct FieldElement
{
    static constexpr int ColumnCount = 10;

    /// Returns the parts of the values, or of their titles.
    static QStringList parts(const QString &list);
    /// Returns whether the field is one of several values.
    bool hasItems() const;

    QString name;
    QString title;
    QString type;       ///< never empty
    QString value;      ///< with items: the values, separated by commas
    QString valueTitle; ///< with items: what is shown of the values, separated by commas
    int column = 0;     ///< of the dialog, below ColumnCount
};

/// Returns the field that an element tells of; all but its column.
std::unique_ptr<SnipField> makeField(const FieldElement &element);

/// What a snippet's file holds; behind an error, what stood in front of it.
struct Snippet
{
    QVector<FieldElement> fields;
    QString code;  ///< each line trimmed, with a line feed behind
    QString error; ///< empty if all could be read
    qint64 errorLine = 0;
    qint64 errorColumn = 0;
};

Snippet readSnippet(const QByteArray &xml);
Snippet readSnippet(const QString &xml);
/// Returns nothing for a file that does not exist, cannot be opened or is too large to be a
/// snippet.
std::optional<Snippet> readSnippetFile(const QString &path);

/// Returns the file of a snippet. The format escapes nothing: a name, title or text with
/// characters that mean something to XML cannot be read back.
QString writeSnippet(const SnipFields &fields, const QString &text);

} // namespace Vela

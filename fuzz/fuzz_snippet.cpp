// SPDX-License-Identifier: MIT
// Reads arbitrary bytes as a snippet, writes what was read and reads that again: where no character
// of it means something to XML, the second reading must find the same.
#include "editor/snippetxml.h"

#include <QRegularExpression>

#include <cstdint>
#include <cstdlib>

using namespace Vela;

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

QString attributesOf(const FieldElement &field)
{
    return field.name + QLatin1Char('|') + field.title + QLatin1Char('|') + field.type
        + QLatin1Char('|')
        + (field.hasItems() ? QString(field.value + QLatin1Char('|') + field.valueTitle)
                            : QString());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Snippet snippet =
        readSnippet(QByteArray(reinterpret_cast<const char *>(data), int(size)));
    // Own entities do not swell the text. A byte of an old encoding is one character.
    require(snippet.code.size() <= int(size) + 1);

    // Markup is not escaped, and XML makes blanks of line ends in attributes.
    static const QRegularExpression codeMarkup(QStringLiteral("[<>&\\r]"));
    static const QRegularExpression attributeMarkup(QStringLiteral("[<>&\"\\r\\n\\t]"));
    bool isPlain = !snippet.code.contains(codeMarkup);
    QString attributes;
    SnipFields fields;
    for (const FieldElement &element : snippet.fields) {
        require(element.column >= 0 && element.column < FieldElement::ColumnCount);
        fields.push_back(makeField(element));
        attributes += attributesOf(element) + QLatin1Char(' ');
    }
    isPlain = isPlain && !attributes.contains(attributeMarkup);
    // UTF-8 holds no half of a character.
    isPlain = isPlain && snippet.code.isValidUtf16() && attributes.isValidUtf16();

    const Snippet again = readSnippet(writeSnippet(fields, snippet.code));
    if (!isPlain)
        return 0;
    QString attributesAgain;
    for (const FieldElement &element : again.fields)
        attributesAgain += attributesOf(element) + QLatin1Char(' ');
    require(again.error.isEmpty());
    require(attributesAgain == attributes);
    // Lines without text are not written.
    static const QRegularExpression blankLines(QStringLiteral("(^|\n)\n+"));
    QString code = snippet.code;
    require(again.code == code.replace(blankLines, QStringLiteral("\\1")));
    return 0;
}

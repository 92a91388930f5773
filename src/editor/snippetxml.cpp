// SPDX-License-Identifier: MIT
#include "editor/snippetxml.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace Vela {

namespace {

// No file that a person wrote comes near; beyond it a dialog could not be shown any more.
constexpr int maximumFieldCount = 1000;
constexpr qint64 maximumFileSize = 1 << 20; // bytes

int columnFrom(const QStringRef &text)
{
    return int(qBound(0LL, text.toLongLong(), qlonglong(FieldElement::ColumnCount - 1)));
}

FieldElement fieldFrom(const QXmlStreamAttributes &attributes)
{
    FieldElement field;
    field.name = attributes.value(QLatin1String("name")).toString();
    field.title = attributes.value(QLatin1String("title")).toString();
    field.type = attributes.value(QLatin1String("type")).toString();
    if (field.type.isEmpty())
        field.type = SnipFieldType::Text;
    field.value = attributes.value(QLatin1String("value")).toString();
    field.valueTitle = attributes.value(QLatin1String("value_title")).toString();
    field.column = columnFrom(attributes.value(QLatin1String("column")));
    return field;
}

QString codeFrom(const QString &text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    if (lines.first().trimmed().isEmpty())
        lines.removeFirst();
    if (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    QString code;
    for (const QString &line : qAsConst(lines))
        code += line.trimmed() + QLatin1Char('\n');
    return code;
}

Snippet read(QXmlStreamReader &reader)
{
    reader.setNamespaceProcessing(false);
    // Entities of a file's own may shorten its text only, so that none swells beyond the file.
    reader.setEntityExpansionLimit(0);
    Snippet snippet;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (reader.name() == QLatin1String("code"))
            snippet.code = codeFrom(reader.readElementText());
        else if (reader.name() != QLatin1String("field"))
            continue;
        else if (snippet.fields.size() < maximumFieldCount)
            snippet.fields.append(fieldFrom(reader.attributes()));
        else
            reader.raiseError(QCoreApplication::translate("Vela::SnipDlg", "Too many fields."));
    }
    if (reader.hasError()) {
        snippet.error = reader.errorString();
        snippet.errorLine = reader.lineNumber();
        snippet.errorColumn = reader.columnNumber();
    }
    return snippet;
}

} // namespace

QStringList FieldElement::parts(const QString &list)
{
    return list.split(QLatin1Char(','));
}

bool FieldElement::hasItems() const
{
    return type == SnipFieldType::Items;
}

std::unique_ptr<SnipField> makeField(const FieldElement &element)
{
    std::unique_ptr<SnipField> field;
    if (element.hasItems())
        field = std::make_unique<ComboSnipField>(element.value, element.valueTitle);
    else
        field = std::make_unique<RegularSnipField>(element.type);
    field->name = element.name;
    field->title = element.title;
    return field;
}

Snippet readSnippet(const QByteArray &xml)
{
    QXmlStreamReader reader(xml);
    return read(reader);
}

Snippet readSnippet(const QString &xml)
{
    QXmlStreamReader reader(xml);
    return read(reader);
}

std::optional<Snippet> readSnippetFile(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray xml = file.read(maximumFileSize + 1);
    if (xml.size() > maximumFileSize)
        return std::nullopt;
    return readSnippet(xml);
}

QString writeSnippet(const SnipFields &fields, const QString &text)
{
    QString xml = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<snippet>\r\n\r\n");
    for (const auto &field : fields) {
        xml += QStringLiteral("\t<field name=\"%1\" title=\"%2\" type=\"%3\" %4/>\r\n")
                   .arg(field->name, field->title, field->type(), field->attributes());
    }
    xml += QStringLiteral("\r\n\t<code>\r\n");
    const QVector<QStringRef> lines = text.splitRef(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QStringRef &line : lines)
        xml += QStringLiteral("\t\t") + line + QStringLiteral("\r\n");
    return xml + QStringLiteral("\t</code>\r\n\r\n</snippet>");
}

} // namespace Vela

// SPDX-License-Identifier: MIT
#include "lantern/node.h"

#include "lantern/line.h"

#include "code/codedocument.h"

#include <QStringList>

#include <algorithm>

namespace Lantern {

namespace {

// Returns the parts of a line that stand without a blank between their tokens. A quote, or the
// value of a setting, is one token with its blanks.
QVector<Token> partsOf(const Line &line)
{
    QVector<Token> parts;
    for (int i = 0; i < line.count(); ++i) {
        if (!parts.isEmpty() && parts.last().end == line.at(i).start)
            parts.last().end = line.at(i).end;
        else
            parts.append(line.at(i));
    }
    return parts;
}

// Returns the number of words between white space, by the measure of CodeNode::change().
int wordCount(QStringView code)
{
    int count = 0;
    bool wasSpace = true;
    for (QChar c : code) {
        count += wasSpace && !c.isSpace();
        wasSpace = c.isSpace();
    }
    return count;
}

// Returns whether white space is all that takes the code apart, and a blank all white space.
bool isOfPlainWords(QStringView code)
{
    return std::none_of(code.begin(), code.end(), [](QChar c) {
        return c == QLatin1Char('"') || c == QLatin1Char('#') || (c.isSpace() && !isBlank(c));
    });
}

// Returns code with the blanks between its parts that the line has there.
QString merged(const Line &oldLine, const QString &code)
{
    const Line newLine(code);
    const QVector<Token> oldParts = partsOf(oldLine);
    const QVector<Token> newParts = partsOf(newLine);
    QString result;
    for (int i = 0; i < newParts.size(); ++i) {
        if (i > 0 && i < oldParts.size()) {
            const int gap = oldParts.at(i - 1).end;
            result += oldLine.text().mid(gap, oldParts.at(i).start - gap);
        } else if (i > 0) {
            result += QLatin1Char(' ');
        }
        result += newLine.text(newParts.at(i));
    }
    return result;
}

} // namespace

bool changesCleanly(const QString &text, const QString &code)
{
    const Line line(text);
    const QStringView old = line.text().mid(line.codeStart(), line.codeEnd() - line.codeStart());
    if (!isOfPlainWords(old) || !isOfPlainWords(code))
        return false;
    const int oldCount = wordCount(old);
    const int newCount = wordCount(code);
    // The blanks in a value are its own: a value of two words or more is replaced as a whole.
    constexpr int shortSetting = 3;
    if (line.shape() == Line::Setting && (oldCount > shortSetting || newCount > shortSetting))
        return false;
    return !line.hasComment() && newCount >= oldCount;
}

QString indentOf(const QString &text)
{
    return text.left(Line(text).codeStart());
}

void replaceCode(const Vela::CodeNode &node, const QString &code)
{
    Vela::CodeDocument *const document = node.document();
    if (!document)
        return;
    const QString text = node.block().text();
    const Line line(text);
    const bool keepsBlanks = document->option(QStringLiteral("preserve_code_formatting")).toBool();
    QString result = keepsBlanks ? merged(line, code) : code;
    // A comment may stand right behind a quote, but not behind anything else.
    if (line.hasComment() && line.codeEnd() == line.commentStart())
        result += QLatin1Char(' ');
    replaceColumns(*document, node.block(), line.codeStart(), line.codeEnd(), result);
}

void replaceColumns(const Vela::CodeNode &node, int start, int end, const QString &text)
{
    if (Vela::CodeDocument *const document = node.document())
        replaceColumns(*document, node.block(), start, end, text);
}

void replaceColumns(Vela::CodeDocument &document, const QTextBlock &line, int start, int end,
                    const QString &text)
{
    const QString old = line.text().mid(start, end - start);
    const int shorter = std::min(old.size(), text.size());
    int front = 0;
    while (front < shorter && old.at(front) == text.at(front))
        ++front;
    int back = 0;
    while (back < shorter - front
           && old.at(old.size() - 1 - back) == text.at(text.size() - 1 - back))
        ++back;
    if (front == old.size() && front == text.size())
        return;
    QTextCursor cursor(line);
    cursor.setPosition(line.position() + start + front);
    cursor.setPosition(line.position() + end - back, QTextCursor::KeepAnchor);
    document.insertOnCursor(text.mid(front, text.size() - front - back), cursor);
}

} // namespace Lantern

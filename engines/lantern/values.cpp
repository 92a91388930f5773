// SPDX-License-Identifier: MIT
#include "lantern/values.h"

#include "lantern/report.h"

#include "project/project.h"

#include <QDate>
#include <QDir>
#include <QPoint>

#include <algorithm>
#include <cmath>

namespace Lantern {

namespace {

constexpr int mostDigits = 9;
constexpr int mostDecimals = 6;
constexpr int longestPath = 4096;

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

// Reads digits from a column on, which moves behind them. Gives their number.
template <typename Number>
int readDigits(QStringView text, int &column, int most, Number &number)
{
    const int start = column;
    const int length = int(text.size());
    while (column < length && column - start < most && isDigit(text[column])) {
        number = number * 10 + (text[column].unicode() - '0');
        ++column;
    }
    return column - start;
}

// Reads a number that begins in a column, which moves behind it.
bool readNumberAt(QStringView text, int &column, double &number)
{
    const bool isNegative = column < text.size() && text[column] == QLatin1Char('-');
    column += isNegative;
    double digits = 0;
    double scale = 1;
    if (readDigits(text, column, mostDigits, digits) == 0)
        return false;
    if (column < text.size() && text[column] == QLatin1Char('.')) {
        ++column;
        const int decimals = readDigits(text, column, mostDecimals, digits);
        if (decimals == 0)
            return false;
        // Up to 15 digits and powers of ten are exact, so the quotient is the closest number.
        for (int i = 0; i < decimals; ++i)
            scale *= 10;
    }
    number = (isNegative && digits > 0 ? -digits : digits) / scale;
    return column == text.size() || !isDigit(text[column]);
}

int skipBlanks(QStringView text, int column)
{
    while (column < text.size() && isBlank(text[column]))
        ++column;
    return column;
}

/// The items of a list, which stand between commas.
struct Item
{
    QStringView text;
    int start;
};

QVector<Item> itemsOf(QStringView text)
{
    QVector<Item> items;
    int start = 0;
    while (start <= text.size()) {
        int end = start;
        while (end < text.size() && text[end] != QLatin1Char(','))
            ++end;
        const int first = std::min(skipBlanks(text, start), end);
        int last = end;
        while (last > first && isBlank(text[last - 1]))
            --last;
        items.append({text.mid(first, last - first), first});
        start = end + 1;
    }
    return items;
}

// Returns whether a path needs no cleaning to see that it stays inside: the most do not.
bool isPlainPath(QStringView path)
{
    QChar last = QLatin1Char('/');
    for (QChar c : path) {
        const bool afterSlash = last == QLatin1Char('/');
        if (c == QLatin1Char('\\') || c == QLatin1Char(':')
            || (afterSlash && (c == QLatin1Char('.') || c == QLatin1Char('/'))))
            return false;
        last = c;
    }
    return !path.isEmpty() && path.size() < longestPath;
}

int lengthOf(Vela::ValueCode::Type type)
{
    switch (type) {
    case Vela::ValueCode::Int:
    case Vela::ValueCode::Float:
        return 1;
    case Vela::ValueCode::IntVec2:
    case Vela::ValueCode::FloatVec2:
        return 2;
    case Vela::ValueCode::IntVec3:
    case Vela::ValueCode::FloatVec3:
        return 3;
    case Vela::ValueCode::IntVec4:
    case Vela::ValueCode::FloatVec4:
        return 4;
    default:
        return 0; // any
    }
}

/// Reads one value.
class ValueReader
{
    Q_DECLARE_TR_FUNCTIONS(Lantern)

public:
    ValueReader(const Rule &rule, QStringView text, const Token &token, Report &report)
        : m_rule(rule)
        , m_text(text)
        , m_token(token)
        , m_column(token.start + (token.kind == Token::Quoted))
        , m_report(report)
    {
    }

    bool read(QVariant &value)
    {
        switch (m_rule.form) {
        case Form::Text:
            token(TokenKind::Text);
            value = m_text.toString();
            return true;
        case Form::Path:
            return readPath(value);
        case Form::YesNo:
            return readYesNo(value);
        case Form::Date:
            return readDate(value);
        case Form::Word:
            return readWord(value);
        case Form::Words:
            return readWords(value);
        case Form::Version:
            return readVersion(value);
        case Form::Size:
            return readSize(value);
        case Form::Scale:
            return readScale(value);
        case Form::Integers:
        case Form::Numbers:
            return readNumbers(value);
        }
        return false;
    }

private:
    void token(int type)
    {
        m_report.span(type, m_token.start, m_token.end);
    }

    void itemToken(int type, const Item &item)
    {
        const int start = m_column + item.start;
        m_report.span(type, start, start + int(item.text.size()));
    }

    bool expected(const QString &what)
    {
        return m_report.expectedAt(what, m_token.start, m_token.end);
    }

    bool expected(const QString &what, const Item &item)
    {
        // An item that is missing is told of where the list is.
        if (item.text.isEmpty())
            return expected(what);
        const int start = m_column + item.start;
        return m_report.expectedAt(what, start, start + int(item.text.size()));
    }

    bool isInBounds(double number) const
    {
        return number >= m_rule.least && number <= m_rule.most;
    }

    bool readPath(QVariant &value)
    {
        token(TokenKind::Name);
        value = m_text.toString();
        if (!isPlainPath(m_text) && insidePath(value.toString()).isEmpty())
            return expected(tr("a path inside the folder of this file"));
        const bool isProject = m_rule.fileType == Vela::Project::Main;
        if (isProject && !insidePath(value.toString()).contains(QLatin1Char('/')))
            return expected(tr("the path of a project in a folder of its own"));
        return true;
    }

    bool readYesNo(QVariant &value)
    {
        static const QLatin1String yes("yes");
        static const QLatin1String no("no");
        const auto says = [this](QLatin1String word) {
            return m_text.compare(word, Qt::CaseInsensitive) == 0;
        };
        const bool isOutdated = says(QLatin1String("true")) || says(QLatin1String("false"));
        const bool isYes = says(yes) || says(QLatin1String("true"));
        if (!isYes && !isOutdated && !says(no))
            return expected(tr("'yes' or 'no'"));
        token(TokenKind::Keyword);
        if (isOutdated)
            m_report.outdated(TokenKind::Keyword, m_token.start, m_token.end, isYes ? yes : no);
        value = isYes;
        return true;
    }

    bool readDate(QVariant &value)
    {
        const QDate date =
            m_text.size() == 10 ? QDate::fromString(m_text.toString(), Qt::ISODate) : QDate();
        if (!date.isValid())
            return expected(tr("a date such as 2026-05-31"));
        token(TokenKind::Number);
        value = date;
        return true;
    }

    QString wordsText() const
    {
        QStringList words;
        for (const QString &word : m_rule.words)
            words.append(QLatin1Char('\'') + word + QLatin1Char('\''));
        const QString last = words.takeLast();
        return tr("%1 or %2").arg(words.join(QLatin1String(", ")), last);
    }

    bool readWord(QVariant &value)
    {
        const int number = indexOfWord(m_text, m_rule.words);
        if (number < 0)
            return expected(wordsText());
        token(TokenKind::Keyword);
        value = unsigned(number);
        return true;
    }

    bool readWords(QVariant &value)
    {
        QVariantList list;
        const QVector<Item> items = itemsOf(m_text);
        for (const Item &item : items) {
            const int number = indexOfWord(item.text, m_rule.words);
            if (number < 0)
                return expected(wordsText(), item);
            itemToken(TokenKind::Keyword, item);
            list.append(unsigned(number));
        }
        value = list;
        return true;
    }

    // "1" or "1.0", each part of up to four digits.
    bool readVersion(QVariant &value)
    {
        constexpr int most = 4;
        int column = 0;
        double part = 0;
        bool isVersion = readDigits(m_text, column, most, part) > 0;
        if (isVersion && column < m_text.size() && m_text[column] == QLatin1Char('.')) {
            ++column;
            isVersion = readDigits(m_text, column, most, part) > 0;
        }
        if (!isVersion || column != m_text.size())
            return expected(tr("a version such as 1.0"));
        token(TokenKind::Number);
        value = m_text.toString();
        return true;
    }

    bool readSize(QVariant &value)
    {
        QPointF size;
        bool isPair = false;
        const bool isSize = readPair(m_text, size, isPair) && isPair && isInBounds(size.x())
            && isInBounds(size.y()) && size == QPointF(size.toPoint());
        if (!isSize)
            return expected(tr("a size such as 320 x 180"));
        token(TokenKind::Number);
        value = size.toPoint();
        return true;
    }

    bool readScale(QVariant &value)
    {
        QPointF scale;
        bool isPair = false;
        if (!readPair(m_text, scale, isPair) || !isInBounds(scale.x()) || !isInBounds(scale.y()))
            return expected(tr("a scale such as 2 or 1.5 x 2"));
        token(TokenKind::Number);
        value = scale;
        return true;
    }

    QString numberExpected() const
    {
        if (m_rule.least == 0 && m_rule.most == 1)
            return tr("a number from 0 to 1");
        return m_rule.form == Form::Integers ? tr("a whole number") : tr("a number");
    }

    bool readNumbers(QVariant &value)
    {
        QVariantList list;
        const QVector<Item> items = itemsOf(m_text);
        for (const Item &item : items) {
            double number = 0;
            int whole = 0;
            const bool isWhole = m_rule.form == Form::Integers;
            const bool isRead =
                isWhole ? readInteger(item.text, whole) : readNumber(item.text, number);
            if (!isRead || !isInBounds(isWhole ? whole : number))
                return expected(numberExpected(), item);
            itemToken(TokenKind::Number, item);
            list.append(isWhole ? QVariant(whole) : QVariant(number));
        }
        const int length = lengthOf(m_rule.type);
        if (length > 0 && list.size() != length)
            return expected(length == 1 ? numberExpected()
                                        : tr("%n numbers with commas between", nullptr, length));
        value = valueOf(list);
        return true;
    }

    QVariant valueOf(const QVariantList &list) const
    {
        switch (m_rule.type) {
        case Vela::ValueCode::Int:
        case Vela::ValueCode::Float:
            return list.first();
        case Vela::ValueCode::IntVec2:
            return QPoint(list.at(0).toInt(), list.at(1).toInt());
        case Vela::ValueCode::FloatVec2:
            return QPointF(list.at(0).toReal(), list.at(1).toReal());
        default:
            return list;
        }
    }

    const Rule &m_rule;
    const QStringView m_text;
    const Token m_token;
    const int m_column; // where the text begins
    Report &m_report;
};

QString listText(const QVariantList &list, bool areWhole)
{
    QStringList items;
    for (const QVariant &item : list)
        items.append(areWhole ? integerText(item.toInt()) : numberText(item.toReal()));
    return items.join(QLatin1String(", "));
}

QString numbersText(const Rule &rule, const QVariant &value)
{
    const bool areWhole = rule.form == Form::Integers;
    switch (rule.type) {
    case Vela::ValueCode::Int:
    case Vela::ValueCode::Float:
        return listText({value}, areWhole);
    case Vela::ValueCode::IntVec2:
        return listText({value.toPoint().x(), value.toPoint().y()}, areWhole);
    case Vela::ValueCode::FloatVec2:
        return listText({value.toPointF().x(), value.toPointF().y()}, areWhole);
    default:
        return listText(value.toList(), areWhole);
    }
}

QString wordsText(const Rule &rule, const QVariantList &numbers)
{
    QStringList words;
    for (const QVariant &number : numbers)
        words.append(rule.words.value(number.toInt()));
    return words.join(QLatin1String(", "));
}

} // namespace

bool readInteger(QStringView text, int &number)
{
    const bool isNegative = !text.isEmpty() && text[0] == QLatin1Char('-');
    int column = isNegative;
    int digits = 0;
    if (readDigits(text, column, mostDigits, digits) == 0 || column != text.size())
        return false;
    number = isNegative ? -digits : digits;
    return true;
}

bool readNumber(QStringView text, double &number)
{
    int column = 0;
    return readNumberAt(text, column, number) && column == text.size();
}

QString integerText(int number)
{
    constexpr int largest = 999999999;
    return QString::number(qBound(-largest, number, largest));
}

QString numberText(double number)
{
    constexpr double largest = 999999999;
    if (!std::isfinite(number))
        number = 0;
    QString text = QString::number(qBound(-largest, number, largest), 'f', mostDecimals);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}

bool readPair(QStringView text, QPointF &pair, bool &isPair)
{
    int column = 0;
    double x = 0;
    if (!readNumberAt(text, column, x))
        return false;
    isPair = column < text.size();
    double y = x;
    if (isPair) {
        column = skipBlanks(text, column);
        if (column == text.size() || text[column].toLower() != QLatin1Char('x'))
            return false;
        column = skipBlanks(text, column + 1);
        if (!readNumberAt(text, column, y))
            return false;
    }
    pair = QPointF(x, y);
    return column == text.size();
}

QString pairText(QPointF pair)
{
    const QString x = numberText(pair.x());
    const QString y = numberText(pair.y());
    return x == y ? x : x + QLatin1String(" x ") + y;
}

QString insidePath(const QString &text)
{
    if (text.size() > longestPath || text.contains(QChar(0)))
        return QString();
    const QString path =
        QDir::cleanPath(QString(text).replace(QLatin1Char('\\'), QLatin1Char('/')));
    const bool leaves = path.startsWith(QLatin1Char('/')) || path == QLatin1String("..")
        || path.startsWith(QLatin1String("../")) || path == QLatin1String(".")
        || (path.size() > 1 && path.at(1) == QLatin1Char(':'));
    return leaves ? QString() : path;
}

bool readValue(const Rule &rule, QStringView text, const Token &token, QVariant &value,
               Report &report)
{
    return ValueReader(rule, text, token, report).read(value);
}

QString valueText(const Rule &rule, const QVariant &value)
{
    switch (rule.form) {
    case Form::YesNo:
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    case Form::Date:
        return value.toDate().toString(Qt::ISODate);
    case Form::Word:
        return rule.words.value(value.toInt());
    case Form::Words:
        return wordsText(rule, value.toList());
    case Form::Size:
        return integerText(value.toPoint().x()) + QLatin1String(" x ")
            + integerText(value.toPoint().y());
    case Form::Scale:
        return pairText(value.toPointF());
    case Form::Integers:
    case Form::Numbers:
        return numbersText(rule, value);
    case Form::Text:
    case Form::Path:
    case Form::Version:
        break;
    }
    return value.toString();
}

} // namespace Lantern

// SPDX-License-Identifier: MIT
#include "studio/cli/console.h"

#include <QByteArray>
#include <QVector>

#include <cstdio>

namespace Studio {

namespace {

void write(std::FILE *stream, const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

} // namespace

void Console::print(const QString &text)
{
    write(stdout, text.toUtf8());
}

void Console::print(const QList<QStringList> &rows)
{
    QVector<int> widths;
    for (const QStringList &row : rows) {
        widths.resize(qMax(widths.size(), row.size()));
        for (int i = 0; i + 1 < row.size(); ++i)
            widths[i] = qMax(widths[i], row.at(i).size());
    }
    for (QStringList row : rows) {
        for (int i = 0; i + 1 < row.size(); ++i)
            row[i] = row.at(i).leftJustified(widths.at(i));
        print(row.join(QStringLiteral("  ")) + QLatin1Char('\n'));
    }
}

void Console::report(const QString &text)
{
    write(stderr, "vela: " + text.toUtf8() + '\n');
}

int Console::fail(const QString &reason)
{
    report(reason);
    return Failed;
}

bool Console::finish()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace Studio

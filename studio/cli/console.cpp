// SPDX-License-Identifier: MIT
#include "studio/cli/console.h"

#include <QByteArray>

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

void Console::report(const QString &text)
{
    write(stderr, "vela: " + text.toUtf8() + '\n');
}

bool Console::finish()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

} // namespace Studio

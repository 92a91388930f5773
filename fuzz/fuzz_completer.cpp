// SPDX-License-Identifier: MIT
// Reads arbitrary bytes as a file of words to complete: it must be taken if it is XML, and only
// then.
#include "editor/codeeditor.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <cstdint>
#include <cstdlib>

namespace {

bool isXml(const QByteArray &data)
{
    QXmlStreamReader reader(data);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

void require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QApplication application(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    static const QTemporaryDir folder;
    static Vela::CodeEditor editor;
    const QByteArray data(reinterpret_cast<const char *>(bytes), int(size));
    QFile file(folder.filePath(QStringLiteral("completer.xml")));
    require(file.open(QIODevice::WriteOnly) && file.write(data) == data.size());
    file.close();
    require(editor.completerFromFile(file.fileName()) == isXml(data));
    return 0;
}

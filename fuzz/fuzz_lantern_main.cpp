// SPDX-License-Identifier: MIT
#include "lantern/definition.h"
#include "lantern/settings.h"
#include "lantern/textcontent.h"

#include "frame/textcodecs.h"

#include <QCoreApplication>

#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

// Every place that was found lies in the text, and each value can be written back.
void check(const Lantern::Definition &definition, const QString &text)
{
    for (const Lantern::Setting &setting : definition.settings) {
        require(setting.valueOffset >= 0 && setting.valueLength >= 0);
        require(setting.valueOffset + setting.valueLength <= text.size());
        require(setting.line < definition.lineCount);
        const Lantern::Definition again(QStringLiteral("[a]\nb = ")
                                        + Lantern::quotedIfNeeded(setting.value));
        require(again.settings.size() == 1 && again.settings.at(0).value == setting.value);
    }
    for (const Vela::Message &message : definition.messages)
        require(int(message.line) <= definition.lineCount);
}

bool staysBelow(const QString &path)
{
    return !path.isEmpty() && path != QLatin1String("..") && !path.startsWith(QLatin1String("../"))
        && !path.startsWith(QLatin1Char('/'));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication application(*argc, *argv);
    Vela::TextCodecs::initialize();
    return 0;
}

// The whole input is a main file, of a game and of a project.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray file(reinterpret_cast<const char *>(data), int(size));
    const Lantern::TextContent content(file);
    require(content.toData() == file);
    const Lantern::Definition definition(content.text());
    check(definition, content.text());
    for (const Lantern::Scope scope : {Lantern::Scope::Game, Lantern::Scope::Project}) {
        const Lantern::Settings settings(definition, scope);
        for (const Lantern::FileEntry &entry : settings.files)
            require(staysBelow(entry.path));
    }
    return 0;
}

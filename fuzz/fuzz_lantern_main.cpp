// SPDX-License-Identifier: MIT
#include "lantern/definitionfile.h"
#include "lantern/textcontent.h"

#include "frame/textcodecs.h"
#include "project/messages.h"

#include <QGuiApplication>

#include <cstdlib>

namespace {

void require(bool condition)
{
    if (!condition)
        std::abort();
}

bool staysBelow(const QString &path)
{
    return !path.isEmpty() && path != QLatin1String("..") && !path.startsWith(QLatin1String("../"))
        && !path.startsWith(QLatin1Char('/'));
}

// Every file lies below the folder, and every message in the text.
void check(const Lantern::DefinitionFile &document)
{
    for (const Lantern::FileEntry &entry : document.settings().files)
        require(staysBelow(entry.path));
    const Vela::Messages *const messages = document.messages();
    for (int i = 0; i < messages->rowCount(); ++i)
        require(int(messages->at(unsigned(i), Vela::Message::Any).line) < document.blockCount());
}

// Any text can be written as a name, and undo takes it back.
void checkName(Lantern::DefinitionFile &document)
{
    const QString text = document.toString();
    const QString value = QStringLiteral(" a # \"b\"");
    for (const char *name : {"game.name", "project.name"}) {
        const QString property = QLatin1String(name);
        if (!document.propertyNames().contains(property))
            continue;
        document.setProperty(property, value);
        require(document.property(property).toString() == value);
        check(document);
        document.undo();
        require(document.toString() == text);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication application(*argc, *argv);
    Vela::TextCodecs::initialize();
    return 0;
}

// The whole input is a main file, of a game and of a project, and motions.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray file(reinterpret_cast<const char *>(data), int(size));
    const Lantern::TextContent content(file);
    require(content.toData() == file);
    for (const Lantern::Scope scope :
         {Lantern::Scope::Game, Lantern::Scope::Project, Lantern::Scope::Motion}) {
        auto *const document = new Lantern::DefinitionFile(scope);
        document->fromString(content.text());
        check(*document);
        checkName(*document);
        document->release();
    }
    return 0;
}

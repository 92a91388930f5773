// SPDX-License-Identifier: MIT
#include "code/codedocument.h"
#include "frame/archive.h"
#include "frame/jobstats.h"
#include "frame/textcodecs.h"
#include "studio/cli/commands.h"
#include "studio/cli/console.h"
#include "studio/cli/definitions.h"
#include "studio/cli/projectcall.h"

namespace Studio {

namespace {

enum Outcome { Unchanged, Changed, NotDone };

Outcome notDone(const QString &file, const char *reason)
{
    Console::report(QStringLiteral("%1: %2").arg(file, QString::fromUtf8(reason)));
    return NotDone;
}

/// Returns whether the bytes on the disk hold any that are no text in their encoding. Saving would
/// put replacement characters in their place.
bool isDamaged(const Vela::CodeDocument &document)
{
    if (!document.toString().contains(QChar::ReplacementCharacter))
        return false;
    QIODevice *const device = document.archive().openFile(document.fileName(), QIODevice::ReadOnly);
    if (!device)
        return true;
    const QByteArray data = device->readAll();
    document.archive().closeFile(device);
    int codec = document.codecId();
    const QString text = Vela::TextCodecs::stringFromData(data, &codec);
    // A byte-order mark is no part of the text.
    return !data.endsWith(Vela::TextCodecs::stringToData(text, codec));
}

bool save(Vela::CodeDocument &document)
{
    const auto job = createJob("Format");
    return document.toFile(document.archive(), document.fileName(), 0, job.get())
        && !document.isModified();
}

Outcome format(const QString &file, Vela::CodeDocument &document, CallOptions options)
{
    const QString before = document.toString();
    document.formatLines(0, document.blockCount() - 1, options.testFlag(IndentOnly));
    if (document.toString() == before)
        return Unchanged;
    if (isDamaged(document))
        return notDone(file, "holds bytes that are no text in its encoding, not formatted");
    if (options & (Check | DryRun))
        return Changed;
    return save(document) ? Changed : notDone(file, "cannot be written");
}

} // namespace

int runFormat(const Call &call)
{
    DefinitionFinder finder;
    bool complete = true;
    bool anyChanged = false;
    for (const QString &file : call.arguments) {
        const ProjectSession *session = nullptr;
        const Definition definition = finder.find(file, &session);
        const Outcome outcome =
            definition.document ? format(file, *definition.document, call.options) : NotDone;
        complete = complete && outcome != NotDone;
        anyChanged = anyChanged || outcome == Changed;
        if (outcome == Changed && !call.options.testFlag(Quiet))
            Console::print(file + QLatin1Char('\n'));
    }
    if (!complete)
        return Failed;
    return anyChanged && call.options.testFlag(Check) ? ContentErrors : Done;
}

} // namespace Studio

// SPDX-License-Identifier: MIT
#include "require.h"

#include "lantern/completion.h"
#include "lantern/document.h"
#include "lantern/scriptcode.h"
#include "lantern/sectioncode.h"

#include "code/codeblockdata.h"
#include "code/codelink.h"
#include "code/rootcode.h"
#include "frame/textcodecs.h"

#include <QApplication>
#include <QTextBlock>

using Lantern::Document;
using Lantern::ScriptCode;
using Lantern::SectionCode;

namespace {

QString textOf(const Document &document)
{
    return document.toRawText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}

ScriptCode *lineIn(const Document &document, const QTextBlock &block)
{
    return dynamic_cast<ScriptCode *>(document.nodeInBlock(block));
}

// What each line says, without the blanks between its parts.
QStringList outline(const Document &document)
{
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const ScriptCode *const line = lineIn(document, block);
        const auto *const section = dynamic_cast<SectionCode *>(document.nodeInBlock(block));
        QString said = section ? section->displayName() : QString();
        if (line)
            said = line->name() + QLatin1Char('|') + line->rawValue().toString();
        lines.append(said.remove(QLatin1Char(' ')).remove(QLatin1Char('\t')).toLower());
    }
    return lines;
}

// What is told of a line lies in it, and nodes are where their lines are.
void check(const Document &document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const Vela::CodeNode *const node = document.nodeInBlock(block);
        require(!node || (node->block() == block && node->parent()));
        const auto *const data = Vela::CodeBlockData::testBlockData(block);
        if (!data)
            continue;
        const int length = block.length() - 1;
        const auto messages = data->syntaxMessages();
        for (const auto &message : messages)
            require(message.start >= 0 && message.start <= message.end && message.end <= length);
        const auto links = data->links();
        for (const Vela::CodeLink *const link : links)
            require(link->start() >= 0 && link->start() < link->end() && link->end() <= length);
    }
}

// Formatting keeps what the text means, changes nothing a second time and is one step of undo.
void checkFormat(Document &document)
{
    const QString before = textOf(document);
    const QStringList said = outline(document);
    document.formatLines(0, document.blockCount() - 1, false);
    check(document);
    const QString formatted = textOf(document);
    require(outline(document) == said);
    document.formatLines(0, document.blockCount() - 1, false);
    require(textOf(document) == formatted);
    if (formatted != before)
        document.undo();
    require(textOf(document) == before);
}

// What a node is told to say, its line says.
void checkNodes(Document &document)
{
    const int lines = document.blockCount();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        ScriptCode *const line = lineIn(document, block);
        if (!line)
            continue;
        line->setValue(QStringLiteral("turn left\n, idle"));
        require(lineIn(document, block)
                && lineIn(document, block)->rawValue() == QLatin1String("turn left , idle"));
        lineIn(document, block)->setName(QStringLiteral("when held up"));
        require(lineIn(document, block)
                && lineIn(document, block)->name() == QLatin1String("when held up"));
    }
    require(document.blockCount() == lines);
    check(document);
}

void checkCompletion(Document &document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QTextCursor cursor(block);
        cursor.movePosition(QTextCursor::EndOfBlock);
        const Lantern::Completion completion = Lantern::completionAt(cursor, document);
        require(completion.start >= 0 && completion.start <= block.length() - 1);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(*argc, *argv);
    Vela::TextCodecs::initialize();
    return 0;
}

// The whole input is a script.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    int codec = -1;
    const QByteArray file(reinterpret_cast<const char *>(data), int(size));
    auto *const document = new Document(Lantern::Scope::Script);
    document->fromString(Vela::TextCodecs::stringFromData(file, &codec));
    check(*document);
    checkFormat(*document);
    checkCompletion(*document);
    checkNodes(*document);
    document->release();
    return 0;
}

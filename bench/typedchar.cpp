// SPDX-License-Identifier: MIT
// Types characters into a long text, for callgrind to count: typedchar vela|peer LINES
// middle|widest bench/typedchar.sh runs it and prints the instructions of one character.
#include "codetext.h"

#include "lantern/document.h"

#include "frame/textcodecs.h"

#include <QGuiApplication>
#include <QPlainTextDocumentLayout>
#include <QTextCursor>

#include <KSyntaxHighlighting/Definition>
#include <KSyntaxHighlighting/Repository>
#include <KSyntaxHighlighting/SyntaxHighlighter>
#include <KSyntaxHighlighting/Theme>

#include <cstdio>

constexpr int typedCharacters = 20;

/// What callgrind counts. A character that comes is typed, one that goes is deleted again, so the
/// line's width grows and shrinks.
extern "C" __attribute__((noinline)) void typeCharacters(QTextDocument &document,
                                                         QTextCursor &cursor)
{
    for (int i = 0; i < typedCharacters / 2; ++i) {
        cursor.insertText(QStringLiteral("7"));
        document.documentLayout()->blockBoundingRect(cursor.block());
        cursor.deletePreviousChar();
        document.documentLayout()->blockBoundingRect(cursor.block());
    }
}

namespace {

QString textWithWidestLine(int lines)
{
    const QString half = motionText(lines / 2);
    return half + QStringLiteral("# ") + QString(300, QLatin1Char('w')) + QLatin1Char('\n') + half;
}

void run(QTextDocument &document, int lines, bool widest)
{
    QTextCursor cursor(document.findBlockByNumber(lines / 2 - (widest ? 0 : 4)));
    cursor.movePosition(QTextCursor::EndOfBlock);
    // A view has laid out what it shows.
    document.documentLayout()->blockBoundingRect(cursor.block());
    typeCharacters(document, cursor);
}

void runVela(int lines, bool widest)
{
    auto *const document = new Lantern::Document(Lantern::Scope::Motion);
    document->fromString(textWithWidestLine(lines));
    run(*document, lines, widest);
    document->release();
}

void runPeer(int lines, bool widest)
{
    KSyntaxHighlighting::Repository repository;
    QTextDocument document;
    document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
    KSyntaxHighlighting::SyntaxHighlighter highlighter(&document);
    highlighter.setTheme(repository.defaultTheme());
    highlighter.setDefinition(repository.definitionForName(QStringLiteral("INI Files")));
    document.setPlainText(textWithWidestLine(lines));
    run(document, lines, widest);
}

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    if (argc != 4) {
        std::fputs("typedchar vela|peer LINES middle|widest\n", stderr);
        return 2;
    }
    Vela::TextCodecs::initialize();
    const bool widest = qstrcmp(argv[3], "widest") == 0;
    if (qstrcmp(argv[1], "vela") == 0)
        runVela(atoi(argv[2]), widest);
    else
        runPeer(atoi(argv[2]), widest);
    return 0;
}

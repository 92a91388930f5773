// SPDX-License-Identifier: MIT
// Documents with their tree and highlight: loading against setPlainText() on a bare QTextDocument
// and against KSyntaxHighlighting where that is installed, both with the same text in turns; and
// whether the cost of a job on a text of double length is the double.
#include "processortime.h"

#include "codetext.h"

#include "lantern/document.h"

#include "code/framecode.h"
#include "code/rootcode.h"
#include "frame/textcodecs.h"

#include <QGuiApplication>
#include <QPlainTextDocumentLayout>
#include <QTextCursor>

#include <benchmark/benchmark.h>

#include <functional>
#include <limits>
#include <memory>

#include <malloc.h>
#include <time.h>

#ifdef VELA_HAS_KSYNTAXHIGHLIGHTING
#include <KSyntaxHighlighting/Definition>
#include <KSyntaxHighlighting/Repository>
#include <KSyntaxHighlighting/SyntaxHighlighter>
#include <KSyntaxHighlighting/Theme>
#endif

namespace {

using Document = std::unique_ptr<Lantern::Document, void (*)(Lantern::Document *)>;

Document makeDocument()
{
    return {new Lantern::Document(Lantern::Scope::Motion),
            [](Lantern::Document *document) { document->release(); }};
}

double loadBare(const QString &text)
{
    QTextDocument document;
    document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
    return processorSeconds([&] { document.setPlainText(text); });
}

double loadVela(const QString &text)
{
    const Document document = makeDocument();
    return processorSeconds([&] { document->fromString(text); });
}

#ifdef VELA_HAS_KSYNTAXHIGHLIGHTING
double loadPeer(const QString &text)
{
    static KSyntaxHighlighting::Repository repository;
    QTextDocument document;
    document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
    KSyntaxHighlighting::SyntaxHighlighter highlighter(&document);
    highlighter.setTheme(repository.defaultTheme());
    highlighter.setDefinition(repository.definitionForName(QStringLiteral("INI Files")));
    return processorSeconds([&] { document.setPlainText(text); });
}
#endif

void load(benchmark::State &state)
{
    const QString text = motionText(int(state.range(0)));
    double bare = std::numeric_limits<double>::infinity();
    double vela = bare;
    double peer = bare;
    for (auto _ : state) {
        bare = std::min(bare, loadBare(text));
        vela = std::min(vela, loadVela(text));
#ifdef VELA_HAS_KSYNTAXHIGHLIGHTING
        peer = std::min(peer, loadPeer(text));
#endif
    }
    state.counters["ms"] = vela * 1e3;
    state.counters["to_bare"] = vela / bare;
    state.counters["to_peer"] = vela / peer;
}

/// A job that is measured on texts of n and of 2n lines.
struct Job
{
    const char *name;
    int lines;
    QString (*text)(int lines);
    /// Prepares a document that has the text, and returns what is measured.
    std::function<void()> (*prepare)(Lantern::Document &document, int lines);
};

QString repeated(const QString &line, int lines)
{
    QString text;
    text.reserve(lines * (line.size() + 1));
    for (int i = 0; i < lines; ++i)
        text += line + QLatin1Char('\n');
    return text;
}

QString commentText(int lines)
{
    return repeated(QStringLiteral("# nothing but words"), lines);
}

// Each line has two words too many.
QString faultyText(int lines)
{
    return QStringLiteral("[animation walk]\n")
        + repeated(QStringLiteral("frame walk-1 : many, x = wide"), lines);
}

QString headerText(int lines)
{
    return repeated(QStringLiteral("[animation walk]"), lines);
}

constexpr int sectionLines = 10;

// Sections of settings.
QString sectionText(int lines)
{
    return repeated(QStringLiteral("[motion]\n")
                        + repeated(QStringLiteral("ground = 4"), sectionLines - 1).chopped(1),
                    lines / sectionLines);
}

std::function<void()> readText(Lantern::Document &document, int)
{
    const QString text = document.toString();
    return [&document, text] { document.fromString(text); };
}

std::function<void()> highlightAgain(Lantern::Document &document, int)
{
    // One alone is too short to be measured.
    constexpr int times = 5;
    return [&document] {
        for (int i = 0; i < times; ++i)
            document.rehighlight();
    };
}

std::function<void()> deleteHalf(Lantern::Document &document, int lines)
{
    return [&document, lines] {
        QTextCursor cursor(document.findBlockByNumber(lines / 4));
        cursor.setPosition(document.findBlockByNumber(lines / 4 * 3).position(),
                           QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    };
}

void editNodes(Lantern::Document &document, int edits)
{
    document.beginChange();
    Vela::CodeNode *node = document.root();
    for (int i = 0; i < edits && node; ++i) {
        node = node->next(Vela::CodeNode::Frame, 0);
        if (node)
            static_cast<Vela::FrameCode *>(node)->setDelay(100 + i % 100);
    }
    document.endChange();
}

std::function<void()> editInBracket(Lantern::Document &document, int lines)
{
    return [&document, lines] { editNodes(document, lines / 2); };
}

std::function<void()> undoBracket(Lantern::Document &document, int lines)
{
    editNodes(document, lines / 2);
    return [&document] { document.undo(); };
}

// Turns each header but the first into a comment, and changes a setting below it.
void breakHeaders(Lantern::Document &document, int lines)
{
    document.beginChange();
    for (int line = sectionLines; line < lines; line += sectionLines) {
        const QTextBlock header = document.findBlockByNumber(line);
        document.insertOnCursor(QStringLiteral("#"), QTextCursor(header));
        document.insertOnCursor(QStringLiteral(" "), QTextCursor(header.next()));
    }
    document.endChange();
}

std::function<void()> breakInBracket(Lantern::Document &document, int lines)
{
    return [&document, lines] { breakHeaders(document, lines); };
}

std::function<void()> undoBreaks(Lantern::Document &document, int lines)
{
    breakHeaders(document, lines);
    return [&document] { document.undo(); };
}

const Job jobs[] = {
    {"comments", 100000, commentText, readText},
    {"comments_again", 100000, commentText, highlightAgain},
    {"two_messages_a_line", 50000, faultyText, readText},
    {"two_messages_again", 50000, faultyText, highlightAgain},
    {"root_children", 50000, headerText, readText},
    {"delete_half", 100000, motionText, deleteHalf},
    {"delete_half_of_headers", 50000, headerText, deleteHalf},
    {"bracket_of_20k_edits", 40000, motionText, editInBracket},
    {"undo_of_20k_edits", 40000, motionText, undoBracket},
    {"bracket_of_broken_headers", 50000, sectionText, breakInBracket},
    {"undo_of_broken_headers", 50000, sectionText, undoBreaks},
};

double secondsOf(const Job &job, int lines)
{
    const Document document = makeDocument();
    document->fromString(job.text(lines));
    return processorSeconds(job.prepare(*document, lines));
}

void doubling(benchmark::State &state)
{
    const Job &job = jobs[state.range(0)];
    state.SetLabel(job.name);
    double once = std::numeric_limits<double>::infinity();
    double twice = once;
    for (auto _ : state) {
        once = std::min(once, secondsOf(job, job.lines));
        twice = std::min(twice, secondsOf(job, 2 * job.lines));
    }
    state.counters["ms"] = once * 1e3;
    state.counters["at_double"] = twice / once;
}

BENCHMARK(load)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(load)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(doubling)
    ->DenseRange(0, int(std::size(jobs)) - 1)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

} // namespace

int main(int argc, char *argv[])
{
    // Memory that one run gives back serves for the next: the system's work for fresh pages is not
    // what is measured.
    mallopt(M_MMAP_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    Vela::TextCodecs::initialize();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

// SPDX-License-Identifier: MIT
// The code editor with all that it shows: a key from its event until the view is painted again,
// folding, the highlight of blocks, and how long a document takes to be shown against a bare
// QPlainTextEdit with the same text. One frame at 60 Hz is 16 ms.
#include "codetext.h"

#include "lantern/document.h"

#include "editor/codeeditor.h"
#include "frame/textcodecs.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPlainTextDocumentLayout>
#include <QTextBlock>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>

namespace {

struct Releaser
{
    void operator()(Lantern::Document *document) const
    {
        document->release();
    }
};
using Document = std::unique_ptr<Lantern::Document, Releaser>;

Document makeDocument(const QString &text)
{
    Document document(new Lantern::Document(Lantern::Scope::Motion));
    document->fromString(text);
    return document;
}

/// All lines in one animation, which is the hardest text to fold and to walk through.
QString oneBlockText(int lines)
{
    QString text = QStringLiteral("[animation walk]\n");
    for (int i = 2; i < lines; ++i)
        text += QStringLiteral("frame walk-1 : 4\n");
    return text + QStringLiteral("[animation end]\n");
}

double millisecondsOf(const std::function<void()> &job)
{
    QElapsedTimer timer;
    timer.start();
    job();
    return double(timer.nsecsElapsed()) / 1e6;
}

void paint()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

void show(QPlainTextEdit &editor)
{
    editor.setLineWrapMode(QPlainTextEdit::NoWrap);
    editor.resize(900, 800);
    editor.show();
    editor.setFocus();
    paint();
}

/// Counts how often a view is painted.
class Paints : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }

    int count = 0;
};

/// An editor on a document of its own.
struct Shown
{
    explicit Shown(const QString &text)
        : document(makeDocument(text))
    {
        editor.setDocument(document.get());
        show(editor);
    }

    Document document;
    Vela::CodeEditor editor;
};

void press(QPlainTextEdit &editor, int key, const QString &text)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, text);
    QCoreApplication::sendEvent(&editor, &event);
    paint();
}

// The highlight of blocks comes when the user pauses, so it is measured apart.
void typeKeys(benchmark::State &state, const QString &text, int line)
{
    Shown shown(text);
    shown.editor.setCurrentLine(unsigned(line), Vela::CodeEditor::MiddlePlace);
    shown.editor.moveCursor(QTextCursor::EndOfLine);
    paint();
    Paints paints;
    shown.editor.viewport()->installEventFilter(&paints);
    double worst = 0;
    for (auto _ : state) {
        const double key =
            millisecondsOf([&] { press(shown.editor, Qt::Key_7, QStringLiteral("7")); });
        worst = std::max(worst, key);
    }
    state.counters["worst_ms"] = worst;
    state.counters["paints"] = benchmark::Counter(paints.count, benchmark::Counter::kAvgIterations);
    state.counters["return_ms"] =
        millisecondsOf([&] { press(shown.editor, Qt::Key_Return, QStringLiteral("\r")); });
    state.counters["blocks_ms"] = millisecondsOf([&] { shown.editor.updateBlockHighlight(); });
}

void typeInMiddle(benchmark::State &state)
{
    const int lines = int(state.range(0));
    typeKeys(state, motionText(lines), lines / 2 + 5);
}

void typeAtEnd(benchmark::State &state)
{
    const int lines = int(state.range(0));
    typeKeys(state, motionText(lines), lines - 2);
}

void typeInOneBlock(benchmark::State &state)
{
    const int lines = int(state.range(0));
    typeKeys(state, oneBlockText(lines), lines / 2);
}

// The header of a block that is folded: what it hides is asked after at each key.
void typeInFoldedHeader(benchmark::State &state)
{
    const int lines = int(state.range(0));
    Shown shown(oneBlockText(lines));
    shown.editor.foldAll();
    paint();
    shown.editor.moveCursor(QTextCursor::EndOfLine);
    shown.editor.insertPlainText(QStringLiteral(" # "));
    for (auto _ : state)
        press(shown.editor, Qt::Key_7, QStringLiteral("7"));
}

void foldAndUnfold(benchmark::State &state, const QString &text)
{
    Shown shown(text);
    double fold = std::numeric_limits<double>::infinity();
    double unfold = fold;
    for (auto _ : state) {
        fold = std::min(fold, millisecondsOf([&] {
                            shown.editor.foldAll();
                            paint();
                        }));
        unfold = std::min(unfold, millisecondsOf([&] {
                              shown.editor.unfoldAll();
                              paint();
                          }));
    }
    state.counters["fold_ms"] = fold;
    state.counters["unfold_ms"] = unfold;
    state.counters["one_ms"] = millisecondsOf([&] {
        shown.editor.toggleBlockVisible(shown.editor.document()->firstBlock());
        paint();
    });
}

void foldAll(benchmark::State &state)
{
    foldAndUnfold(state, motionText(int(state.range(0))));
}

void foldOneBlock(benchmark::State &state)
{
    foldAndUnfold(state, oneBlockText(int(state.range(0))));
}

// From the text to its first painting, as when a file is opened.
double openBare(const QString &text)
{
    QTextDocument document;
    document.setDocumentLayout(new QPlainTextDocumentLayout(&document));
    QPlainTextEdit editor;
    show(editor);
    return millisecondsOf([&] {
        document.setPlainText(text);
        editor.setDocument(&document);
        paint();
    });
}

double openVela(const QString &text)
{
    Document document;
    Vela::CodeEditor editor;
    show(editor);
    return millisecondsOf([&] {
        document = makeDocument(text);
        editor.setDocument(document.get());
        paint();
    });
}

void open(benchmark::State &state)
{
    const QString text = motionText(int(state.range(0)));
    double bare = std::numeric_limits<double>::infinity();
    double vela = bare;
    for (auto _ : state) {
        bare = std::min(bare, openBare(text));
        vela = std::min(vela, openVela(text));
    }
    state.counters["ms"] = vela;
    state.counters["to_bare"] = vela / bare;
}

void sizes(benchmark::internal::Benchmark *job)
{
    job->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(typeInMiddle)->Apply(sizes)->Iterations(100);
BENCHMARK(typeAtEnd)->Apply(sizes)->Iterations(100);
BENCHMARK(typeInOneBlock)->Apply(sizes)->Iterations(100);
BENCHMARK(typeInFoldedHeader)->Apply(sizes)->Iterations(30);
BENCHMARK(foldAll)->Apply(sizes)->Iterations(5);
BENCHMARK(foldOneBlock)->Apply(sizes)->Iterations(5);
BENCHMARK(open)->Apply(sizes)->Iterations(5);

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication app(argc, argv);
    Vela::TextCodecs::initialize();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

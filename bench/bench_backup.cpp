// SPDX-License-Identifier: MIT
// `vela backup` of 5,000 files against the program zip at the same level, both as child processes
// on the same folder. They take turns, so that what else the machine does meets both. The last line
// gives the ratio of their best times.
#include "support/biggame.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <limits>

namespace {

constexpr int projects = 100; // of 50 files each
constexpr int rounds = 8;

struct Program
{
    QString name;
    QStringList arguments;
    QString product;
    double best = std::numeric_limits<double>::infinity(); // seconds
};

double ratio = 0; // of the best times

// Returns what went wrong; empty if nothing did.
QByteArray run(Program &program, const QString &folder, double &seconds)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    QElapsedTimer timer;
    timer.start();
    process.start(program.name, program.arguments);
    const bool done = process.waitForFinished(-1) && process.exitCode() == 0;
    seconds = double(timer.nsecsElapsed()) / 1e9;
    QDir(program.product).removeRecursively();
    QFile::remove(program.product);
    return done ? QByteArray() : "it failed: " + process.readAllStandardError();
}

void backup(benchmark::State &state)
{
    const QTemporaryDir place;
    const QString game = place.filePath(QStringLiteral("game"));
    const QString peer = place.filePath(QStringLiteral("peer.zip"));
    Program vela{QStringLiteral(VELA_PROGRAM),
                 {QStringLiteral("backup"), game, QStringLiteral("bench")},
                 game + QLatin1String("/backup")};
    Program zip{QStringLiteral("zip"),
                {QStringLiteral("-6"), QStringLiteral("-q"), QStringLiteral("-r"), peer,
                 QStringLiteral(".")},
                peer};
    QDir().mkpath(game);
    const int files = writeBigGame(game, projects);
    QByteArray error = files == 0 ? "the game could not be written" : "";
    double seconds = 0;
    // The first run of each finds nothing in the caches.
    for (Program *program : {&vela, &zip})
        error += run(*program, game, seconds);

    for (auto _ : state) {
        for (Program *program : {&zip, &vela}) {
            error += run(*program, game, seconds);
            program->best = std::min(program->best, seconds);
        }
        state.SetIterationTime(seconds);
        if (!error.isEmpty()) {
            state.SkipWithError(error.constData());
            return;
        }
    }
    state.SetItemsProcessed(state.iterations() * files);
    state.counters["vela_ms"] = vela.best * 1000;
    state.counters["zip_ms"] = zip.best * 1000;
    ratio = vela.best / zip.best;
}

BENCHMARK(backup)->UseManualTime()->Iterations(rounds)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char *argv[])
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    if (ratio > 0)
        std::printf("vela backup / zip: %.2f\n", ratio);
}

// From the start of a player to the first picture of a panorama on the screen, against other
// players with the same file. Each fills the screen. The time ends with the first grab of a small
// area, left of the middle, that shows a picture; that area lies within every player's picture and
// beside the message of a player that is still loading. A part of the player's start is measured
// alone: that of the time counters, which every start waits for.

#include "PictureState.h"
#include "RatioTable.h"
#include "TimeCounters.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QProcess>
#include <QScreen>
#include <QTemporaryDir>
#include <QThread>

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr int kStarts = 9;
constexpr int kAreaSide = 64;
constexpr unsigned long kPollIntervalUs = 1000;
constexpr qint64 kDeadlineMs = 60000;

struct Player
{
    const char *name;
    const char *peers;
    QString commandLine; ///< without the panorama
};

PictureState screenState()
{
    QScreen *screen = QGuiApplication::primaryScreen();
    const QSize size = screen->size();
    return judge(screen
                     ->grabWindow(0, size.width() / 4 - kAreaSide / 2,
                                  size.height() / 2 - kAreaSide / 2, kAreaSide, kAreaSide)
                     .toImage());
}

bool waitFor(PictureState state)
{
    QElapsedTimer waiting;
    waiting.start();
    while (screenState() != state) {
        if (waiting.elapsed() > kDeadlineMs)
            return false;
        QThread::usleep(kPollIntervalUs);
    }
    return true;
}

void start(benchmark::State &state, const Player &player, const QString &home)
{
    const QTemporaryDir configuration(home + QStringLiteral("/config-XXXXXX"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), home + QStringLiteral("/cache"));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), configuration.path());
    environment.insert(QStringLiteral("SDL_VIDEODRIVER"), QStringLiteral("x11"));

    const QStringList words = player.commandLine.split(QLatin1Char(' '))
        << QStringLiteral(SAMPLE_PANORAMA);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    for ([[maybe_unused]] auto _ : state) {
        if (!waitFor(PictureState::Empty))
            return state.SkipWithError("Something else stands on the screen");
        QElapsedTimer time;
        time.start();
        process.start(words.first(), words.mid(1));
        if (!process.waitForStarted())
            return state.SkipWithError("It cannot be started");
        if (!waitFor(PictureState::Picture))
            state.SkipWithError("No picture came");
        state.SetIterationTime(static_cast<double>(time.nsecsElapsed()) / 1e9);
        process.kill();
        process.waitForFinished();
    }
    state.SetLabel(player.peers);
}

void measureItself(benchmark::State &state)
{
    for ([[maybe_unused]] auto _ : state) {
        TimeCounters counters;
        counters.calibrate();
    }
    state.SetLabel("orbixsight");
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const QTemporaryDir home;
    const QSize screen = QGuiApplication::primaryScreen()->size();
    const Player players[] = {
        {"orbixsight", "mpv ffplay", QStringLiteral(PLAYER " --demo")},
        {"mpv", "",
         QStringLiteral("mpv --no-config --fs --vo=gpu --gpu-sw=yes --image-display-duration=inf")},
        {"ffplay", "",
         QStringLiteral("ffplay -noborder -left 0 -top 0 -x %1 -y %2 -loop 0")
             .arg(screen.width())
             .arg(screen.height())},
    };
    for (const Player &player : players) {
        benchmark::RegisterBenchmark(player.name,
                                     [&player, &home](benchmark::State &state) {
                                         start(state, player, home.path());
                                     })
            ->UseManualTime()
            ->Iterations(1)
            ->Repetitions(kStarts);
    }
    benchmark::RegisterBenchmark("self-measurement", measureItself)
        ->UseRealTime()
        ->Iterations(1)
        ->Repetitions(kStarts);
    return runBenchmarks(argc, argv);
}

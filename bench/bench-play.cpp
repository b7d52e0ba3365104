// Playing 360-degree video without a graphics processor, against other players that show the same
// clip in the same view on the same screen, and the frame path alone against the decoders.
//
// --benchmark_repetitions=N takes each value N times (3). Other options of Google Benchmark change
// nothing.

#include "AimTable.h"
#include "BenchClip.h"
#include "FramePath.h"
#include "PictureState.h"
#include "RunningPlayer.h"
#include "Screen.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QThread>

#include <cstdio>
#include <functional>

namespace {

constexpr RunningPlayer::Kind kPeers[] = {RunningPlayer::Vlc, RunningPlayer::Mpv,
                                          RunningPlayer::MpvGl};
constexpr double kSeekTargets[] = {12.5, 3.5}; // seconds; midway between keyframes
constexpr QSize kFirstPictureArea(400, 280);   // holds the number before the field of view is set
constexpr int kPollUs = 2000;
constexpr unsigned long kSettleMs = 1000;
constexpr int kAfterSeekMs = 400;
constexpr int kPlayMs = 3000;
constexpr int kIdleMs = 2000;
constexpr int kDeadlineMs = 10000;
constexpr uint8_t kSpaceKey = 65;

const QString kStart = QStringLiteral("start to first picture");
const QString kCpu = QStringLiteral("CPU a shown second");
const QString kCpuFrame = QStringLiteral("CPU a shown frame");
const QString kFrames = QStringLiteral("frames shown a second");
const QString kSeek = QStringLiteral("seek to new picture");
const QString kMemory = QStringLiteral("peak memory");
const QString kPath = QStringLiteral("CPU a decoded frame");
const QString kStill = QStringLiteral("CPU share, still image");
const QString kPaused = QStringLiteral("CPU share, paused video");

const QString kItem = QStringLiteral("frame path");
const QString kLibVlc = QStringLiteral("libVLC");
const QString kFfmpeg = QStringLiteral("ffmpeg");

/// False after the deadline, or when `player` has ended.
bool waitUntil(RunningPlayer &player, const std::function<bool()> &holds)
{
    QElapsedTimer waiting;
    waiting.start();
    while (!holds()) {
        if (waiting.elapsed() > kDeadlineMs || !player.isRunning())
            return false;
        QThread::usleep(kPollUs);
    }
    return true;
}

double seconds(const QElapsedTimer &time)
{
    return double(time.nsecsElapsed()) / 1e9;
}

/// Takes all values of a player with a clip. Returns what was wrong, null if nothing was.
const char *measurePlayer(Screen &screen, RunningPlayer &player, const QString &clip,
                          const std::function<void(const QString &measure, double value)> &add)
{
    if (screen.frameNumber(kFirstPictureArea))
        return "the player before is still on the screen";
    QElapsedTimer time;
    time.start();
    if (!player.start(clip))
        return "it cannot be started";
    if (!waitUntil(player, [&] { return screen.frameNumber(kFirstPictureArea).has_value(); }))
        return "no picture came";
    add(kStart, seconds(time));

    QThread::msleep(kSettleMs);
    if (!player.takeControl())
        return "it cannot be controlled";
    QThread::msleep(kSettleMs / 2);
    if (!waitUntil(player, [&] { return screen.frameNumber().has_value(); }))
        return "no picture in the common view came";

    int shown = 0;
    std::optional<int> last = screen.frameNumber();
    const double cpuBefore = player.cpuSeconds();
    time.start();
    while (!time.hasExpired(kPlayMs)) {
        const std::optional<int> number = screen.frameNumber();
        if (number && number != last) {
            ++shown;
            last = number;
        }
        QThread::usleep(kPollUs);
    }
    const double cpu = player.cpuSeconds() - cpuBefore;
    const double wall = seconds(time);
    if (shown == 0 || !player.isRunning())
        return "no more frames came";
    add(kFrames, shown / wall);
    add(kCpu, cpu / wall);
    add(kCpuFrame, cpu / shown * 1e3);

    for (const double target : kSeekTargets) {
        time.start();
        player.seek(target);
        // A player may show the keyframe before the target, and plays on from there unseen while it
        // is too busy to draw.
        if (!waitUntil(player, [&] {
                const double at = double(screen.frameNumber().value_or(-BenchClip::kFrames))
                    / BenchClip::kFramesPerSecond;
                return at > target - 1 && at < target + 1 + seconds(time);
            }))
            return "no picture came after a seek";
        add(kSeek, seconds(time) * 1e3);
        QThread::msleep(kAfterSeekMs);
    }
    add(kMemory, player.peakMemoryMib());
    return nullptr;
}

/// How busy the player is with a picture that stands still, in percent of a core.
void measureIdle(Screen &screen, AimTable &table, const QString &folder, const QString &media,
                 const QString &measure)
{
    const QString subject = RunningPlayer::name(RunningPlayer::OrbixSight);
    RunningPlayer player(RunningPlayer::OrbixSight, &screen, folder);
    const auto shows = [&screen] {
        return judge(screen.grab({100, 100, 200, 200})) == PictureState::Picture;
    };
    if (!player.start(media) || !waitUntil(player, shows))
        return table.fail(subject, QStringLiteral("no picture came"));
    QThread::msleep(kSettleMs);
    if (measure == kPaused)
        screen.pressKey(kSpaceKey);
    QThread::msleep(2 * kSettleMs);
    const std::optional<int> number = screen.frameNumber();
    const double before = player.cpuSeconds();
    QElapsedTimer time;
    time.start();
    QThread::msleep(kIdleMs);
    const double share = (player.cpuSeconds() - before) / seconds(time) * 100;
    if (!shows() || number != screen.frameNumber() || number.has_value() != (measure == kPaused))
        return table.fail(subject, QStringLiteral("the picture does not stand still"));
    table.add(measure, subject, share);
}

void measurePath(AimTable &table, const QString &clip, const QSize &size)
{
    const auto take = [&table](const QString &subject, double secondsAFrame) {
        if (secondsAFrame > 0)
            table.add(kPath, subject, secondsAFrame * 1e3);
        else
            table.fail(subject, QStringLiteral("no frame was decoded"));
    };
    take(kItem, FramePath::ofItem(clip));
    take(kLibVlc, FramePath::ofLibVlc(clip, size));
    take(kFfmpeg, FramePath::ofFfmpeg(clip));
}

/// A clip with all that was measured with it.
struct Film
{
    QSize size;
    bool small; ///< shown whole by every player; larger ones by none
    QString path;
    AimTable table;
};

void measureFilm(Screen &screen, Film &film, const QString &folder)
{
    const auto measure = [&](RunningPlayer::Kind kind) {
        RunningPlayer player(kind, &screen, folder);
        const QString name = RunningPlayer::name(kind);
        const char *wrong = measurePlayer(screen, player, film.path,
                                          [&](const QString &measured, double value) {
                                              film.table.add(measured, name, value);
                                          });
        if (wrong)
            film.table.fail(name,
                            QLatin1String(wrong)
                                + QLatin1String(player.isRunning() ? "" : ", it has ended"));
    };
    measure(RunningPlayer::OrbixSight);
    for (const RunningPlayer::Kind peer : kPeers)
        measure(peer);
    measurePath(film.table, film.path, film.size);
}

void printFilm(Film &film)
{
    using Aim = AimTable::Aim;
    const auto ifSmall = [&film](const Aim &aim) { return film.small ? aim : Aim(); };
    const auto ifLarge = [&film](const Aim &aim) { return film.small ? Aim() : aim; };
    const struct
    {
        QString measure;
        const char *unit;
        Aim toVlc;
        Aim toMpv;
    } rows[] = {
        {kCpu, "s", ifSmall({Aim::AtMost, 0.8}), ifSmall({Aim::AtMost, 1})},
        {kCpuFrame, "ms", {}, {}},
        {kFrames, "/s", ifLarge({Aim::AtLeast, 1.35}), ifLarge({Aim::AtLeast, 1.1})},
        {kStart, "s", {}, {Aim::AtMost, 1}},
        {kSeek, "ms", {Aim::AtMost, 1}, {Aim::AtMost, 0.8}},
        {kMemory, "MiB", {Aim::AtMost, 1}, {}},
    };
    for (const auto &row : rows) {
        for (const RunningPlayer::Kind peer : kPeers)
            film.table.printRow(row.measure, row.unit,
                                RunningPlayer::name(RunningPlayer::OrbixSight),
                                RunningPlayer::name(peer),
                                peer == RunningPlayer::Vlc ? row.toVlc : row.toMpv);
    }
    film.table.printRow(kPath, "ms", kItem, kLibVlc, {Aim::AtMost, 1.15});
    film.table.printRow(kPath, "ms", kItem, kFfmpeg, {});
}

/// The film of this size, where every user may read it; without a path, and with a message, if it
/// cannot be made.
Film makeFilm(const QString &folder, const QSize &size, bool small)
{
    const QString name = QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
    QString failure;
    const QString clip = BenchClip::path(QStringLiteral(CLIP_FOLDER), size,
                                         QStringLiteral(SAMPLE_PANORAMA), &failure);
    const QString copy = folder + QLatin1Char('/') + name + QStringLiteral(".mp4");
    const bool made = QFile::copy(clip, copy)
        && QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther);
    if (!made)
        std::fprintf(stderr, "No clip of %s: %s\n", qPrintable(name), qPrintable(failure));
    return {size, small, made ? copy : QString(), AimTable(name)};
}

} // namespace

int main(int argc, char **argv)
{
    Screen screen;
    if (!screen.isUsable()) {
        std::fprintf(stderr, "The X server Xvfb does not start.\n");
        return 1;
    }
    const QGuiApplication application(argc, argv);
    const int repetitions = AimTable::repetitions();

    const QTemporaryDir folder;
    QFile::setPermissions(folder.path(),
                          QFile::permissions(folder.path()) | QFile::ReadOther | QFile::ExeOther);
    Film films[] = {makeFilm(folder.path(), {1920, 960}, true),
                    makeFilm(folder.path(), {3840, 1920}, false)};
    AimTable idle;
    for (int i = 0; i < repetitions; ++i) {
        std::fprintf(stderr, "Run %d of %d\n", i + 1, repetitions);
        for (Film &film : films) {
            if (film.path.isEmpty())
                return 1;
            measureFilm(screen, film, folder.path());
        }
        measureIdle(screen, idle, folder.path(), QStringLiteral(SAMPLE_PANORAMA), kStill);
        measureIdle(screen, idle, folder.path(), films[0].path, kPaused);
    }

    AimTable::printHead();
    for (Film &film : films)
        printFilm(film);
    for (const QString &measure : {kStill, kPaused})
        idle.printRow(measure, "%", RunningPlayer::name(RunningPlayer::OrbixSight), {},
                      {AimTable::Aim::AtMost, 15});
    return films[0].table.isComplete() && films[1].table.isComplete() && idle.isComplete() ? 0 : 1;
}

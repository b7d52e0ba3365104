// Playing 360-degree video without a graphics processor, against other players that show the same
// clip in the same view on the same screen, and the frame path alone against the decoders.
//
// Takes --benchmark_repetitions=N (3) and --benchmark_filter=REGEX, which chooses among
// play/1920x960, play/3840x1920, path/1920x960, path/3840x1920 and idle. Other options of Google
// Benchmark change nothing.

#include "AimTable.h"
#include "BenchClip.h"
#include "FramePath.h"
#include "PictureState.h"
#include "RunningPlayer.h"
#include "Screen.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QThread>

#include <cstdio>
#include <functional>

namespace {

constexpr QSize kSizes[] = {{1920, 960}, {3840, 1920}};
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

QString sizeText(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

QString measureAt(const QString &measure, const QSize &size)
{
    return measure + QStringLiteral(", ") + sizeText(size);
}

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

/// One player's turn with one clip.
class PlayerTurn
{
public:
    PlayerTurn(Screen &screen, AimTable &table, const QString &folder, RunningPlayer::Kind kind,
               const QSize &size)
        : m_screen(screen)
        , m_table(table)
        , m_name(RunningPlayer::name(kind))
        , m_size(size)
        , m_player(kind, &screen, folder)
    {}

    void run(const QString &clip)
    {
        if (!start(clip))
            return fail({kStart, kCpu, kCpuFrame, kFrames, kSeek, kMemory});
        if (!play())
            return fail({kCpu, kCpuFrame, kFrames, kSeek, kMemory});
        for (const double target : kSeekTargets)
            seek(target);
        add(kMemory, m_player.peakMemoryMib());
    }

private:
    void add(const QString &measure, double value)
    {
        m_table.add(measureAt(measure, m_size), m_name, value);
    }

    void fail(const QStringList &measures)
    {
        if (!m_player.isRunning())
            m_reason += QStringLiteral(", it has ended");
        for (const QString &measure : measures)
            m_table.fail(measureAt(measure, m_size), m_name, m_reason);
    }

    bool start(const QString &clip);
    bool play();
    void seek(double target);

    Screen &m_screen;
    AimTable &m_table;
    const QString m_name;
    const QSize m_size;
    RunningPlayer m_player;
    QString m_reason;
};

bool PlayerTurn::start(const QString &clip)
{
    m_reason = QStringLiteral("the player before is still on the screen");
    if (m_screen.frameNumber(kFirstPictureArea))
        return false;
    QElapsedTimer time;
    time.start();
    m_reason = QStringLiteral("it cannot be started");
    if (!m_player.start(clip))
        return false;
    m_reason = QStringLiteral("no picture came");
    if (!waitUntil(m_player, [&] { return m_screen.frameNumber(kFirstPictureArea).has_value(); }))
        return false;
    add(kStart, seconds(time));
    m_reason = QStringLiteral("it cannot be controlled");
    QThread::msleep(kSettleMs);
    if (!m_player.takeControl())
        return false;
    m_reason = QStringLiteral("no picture in the common view came");
    QThread::msleep(kSettleMs / 2);
    return waitUntil(m_player, [&] { return m_screen.frameNumber().has_value(); });
}

bool PlayerTurn::play()
{
    int shown = 0;
    std::optional<int> last = m_screen.frameNumber();
    const double cpuBefore = m_player.cpuSeconds();
    QElapsedTimer time;
    time.start();
    while (!time.hasExpired(kPlayMs)) {
        const std::optional<int> number = m_screen.frameNumber();
        if (number && number != last) {
            ++shown;
            last = number;
        }
        QThread::usleep(kPollUs);
    }
    const double cpu = m_player.cpuSeconds() - cpuBefore;
    const double wall = seconds(time);
    m_reason = QStringLiteral("no frame came in %1 s").arg(kPlayMs / 1000);
    if (shown == 0 || !m_player.isRunning())
        return false;
    add(kFrames, shown / wall);
    add(kCpu, cpu / wall);
    add(kCpuFrame, cpu / shown * 1e3);
    return true;
}

void PlayerTurn::seek(double target)
{
    // A player may show the keyframe before the target, and plays on from there unseen while it is
    // too busy to draw.
    const auto isBehindTarget = [target](int number, double elapsed) {
        const double shown = double(number) / BenchClip::kFramesPerSecond;
        return shown > target - 1 && shown < target + 1 + elapsed;
    };
    QElapsedTimer time;
    time.start();
    m_player.seek(target);
    m_reason = QStringLiteral("no picture at %1 s came").arg(target);
    if (!waitUntil(m_player, [&] {
            const auto number = m_screen.frameNumber();
            return number && isBehindTarget(*number, seconds(time));
        }))
        return fail({kSeek});
    add(kSeek, seconds(time) * 1e3);
    QThread::msleep(kAfterSeekMs);
}

void measureIdle(Screen &screen, AimTable &table, const QString &folder, const QString &media,
                 const QString &measure)
{
    const QString subject = RunningPlayer::name(RunningPlayer::OrbixSight);
    RunningPlayer player(RunningPlayer::OrbixSight, &screen, folder);
    const auto shows = [&screen] {
        return judge(screen.grab({100, 100, 200, 200})) == PictureState::Picture;
    };
    if (!player.start(media) || !waitUntil(player, shows))
        return table.fail(measure, subject, QStringLiteral("no picture came"));
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
        return table.fail(measure, subject, QStringLiteral("the picture does not stand still"));
    table.add(measure, subject, share);
}

void measurePath(AimTable &table, const QString &clip, const QSize &size)
{
    const QString measure = measureAt(kPath, size);
    const auto take = [&](const QString &subject, const FramePath::Cost &cost) {
        if (cost.failure.isEmpty())
            table.add(measure, subject, cost.cpuSeconds * 1e3);
        else
            table.fail(measure, subject, cost.failure);
    };
    take(kItem, FramePath::ofItem(clip));
    take(kLibVlc, FramePath::ofLibVlc(clip, size));
    take(kFfmpeg, FramePath::ofFfmpeg(clip));
}

/// Smaller clips are shown whole by every player, larger ones by none.
void printPlayRows(AimTable &table, const QSize &size)
{
    using Aim = AimTable::Aim;
    const bool small = size == kSizes[0];
    struct Row
    {
        QString measure;
        const char *unit;
        Aim toVlc;
        Aim toMpv;
    };
    const Row rows[] = {
        {kCpu, "s", small ? Aim{Aim::AtMost, 0.8} : Aim{}, small ? Aim{Aim::AtMost, 1} : Aim{}},
        {kCpuFrame, "ms", {}, {}},
        {kFrames, "/s", small ? Aim{} : Aim{Aim::AtLeast, 1.35},
         small ? Aim{} : Aim{Aim::AtLeast, 1.1}},
        {kStart, "s", {}, {Aim::AtMost, 1}},
        {kSeek, "ms", {Aim::AtMost, 1}, {Aim::AtMost, 0.8}},
        {kMemory, "MiB", {Aim::AtMost, 1}, {}},
    };
    for (const Row &row : rows) {
        for (const RunningPlayer::Kind peer : kPeers)
            table.printRow(measureAt(row.measure, size), row.unit,
                           RunningPlayer::name(RunningPlayer::OrbixSight),
                           RunningPlayer::name(peer),
                           peer == RunningPlayer::Vlc ? row.toVlc : row.toMpv);
    }
}

/// A copy of the clip where every user may read it; empty, with a message, if there is none.
QString readableClip(const QString &folder, const QSize &size)
{
    QString failure;
    const QString clip = BenchClip::path(QStringLiteral(CLIP_FOLDER), size,
                                         QStringLiteral(SAMPLE_PANORAMA), &failure);
    const QString copy = folder + QLatin1Char('/') + sizeText(size) + QStringLiteral(".mp4");
    if (clip.isEmpty() || !QFile::copy(clip, copy)
        || !QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther)) {
        std::fprintf(stderr, "The clip of %s cannot be made: %s\n", qPrintable(sizeText(size)),
                     qPrintable(failure));
        return {};
    }
    return copy;
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
    int repetitions = 3;
    QRegularExpression filter;
    const QStringList arguments = QGuiApplication::arguments();
    for (const QString &argument : arguments) {
        const QString value = argument.section(QLatin1Char('='), 1);
        if (argument.startsWith(QLatin1String("--benchmark_repetitions=")))
            repetitions = value.toInt();
        else if (argument.startsWith(QLatin1String("--benchmark_filter=")))
            filter.setPattern(value);
    }
    const auto isWanted = [&filter](const QString &name) { return filter.match(name).hasMatch(); };

    QTemporaryDir folder;
    QFile::setPermissions(folder.path(),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther
                              | QFile::ExeOther);
    QMap<int, QString> clips; // by width
    for (const QSize &size : kSizes) {
        clips[size.width()] = readableClip(folder.path(), size);
        if (clips[size.width()].isEmpty())
            return 1;
    }

    AimTable table;
    for (int i = 0; i < repetitions; ++i) {
        std::fprintf(stderr, "Run %d of %d\n", i + 1, repetitions);
        for (const QSize &size : kSizes) {
            const QString clip = clips.value(size.width());
            if (isWanted(QStringLiteral("play/") + sizeText(size))) {
                PlayerTurn(screen, table, folder.path(), RunningPlayer::OrbixSight, size).run(clip);
                for (const RunningPlayer::Kind kind : kPeers)
                    PlayerTurn(screen, table, folder.path(), kind, size).run(clip);
            }
            if (isWanted(QStringLiteral("path/") + sizeText(size)))
                measurePath(table, clip, size);
        }
        if (isWanted(QStringLiteral("idle"))) {
            measureIdle(screen, table, folder.path(), QStringLiteral(SAMPLE_PANORAMA), kStill);
            measureIdle(screen, table, folder.path(), clips.value(kSizes[0].width()), kPaused);
        }
    }

    using Aim = AimTable::Aim;
    AimTable::printHead();
    for (const QSize &size : kSizes) {
        if (isWanted(QStringLiteral("play/") + sizeText(size)))
            printPlayRows(table, size);
        if (isWanted(QStringLiteral("path/") + sizeText(size))) {
            table.printRow(measureAt(kPath, size), "ms", kItem, kLibVlc, {Aim::AtMost, 1.15});
            table.printRow(measureAt(kPath, size), "ms", kItem, kFfmpeg, {});
        }
    }
    if (isWanted(QStringLiteral("idle"))) {
        for (const QString &measure : {kStill, kPaused})
            table.printRow(measure, "%", RunningPlayer::name(RunningPlayer::OrbixSight), {},
                           {Aim::AtMost, 15});
    }
    return table.isComplete() ? 0 : 1;
}

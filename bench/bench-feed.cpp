// The live feed on the screen: which of a writer's frames the player shows, how long after they
// were handed over, and what its feed thread costs. This process writes each frame whole, and looks
// on another thread for the frames' numbers on the screen that the player fills.
//
// --benchmark_repetitions=N takes each value N times (3). Other options of Google Benchmark change
// nothing.

#include "AimTable.h"
#include "FeedWriter.h"
#include "FrameCode.h"
#include "FrameWatcher.h"
#include "GuardedMemory.h"
#include "Screen.h"
#include "filemapping.h"

#include <QDir>
#include <QGuiApplication>
#include <QProcess>
#include <QScopeGuard>
#include <QSettings>
#include <QTemporaryDir>

#include <sys/mman.h>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <thread>
#include <vector>

using namespace std::chrono_literals;
using Clock = FrameWatcher::Clock;

namespace {

constexpr auto kDeadline = 20s;
constexpr int kSettleSeconds = 2;
constexpr int kCountedSeconds = 5;
constexpr auto kGrace = 500ms;  ///< for a late writer, and for the last frame's way to the screen
constexpr int kFramesACopy = 3; ///< while it settles, each third is copied in this process too

const QString kPlayer = QStringLiteral("player");
const QString kFeedThread = QStringLiteral("feed thread");
const QString kNewMemory = QStringLiteral("memcpy, new");
const QString kUsedMemory = QStringLiteral("memcpy, used");
const QString kWatcher = QStringLiteral("watcher");

const QString kIdle = QStringLiteral("CPU share, no writer");
const QString kShown = QStringLiteral("frames shown");
const QString kDelay = QStringLiteral("flag to picture");
const QString kDelay99 = QStringLiteral("99th percentile of it");
const QString kCpu = QStringLiteral("CPU a frame");
const QString kLooks = QStringLiteral("looks at the screen");

/// The player without media.
class FeedPlayer
{
public:
    FeedPlayer()
    {
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(QStringLiteral(PLAYER), {QStringLiteral("--demo")});
    }

    ~FeedPlayer()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    /// True as soon as it has a feed thread.
    bool findFeedThread()
    {
        const QDir tasks(QStringLiteral("/proc/%1/task").arg(m_process.processId()));
        const QStringList threads = tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        for (const QString &thread : threads) {
            m_thread = tasks.filePath(thread);
            if (threadFile("comm") == "SharedMemoryThr\n") // as much as there is room for
                return true;
        }
        return false;
    }

    /// Processor time of the feed thread up to now, 0 if it has ended.
    double feedMs() const { return threadFile("schedstat").split(' ').first().toDouble() / 1e6; }

private:
    QByteArray threadFile(const char *name) const
    {
        QFile file(m_thread + QLatin1Char('/') + QLatin1String(name));
        return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
    }

    QProcess m_process;
    QString m_thread;
};

/// Frames of one size and rate, with all that was measured with them.
struct Stream
{
    QSize size;
    int rate = 0;        ///< frames a second
    bool hasAim = false; ///< for the delay
    AimTable table{QStringLiteral("%1x%2, %3/s").arg(size.width()).arg(size.height()).arg(rate)};
};

/// Processor time of this thread.
double threadMs()
{
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

/// Adds what plain copies cost: into memory used before, and into what the system gives and takes.
void addCopies(AimTable &table, const uchar *frame, std::vector<uchar> &used)
{
    const double start = threadMs();
    std::memcpy(used.data(), frame, used.size());
    const double between = threadMs();
    void *fresh = ::mmap(nullptr, used.size(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS,
                         -1, 0);
    if (fresh == MAP_FAILED)
        return;
    std::memcpy(fresh, frame, used.size());
    ::munmap(fresh, used.size());
    table.add(kCpu, kNewMemory, threadMs() - between);
    table.add(kCpu, kUsedMemory, between - start);
}

/// How busy the feed thread is while there is nothing to read.
void measureIdle(AimTable &idle, const FeedPlayer &player)
{
    std::this_thread::sleep_for(1s * kSettleSeconds);
    const double before = player.feedMs();
    std::this_thread::sleep_for(1s * kCountedSeconds);
    if (const double ms = player.feedMs() - before; ms > 0)
        idle.add(kIdle, kFeedThread, ms / (kCountedSeconds * 1e3) * 100);
}

/// Adds what was seen of the frames from number `first` on. `written` is by number.
void addSeen(AimTable &table, const FrameWatcher &watcher,
             const std::vector<Clock::time_point> &written, size_t first)
{
    std::vector<double> delaysMs;
    for (size_t number = first; number < written.size(); ++number) {
        if (const auto seen = watcher.seen(int(number)))
            delaysMs.push_back(double((*seen - written[number]) / 1us) / 1e3);
    }
    table.add(kShown, kPlayer, double(delaysMs.size()) / double(written.size() - first) * 100);
    for (const double delayMs : delaysMs)
        table.add(kDelay, kPlayer, delayMs);
    std::sort(delaysMs.begin(), delaysMs.end());
    if (!delaysMs.empty())
        table.add(kDelay99, kPlayer, delaysMs[delaysMs.size() * 99 / 100]);
}

/// Takes all values of a stream. Returns what was wrong, empty if nothing was.
QString measureStream(Screen &screen, Stream &stream, AimTable *idle)
{
    if (screen.frameNumber())
        return QStringLiteral("the player before is still on the screen");
    FeedPlayer player;
    const auto deadline = Clock::now() + kDeadline;
    while (!player.findFeedThread()) {
        if (Clock::now() > deadline)
            return QStringLiteral("the feed does not start");
        std::this_thread::sleep_for(1ms);
    }
    if (idle)
        measureIdle(*idle, player);

    FeedWriter writer;
    if (QString wrong = writer.open({stream.size, quint16(stream.rate), 1}); !wrong.isEmpty())
        return wrong;
    const auto removal = qScopeGuard([] { FeedWriter::remove(); });
    QImage picture = FrameCode::frame(stream.size, 0).convertToFormat(QImage::Format_RGBA8888);
    std::vector<uchar> copied(size_t(writer.frameBytes()), 1);
    std::vector<Clock::time_point> written;
    Clock::time_point due = Clock::now();
    auto end = size_t(kDeadline / 1s * stream.rate);
    size_t first = end; // to be counted
    double looksBefore = 0;
    double cpuBeforeMs = 0;
    FrameWatcher watcher(&screen);
    while (written.size() < end) {
        const size_t number = written.size();
        if (first == end && watcher.newest() >= 0) {
            first = number + size_t(kSettleSeconds * stream.rate);
            end = first + size_t(kCountedSeconds * stream.rate);
        }
        if (number == first) {
            looksBefore = watcher.looks();
            cpuBeforeMs = player.feedMs();
        }
        FrameCode::draw(picture, int(number));
        uchar *frame = writer.nextFrame();
        if (!frame || !GuardedMemory::write(frame, picture.constBits(), copied.size()))
            return QStringLiteral("the shared memory was cut short");
        std::this_thread::sleep_until(due);
        due += Clock::duration(1s) / stream.rate;
        written.push_back(Clock::now());
        writer.publish();
        if (number < first && number % kFramesACopy == 0)
            addCopies(stream.table, frame, copied);
    }
    if (first == end)
        return QStringLiteral("no picture came");
    std::this_thread::sleep_until(due);
    const double cpuMs = player.feedMs() - cpuBeforeMs;
    if (cpuMs <= 0)
        return QStringLiteral("its feed has ended");
    stream.table.add(kCpu, kFeedThread, cpuMs / (kCountedSeconds * stream.rate));
    stream.table.add(kLooks, kWatcher, (watcher.looks() - looksBefore) / kCountedSeconds);
    if (Clock::now() > due + kGrace)
        return QStringLiteral("the writer cannot keep up");
    std::this_thread::sleep_for(kGrace);
    watcher.stop();
    addSeen(stream.table, watcher, written, first);
    return {};
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
    if (OpenFileMappingA(FILE_MAP_ALL_ACCESS, false, FeedFormat::kName) != 0) {
        std::fprintf(stderr, "There is a live feed already, %s.\n", FeedFormat::kName);
        return 1;
    }
    const int repetitions = AimTable::repetitions();

    const QTemporaryDir home;
    for (const char *variable : {"XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        qputenv(variable, home.path().toLocal8Bit());
    QSettings settings(home.filePath(QStringLiteral("Orbix/Orbix Sight 1.4.conf")),
                       QSettings::IniFormat);
    settings.setValue(QStringLiteral("application/sharedmemory"), true);
    settings.sync();

    Stream streams[] = {{{1920, 960}, 30, true},
                        {{1920, 960}, 60, false},
                        {{3840, 1920}, 30, false}};
    AimTable idle;
    for (int i = 0; i < repetitions; ++i) {
        std::fprintf(stderr, "Run %d of %d\n", i + 1, repetitions);
        for (Stream &stream : streams) {
            AimTable *ofIdle = stream.hasAim ? &idle : nullptr;
            if (QString wrong = measureStream(screen, stream, ofIdle); !wrong.isEmpty())
                stream.table.fail(kPlayer, wrong);
        }
    }

    AimTable::printHead();
    idle.printRow(kIdle, "%", kFeedThread, {}, {AimTable::Aim::AtMost, 0.5});
    bool isComplete = idle.isComplete();
    for (Stream &stream : streams) {
        AimTable &table = stream.table;
        const AimTable::Aim period{AimTable::Aim::AtMost, 1e3 / stream.rate};
        table.printRow(kShown, "%", kPlayer, {}, {});
        table.printRow(kDelay, "ms", kPlayer, {}, stream.hasAim ? period : AimTable::Aim());
        table.printRow(kDelay99, "ms", kPlayer, {}, {});
        for (const QString &peer : {kUsedMemory, kNewMemory})
            table.printRow(kCpu, "ms", kFeedThread, peer, {});
        table.printRow(kLooks, "/s", kWatcher, {}, {});
        isComplete = isComplete && table.isComplete();
    }
    return isComplete ? 0 : 1;
}

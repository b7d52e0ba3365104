#include "OrbTools.h"
#include "TimeCounters.h"

#include "WarningsFail.h"

#include <QtTest>

#include <array>
#include <atomic>
#include <limits>
#include <thread>
#include <vector>

namespace {

constexpr qint64 kCostBase = 124524475;
constexpr int kSampleReads = 400;

const QString kName = QStringLiteral("a@%1 b");

/// Each thread has a clock of its own: its value by the number of times it was read before.
using Script = qint64 (*)(qint64 reads);
thread_local Script t_script = nullptr;
thread_local qint64 t_reads = 0;

qint64 scriptedClock()
{
    return t_script(t_reads++);
}

void setClock(Script script)
{
    t_script = script;
    t_reads = 0;
}

qint64 square(qint64 value)
{
    return value * value;
}

/// With a frequency of 1000, the clock of samples that have these values; intervals of 7 then.
template <typename Value>
qint64 samplesOf(qint64 reads, Value value)
{
    const qint64 start = reads / 4 * 10000000;
    if (reads >= kSampleReads)
        return start + reads * 7;
    const qint64 offsets[] = {0, 1, 1000, value(reads / 4) + 1};
    return start + offsets[reads % 4];
}

} // namespace

Q_DECLARE_METATYPE(Script)

class tst_TimeCounters : public WarningsFail
{
    Q_OBJECT

private slots:
    void intervalsAreThoseOfTheClock();
    void threadsShareNoStopwatch();
    void calibrationFollowsTheClock_data();
    void calibrationFollowsTheClock();
    void theProcessHasCalibratedNanoseconds();
};

void tst_TimeCounters::intervalsAreThoseOfTheClock()
{
    setClock([](qint64 reads) { return square(reads) - 100; });
    TimeCounters counters(scriptedClock, 1);
    QCOMPARE(counters.stop(kName), 0);
    QCOMPARE(counters.size(), std::size_t(0));
    counters.start(kName);                           // at 1
    QCOMPARE(counters.stop(kName), 3);               // at 4
    QCOMPARE(counters.stop(kName), 8);               // at 9, from the same start
    counters.start(kName);                           // at 16
    counters.start(kName);                           // at 25
    QCOMPARE(counters.stop(QStringLiteral("a")), 0); // at 36
    QCOMPARE(counters.stop(kName), 24);              // at 49
    const std::optional<TimeCounter> counter = counters.counter(kName);
    QVERIFY(counter);
    QCOMPARE(counter->count, 3);
    QCOMPARE(counter->total, 35);
    QCOMPARE(counter->start, -75);
    QCOMPARE(counter->last, 24);
    QVERIFY(!counters.counter(QStringLiteral("a")));
    QCOMPARE(counters.size(), std::size_t(1));
}

void tst_TimeCounters::threadsShareNoStopwatch()
{
    constexpr int kThreads = 8;
    constexpr int kRounds = 2000;
    setClock([](qint64 reads) { return reads; });
    TimeCounters counters(scriptedClock, 1);
    counters.start(kName);
    std::atomic<int> ready{0};
    std::atomic<int> done{0};
    std::array<TimeCounter, kThreads> shared{};
    std::array<TimeCounter, kThreads> own{};
    std::array<qint64, kThreads> strange{};
    const auto meet = [](std::atomic<int> &threads) {
        ++threads;
        while (threads < kThreads)
            std::this_thread::yield();
    };
    const auto work = [&](std::size_t thread) {
        setClock([](qint64 reads) { return reads * 3; });
        const QString ownName = QString::number(thread);
        strange[thread] = counters.stop(kName);
        meet(ready);
        for (int i = 0; i < kRounds; ++i) {
            counters.start(kName);
            counters.start(ownName);
            counters.stop(kName);
            counters.stop(ownName);
        }
        shared[thread] = counters.counter(kName).value_or(TimeCounter());
        own[thread] = counters.counter(ownName).value_or(TimeCounter());
        meet(done); // a thread that ends gives its place to a later one
    };
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (std::size_t thread = 0; thread < kThreads; ++thread)
        threads.emplace_back(work, thread);
    for (std::thread &thread : threads)
        thread.join();

    for (std::size_t thread = 0; thread < kThreads; ++thread) {
        QCOMPARE(strange[thread], 0);
        for (const TimeCounter &counter : {shared[thread], own[thread]}) {
            QCOMPARE(counter.count, kRounds);
            QCOMPARE(counter.total, kRounds * 6);
            QCOMPARE(counter.last, 6);
        }
    }
    QCOMPARE(counters.size(), std::size_t(2 * kThreads + 1));
    QCOMPARE(counters.stop(kName), 1);
}

void tst_TimeCounters::calibrationFollowsTheClock_data()
{
    QTest::addColumn<Script>("script");
    QTest::addColumn<qint64>("ticksPerSecond");
    QTest::addColumn<qint64>("frequency"); // floor(mean · 1000000 / 1002284)
    QTest::addColumn<qint64>("cost");      // above its base
    QTest::addColumn<qint64>("reads");
    const auto row = [](const char *name, Script script, qint64 ticksPerSecond, qint64 frequency,
                        qint64 cost, qint64 intervals) {
        QTest::newRow(name) << script << ticksPerSecond << frequency << cost
                            << kSampleReads + 2 * intervals;
    };
    // 100 repeats are 101 intervals.
    row(
        "even steps", [](qint64 reads) { return reads * 40; }, 1000000000, 997721204, 39, 101);
    row(
        "it stands still", [](qint64) { return qint64(5); }, 1000000000, 0, -1, 101);
    row(
        "backwards", [](qint64 reads) { return reads * -40; }, 1000000000, 0, -41, 101);
    row(
        "samples and totals beyond 64 bits",
        [](qint64 reads) { return static_cast<qint64>(static_cast<quint64>(reads) << 61); },
        std::numeric_limits<qint64>::max(), 0, (qint64(1) << 61) - 1, 101);
    row(
        "no interval repeats",
        [](qint64 reads) { return reads < kSampleReads ? reads : square(reads); }, 1000000000,
        997721204, 0, 100000);
    // 0, 0, 1, 1, 2, 2: the hundredth repeat is that of 99.
    row(
        "every other interval repeats",
        [](qint64 reads) {
            const qint64 later = reads - kSampleReads;
            return later < 0 ? reads : later % 2 * (later / 4);
        },
        1000000000, 997721204, 98, 200);
    const auto samples = [&](const char *name, Script script, qint64 frequency) {
        row(name, script, 1000, frequency, 6, 101);
    };
    // 50 of 200 and 49 of 100: the first has no predecessor.
    samples(
        "a factor of two",
        [](qint64 reads) { return samplesOf(reads, [](qint64 i) { return 100 + i % 2 * 100; }); },
        149);
    samples(
        "a factor beyond two",
        [](qint64 reads) { return samplesOf(reads, [](qint64 i) { return 1000 + i % 2 * 1001; }); },
        0);
    samples(
        "the first alone is an outlier",
        [](qint64 reads) {
            return samplesOf(reads, [](qint64 i) { return i == 0 ? 900000 : 3000; });
        },
        2993);
    samples(
        "outliers on both sides",
        [](qint64 reads) {
            return samplesOf(reads, [](qint64 i) {
                return i == 40 ? 9000 : i == 80 ? 1000 : 3000;
            });
        },
        2993);
    samples(
        "only the last two are alike",
        [](qint64 reads) {
            return samplesOf(reads, [](qint64 i) { return i == 99 ? 1500 : 1000 + i % 2 * 3000; });
        },
        1496);
}

void tst_TimeCounters::calibrationFollowsTheClock()
{
    QFETCH(Script, script);
    QFETCH(qint64, ticksPerSecond);
    setClock(script);
    TimeCounters counters(scriptedClock, ticksPerSecond);
    counters.start(kName);
    t_reads = 0;
    counters.calibrate();
    QCOMPARE(counters.size(), std::size_t(0));
    QTEST(counters.calibratedFrequency(), "frequency");
    QFETCH(qint64, cost);
    QCOMPARE(counters.calibratedCost(), kCostBase + cost);
    QTEST(t_reads, "reads");

    counters.start(kName);
    const qint64 reads = t_reads;
    counters.calibrate();
    QCOMPARE(t_reads, reads);
    QCOMPARE(counters.size(), std::size_t(1));
}

void tst_TimeCounters::theProcessHasCalibratedNanoseconds()
{
    TimeCounters &counters = OrbTools::counters();
    QVERIFY(counters.calibratedFrequency() > 0);
    QVERIFY(counters.calibratedCost() >= kCostBase);
    QCOMPARE(counters.size(), std::size_t(0));

    QElapsedTimer around;
    around.start();
    counters.start(kName);
    QElapsedTimer within;
    within.start();
    while (within.nsecsElapsed() < 100000)
        std::this_thread::yield();
    const qint64 leastNs = within.nsecsElapsed();
    const qint64 ns = counters.stop(kName);
    QVERIFY(ns >= leastNs);
    QVERIFY(ns <= around.nsecsElapsed());
}

QTEST_GUILESS_MAIN(tst_TimeCounters)
#include "tst_TimeCounters.moc"

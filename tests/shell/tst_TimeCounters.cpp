#include "OrbTools.h"
#include "TimeCounters.h"

#include "WarningsFail.h"

#include <QtTest>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace {

constexpr qint64 kCostBase = 124524475;
constexpr int kSampleReads = 400;
const QString kName = QStringLiteral("a@%1 b");

/// Each thread has a clock of its own: a value by the number of times that it was read before.
using Script = std::function<qint64(qint64 reads)>;
thread_local Script t_script = [](qint64 reads) { return reads * 3; };
thread_local qint64 t_reads = 0;

qint64 scriptedClock()
{
    return t_script(t_reads++);
}

} // namespace

Q_DECLARE_METATYPE(Script)

class tst_TimeCounters : public WarningsFail
{
    Q_OBJECT

private slots:
    void threadsShareNoStopwatch();
    void intervalsAreThoseOfTheClock();
    void calibrationFollowsTheClock_data();
    void calibrationFollowsTheClock();
    void theProcessCountsNanoseconds();
};

void tst_TimeCounters::threadsShareNoStopwatch()
{
    constexpr int kThreads = 8;
    constexpr int kRounds = 2000;
    TimeCounters counters(scriptedClock, 1);
    counters.start(kName);
    std::atomic<int> ready{0};
    std::atomic<int> done{0};
    const auto waitForAll = [](std::atomic<int> &threads) {
        for (++threads; threads < kThreads;)
            std::this_thread::yield();
    };
    const auto isExact = [&](const QString &name) {
        const TimeCounter counter = counters.counter(name).value_or(TimeCounter());
        return counter.count == kRounds && counter.total == qint64(kRounds) * 6
            && counter.last == 6;
    };
    std::atomic<int> exactThreads{0};
    const auto work = [&](int thread) {
        const QString ownName = QString::number(thread);
        const bool exact = counters.stop(kName) == 0;
        waitForAll(ready);
        for (int i = 0; i < kRounds; ++i) {
            counters.start(kName);
            counters.start(ownName);
            counters.stop(kName);
            counters.stop(ownName);
        }
        if (exact && isExact(kName) && isExact(ownName))
            ++exactThreads;
        waitForAll(done); // a thread that ends gives its place to a later one
    };
    // The thread sanitizer, as it is set for Qt, does not look into std::async.
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back(work, i);
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(exactThreads.load(), kThreads);
    QCOMPARE(counters.size(), std::size_t(2 * kThreads + 1));
    QCOMPARE(counters.stop(kName), 3);
}

void tst_TimeCounters::intervalsAreThoseOfTheClock()
{
    t_script = [](qint64 reads) { return reads * reads - 100; };
    t_reads = 0;
    TimeCounters counters(scriptedClock, 1);
    QCOMPARE(counters.stop(kName), 0);
    counters.start(kName);             // at 1
    QCOMPARE(counters.stop(kName), 3); // at 4
    QCOMPARE(counters.stop(kName), 8); // at 9, from the same start
    counters.start(kName);
    counters.start(kName); // at 25
    QCOMPARE(counters.stop(QStringLiteral("a")), 0);
    QCOMPARE(counters.stop(kName), 24); // at 49
    const TimeCounter counter = counters.counter(kName).value_or(TimeCounter());
    QCOMPARE(counter.count, 3);
    QCOMPARE(counter.total, 35);
    QCOMPARE(counter.start, -75);
    QCOMPARE(counter.last, 24);
    QCOMPARE(counters.size(), std::size_t(1));
}

void tst_TimeCounters::calibrationFollowsTheClock_data()
{
    QTest::addColumn<qint64>("frequency"); ///< of 1000: floor(mean · 1000000 / 1002284)
    QTest::addColumn<qint64>("cost");      ///< above its base
    QTest::addColumn<int>("intervals");    ///< one more than repeats, where all are alike
    QTest::addColumn<Script>("script");
    const auto row = [](const char *name, qint64 frequency, qint64 cost, int intervals,
                        const Script &script) {
        QTest::newRow(name) << frequency << cost << intervals << script;
    };
    row("even steps", 997, 39, 101, [](qint64 reads) { return reads * 40; });
    row("it stands still", 0, -1, 101, [](qint64) { return 5; });
    row("backwards", 0, -41, 101, [](qint64 reads) { return reads * -40; });
    row("beyond 64 bits", 0, (qint64(1) << 61) - 1, 101,
        [](qint64 reads) { return static_cast<qint64>(static_cast<quint64>(reads) << 61); });
    row("no interval repeats", 997, 0, 100000,
        [](qint64 reads) { return reads < kSampleReads ? reads : reads * reads; });
    row("every other interval repeats", 997, 98, 200, [](qint64 reads) { // 0, 0, 1, 1, 2, 2
        return reads < kSampleReads ? reads : reads % 2 * ((reads - kSampleReads) / 4);
    });
    // Samples by their numbers, then intervals of 7.
    const auto samples = [&](const char *name, qint64 frequency, const Script &sample) {
        row(name, frequency, 6, 101, [sample](qint64 reads) {
            const qint64 i = reads / 4;
            const qint64 times[] = {0, 1, 1000, sample(i) + 1};
            return i * 1000000 + (reads < kSampleReads ? times[reads % 4] : reads * 7);
        });
    };
    samples("a factor of two", 149, [](qint64 i) { return 100 + i % 2 * 100; });
    samples("a factor beyond two", 0, [](qint64 i) { return 1000 + i % 2 * 1001; });
    samples("a wild start", 2993, [](qint64 i) { return i == 0 ? 900000 : 3000; });
    samples("outliers on both sides", 2993, [](qint64 i) {
        return i == 40 ? 9000 : i == 80 ? 1000 : 3000;
    });
    samples("only 7000 and 1500 at the ends", 4240, [](qint64 i) {
        return i == 0 ? 4000 : i == 1 ? 7000 : i == 99 ? 1500 : 1000 + i % 2 * 3000;
    });
}

void tst_TimeCounters::calibrationFollowsTheClock()
{
    QFETCH(qint64, cost);
    QFETCH(int, intervals);
    QFETCH(Script, script);
    t_script = script;
    t_reads = 0;
    TimeCounters counters(scriptedClock, 1000);
    counters.calibrate();
    QCOMPARE(counters.size(), std::size_t(0));
    QTEST(counters.calibratedFrequency(), "frequency");
    QCOMPARE(counters.calibratedCost(), kCostBase + cost);
    QCOMPARE(t_reads, kSampleReads + 2 * intervals);

    counters.start(kName);
    counters.calibrate();
    QCOMPARE(counters.size(), std::size_t(1));
}

void tst_TimeCounters::theProcessCountsNanoseconds()
{
    TimeCounters &counters = OrbTools::counters();
    QVERIFY(counters.calibratedFrequency() > 0); // though nobody has started it
    QCOMPARE(counters.size(), std::size_t(0));
    QElapsedTimer around;
    around.start();
    counters.start(kName);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    const qint64 ns = counters.stop(kName);
    QVERIFY(ns >= 1000000 && ns <= around.nsecsElapsed());
}

QTEST_GUILESS_MAIN(tst_TimeCounters)
#include "tst_TimeCounters.moc"

#pragma once

#include <QString>

#include <cstddef>
#include <memory>
#include <optional>

/// A stopwatch, in ticks of its table's clock.
struct TimeCounter
{
    qint64 count = 0; ///< how often it was stopped
    qint64 total = 0; ///< of all intervals
    qint64 start = 0; ///< the clock when it was last started
    qint64 last = 0;  ///< interval
};

/// Stopwatches by name. A name stands for a stopwatch of the thread that says it: two threads never
/// share one, and none stops what another has started. A later thread may take over the stopwatches
/// of one that has ended.
///
/// Any thread may call anything but `calibrate` at any time.
class TimeCounters
{
public:
    using Clock = qint64 (*)();

    /// Without arguments, on the steady clock in nanoseconds. The clock is read by every thread
    /// that starts or stops.
    explicit TimeCounters(Clock clock = steadyNanoseconds, qint64 ticksPerSecond = 1000000000);
    ~TimeCounters();
    TimeCounters(const TimeCounters &) = delete;
    TimeCounters &operator=(const TimeCounters &) = delete;

    void start(const QString &name);

    /// The ticks since the start, 0 for what this thread never started.
    qint64 stop(const QString &name);

    /// The calling thread's stopwatch, if it has ever started one of that name.
    std::optional<TimeCounter> counter(const QString &name) const;

    /// How many stopwatches all threads have.
    std::size_t size() const;

    /// Measures the clock and the cost of a stopwatch, some milliseconds long, and empties the
    /// table; the second time it does nothing. No other thread may use the table meanwhile.
    void calibrate();

    /// The clock's ticks a second as a known piece of work shows them, scaled; 0 where the clock
    /// was too unsteady to tell, or before `calibrate`.
    qint64 calibratedFrequency() const { return m_calibratedFrequency; }

    /// A fixed base and the ticks, less one, that a stopwatch counts for nothing at all; the base
    /// alone where those never settle. 0 before `calibrate`.
    qint64 calibratedCost() const { return m_calibratedCost; }

private:
    class Table;

    static qint64 steadyNanoseconds();
    qint64 emptyInterval();
    std::optional<qint64> settledEmptyInterval();

    Clock m_clock;
    qint64 m_ticksPerSecond;
    std::unique_ptr<Table> m_table;
    qint64 m_calibratedFrequency = 0;
    qint64 m_calibratedCost = 0;
    bool m_isCalibrated = false;
};

#include "TimeCounters.h"

// Before what defines "emit", a name of TBB's.
#include <tbb/concurrent_hash_map.h>

#include <QThread>

#include <algorithm>
#include <array>
#include <chrono>
#include <cwchar>

namespace {

constexpr std::size_t kSamples = 100;
constexpr int kTextsPerSample = 1000;
constexpr std::size_t kTextSize = 1024;
constexpr quint64 kFrequencyScale = 1000000;
constexpr quint64 kFrequencyDivisor = 1002284;

constexpr qint64 kCostBase = 124524475;
constexpr int kRepeats = 100;
constexpr int kMostIntervals = 100000; ///< a clock may give a new interval each time

QString keyOfThisThread(const QString &name)
{
    return name + QLatin1Char('@')
        + QString::number(reinterpret_cast<quintptr>(QThread::currentThread()));
}

// A clock may say anything: its values and what is made of them wrap.

qint64 wrappedSum(qint64 left, qint64 right)
{
    return static_cast<qint64>(static_cast<quint64>(left) + static_cast<quint64>(right));
}

qint64 wrappedDifference(qint64 left, qint64 right)
{
    return static_cast<qint64>(static_cast<quint64>(left) - static_cast<quint64>(right));
}

qint64 wrappedProduct(qint64 left, qint64 right)
{
    return static_cast<qint64>(static_cast<quint64>(left) * static_cast<quint64>(right));
}

/// The frequency as two overlapping measurements of the same work show it; 0 where the clock did
/// not go forward.
qint64 frequencySample(TimeCounters::Clock clock, qint64 ticksPerSecond, qint64 &textNumber)
{
    std::array<wchar_t, kTextSize> text{};
    const qint64 firstStart = clock();
    const qint64 secondStart = clock();
    for (int i = 0; i < kTextsPerSample; ++i) {
        std::swprintf(text.data(), text.size(), L"Count: %lld",
                      static_cast<long long>(textNumber++));
    }
    const qint64 firstEnd = clock();
    const qint64 secondEnd = clock();

    const qint64 first = wrappedDifference(firstEnd, firstStart);
    const qint64 second = wrappedDifference(secondEnd, secondStart);
    return first > 0 ? wrappedProduct(second, ticksPerSecond) / first : 0;
}

bool isWithinFactorOfTwo(qint64 left, qint64 right)
{
    const auto [smaller, larger] = std::minmax(left, right);
    return smaller >= 0 && larger - smaller <= smaller;
}

qint64 measuredFrequency(TimeCounters::Clock clock, qint64 ticksPerSecond)
{
    std::array<qint64, kSamples> samples{};
    qint64 textNumber = 0;
    for (qint64 &sample : samples)
        sample = frequencySample(clock, ticksPerSecond, textNumber);

    // Groups of three successors of every third sample are all samples but the first.
    quint64 sum = 0;
    quint64 count = 0;
    for (std::size_t i = 1; i < kSamples; ++i) {
        if (isWithinFactorOfTwo(samples[i - 1], samples[i])) {
            sum += static_cast<quint64>(samples[i]);
            ++count;
        }
    }
    return count == 0 ? 0 : static_cast<qint64>(sum / count * kFrequencyScale / kFrequencyDivisor);
}

} // namespace

/// One reader-writer spin lock a bucket.
class TimeCounters::Table : public tbb::concurrent_hash_map<QString, TimeCounter>
{
};

TimeCounters::TimeCounters(Clock clock, qint64 ticksPerSecond)
    : m_clock(clock)
    , m_ticksPerSecond(ticksPerSecond)
    , m_table(std::make_unique<Table>())
{}

TimeCounters::~TimeCounters() = default;

void TimeCounters::start(const QString &name)
{
    Table::accessor record;
    m_table->insert(record, keyOfThisThread(name));
    record->second.start = m_clock();
}

qint64 TimeCounters::stop(const QString &name)
{
    const qint64 now = m_clock(); // before the table's work, which does not count
    Table::accessor record;
    if (!m_table->find(record, keyOfThisThread(name)))
        return 0;
    TimeCounter &counter = record->second;
    const qint64 interval = wrappedDifference(now, counter.start);
    counter.total = wrappedSum(counter.total, interval);
    counter.last = interval;
    ++counter.count;
    return interval;
}

std::optional<TimeCounter> TimeCounters::counter(const QString &name) const
{
    Table::const_accessor record;
    if (!m_table->find(record, keyOfThisThread(name)))
        return std::nullopt;
    return record->second;
}

std::size_t TimeCounters::size() const
{
    return m_table->size();
}

void TimeCounters::calibrate()
{
    if (m_isCalibrated)
        return;
    m_isCalibrated = true;
    m_calibratedFrequency = measuredFrequency(m_clock, m_ticksPerSecond);
    m_calibratedCost = kCostBase;
    if (const std::optional<qint64> interval = settledEmptyInterval())
        m_calibratedCost = wrappedSum(m_calibratedCost, wrappedDifference(*interval, 1));
    m_table->clear();
}

qint64 TimeCounters::emptyInterval()
{
    const QString name = QStringLiteral("pipo");
    start(name);
    return stop(name);
}

/// The interval that was the last to repeat its predecessor, once enough have.
std::optional<qint64> TimeCounters::settledEmptyInterval()
{
    qint64 previous = emptyInterval();
    int repeats = 0;
    for (int i = 1; i < kMostIntervals; ++i) {
        const qint64 interval = emptyInterval();
        if (interval == previous && ++repeats == kRepeats)
            return interval;
        previous = interval;
    }
    return std::nullopt;
}

qint64 TimeCounters::steadyNanoseconds()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

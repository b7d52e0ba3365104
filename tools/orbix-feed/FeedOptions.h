#pragma once

#include <QSize>
#include <QString>

#include <chrono>
#include <optional>

/// What the options of orbix-feed say, and when its frames go out. Pure.
namespace FeedOptions {

/// Frames a second as a fraction, neither part 0.
struct Rate
{
    quint16 numerator = 30;
    quint16 denominator = 1;
};

/// From "3840x1920", neither part 0. None for all else.
std::optional<QSize> parseSize(const QString &text);

/// From "30" or "30000/1001", each part up to 65535. None for all else.
std::optional<Rate> parseRate(const QString &text);

} // namespace FeedOptions

/// The times at which frames go out: no two of them closer than the rate says. They keep the rate
/// as long as the frames are there in time; after one that is late they count from that one, so
/// that none hurries to make up for it.
class FeedPace
{
public:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;

    explicit FeedPace(FeedOptions::Rate rate)
        : m_period(std::chrono::nanoseconds(std::chrono::seconds(rate.denominator))
                   / rate.numerator)
    {}

    /// When the next frame goes out, which is complete at `ready`.
    Time due(Time ready);

private:
    const std::chrono::nanoseconds m_period;
    Time m_earliest = Time::min(); ///< for the next frame
};

#pragma once

#include "Vector.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace Leap {

/// Where a point has lately been: the newest place and, before it, places that are at least
/// `spacing` apart in time; 128 at most.
class Track
{
public:
    struct Point
    {
        Vector place;
        std::int64_t time = 0; ///< µs
    };

    explicit Track(std::int64_t spacing)
        : m_spacing(spacing)
    {}

    /// Times must not go back.
    void add(const Vector &place, std::int64_t time)
    {
        const bool isTooSoon = m_count >= 2 && time - at(1).time < m_spacing;
        if (!isTooSoon) {
            m_newest = (m_newest + 1) % kCapacity;
            m_count = std::min(m_count + 1, kCapacity);
        }
        m_points[m_newest] = {place, time};
    }

    void clear() { m_count = 0; }

    std::size_t count() const { return m_count; }

    /// `back` points ago; it must be below `count`.
    const Point &at(std::size_t back) const
    {
        return m_points[(m_newest + kCapacity - back) % kCapacity];
    }

    float secondsSince(std::size_t back) const { return float(at(0).time - at(back).time) * 1e-6F; }

    /// The standard deviation of the sensor's noise in each coordinate, mm, from what third
    /// differences leave of any smooth motion. 0 for a track that is too short to tell.
    float noise() const
    {
        constexpr std::size_t kMost = 32;
        constexpr std::size_t kLeast = 8;
        std::array<float, kMost> squares{};
        std::size_t known = 0;
        while (known < kMost && known + 4 < m_count) {
            // The newest may not be as far from its neighbour as the others.
            const std::size_t i = known + 1;
            const Vector third = at(i).place - at(i + 3).place
                - (at(i + 1).place - at(i + 2).place) * 3;
            squares[known++] = third.magnitudeSquared();
        }
        if (known < kLeast)
            return 0;
        const auto end = squares.begin() + std::ptrdiff_t(known);
        const auto middle = squares.begin() + std::ptrdiff_t(known / 2);
        std::nth_element(squares.begin(), middle, end);
        // A third difference has 1 + 9 + 9 + 1 times the variance; of the sum of three squares the
        // median is 2.366 times that.
        return std::sqrt(*middle / (20 * 2.366F));
    }

private:
    static constexpr std::size_t kCapacity = 128;

    std::int64_t m_spacing;
    std::size_t m_count = 0;
    std::size_t m_newest = 0;
    std::array<Point, kCapacity> m_points;
};

} // namespace Leap

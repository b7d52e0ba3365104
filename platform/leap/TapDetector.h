#pragma once

#include "FrameData.h"
#include "Track.h"

#include <optional>

namespace Leap {

/// Finds taps: from rest the tip goes one way and comes back, each in a tenth of a second and
/// faster than 50 mm/s, and hardly aside. The way has to stand out from the sensor's noise.
class TapDetector
{
public:
    /// `way` has length 1; `leastWay` in mm.
    TapDetector(GestureType type, const Vector &way, float leastWay)
        : m_type(type)
        , m_way(way)
        , m_leastWay(leastWay)
    {}

    /// The tip's way. A tap is told once, as the tip comes back; all but ids are filled in.
    std::optional<GestureData> feed(const Track &track);

private:
    GestureType m_type;
    Vector m_way;
    float m_leastWay;
    std::optional<std::int64_t> m_lastEnd; ///< of a tap, µs
};

} // namespace Leap

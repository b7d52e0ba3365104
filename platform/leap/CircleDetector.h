#pragma once

#include "CircleFit.h"
#include "FrameData.h"
#include "Track.h"

#include <limits>
#include <optional>

namespace Leap {

/// Finds circles that a tip draws: three quarters of one or more within two seconds, not as small
/// as the sensor's noise. From there on the circle goes on, turn for turn, until the tip rests,
/// turns back or leaves it.
class CircleDetector
{
public:
    /// The tip's way, where it is now without the sensor's noise, that noise's standard
    /// deviation and how large a circle has to be, mm. Of the gesture it fills in what a circle
    /// has, besides ids.
    std::optional<GestureData> feed(const Track &track, const Vector &steadyTip, float noise,
                                    float leastRadius);

    /// Ends a circle that is under way.
    std::optional<GestureData> stop();

    bool isDrawing() const { return m_isDrawing; }

private:
    std::optional<GestureData> begin(const Track &track, const Vector &steadyTip, float noise,
                                     float leastRadius);
    void refit(const Track &track);
    bool goesOn(const Track &track, const Vector &steadyTip);
    GestureData told(GestureState state) const;

    bool m_isDrawing = false;
    Circle m_circle;
    Vector m_tip;
    /// Of the circle, or the end of the last one; µs, as the two below.
    std::int64_t m_begin = std::numeric_limits<std::int64_t>::min();
    std::int64_t m_now = 0;
    std::int64_t m_checked = 0; ///< when the turns were last seen to grow
    float m_turned = 0;         ///< turns, with each step back
    float m_turns = 0;          ///< the most of them
    float m_turnsThen = 0;      ///< when last checked
};

} // namespace Leap

#pragma once

#include "GestureFinder.h"
#include "GestureTypes.h"
#include "OneEuroFilter.h"
#include "PerId.h"
#include "TouchPlane.h"

#include <optional>

namespace Leap {

/// Fills in what a tracking service leaves out of its moments, one connection's after the other:
/// stabilised positions, touch zones, the interaction box and gestures. What the service tells
/// itself stays. Hands beyond 20 and fingers beyond 120 are left as they are. After a gap of 0.2 s,
/// or a step back in time, all begins anew.
class FrameDeriver
{
public:
    FrameDeriver();

    /// Gestures of other types than the wanted are taken out.
    void complete(FrameData &frame, GestureTypes wanted);

private:
    struct Palm
    {
        OneEuroFilter place;
        OneEuroFilter normal;
        OneEuroFilter direction;
    };
    struct Fingertip
    {
        OneEuroFilter place;
        TouchPlane plane;
    };

    void addSteadied(FrameData &frame, float seconds);
    void keepWanted(std::vector<GestureData> &gestures, GestureTypes wanted);

    PerId<Palm> m_palms;
    PerId<Fingertip> m_tips;
    GestureFinder m_gestures;
    std::vector<int> m_underWay;        ///< ids of the circles and swipes of the last moment
    std::optional<std::int64_t> m_last; ///< µs
};

} // namespace Leap

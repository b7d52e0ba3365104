#pragma once

#include "CircleDetector.h"
#include "PerId.h"
#include "SwipeDetector.h"
#include "TapDetector.h"

#include <vector>

namespace Leap {

/// Finds the gestures of up to 20 hands and 20 tools, moment after moment. A hand gestures with its
/// index finger, or else with another that is extended. A hand points with two of them at most,
/// besides the thumb, as tools do: it draws circles from a radius of 5 mm and taps. Any other draws
/// circles from 25 mm, with the whole hand, since fingers at work on a keyboard make small ones.
/// Swipes are any hand's. Hands whose fingers hang down do not gesture.
class GestureFinder
{
public:
    GestureFinder();

    /// Those that begin, go on or end in this moment. Circles and swipes have a Start, then an
    /// Update in each moment, and a Stop, all under one id; taps have a Stop alone. Stabilised
    /// positions are used where they are known.
    std::vector<GestureData> find(const FrameData &frame);

    /// What follows has nothing to do with what was; gestures under way end in the next moment.
    void reset();

private:
    /// A finger or tool that gestures, and how.
    struct Lane
    {
        int handId = -1;
        int pointableId = -1;
        std::int64_t lastExtended = 0; ///< µs
        int circleId = -1;
        int swipeId = -1;
        /// Circles are slower than all else.
        Track slow{16000};
        Track track{8000};
        CircleDetector circle;
        SwipeDetector swipe;
        TapDetector keyTap{GestureType::KeyTap, -Vector::yAxis(), 3};
        TapDetector screenTap{GestureType::ScreenTap, -Vector::zAxis(), 5};
    };

    void follow(Lane &lane, const PointableData &pointable, std::int64_t time, bool isPointing);
    void end(Lane &lane);
    void tell(const Lane &lane, std::optional<GestureData> gesture, int *id);

    PerId<Lane> m_hands;
    PerId<Lane> m_tools;
    std::vector<GestureData> m_told;
    int m_lastId = 0;
};

} // namespace Leap

#pragma once

#include "FrameData.h"
#include "Track.h"

#include <optional>

namespace Leap {

/// Finds swipes: from rest, or nearly, straight on for at least 150 mm and then still faster than
/// 1000 mm/s. A swipe goes on until it slows down or turns away.
class SwipeDetector
{
public:
    /// The way of what swipes. Of the gesture it fills in what a swipe has, besides ids.
    std::optional<GestureData> feed(const Track &track);

    /// Ends a swipe that is under way.
    std::optional<GestureData> stop();

private:
    std::optional<GestureData> begin(const Track &track, float speed);
    GestureData told(GestureState state) const;

    bool m_isSwiping = false;
    GestureData m_swipe;
    std::int64_t m_begin = 0;          ///< µs
    std::optional<std::int64_t> m_end; ///< of the last swipe, µs
};

} // namespace Leap

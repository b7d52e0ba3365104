#pragma once

#include "FrameData.h"

namespace Leap {

/// What hands did between two moments.
struct Motion
{
    Vector translation; ///< of the palms, mm
    float angle = 0;    ///< radians, at least 0
    float scale = 1;    ///< factor
    /// How likely each part was meant. As shares of the ways that the hands' surface went by each
    /// of them, sharpened so that the greatest stands out; all 0 for hands at rest.
    float translationProbability = 0;
    float rotationProbability = 0;
    float scaleProbability = 0;
};

/// Of one hand. Of two moments that both carry the service's own count, by that; otherwise by palm
/// and fingers, stabilised where that is known, except for the way: whoever lets something go on
/// where the hand has stopped must not see it lag.
Motion motionBetween(const HandData &before, const HandData &now);

/// Of all hands that are in both moments: with two hands or more, their turn around each other and
/// their distance count as rotation and scale, and how likely each part is goes by stabilised
/// places.
Motion motionBetween(const FrameData &before, const FrameData &now);

} // namespace Leap
